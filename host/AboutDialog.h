// The about box of the viewer in the look of the desktop.
#pragma once
#include "KV_ScenePane/ScenePane.h"

class QWidget;

/// Shows the texts with an icon, and returns when the user has closed the dialog. It is modal, and closed as well when
/// its parent is destroyed.
/// @param parent  the dialog is in front of its window
void ShowAboutDialog(const KV_ScenePane::AboutText& text, QWidget* parent);
