// What the window remembers from one start to the next, in the user's configuration folder.
#pragma once

/// Samples per pixel of a window with smooth edges.
inline constexpr int kSmoothSamples = 4;

/// Whether the window smooths the edges of objects; true until the user chose otherwise.
[[nodiscard]] bool HasSmoothEdges();
/// For the windows of later starts: the samples of a viewer are fixed when it is made.
void SetSmoothEdges(bool on);
