// The dialog before an import of free points: how opaque they are, and the colour of points without one.
#pragma once
#include <QDialog>

#include "PointsJob.h"

class ColorButton;
class QSpinBox;

class PointsDialog : public QDialog {
    Q_OBJECT
public:
    /// @param names  of the files, for the user
    /// @param look   first values
    PointsDialog(const QStringList& names, const PointsLook& look, QWidget* parent = nullptr);
    [[nodiscard]] PointsLook Look() const;

private:
    /// The slider and the number beside it. @return their row
    QWidget* MakeAlpha(float alpha);

    QSpinBox* m_pAlpha = nullptr;  // percent
    ColorButton* m_pColor = nullptr;
};
