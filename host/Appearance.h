// Light and dark colours of the windows.
#pragma once

/// Whose colours the windows have.
enum class Appearance { Desktop, Light, Dark };

/// Changes all windows of the program, those that are open too.
void ShowAppearance(Appearance appearance);

/// What was stored last; the desktop's without a valid value.
[[nodiscard]] Appearance StoredAppearance();
void StoreAppearance(Appearance appearance);
