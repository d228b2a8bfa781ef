// Asks for the colours of the background's corners.
#pragma once
#include <QDialog>
#include <array>
#include <cstdint>

class ColorButton;
class QCheckBox;
class QGridLayout;
class QLabel;

class BackgroundDialog : public QDialog {
    Q_OBJECT
public:
    /// @param colors  0x00BBGGRR: top left, top right, bottom left, bottom right
    explicit BackgroundDialog(const std::array<std::int32_t, 4>& colors, QWidget* parent = nullptr);

    /// With two colours the right corners are as the left ones.
    [[nodiscard]] std::array<std::int32_t, 4> Colors() const;

private:
    void AddCorner(QGridLayout& grid, std::size_t index, std::int32_t packed);
    void ShowCorners();

    QCheckBox* m_pTwoColors = nullptr;
    std::array<QLabel*, 4> m_pNames{};
    std::array<ColorButton*, 4> m_pCorners{};
};
