// Which cuts exist in the viewer only. No viewer and no window: plain bookkeeping.
#pragma once
#include <cstdint>
#include <map>
#include <span>

/// An object as far as cuts concern it.
struct CutObject {
    int id = -1;                ///< ObjectRow::id
    int cuts = 0;               ///< that are in no file: CutSaveEntry::numberOfCuts
    bool isFromPcm = false;     ///< it can be saved
    std::int32_t vertices = 0;  ///< fewer than before each cut
};

/// Remembers exports and failed saves; the number of cuts itself comes from the viewer. Entries of objects that are not
/// in the list are kept, because an undo may bring them back.
class CutLedger {
public:
    /// An export keeps the cuts of an object that no save can write.
    void OnExported(const CutObject& object);
    /// The viewer has dropped the cuts of the object although its file does not have them.
    void OnSaveFailed(const CutObject& object);
    /// Cuts were taken back.
    /// @param objects  the present ones
    /// @param inFiles  ids of those whose cuts are all in their files: their saves were later than these cuts
    void OnUndone(std::span<const CutObject> objects, std::span<const int> inFiles = {});
    void Clear();

    /// Whether the object has lost vertices that no file has lost.
    [[nodiscard]] bool IsUnsaved(const CutObject& object) const;
    /// Whether this is so because a save has failed: a further save will not write these cuts.
    [[nodiscard]] bool HasLostCuts(int id) const { return m_vertices.contains(id); }

private:
    std::map<int, int> m_kept;               // cuts that are in a file, by id; those of an object with more are not
    std::map<int, std::int32_t> m_vertices;  // at the failed save, by id
};
