// An undo restores an older generation of an object: one with fewer cuts, and with more vertices.
#include "CutLedger.h"

#include <algorithm>
#include <limits>

void CutLedger::OnExported(const CutObject& object) {
    if (!object.isFromPcm && object.cuts > 0) m_kept[object.id] = object.cuts;
}

void CutLedger::OnSaved(int id, int steps) {
    m_planes.erase(id);
    // Cuts that a failed save has lost are in no file, also when later ones are.
    const auto failed = m_lost.find(id);
    for (int step = failed != m_lost.end() ? failed->second.steps + 1 : 1; step <= steps; ++step)
        m_written.emplace(step, id);
}

void CutLedger::OnSaveFailed(const CutObject& object, int steps) {
    if (!IsUnsaved(object)) return;  // an earlier save has written them
    // The vertices of the first failure count: cuts of later ones are undone before those of the first.
    m_lost.try_emplace(object.id, FailedSave{object.vertices, steps}).first->second.steps = steps;
}

void CutLedger::OnUndone(std::span<const CutObject> objects, int steps) {
    m_written.erase(m_written.lower_bound({steps + 1, std::numeric_limits<int>::min()}), m_written.end());
    for (auto& [id, failed] : m_lost) failed.steps = std::min(failed.steps, steps);
    for (const CutObject& object : objects) {
        const auto kept = m_kept.find(object.id);
        if (kept != m_kept.end() && object.cuts < kept->second) m_kept.erase(kept);
        // Cuts that an undo restores were written by a save after the cut that was taken back.
        if (object.cuts > 0 && IsInFile(object.id, steps)) m_kept[object.id] = object.cuts;
        const auto failed = m_lost.find(object.id);
        if (failed != m_lost.end() && object.vertices > failed->second.vertices) m_lost.erase(failed);
    }
}

bool CutLedger::IsUnsaved(const CutObject& object) const {
    if (HasLostCuts(object.id)) return true;
    if (object.cuts == 0) return false;
    const auto kept = m_kept.find(object.id);
    return kept == m_kept.end() || kept->second != object.cuts;
}
