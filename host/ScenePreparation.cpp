// A pass ends with a frame that it draws itself: a requested one would come after the user's input, and could not be
// waited for when the viewer draws no frames any more.
#include "ScenePreparation.h"

#include <QPointer>
#include <QTimer>
#include <algorithm>
#include <cmath>
#include <utility>

#include "CaughtError.h"
#include "TranslatedText.h"

ScenePreparation::ScenePreparation(KV_ScenePane::ScenePane& pane, std::int64_t shownTriangles,
                                   std::optional<ArrivalFit> fit, QObject* parent)
    : QObject(parent), m_pane(pane), m_fit(std::move(fit)), m_nShownTriangles(shownTriangles) {}

void ScenePreparation::Add(int index, std::int64_t triangles) {
    // An object without triangles has a cost as well.
    m_waiting.push_back({.index = index, .triangles = std::max<std::int64_t>(triangles, 1)});
    m_nWaitingTriangles += m_waiting.back().triangles;
    ++m_nAdded;
    m_bFits = true;
    emit Waiting(index);
}

void ScenePreparation::Hide() {
    for (Object& object : m_waiting) SetVisible(object, false);
}

void ScenePreparation::ShowArrived() {
    if (m_bInPass || m_waiting.empty()) return;
    if (m_bGivenUp || static_cast<double>(m_nWaitingTriangles) < kGrowth * static_cast<double>(m_nShownTriangles))
        Hide();
    else
        Pass();
}

void ScenePreparation::ShowRest() {
    m_bComplete = true;
    if (m_bGivenUp) Hide();
    if (m_bGivenUp || (m_waiting.empty() && !m_bInPass))
        Finish();
    else if (!m_bInPass)
        Pass();
}

void ScenePreparation::Cancel() {
    if (m_bOver) return;
    m_bCancelled = m_bGivenUp = true;
    Hide();
    if (m_bComplete) Finish();
}

void ScenePreparation::Stop() {
    m_bStopped = m_bGivenUp = true;
    if (m_bComplete) Finish();
}

void ScenePreparation::Pass() {
    m_bInPass = true;
    if (std::exchange(m_bFits, false) && m_fit) FitToAll();
    ShowFirst(CountForPass());
    // A message box inside the frame runs the event loop, where the viewer and this can be destroyed.
    const QPointer<ScenePreparation> self(this);
    emit AboutToDraw();
    const bool drawn = self && !m_bGivenUp && Draw();
    if (!self || m_bOver || m_bStopped) return;
    m_bInPass = false;
    m_nDrawn = ShownCount();
    if (m_fit) m_fit->Remember(m_pane.Methods());
    m_bGivenUp = m_bGivenUp || !drawn;
    emit Drawn();
    if (m_bComplete && (m_bGivenUp || m_waiting.empty()))
        Finish();
    else
        PassLater();
}

void ScenePreparation::FitToAll() {
    for (Object& object : m_waiting) SetVisible(object, true);
    m_fit->Fit(m_pane.Methods());
}

double ScenePreparation::TrianglesForPass() const {
    const auto shown = static_cast<double>(m_nShownTriangles);
    if (!m_bComplete || m_nShownTriangles == 0) return kGrowth * shown;
    // Equal ratios from here to the whole scene: a last frame for a small rest would cost as much as all before.
    const double ratio = (shown + static_cast<double>(m_nWaitingTriangles)) / shown;
    const double passes = std::max(1.0, std::ceil(std::log(ratio) / std::log(1.0 + kGrowth) - 1e-9));
    return (std::pow(ratio, 1.0 / passes) - 1.0) * shown;
}

std::size_t ScenePreparation::CountForPass() const {
    const double wanted = TrianglesForPass();
    std::size_t count = 0;
    double triangles = 0;
    for (const Object& object : m_waiting) {
        const auto size = static_cast<double>(object.triangles);
        if (count > 0 && triangles + 0.5 * size > wanted) break;  // the nearest number of objects
        triangles += size;
        ++count;
    }
    return count;
}

void ScenePreparation::ShowFirst(std::size_t count) {
    for (; count > 0; --count) {
        Object object = m_waiting.front();
        SetVisible(object, true);
        m_waiting.pop_front();
        m_nWaitingTriangles -= object.triangles;
        m_nShownTriangles += object.triangles;
        emit Shown(object.index);
    }
    Hide();
}

bool ScenePreparation::Draw() {
    const QPointer<ScenePreparation> self(this);  // as in Pass()
    try {
        m_pane.Methods().PerformRefresh();
        return true;
    } catch (...) {  // no exception may pass through Qt
        const QString reason = TranslatedText(TextOfCaughtError());
        if (self) emit Failed(reason);
        return false;
    }
}

void ScenePreparation::SetVisible(Object& object, bool visible) {
    if (m_bStopped || object.isHidden == !visible) return;
    m_pane.Methods().SetObjectVisibility(static_cast<std::int16_t>(object.index), visible ? 1 : 0);
    object.isHidden = !visible;
}

// By a timer: input that has come meanwhile is handled before.
void ScenePreparation::PassLater() {
    QTimer::singleShot(0, this, [this] {
        if (m_bOver || m_waiting.empty()) return;
        if (m_bComplete)
            ShowRest();
        else
            ShowArrived();
    });
}

void ScenePreparation::Finish() {
    if (std::exchange(m_bOver, true)) return;
    emit Finished();
}
