// The colour is the icon of the button; a click opens Qt's colour dialog.
#include "ColorButton.h"

#include <QColorDialog>
#include <QPixmap>
#include <QPointer>

QColor ColorFromPacked(std::int32_t packed) { return {packed & 0xFF, (packed >> 8) & 0xFF, (packed >> 16) & 0xFF}; }

std::int32_t PackedFromColor(const QColor& color) { return color.red() | (color.green() << 8) | (color.blue() << 16); }

ColorButton::ColorButton(std::int32_t packed, QWidget* parent) : QToolButton(parent) {
    SetPacked(packed);
    connect(this, &QToolButton::clicked, this, &ColorButton::Choose);
}

void ColorButton::SetName(const QString& name) {
    setAccessibleName(name);
    setToolTip(name);
}

void ColorButton::SetPacked(std::int32_t packed) {
    m_nPacked = packed;
    QPixmap patch(iconSize());
    patch.fill(ColorFromPacked(packed));
    setIcon(patch);
}

void ColorButton::Choose() {
    // The row of an object, and this button with it, can be removed while the dialog is open.
    const QPointer<ColorButton> self(this);
    const QColor color = QColorDialog::getColor(ColorFromPacked(m_nPacked), window(), tr("Colour"));
    if (!self || !color.isValid()) return;  // not valid: the dialog was cancelled
    SetPacked(PackedFromColor(color));
    emit ColorChosen(m_nPacked);
}
