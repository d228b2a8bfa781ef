// The icon of the window and of its entry in a task bar.
#pragma once
#include <QIcon>

/// A scanned surface with its mesh, drawn by code.
[[nodiscard]] QIcon WindowIcon();
