// An undo restores an older generation of an object: one with fewer cuts, and with more vertices.
#include "CutLedger.h"

#include <algorithm>

void CutLedger::OnExported(const CutObject& object) {
    if (!object.isFromPcm && object.cuts > 0) m_kept[object.id] = object.cuts;
}

void CutLedger::OnSaveFailed(const CutObject& object) {
    // The first failure counts: cuts of later ones are undone before those of the first.
    m_vertices.try_emplace(object.id, object.vertices);
}

void CutLedger::OnUndone(std::span<const CutObject> objects, std::span<const int> inFiles) {
    for (const CutObject& object : objects) {
        const auto kept = m_kept.find(object.id);
        if (kept != m_kept.end() && object.cuts < kept->second) m_kept.erase(kept);
        if (object.cuts > 0 && std::ranges::find(inFiles, object.id) != inFiles.end()) m_kept[object.id] = object.cuts;
        const auto failed = m_vertices.find(object.id);
        if (failed != m_vertices.end() && object.vertices > failed->second) m_vertices.erase(failed);
    }
}

void CutLedger::Clear() {
    m_kept.clear();
    m_vertices.clear();
}

bool CutLedger::IsUnsaved(const CutObject& object) const {
    if (HasLostCuts(object.id)) return true;
    if (object.cuts == 0) return false;
    const auto kept = m_kept.find(object.id);
    return kept == m_kept.end() || kept->second != object.cuts;
}
