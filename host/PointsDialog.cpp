// A slider with a number for the opacity, a colour button, and what the user must know before the import.
#include "PointsDialog.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSlider>
#include <QSpinBox>
#include <QStringList>
#include <cmath>

#include "ColorButton.h"

namespace {
constexpr int kShownNames = 5;  // so that the dialog fits on the screen
constexpr int kNoteWidth = 60;  // characters
}  // namespace

PointsDialog::PointsDialog(const QStringList& names, const PointsLook& look, QWidget* parent) : QDialog(parent) {
    setWindowTitle(tr("Import free points"));
    auto* const form = new QFormLayout(this);
    QStringList lines = names.mid(0, kShownNames);
    if (names.size() > kShownNames) lines += tr("and %1 more").arg(names.size() - kShownNames);
    auto* const files = new QLabel(lines.join('\n'));
    files->setObjectName("files");
    files->setTextFormat(Qt::PlainText);
    form->addRow(tr("Files:"), files);
    form->addRow(tr("&Opacity:"), MakeAlpha(look.alpha));
    m_pColor = new ColorButton(look.color);
    m_pColor->setObjectName("pointColor");
    m_pColor->SetName(tr("Colour of points that have none in their file"));
    form->addRow(tr("&Colour of points without one:"), m_pColor);
    auto* const note = new QLabel(
        tr("The opacity of points cannot be changed after the import. To change it, delete them and import the file "
           "again: the graphics memory of deleted points is not free before the window is closed. From 99 % on, points "
           "are opaque."));
    note->setObjectName("note");
    note->setWordWrap(true);
    note->setMinimumWidth(kNoteWidth * fontMetrics().averageCharWidth());
    form->addRow(note);
    auto* const buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    buttons->button(QDialogButtonBox::Ok)->setText(tr("&Import"));
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    form->addRow(buttons);
}

QWidget* PointsDialog::MakeAlpha(float alpha) {
    const QString tip = tr("At 0 % the points are invisible.");
    auto* const slider = new QSlider(Qt::Horizontal);
    slider->setObjectName("alpha");
    slider->setRange(0, 100);
    slider->setPageStep(10);
    slider->setAccessibleName(tr("Opacity in percent"));
    slider->setToolTip(tip);
    m_pAlpha = new QSpinBox;
    m_pAlpha->setObjectName("alphaNumber");
    m_pAlpha->setRange(0, 100);
    m_pAlpha->setSuffix(tr(" %"));
    m_pAlpha->setAccessibleName(slider->accessibleName());
    m_pAlpha->setToolTip(tip);
    // Each follows the other.
    connect(slider, &QSlider::valueChanged, m_pAlpha, &QSpinBox::setValue);
    connect(m_pAlpha, &QSpinBox::valueChanged, slider, &QSlider::setValue);
    m_pAlpha->setValue(static_cast<int>(std::lround(alpha * 100.0f)));
    auto* const row = new QWidget;
    auto* const layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(slider, 1);
    layout->addWidget(m_pAlpha);
    row->setFocusProxy(slider);  // for the mnemonic of the row's label
    return row;
}

PointsLook PointsDialog::Look() const { return {static_cast<float>(m_pAlpha->value()) / 100.0f, m_pColor->Packed()}; }
