// The viewer for programs in C: the functions of kv_scenepane.h over ScenePane and the automation table.
#include "KV_ScenePane/kv_scenepane.h"

#include "control/AutomationTable.h"
