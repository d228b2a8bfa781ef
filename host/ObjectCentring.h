// Sizes of objects, and the move of the view to one of them.
#pragma once
#include <QSize>
#include <vector>

#include "KV_ScenePane/_DKV_ScenePane.h"

/// Length of the diagonal of the box around these objects; 0 without one that has points.
[[nodiscard]] double SceneDiagonal(KV_ScenePane::_DKV_ScenePane& methods, const std::vector<int>& objects);

/// The middle of the object's box comes to the middle of the window. The directions of the view stay, and so does the
/// magnification, unless the object would not fit: then it fills most of the window. The view is fitted to the scene
/// before, so that its size is that of what is visible now.
/// @param index    of an object of the viewer
/// @param visible  all objects with triangles that the viewer shows
/// @param window   size of the drawing area
void CentreObject(KV_ScenePane::_DKV_ScenePane& methods, int index, const std::vector<int>& visible, QSize window);
