// The property is set in the filter of the viewer's mouse input: before the move that the viewer draws reduced, and
// before the release, whose own frame is then a full one and serves the repaint that setting the property requests.
#include "ReducedDrawing.h"

#include <QAction>
#include <QMenu>
#include <utility>

#include "Settings.h"
#include "ToolAction.h"

using KV_ScenePane::MouseInput;

namespace {

constexpr const char* kChoiceNames[] = {QT_TRANSLATE_NOOP("ReducedDrawing", "A&utomatically for slow scenes"),
                                        QT_TRANSLATE_NOOP("ReducedDrawing", "&Always"),
                                        QT_TRANSLATE_NOOP("ReducedDrawing", "&Never")};

bool HoldsButton(const MouseInput& input) {
    return (input.flags & (KV_ScenePane::kMouseLeft | KV_ScenePane::kMouseMiddle | KV_ScenePane::kMouseRight)) != 0;
}

}  // namespace

ReducedDrawing::ReducedDrawing(QObject* parent) : QObject(parent), m_bAutomatic(IsReducedAutomatically()) {}

void ReducedDrawing::SetViewer(KV_ScenePane::ScenePane* viewer) {
    m_pViewer = viewer;
    m_bOn = m_bSlow = false;
    m_nFramesAtEnd = 0;
    m_bAlways = viewer != nullptr && viewer->Methods().GetMoveReduced() != KV_ScenePane::kVariantFalse;
    ShowChoice();
}

// ---- the user's choice

QList<QAction*> ReducedDrawing::FillMenu(QMenu& menu) {
    QStringList texts;
    for (const char* const name : kChoiceNames) texts << tr(name);
    m_actions = AddChoices(menu, texts, static_cast<int>(Choice()),
                           [this](int choice) { Choose(static_cast<ReducedChoice>(choice)); });
    for (QAction* const action : m_actions) action->setStatusTip(tr("Draw objects with fewer points during a drag"));
    return m_actions;
}

ReducedChoice ReducedDrawing::Choice() const {
    if (m_bAlways) return ReducedChoice::Always;
    return m_bAutomatic ? ReducedChoice::Automatic : ReducedChoice::Never;
}

void ReducedDrawing::Choose(ReducedChoice choice) {
    if (m_pViewer == nullptr) return;
    End();
    if (choice != ReducedChoice::Always) {
        m_bAutomatic = choice == ReducedChoice::Automatic;
        StoreReducedAutomatically(m_bAutomatic);
    }
    m_bAlways = choice == ReducedChoice::Always;
    SetProperty(m_bAlways);
    ShowChoice();
    emit Chosen();
}

// A user who switches the property off on its page does not expect it in the next drag.
void ReducedDrawing::Follow() {
    if (m_pViewer == nullptr || m_bOn) return;
    const bool always = m_pViewer->Methods().GetMoveReduced() != KV_ScenePane::kVariantFalse;
    if (std::exchange(m_bAlways, always) == always) return;
    if (!always) {
        m_bAutomatic = false;
        StoreReducedAutomatically(false);
    }
    ShowChoice();
}

void ReducedDrawing::ShowChoice() {
    if (!m_actions.isEmpty()) m_actions[static_cast<int>(Choice())]->setChecked(true);
}

// ---- drags

void ReducedDrawing::See(const MouseInput& input, bool canDrag) {
    if (m_pViewer == nullptr || input.kind == MouseInput::Kind::Wheel) return;
    if (!HoldsButton(input)) return End();
    if (input.kind == MouseInput::Kind::Move && canDrag && !m_bOn && Choice() == ReducedChoice::Automatic &&
        IsSceneSlow())
        Start();
}

bool ReducedDrawing::IsSceneSlow() {
    const KV_ScenePane::FrameStatistics frames = m_pViewer->GetFrameStatistics();
    if (frames.count != m_nFramesAtEnd) m_bSlow = frames.seconds > m_fSlowFrame;
    return m_bSlow;
}

void ReducedDrawing::Start() {
    emit AboutToStart();
    m_bOn = true;
    SetProperty(true);
    (void)m_pViewer->SaveProperties(KV_ScenePane::PropertyFormat::Text);  // not modified: the user has chosen nothing
}

void ReducedDrawing::End() {
    if (!std::exchange(m_bOn, false)) return;
    const bool isModified = m_pViewer->IsModified();
    SetProperty(false);
    if (!isModified) (void)m_pViewer->SaveProperties(KV_ScenePane::PropertyFormat::Text);
    m_nFramesAtEnd = m_pViewer->GetFrameStatistics().count;
}

void ReducedDrawing::SetProperty(bool on) {
    m_pViewer->Methods().SetMoveReduced(on ? KV_ScenePane::kVariantTrue : KV_ScenePane::kVariantFalse);
}
