// Calls of the viewer around changes of transforms.
#include "TransformCommands.h"

#include <algorithm>

#include "ObjectList.h"
#include "PaintBlock.h"

namespace {

/// "1 scan", "3 scans".
QString CountText(int count) {
    return count == 1 ? TransformCommands::tr("1 scan") : TransformCommands::tr("%1 scans").arg(count);
}

}  // namespace

TransformCommands::TransformCommands(ObjectList& objects, QObject* parent) : QObject(parent), m_objects(objects) {}

void TransformCommands::SetViewer(KV_ScenePane::ScenePane* viewer) {
    m_pViewer = viewer;
    m_ledger.Clear();  // another viewer has other objects
}

// ---- changes

void TransformCommands::Begin(const QString& name) {
    if (m_pViewer == nullptr) return;
    m_ledger.Begin(name.toStdString(), Now());
    emit Changed();
}

int TransformCommands::End() {
    if (m_pViewer == nullptr) return 0;
    const int moved = m_ledger.End(Now());
    Follow();
    if (moved > 0) emit ObjectsMoved();
    return moved;
}

bool TransformCommands::CanTakeBack() const {
    return m_pViewer != nullptr && !m_ledger.IsOpen() && m_ledger.NewestCount(Now()) > 0;
}

QString TransformCommands::TakeBackText() const {
    const TransformsById now = Now();
    const int count = m_ledger.NewestCount(now);
    if (count == 0) return tr("Take back alignment");
    return tr("Take back %1 (%2)").arg(QString::fromStdString(m_ledger.NewestName(now)), CountText(count));
}

void TransformCommands::TakeBack() {
    if (!CanTakeBack()) return;
    const TransformsById now = Now();
    const QString text =
        tr("Taken back: %1 (%2)")
            .arg(QString::fromStdString(m_ledger.NewestName(now)), CountText(m_ledger.NewestCount(now)));
    {
        const PaintBlock block(m_pViewer->Methods());
        Set(m_ledger.TakeBack(now));
    }
    Follow();
    emit ObjectsMoved();
    emit Report(text);
}

int TransformCommands::Place(const QString& name, const std::map<int, Matrix4>& byRow) {
    if (m_pViewer == nullptr || IsOpen()) return 0;
    Begin(name);
    const std::vector<ObjectRow> rows = m_objects.Rows();
    TransformsById wanted;
    for (const auto& [row, transform] : byRow) wanted.emplace(rows.at(static_cast<std::size_t>(row)).id, transform);
    {
        const PaintBlock block(m_pViewer->Methods());
        Set(wanted);
    }
    for (const auto& [id, transform] : Now()) {
        if (wanted.contains(id)) m_ledger.OnFiled({{id, transform}});  // as the viewer has rounded it
    }
    return End();
}

void TransformCommands::Set(const TransformsById& transforms) {
    const std::vector<ObjectRow> rows = m_objects.Rows();
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const auto transform = transforms.find(rows[i].id);
        if (transform != transforms.end())
            SetTransformOf(m_pViewer->Methods(), static_cast<std::int16_t>(i), transform->second);
    }
}

// ---- the present transforms

TransformsById TransformCommands::Now() const {
    TransformsById now;
    if (m_pViewer == nullptr) return now;
    const std::vector<ObjectRow> rows = m_objects.Rows();
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (rows[i].isRemoved) continue;
        if (const auto transform = TransformOf(m_pViewer->Methods(), static_cast<std::int16_t>(i)))
            now.emplace(rows[i].id, *transform);
    }
    return now;
}

std::optional<Matrix4> TransformCommands::TransformOfRow(int row) const {
    if (m_pViewer == nullptr || row < 0 || row >= m_objects.ObjectCount()) return {};
    return TransformOf(m_pViewer->Methods(), static_cast<std::int16_t>(row));
}

std::vector<int> TransformCommands::MovedRows() const {
    std::vector<int> moved;
    if (m_pViewer == nullptr) return moved;
    const auto count = static_cast<std::size_t>(m_objects.ObjectCount());
    const std::vector<KV_ScenePane::CutSaveEntry> plan = m_pViewer->PlanCutSave();
    for (std::size_t i = 0; i < plan.size() && i < count; ++i) {
        if (plan[i].isMoved && !m_objects.IsRemoved(static_cast<int>(i))) moved.push_back(static_cast<int>(i));
    }
    return moved;
}

std::vector<int> TransformCommands::UnsavedRows() const {
    const std::vector<ObjectRow> rows = m_objects.Rows();
    std::vector<int> unsaved = MovedRows();
    std::erase_if(unsaved, [&](int row) {
        const std::optional<Matrix4> transform = TransformOfRow(row);
        return transform && m_ledger.IsFiled(rows[static_cast<std::size_t>(row)].id, *transform);
    });
    return unsaved;
}

// ---- what happened

void TransformCommands::OnSaved() {
    m_ledger.OnFiled(Now());
    emit Changed();
}

void TransformCommands::Note() { m_ledger.Note(Now()); }

void TransformCommands::Follow() {
    Note();
    ShowInList();
    emit Changed();
}

void TransformCommands::OnObjectsReplaced() {
    if (m_pViewer == nullptr) return;
    Set(m_ledger.Misplaced(Now()));  // the caller blocks painting
    Follow();
}

void TransformCommands::OnSceneCleared() {
    m_ledger.Clear();
    emit Changed();
}

void TransformCommands::ShowInList() {
    // A viewer that closes has lost its objects, and the list still has their rows.
    if (m_pViewer == nullptr || m_pViewer->Methods().GetNumObjects() < m_objects.ObjectCount()) return;
    const std::vector<int> moved = MovedRows();
    for (int row = 0; row < m_objects.ObjectCount(); ++row) {
        std::array<float, 6> box{};
        m_pViewer->Methods().GetObjectBoundingBox(static_cast<std::int16_t>(row), &box[0], &box[1], &box[2], &box[3],
                                                  &box[4], &box[5]);
        m_objects.ShowPlace(row, box, std::ranges::binary_search(moved, row));
    }
}
