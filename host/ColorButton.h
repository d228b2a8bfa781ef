// A button that shows a colour and lets the user choose another one.
#pragma once
#include <QColor>
#include <QToolButton>
#include <cstdint>

// Conversion between the packed colours of the viewer, 0x00BBGGRR, and those of Qt; alpha is dropped.
[[nodiscard]] QColor ColorFromPacked(std::int32_t packed);
[[nodiscard]] std::int32_t PackedFromColor(const QColor& color);

class ColorButton : public QToolButton {
    Q_OBJECT
public:
    explicit ColorButton(std::int32_t packed, QWidget* parent = nullptr);
    [[nodiscard]] std::int32_t Packed() const { return m_nPacked; }
    /// The purpose of the colour. The button has no text, so this becomes its tool tip and its name for screen readers.
    void SetName(const QString& name);
    /// Shows another colour, without emitting ColorChosen().
    void SetPacked(std::int32_t packed);

signals:
    /// The user chose a colour in the dialog.
    void ColorChosen(std::int32_t packed);

private:
    void Choose();

    std::int32_t m_nPacked = 0;  // 0x00BBGGRR
};
