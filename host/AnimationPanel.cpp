// Layout of the panel; AnimationDriver draws the frames.
#include "AnimationPanel.h"

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QFormLayout>
#include <QPushButton>

#include "AnimationDriver.h"

namespace {
// Revolutions per second.
constexpr double kMinSpeed = 0.01, kMaxSpeed = 5.0;
constexpr double kStartSpeed = 0.2;  // what the viewer starts with
}  // namespace

AnimationPanel::AnimationPanel(QWidget* parent)
    : QWidget(parent),
      m_pDriver(new AnimationDriver(this)),
      m_pStart(new QPushButton),
      m_pSpeed(new QDoubleSpinBox),
      m_pSpacebar(new QCheckBox(tr("Start and stop w&ith the space bar"))) {
    m_pStart->setObjectName("animationStart");
    m_pStart->setToolTip(tr("Turns the scene once around the Z axis. A click or a key in the view stops it."));
    m_pSpeed->setObjectName("animationSpeed");
    m_pSpeed->setRange(kMinSpeed, kMaxSpeed);
    m_pSpeed->setDecimals(2);
    m_pSpeed->setSingleStep(0.05);
    m_pSpeed->setSuffix(tr(" turns/s"));
    m_pSpeed->setValue(kStartSpeed);
    m_pSpacebar->setObjectName("animationSpacebar");
    m_pSpacebar->setToolTip(tr("Works after a click in the view."));
    auto* const form = new QFormLayout(this);
    form->addRow(tr("S&peed:"), m_pSpeed);
    form->addRow(m_pSpacebar);
    form->addRow(m_pStart);
    connect(m_pStart, &QPushButton::clicked, this, &AnimationPanel::StartOrStop);
    connect(m_pSpeed, &QDoubleSpinBox::valueChanged, this, &AnimationPanel::SetSpeed);
    connect(m_pSpacebar, &QCheckBox::toggled, this, &AnimationPanel::ApplySpacebar);
    connect(m_pDriver, &AnimationDriver::RunningChanged, this, &AnimationPanel::ShowRunning);
    ShowRunning(false);
    setEnabled(false);
}

void AnimationPanel::SetViewer(KV_ScenePane::_DKV_ScenePane* methods) {
    m_pMethods = methods;
    m_pDriver->SetViewer(methods);
    setEnabled(methods != nullptr);
}

void AnimationPanel::Check() { m_pDriver->Check(); }

void AnimationPanel::ApplySpacebar() {
    if (m_pMethods != nullptr) m_pMethods->ToggleAnimationOnSpacebar(m_pSpacebar->isChecked() ? 1 : 0);
}

void AnimationPanel::StartOrStop() {
    if (m_pMethods == nullptr) return;
    // The driver follows the viewer, so it knows also of an animation that a key has started.
    if (m_pDriver->IsDriving())
        m_pMethods->StopAnimation();
    else
        m_pMethods->StartAnimation(static_cast<float>(m_pSpeed->value()));
    m_pDriver->Check();
}

void AnimationPanel::SetSpeed(double revolutionsPerSecond) {
    if (m_pMethods != nullptr) m_pMethods->SetAnimationSpeed(static_cast<float>(revolutionsPerSecond));
}

void AnimationPanel::ShowRunning(bool running) { m_pStart->setText(running ? tr("&Stop") : tr("Turn o&nce")); }
