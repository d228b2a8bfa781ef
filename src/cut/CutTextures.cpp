// The OpenGL objects of a freehand session, made from what the scene shows.
#include "control/ScenePaneCtrl.h"

std::unique_ptr<CutMaskTextures> CKV_ScenePaneCtrl::CreateCutMaskTextures() { return nullptr; }
