// A deletion hides, so that its undo needs no copy of an object.
#include "DeletionCommands.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "ObjectList.h"
#include "PaintBlock.h"

DeletionCommands::DeletionCommands(ObjectList& objects, QObject* parent) : QObject(parent), m_objects(objects) {}

void DeletionCommands::SetViewer(KV_ScenePane::ScenePane* viewer) {
    m_pViewer = viewer;
    m_vSteps.clear();  // another viewer has other objects
}

void DeletionCommands::Delete(const std::vector<int>& objects) {
    if (m_pViewer == nullptr) return;
    const std::vector<ObjectRow> rows = m_objects.Rows();
    Step step{.ids = {}, .cuts = m_pViewer->GetUndoStepCount()};
    {
        const PaintBlock block(m_pViewer->Methods());
        for (const int object : objects) {
            if (m_objects.Row(object) == nullptr || m_objects.IsRemoved(object)) continue;
            step.ids.push_back(rows[static_cast<std::size_t>(object)].id);
            m_pViewer->Methods().SetObjectVisibility(static_cast<std::int16_t>(object), 0);
            m_objects.SetRemoved(object, true);
        }
    }
    m_pViewer->Methods().PerformInvalidate();
    if (step.ids.empty()) return;
    m_vSteps.push_back(std::move(step));
    emit Changed();
}

bool DeletionCommands::CanUndo() const { return UndoCount() > 0; }

int DeletionCommands::UndoCount() const {
    // A cut has made the number of undo steps larger.
    if (m_pViewer == nullptr || m_vSteps.empty() || m_pViewer->GetUndoStepCount() > m_vSteps.back().cuts) return 0;
    return static_cast<int>(m_vSteps.back().ids.size());
}

void DeletionCommands::Undo() {
    if (!CanUndo()) return;
    const Step step = std::move(m_vSteps.back());
    m_vSteps.pop_back();
    const std::vector<ObjectRow> rows = m_objects.Rows();
    std::vector<int> restored;
    {
        const PaintBlock block(m_pViewer->Methods());
        for (std::size_t i = 0; i < rows.size(); ++i) {
            if (std::ranges::find(step.ids, rows[i].id) == step.ids.end()) continue;
            const auto index = static_cast<int>(i);
            restored.push_back(index);
            m_objects.SetRemoved(index, false);
            m_pViewer->Methods().SetObjectVisibility(static_cast<std::int16_t>(i), rows[i].isVisible ? 1 : 0);
        }
        emit Restored(restored);
    }
    m_pViewer->Methods().PerformInvalidate();
    m_objects.Select(restored);
    emit Changed();
}

std::vector<int> DeletionCommands::Deleted() const {
    std::vector<int> deleted;
    for (int i = 0; i < m_objects.ObjectCount(); ++i) {
        if (m_objects.IsRemoved(i)) deleted.push_back(i);
    }
    return deleted;
}

void DeletionCommands::Clear() {
    m_vSteps.clear();
    emit Changed();
}
