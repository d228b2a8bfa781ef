// What an alignment changed, so that it can be taken back, and which transforms are in a file. No viewer and no window:
// plain bookkeeping.
#pragma once
#include <map>
#include <string>
#include <vector>

#include "TransformFile.h"

/// By ObjectRow::id: rows change by deletions, imports and cuts, ids do not.
using TransformsById = std::map<int, Matrix4>;

/// Whether both place an object equally, but for the rounding of a transform that was read from the viewer and set
/// again.
[[nodiscard]] bool IsSameTransform(const Matrix4& a, const Matrix4& b);

/// Changes of transforms as levels, the newest last. Objects that were deleted are kept, because the undo of a cut may
/// bring them back.
class TransformLedger {
public:
    /// A change begins. @param name  what it is, for the user @param now  all objects
    void Begin(std::string name, const TransformsById& now);
    /// The change that Begin() announced is over. @return the number of objects that moved; 0 adds no level
    int End(const TransformsById& now);
    [[nodiscard]] bool IsOpen() const { return m_isOpen; }
    /// Where the objects are now.
    void Note(const TransformsById& now);

    // The next level to take back is the newest one that has one of the present objects.
    /// Of its objects; 0 without one. @param present  the objects that can move now
    [[nodiscard]] int NewestCount(const TransformsById& present) const;
    /// Empty without one.
    [[nodiscard]] std::string NewestName(const TransformsById& present) const;
    [[nodiscard]] int Levels() const { return static_cast<int>(m_levels.size()); }
    /// Removes it, and the newer ones, whose objects are all deleted.
    /// @return where its objects were before it, deleted ones too
    TransformsById TakeBack(const TransformsById& present);

    /// The objects among @p restored whose last transform is another one: an undone cut brings an object back as it was
    /// at the cut, which may be before an alignment. @return the last transform of each
    [[nodiscard]] TransformsById Misplaced(const TransformsById& restored) const;

    /// A file has these transforms.
    void OnFiled(const TransformsById& filed);
    /// Whether a file has this transform of the object.
    [[nodiscard]] bool IsFiled(int id, const Matrix4& now) const;
    void Clear() { *this = {}; }

private:
    struct Level {
        std::string name;
        TransformsById before;  // of the objects that moved
    };

    /// Null without one.
    [[nodiscard]] const Level* Newest(const TransformsById& present) const;

    bool m_isOpen = false;
    Level m_open;  // before: of all objects
    std::vector<Level> m_levels;
    TransformsById m_last;   // also of deleted objects
    TransformsById m_filed;  // as last saved or loaded
};
