// Four colour buttons arranged like the corners of the picture; with two colours only the left two are visible.
#include "BackgroundDialog.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>

#include "ColorButton.h"

BackgroundDialog::BackgroundDialog(const std::array<std::int32_t, 4>& colors, QWidget* parent) : QDialog(parent) {
    setWindowTitle(tr("Background colours"));
    auto* const grid = new QGridLayout(this);
    for (std::size_t i = 0; i < colors.size(); ++i) AddCorner(*grid, i, colors[i]);
    m_pTwoColors = new QCheckBox(tr("&Top and bottom only"));
    // A background that two colours can describe is shown as such.
    m_pTwoColors->setChecked(colors[0] == colors[1] && colors[2] == colors[3]);
    connect(m_pTwoColors, &QCheckBox::toggled, this, &BackgroundDialog::ShowCorners);
    grid->addWidget(m_pTwoColors, 4, 0, 1, 2);
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    grid->addWidget(buttons, 5, 0, 1, 2);
    ShowCorners();
}

std::array<std::int32_t, 4> BackgroundDialog::Colors() const {
    const std::int32_t top = m_pCorners[0]->Packed(), bottom = m_pCorners[2]->Packed();
    if (m_pTwoColors->isChecked()) return {top, top, bottom, bottom};
    return {top, m_pCorners[1]->Packed(), bottom, m_pCorners[3]->Packed()};
}

void BackgroundDialog::AddCorner(QGridLayout& grid, std::size_t index, std::int32_t packed) {
    m_pNames[index] = new QLabel;
    m_pCorners[index] = new ColorButton(packed);
    // Two rows of the grid per corner: the label above its button.
    const auto row = static_cast<int>(index / 2), column = static_cast<int>(index % 2);
    grid.addWidget(m_pNames[index], 2 * row, column, Qt::AlignCenter);
    grid.addWidget(m_pCorners[index], 2 * row + 1, column, Qt::AlignCenter);
}

void BackgroundDialog::ShowCorners() {
    // An empty name hides the label and its button.
    const bool two = m_pTwoColors->isChecked();
    const std::array<QString, 4> four{tr("Top left"), tr("Top right"), tr("Bottom left"), tr("Bottom right")};
    const std::array<QString, 4> left{tr("Top"), {}, tr("Bottom"), {}};
    for (std::size_t i = 0; i < m_pCorners.size(); ++i) {
        const QString& name = (two ? left : four)[i];
        m_pNames[i]->setText(name);
        m_pNames[i]->setVisible(!name.isEmpty());
        m_pCorners[i]->SetName(name);
        m_pCorners[i]->setVisible(!name.isEmpty());
    }
}
