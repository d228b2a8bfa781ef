// Finds texts of a Qt program on the screen by drawing them in the same font and comparing.
#pragma once
#include <QString>
#include <optional>

#include "host/Desktop.h"

enum class TextMatch {
    Whole,  ///< nothing is written beside it, as for an entry of a menu
    Part,   ///< the line may go on at both ends
};

/// Where the text is shown in the font that Qt chooses without settings of a desktop, in any colour that contrasts with
/// what is around it. The uppermost place when there are several. Needs a QGuiApplication.
/// @param text   one line, without the & of a mnemonic
/// @param scale  device pixels per pixel of Qt
[[nodiscard]] std::optional<ScreenArea> FindText(const ScreenShown& shown, const QString& text, double scale,
                                                 TextMatch match = TextMatch::Whole);
