// The list of factors, the two sides and the shape follow each other.
#include "PictureDialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSpinBox>
#include <algorithm>
#include <array>
#include <cmath>

namespace {
// The rows of the list; the last one is for any other size.
constexpr std::array kFactors = {1, 2, 4};
constexpr int kOtherSize = static_cast<int>(kFactors.size());
}  // namespace

PictureDialog::PictureDialog(QSize viewSize, const PictureLook& look, int largestSide, QWidget* parent)
    : QDialog(parent),
      m_viewSize(viewSize),
      m_nLargestSide(largestSide),
      m_pFactor(new QComboBox),
      m_pWidth(new QSpinBox),
      m_pHeight(new QSpinBox),
      m_pKeepsShape(new QCheckBox(tr("Keep the shape of the &view"))),
      m_pDecorations(new QCheckBox(tr("&Decorations, selection and markers"))),
      m_pTransparent(new QCheckBox(tr("&Transparent background"))),
      m_pRefusal(new QLabel) {
    setWindowTitle(tr("Save view as picture"));
    MakeSizes();
    m_pDecorations->setObjectName("decorations");
    m_pDecorations->setToolTip(
        tr("Axes, lighting arrow, centre cross, logo, clip plane, selected objects, pick points, needles and lines"));
    m_pDecorations->setChecked(look.hasDecorations);
    m_pTransparent->setObjectName("transparent");
    m_pTransparent->setToolTip(tr("For PNG files and for the clipboard. JPEG files have no transparency."));
    m_pTransparent->setChecked(look.isTransparent);
    Arrange();
    const QSize size = look.size.isEmpty() ? viewSize : look.size;
    // The other side must not follow while both are set.
    m_pKeepsShape->setChecked(false);
    m_pWidth->setValue(size.width());
    m_pHeight->setValue(size.height());
    m_pKeepsShape->setChecked(size.width() * viewSize.height() == size.height() * viewSize.width());
    ShowSize();
}

void PictureDialog::MakeSizes() {
    m_pFactor->setObjectName("factor");
    for (const int factor : kFactors)
        m_pFactor->addItem(factor == 1 ? tr("As in the window") : tr("%1 x the window").arg(factor));
    m_pFactor->addItem(tr("Other"));
    connect(m_pFactor, &QComboBox::activated, this, &PictureDialog::ChooseFactor);
    for (QSpinBox* const side : {m_pWidth, m_pHeight}) {
        side->setRange(1, m_nLargestSide);
        side->setSuffix(tr(" px"));
    }
    m_pWidth->setObjectName("width");
    m_pHeight->setObjectName("height");
    m_pKeepsShape->setObjectName("keepsShape");
    m_pKeepsShape->setToolTip(tr("Another shape shows what the window would show in that shape."));
    const double aspect = static_cast<double>(m_viewSize.width()) / m_viewSize.height();
    connect(m_pWidth, &QSpinBox::valueChanged, this, [=, this] { FollowSide(*m_pWidth, *m_pHeight, 1 / aspect); });
    connect(m_pHeight, &QSpinBox::valueChanged, this, [=, this] { FollowSide(*m_pHeight, *m_pWidth, aspect); });
    connect(m_pKeepsShape, &QCheckBox::toggled, this, [=, this] { FollowSide(*m_pWidth, *m_pHeight, 1 / aspect); });
    m_pRefusal->setObjectName("refusal");
    m_pRefusal->setWordWrap(true);
}

void PictureDialog::Arrange() {
    auto* const form = new QFormLayout(this);
    form->addRow(tr("&Size:"), m_pFactor);
    auto* const sides = new QHBoxLayout;
    sides->addWidget(m_pWidth, 1);
    sides->addWidget(new QLabel(tr("x")));
    sides->addWidget(m_pHeight, 1);
    m_pWidth->setAccessibleName(tr("Width"));
    m_pHeight->setAccessibleName(tr("Height"));
    form->addRow(tr("Width and height:"), sides);
    form->addRow(m_pKeepsShape);
    form->addRow(m_pDecorations);
    form->addRow(m_pTransparent);
    form->addRow(m_pRefusal);
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Cancel);
    const auto add = [&](const QString& text, Use use) {
        QPushButton* const button = buttons->addButton(text, QDialogButtonBox::AcceptRole);
        connect(button, &QPushButton::clicked, this, [this, use] {
            m_use = use;
            accept();
        });
        return button;
    };
    m_pSave = add(tr("&Save..."), Use::Save);
    m_pCopy = add(tr("&Copy"), Use::Copy);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    form->addRow(buttons);
    m_pSave->setDefault(true);  // once it belongs to the dialog, which chooses another one otherwise
}

PictureLook PictureDialog::Look() const {
    return {{m_pWidth->value(), m_pHeight->value()}, m_pDecorations->isChecked(), m_pTransparent->isChecked()};
}

void PictureDialog::ChooseFactor(int row) {
    if (row < kOtherSize) {
        const QSize size = m_viewSize * kFactors[static_cast<std::size_t>(row)];
        const QSignalBlocker quietWidth(m_pWidth), quietHeight(m_pHeight);
        m_pWidth->setValue(size.width());
        m_pHeight->setValue(size.height());
    }
    ShowSize();
}

void PictureDialog::FollowSide(QSpinBox& typed, QSpinBox& other, double otherPerTyped) {
    if (m_pKeepsShape->isChecked()) {
        const QSignalBlocker quiet(other);
        other.setValue(std::max(static_cast<int>(std::lround(typed.value() * otherPerTyped)), 1));
    }
    ShowSize();
}

void PictureDialog::ShowSize() {
    const QSize size(m_pWidth->value(), m_pHeight->value());
    int row = 0;
    while (row < kOtherSize && m_viewSize * kFactors[static_cast<std::size_t>(row)] != size) ++row;
    m_pFactor->setCurrentIndex(row);
    const QString refusal = SizeRefusal(size, m_nLargestSide);
    m_pRefusal->setText(refusal.isEmpty() ? QString() : tr("Too large: %1.").arg(refusal));
    m_pSave->setEnabled(refusal.isEmpty());
    m_pCopy->setEnabled(refusal.isEmpty());
}
