// Palettes of the Fusion style, which paints everything in the colours of the palette.
#include "Appearance.h"

#include <QApplication>
#include <QPalette>
#include <QSettings>
#include <QStyle>
#include <QStyleFactory>
#include <QToolTip>
#include <array>
#include <cstddef>
#include <utility>

#include "Settings.h"

namespace {

constexpr const char* kKey = "window/appearance";
constexpr std::array<const char*, 3> kNames{"desktop", "light", "dark"};  // in the order of Appearance

struct Shades {
    QColor window, base, button, text, dim, tip, highlight, highlightedText, link;
};

QPalette PaletteOf(const Shades& shades) {
    QPalette palette(shades.button, shades.window);  // derives the shades of frames
    const std::pair<QPalette::ColorRole, QColor> roles[] = {
        {QPalette::WindowText, shades.text},
        {QPalette::Base, shades.base},
        {QPalette::AlternateBase, shades.window},
        {QPalette::Text, shades.text},
        {QPalette::ButtonText, shades.text},
        {QPalette::BrightText, shades.highlightedText},
        {QPalette::ToolTipBase, shades.tip},
        {QPalette::ToolTipText, shades.text},
        {QPalette::Highlight, shades.highlight},
        {QPalette::HighlightedText, shades.highlightedText},
        {QPalette::Link, shades.link},
        {QPalette::LinkVisited, shades.link},
        {QPalette::PlaceholderText, shades.dim},
    };
    for (const auto& [role, color] : roles) palette.setColor(role, color);
    for (const QPalette::ColorRole role :
         {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::HighlightedText})
        palette.setColor(QPalette::Disabled, role, shades.dim);
    palette.setColor(QPalette::Disabled, QPalette::Base, shades.window);
    palette.setColor(QPalette::Disabled, QPalette::Highlight, shades.button);
    return palette;
}

const Shades& LightShades() {
    static const Shades shades{{0xEF, 0xEF, 0xEF}, Qt::white,          {0xE6, 0xE6, 0xE6},
                               {0x10, 0x10, 0x10}, {0x80, 0x80, 0x80}, {0xFF, 0xFF, 0xDC},
                               {0x2F, 0x6F, 0xB8}, Qt::white,          {0x00, 0x50, 0xA8}};
    return shades;
}

const Shades& DarkShades() {
    static const Shades shades{{0x35, 0x36, 0x3A}, {0x25, 0x26, 0x29}, {0x42, 0x44, 0x49},
                               {0xEC, 0xEC, 0xEC}, {0x8E, 0x90, 0x96}, {0x4A, 0x4C, 0x40},
                               {0x2F, 0x6F, 0xB8}, Qt::white,          {0x8A, 0xC0, 0xFF}};
    return shades;
}

const QColor kDarkOutline(0xB0, 0xB4, 0xBA);

/// The style that the program was started with.
const QString& StyleOfDesktop() {
    static const QString name = QApplication::style()->name();
    return name;
}

void SetStyle(const QString& name) {
    if (QApplication::style()->name().compare(name, Qt::CaseInsensitive) != 0) QApplication::setStyle(name);
}

}  // namespace

void ShowAppearance(Appearance appearance) {
    const QString& ofDesktop = StyleOfDesktop();  // at the first call: the style is still that of the start
    SetStyle(appearance == Appearance::Desktop ? ofDesktop : QString("fusion"));
    const QPalette palette = appearance == Appearance::Desktop ? QPalette()  // Qt then has that of the desktop
                             : appearance == Appearance::Dark  ? PaletteOf(DarkShades())
                                                               : PaletteOf(LightShades());
    QApplication::setPalette(palette);  // also for the classes below
    if (appearance == Appearance::Dark) {
        // The style outlines check marks in a darker shade of the window, which cannot be seen on a dark background.
        QPalette outlined = palette;
        outlined.setColor(QPalette::Window, kDarkOutline);
        for (const char* const name : {"QCheckBox", "QRadioButton", "QTreeView"})
            QApplication::setPalette(outlined, name);
    }
    // Tool tips do not follow the palette of the application.
    QToolTip::setPalette(appearance == Appearance::Desktop ? QPalette() : palette);
}

Appearance StoredAppearance() {
    const QString text = OpenSettings().value(kKey).toString();
    for (std::size_t i = 0; i < kNames.size(); ++i) {
        if (text == kNames.at(i)) return static_cast<Appearance>(i);
    }
    return Appearance::Desktop;
}

void StoreAppearance(Appearance appearance) {
    OpenSettings().setValue(kKey, kNames.at(static_cast<std::size_t>(appearance)));
}
