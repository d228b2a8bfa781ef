// The dialog for the colours of the background at its four corners; the viewer interpolates between them.
#pragma once
#include <QDialog>
#include <array>
#include <cstdint>

class ColorButton;
class QCheckBox;
class QGridLayout;
class QLabel;

/// Modal: the caller reads Colors() after it was accepted.
class BackgroundDialog : public QDialog {
    Q_OBJECT
public:
    /// @param colors  0x00BBGGRR: top left, top right, bottom left, bottom right
    explicit BackgroundDialog(const std::array<std::int32_t, 4>& colors, QWidget* parent = nullptr);

    /// Same form and order as the argument of the constructor. With "Top and bottom only" the right corners have the
    /// colours of the left ones.
    [[nodiscard]] std::array<std::int32_t, 4> Colors() const;

private:
    /// @param index  0 top left, 1 top right, 2 bottom left, 3 bottom right
    void AddCorner(QGridLayout& grid, std::size_t index, std::int32_t packed);
    /// Labels the buttons and hides the right ones when two colours are chosen.
    void ShowCorners();

    QCheckBox* m_pTwoColors = nullptr;
    std::array<QLabel*, 4> m_pNames{};
    std::array<ColorButton*, 4> m_pCorners{};
};
