// The dialog before a picture of the view is saved or copied.
#pragma once
#include <QDialog>

#include "ViewPicture.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QPushButton;
class QSpinBox;

class PictureDialog : public QDialog {
    Q_OBJECT
public:
    enum class Use { Save, Copy };

    /// @param viewSize     of the window, device pixels
    /// @param look         first values; an empty size is that of the window
    /// @param largestSide  that can be drawn, pixels
    PictureDialog(QSize viewSize, const PictureLook& look, int largestSide, QWidget* parent = nullptr);
    [[nodiscard]] PictureLook Look() const;
    /// What the button that closed the dialog is for.
    [[nodiscard]] Use ChosenUse() const { return m_use; }

private:
    void MakeSizes();
    void Arrange();
    /// Takes the size of the list: 1, 2 or 4 times that of the window.
    void ChooseFactor(int row);
    /// One side was typed: with the shape of the window the other one follows.
    void FollowSide(QSpinBox& typed, QSpinBox& other, double otherPerTyped);
    /// The list shows the factor of the present size, and the buttons whether it can be drawn.
    void ShowSize();

    const QSize m_viewSize;
    const int m_nLargestSide;
    Use m_use = Use::Save;
    // Widgets belong to Qt: their parents delete them.
    QComboBox* m_pFactor;
    QSpinBox *m_pWidth, *m_pHeight;
    QCheckBox *m_pKeepsShape, *m_pDecorations, *m_pTransparent;
    QLabel* m_pRefusal;
    QPushButton *m_pSave = nullptr, *m_pCopy = nullptr;
};
