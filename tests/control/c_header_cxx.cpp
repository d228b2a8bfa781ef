// The C header compiles as C++98, the oldest that a host may use.
#include "KV_ScenePane/kv_scenepane.h"

static kv_value MakeValue() {
    kv_value value;
    value.type = KV_VOID;
    value.as.i64 = 0;
    return value;
}

// Uses a function of each kind, so that the declarations are checked, too.
int KvCalledFromCxx98(kv_pane* pane) {
    kv_value value = MakeValue();
    return kv_invoke(pane, KV_GetNumObjects, 0, 0, &value) == KV_DONE ? value.as.i16 : -1;
}
