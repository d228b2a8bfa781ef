// Start, keys and end of an alignment, and what it has moved.
#include "AlignCommands.h"

#include <utility>

#include "CaughtError.h"
#include "KV_ScenePane/Input.h"
#include "TranslatedText.h"

AlignCommands::AlignCommands(std::function<std::vector<int>()> movingRows, QObject* parent)
    : QObject(parent), m_movingRows(std::move(movingRows)) {}

void AlignCommands::SetViewer(KV_ScenePane::ScenePane* viewer) {
    m_pViewer = viewer;
    if (m_way) OnAlignmentDone();  // the viewer is lost, with its objects
}

bool AlignCommands::ActsOnKey(int key) const {
    return m_way &&
           (key == KV_ScenePane::kKeyEscape || key == KV_ScenePane::kKeySpace || key == KV_ScenePane::kKeyDelete);
}

void AlignCommands::Start(AlignWay way) {
    if (m_pViewer == nullptr) return;
    Finish();
    KV_ScenePane::_DKV_ScenePane& methods = m_pViewer->Methods();
    const std::vector<int> rows = m_movingRows();
    const int count = m_objectCount ? m_objectCount() : methods.GetNumObjects();
    if (const QString hint = SetupHint(way, count, static_cast<int>(rows.size())); !hint.isEmpty()) {
        emit Report(hint);
        emit Changed();  // a tool that was pressed is released again
        return;
    }
    methods.ResetVariableObjects();
    for (const int row : rows) methods.AddVariableObject(static_cast<std::int16_t>(row));
    m_vPlaces = PlacesOf(rows);
    m_way = way;
    emit AboutToStart(way);
    emit Changed();  // before the viewer: its other uses of the mouse end first
    try {
        if (way == AlignWay::ByHand)
            methods.AlignInteractive();
        else
            methods.AlignPickPoints();
        FollowViewer();
    } catch (...) {  // no exception may pass through Qt
        const QString reason = TranslatedText(TextOfCaughtError());
        Finish();
        emit Report(tr("No alignment can be started: %1").arg(reason));
    }
}

void AlignCommands::Finish() {
    if (m_pViewer == nullptr || !m_way) return;
    m_pViewer->Methods().FinishInteraction();
    if (m_way) OnAlignmentDone();  // the viewer had ended it before
}

void AlignCommands::Continue() { PressKey(KV_ScenePane::kKeySpace); }

void AlignCommands::DropPoint() { PressKey(KV_ScenePane::kKeyDelete); }

void AlignCommands::PressKey(std::int32_t key) {
    if (m_pViewer == nullptr || m_way != AlignWay::ByPoints) return;
    m_pViewer->SendKey({.isDown = true, .nChar = key});
    FollowViewer();
}

void AlignCommands::FollowViewer() {
    if (m_pViewer == nullptr || !m_way) return;
    const KV_ScenePane::AlignmentPicks picks = m_pViewer->GetAlignmentPicks();
    const AlignProgress progress{picks.phase, static_cast<int>(picks.moving.size()),
                                 static_cast<int>(picks.fixed.size())};
    if (std::exchange(m_progress, progress) != progress) emit Changed();
}

void AlignCommands::OnAlignmentDone() {
    if (!m_way) return;  // it was started by somebody else
    const AlignWay way = *std::exchange(m_way, {});
    m_progress = {};
    const AlignOutcome outcome = Outcome(way);
    m_vPlaces.clear();
    emit Ended(outcome);
    emit Changed();
}

std::vector<AlignCommands::Place> AlignCommands::PlacesOf(const std::vector<int>& rows) const {
    KV_ScenePane::_DKV_ScenePane& methods = m_pViewer->Methods();
    std::vector<Place> places;
    places.reserve(rows.size());
    for (const int row : rows) {
        const auto index = static_cast<std::int16_t>(row);
        const std::optional<Matrix4> transform = TransformOf(methods, index);
        if (!transform) continue;
        std::array<float, 6> box{};
        methods.GetObjectBoundingBox(index, &box[0], &box[1], &box[2], &box[3], &box[4], &box[5]);
        Place place{.row = row, .transform = *transform};
        for (std::size_t axis = 0; axis < 3; ++axis)
            place.centre[axis] = 0.5 * (static_cast<double>(box[2 * axis]) + static_cast<double>(box[2 * axis + 1]));
        places.push_back(place);
    }
    return places;
}

AlignOutcome AlignCommands::Outcome(AlignWay way) const {
    AlignOutcome outcome;
    outcome.way = way;
    if (m_pViewer == nullptr) return outcome;
    for (const Place& place : m_vPlaces) {
        const std::optional<Matrix4> now = TransformOf(m_pViewer->Methods(), static_cast<std::int16_t>(place.row));
        if (!now || *now == place.transform) continue;
        if (outcome.movedObjects++ == 0)
            outcome.displacement = DisplacementBetween(place.transform, *now, place.centre);
    }
    if (way == AlignWay::ByPoints) outcome.result = m_pViewer->GetAlignmentResult();
    return outcome;
}
