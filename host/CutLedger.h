// Which cuts exist in the viewer only. No viewer and no window: plain bookkeeping.
#pragma once
#include <cstdint>
#include <map>
#include <set>
#include <span>
#include <utility>

/// An object as far as cuts concern it.
struct CutObject {
    int id = -1;                ///< ObjectRow::id
    int cuts = 0;               ///< that are in no file: CutSaveEntry::numberOfCuts
    bool isFromPcm = false;     ///< it can be saved
    std::int32_t vertices = 0;  ///< fewer than before each cut
};

/// Remembers exports and saves; the number of cuts itself comes from the viewer. Entries of objects that are not in the
/// list are kept, because an undo may bring them back. A step is the number of the viewer's undo steps after a cut.
class CutLedger {
public:
    /// An export keeps the cuts of an object that no save can write.
    void OnExported(const CutObject& object);
    /// The file of the object now has its cuts. @param steps  undo steps of the viewer
    void OnSaved(int id, int steps);
    /// The viewer has dropped the cuts of the object although its file does not have them.
    void OnSaveFailed(const CutObject& object, int steps);
    /// The viewer will not write the cut by its present plane again although the file does not have it.
    void OnPlaneFailed(int id) { m_planes.insert(id); }
    /// The newest cut was taken back. @param objects  the present ones @param steps  that are left
    void OnUndone(std::span<const CutObject> objects, int steps);
    void Clear() { *this = {}; }

    /// Whether the object has lost vertices that no file has lost.
    [[nodiscard]] bool IsUnsaved(const CutObject& object) const;
    /// Whether this is so because a save has failed: a further save will not write these cuts.
    [[nodiscard]] bool HasLostCuts(int id) const { return m_lost.contains(id); }
    /// Whether the object's file has no cut by the plane of its last save.
    [[nodiscard]] bool HasLostPlane(int id) const { return m_planes.contains(id); }
    /// Whether the file of the object has what the cut of this step removed from the object.
    [[nodiscard]] bool IsInFile(int id, int step) const { return m_written.contains({step, id}); }

private:
    struct FailedSave {
        std::int32_t vertices;  // at the first one
        int steps;              // at the last one
    };

    std::map<int, int> m_kept;                // cuts that are in a file, by id; those of an object with more are not
    std::map<int, FailedSave> m_lost;         // by id
    std::set<int> m_planes;                   // ids
    std::set<std::pair<int, int>> m_written;  // steps and ids
};
