// A helper object in the scene whose parts the mouse can pick and drag.
#pragma once
#include <cstdint>

/// A pick draws the parts of all helper objects with their numbers as colours and reads the pixel under the mouse:
/// markers/Picking.cpp.
class RenderObject {
public:
    explicit RenderObject(std::uint32_t attribMask) : m_uAttribMask(attribMask) {}

    /// Draws the object with colours and lighting in the current context; the caller saves and restores the attributes
    /// of m_uAttribMask around the call.
    virtual void Draw() = 0;
    /// Draws the parts that can be picked, in the colours base, base + 1, ...: red is the low byte.
    /// @return the number of parts
    virtual std::uint32_t DrawPickIds(std::uint32_t base) = 0;
    /// Whether a part is picked.
    [[nodiscard]] virtual bool IsPicked() const = 0;
    virtual void ClearPick() = 0;
    /// Stores that part @p k is picked, counted from the base of DrawPickIds(). A number without a part changes
    /// nothing.
    virtual void OnPicked(std::uint32_t k) = 0;

    std::uint32_t m_uAttribMask;  ///< attribute groups that Draw() changes, for glPushAttrib()

protected:
    ~RenderObject() = default;
};
