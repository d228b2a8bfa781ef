// The fit of a view to what is seen of a scene from one side.
#pragma once
#include "KV_ScenePane/ScenePane.h"

/// Moves and magnifies the view, without turning it, until what it shows touches two opposite sides of the picture, at
/// most one pixel away from them, or the limit of the viewer is reached. Found by drawing: decorations count, too.
/// Changes nothing where nothing is drawn.
/// @param pane  an OffScreen viewer whose view is fitted (CenterView()) and whose background is not needed any more
void FitTightly(KV_ScenePane::ScenePane& pane);
