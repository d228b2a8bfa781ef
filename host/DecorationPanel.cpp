// Each control changes the viewer at once. Methods of the viewer that request no repaint are followed by a refresh.
#include "DecorationPanel.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QPushButton>
#include <QSlider>
#include <QSpinBox>

#include "ColorButton.h"
#include "KV_ScenePane/Modes.h"

namespace {
// Colours that the viewer starts with, 0x00BBGGRR.
constexpr std::int32_t kArrowColor = 0xFFEAEA;
constexpr std::int32_t kCrossColor = 0xFFFFFF;
constexpr int kMaxAngle = 180;  // degrees
}  // namespace

DecorationPanel::DecorationPanel(QWidget* parent)
    : QWidget(parent),
      m_pAxes(new QCheckBox(tr("&Axes"))),
      m_pArrow(new QCheckBox(tr("&Lighting arrow"))),
      m_pCross(new QCheckBox(tr("&Centre cross"))),
      m_pCrossColor(new ColorButton(kCrossColor)),
      m_pArrowColor(new ColorButton(kArrowColor)),
      m_pAngle(new QSlider(Qt::Horizontal)),
      m_pAngleNumber(new QSpinBox) {
    MakeParts();
    MakeAngle();
    Arrange();
    setEnabled(false);
}

void DecorationPanel::MakeParts() {
    m_pAxes->setObjectName("axes");
    m_pAxes->setToolTip(tr("While the axes are shown, a double click in the view returns to the view from +Z."));
    connect(m_pAxes, &QCheckBox::toggled, this,
            [this](bool on) { Apply([on](auto& methods) { methods.ShowAxes(on ? 1 : 0); }); });
    m_pArrow->setObjectName("arrow");
    connect(m_pArrow, &QCheckBox::toggled, this,
            [this](bool on) { Apply([on](auto& methods) { methods.ShowLightingArrow(on ? 1 : 0); }); });
    m_pArrowColor->setObjectName("arrowColor");
    m_pArrowColor->SetName(tr("Colour of the lighting arrow"));
    connect(m_pArrowColor, &ColorButton::ColorChosen, this,
            [this](std::int32_t packed) { Apply([packed](auto& methods) { methods.SetArrowColor(packed); }); });
    m_pCross->setObjectName("cross");
    m_pCross->setToolTip(tr("The same as Tools, Picking, Centre cross: no point is picked while the cross is shown."));
    connect(m_pCross, &QCheckBox::toggled, this, &DecorationPanel::CrossWanted);
    m_pCrossColor->setObjectName("crossColor");
    m_pCrossColor->SetName(tr("Colour of the centre cross"));
    // SetCrossColor() requests no repaint, while SetArrowColor() draws a frame itself.
    connect(m_pCrossColor, &ColorButton::ColorChosen, this, [this](std::int32_t packed) {
        Apply([packed](auto& methods) {
            methods.SetCrossColor(packed);
            methods.PerformRefresh();
        });
    });
}

void DecorationPanel::MakeAngle() {
    const QString tip = tr("Degrees counterclockwise; at 0 the arrow is at the top.");
    m_pAngle->setObjectName("arrowAngle");
    m_pAngle->setRange(-kMaxAngle, kMaxAngle);
    m_pAngle->setPageStep(15);
    m_pAngle->setAccessibleName(tr("Arrow angle"));
    m_pAngle->setToolTip(tip);
    m_pAngleNumber->setObjectName("arrowAngleNumber");
    m_pAngleNumber->setRange(-kMaxAngle, kMaxAngle);
    m_pAngleNumber->setSuffix(QStringLiteral("\u00b0"));
    m_pAngleNumber->setAccessibleName(m_pAngle->accessibleName());
    m_pAngleNumber->setToolTip(tip);
    // Slider and number follow each other; the slider alone changes the viewer.
    connect(m_pAngleNumber, &QSpinBox::valueChanged, m_pAngle, &QSlider::setValue);
    connect(m_pAngle, &QSlider::valueChanged, m_pAngleNumber, &QSpinBox::setValue);
    connect(m_pAngle, &QSlider::valueChanged, this, [this](int degrees) {
        Apply([degrees](auto& methods) {
            methods.SetArrowAngle(static_cast<std::int16_t>(degrees));
            methods.PerformRefresh();
        });
    });
}

void DecorationPanel::Arrange() {
    auto* const form = new QFormLayout(this);
    form->addRow(m_pAxes);
    form->addRow(m_pArrow);
    form->addRow(tr("Arrow colour:"), m_pArrowColor);
    auto* const angle = new QHBoxLayout;
    angle->addWidget(m_pAngle, 1);
    angle->addWidget(m_pAngleNumber);
    form->addRow(tr("Arrow angle:"), angle);
    form->addRow(m_pCross);
    form->addRow(tr("Cross colour:"), m_pCrossColor);
    auto* const background = new QPushButton(tr("&Background colours..."));
    background->setObjectName("background");
    connect(background, &QPushButton::clicked, this, &DecorationPanel::BackgroundWanted);
    form->addRow(background);
}

void DecorationPanel::SetViewer(KV_ScenePane::_DKV_ScenePane* methods) {
    m_pMethods = methods;
    setEnabled(methods != nullptr);
}

void DecorationPanel::ShowCross(bool on) {
    const QSignalBlocker quiet(m_pCross);  // the caller has set the mode already
    m_pCross->setChecked(on);
}

void DecorationPanel::HideInViewer(bool isHidden) {
    Apply([&](auto& methods) {
        if (m_pAxes->isChecked()) methods.ShowAxes(isHidden ? 0 : 1);
        if (m_pArrow->isChecked()) methods.ShowLightingArrow(isHidden ? 0 : 1);
        // The cross is a pick mode; neither of these two picks or keeps anything.
        if (m_pCross->isChecked())
            methods.SetPickMode(isHidden ? KV_ScenePane::PickModeOff : KV_ScenePane::PickModeCross);
    });
}

void DecorationPanel::Apply(const std::function<void(KV_ScenePane::_DKV_ScenePane&)>& change) const {
    if (m_pMethods != nullptr) change(*m_pMethods);
}
