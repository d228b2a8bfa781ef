// A button that shows a colour and lets the user choose another.
#pragma once
#include <QColor>
#include <QToolButton>
#include <cstdint>

/// A packed colour 0x00BBGGRR as Qt's, and back.
[[nodiscard]] QColor ColorFromPacked(std::int32_t packed);
[[nodiscard]] std::int32_t PackedFromColor(const QColor& color);

class ColorButton : public QToolButton {
    Q_OBJECT
public:
    explicit ColorButton(std::int32_t packed, QWidget* parent = nullptr);
    [[nodiscard]] std::int32_t Packed() const { return m_nPacked; }
    /// What the colour is for: a button that shows a colour alone says it by its tooltip, and to who cannot see it.
    void SetName(const QString& name);
    /// Shows the colour; emits nothing.
    void SetPacked(std::int32_t packed);

signals:
    /// The user chose.
    void ColorChosen(std::int32_t packed);

private:
    void Choose();

    std::int32_t m_nPacked = 0;  // 0x00BBGGRR
};
