// Four colour buttons as they lie in the picture, or the left two alone.
#include "BackgroundDialog.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QGridLayout>

#include "ColorButton.h"

BackgroundDialog::BackgroundDialog(const std::array<std::int32_t, 4>& colors, QWidget* parent) : QDialog(parent) {
    setWindowTitle(tr("Background colours"));
    auto* const grid = new QGridLayout(this);
    for (int i = 0; i < 4; ++i) {
        auto* const corner = new ColorButton(colors[static_cast<std::size_t>(i)]);
        m_pCorners[static_cast<std::size_t>(i)] = corner;
        grid->addWidget(corner, i / 2, i % 2, Qt::AlignCenter);
    }
    m_pTwoColors = new QCheckBox(tr("&Top and bottom only"));
    m_pTwoColors->setChecked(colors[0] == colors[1] && colors[2] == colors[3]);
    connect(m_pTwoColors, &QCheckBox::toggled, this, &BackgroundDialog::ShowCorners);
    grid->addWidget(m_pTwoColors, 2, 0, 1, 2);
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    grid->addWidget(buttons, 3, 0, 1, 2);
    ShowCorners();
}

std::array<std::int32_t, 4> BackgroundDialog::Colors() const {
    const std::int32_t top = m_pCorners[0]->Packed(), bottom = m_pCorners[2]->Packed();
    if (m_pTwoColors->isChecked()) return {top, top, bottom, bottom};
    return {top, m_pCorners[1]->Packed(), bottom, m_pCorners[3]->Packed()};
}

void BackgroundDialog::ShowCorners() {
    m_pCorners[1]->setVisible(!m_pTwoColors->isChecked());
    m_pCorners[3]->setVisible(!m_pTwoColors->isChecked());
}
