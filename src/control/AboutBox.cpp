// The about dialog: its texts. The window shows it, by the host's hook.
#include "control/ScenePaneCtrl.h"

void CKV_ScenePaneCtrl::AboutBox() {
    m_pWindow->ShowAboutBox({"About KV_ScenePane Control", "KV_ScenePane Control, Version 5.5"});
}
