// An undo restores an older generation of an object: one with fewer cuts, and with more vertices.
#include "CutLedger.h"

void CutLedger::OnExported(const CutObject& object) {
    if (!object.isFromPcm && object.cuts > 0) m_exported[object.id] = object.cuts;
}

void CutLedger::OnSaveFailed(const CutObject& object) {
    // The first failure counts: cuts of later ones are undone before those of the first.
    m_vertices.try_emplace(object.id, object.vertices);
}

void CutLedger::OnUndone(std::span<const CutObject> objects) {
    for (const CutObject& object : objects) {
        const auto exported = m_exported.find(object.id);
        if (exported != m_exported.end() && object.cuts < exported->second) m_exported.erase(exported);
        const auto failed = m_vertices.find(object.id);
        if (failed != m_vertices.end() && object.vertices > failed->second) m_vertices.erase(failed);
    }
}

void CutLedger::Clear() {
    m_exported.clear();
    m_vertices.clear();
}

bool CutLedger::IsUnsaved(const CutObject& object) const {
    if (HasLostCuts(object.id)) return true;
    if (object.cuts == 0) return false;
    const auto exported = m_exported.find(object.id);
    return object.isFromPcm || exported == m_exported.end() || exported->second != object.cuts;
}
