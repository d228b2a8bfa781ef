// A helper object in the scene that the mouse can take hold of.
#pragma once
#include <cstdint>

class RenderObject {
public:
    explicit RenderObject(std::uint32_t attribMask) : m_uAttribMask(attribMask) {}

    /// With colours and lighting; the caller keeps the attributes of m_uAttribMask around it.
    virtual void Draw() = 0;
    /// Draws the pickable parts with the colours base, base + 1, ...: red is the low byte. Returns how many.
    virtual std::uint32_t DrawPickIds(std::uint32_t base) = 0;
    [[nodiscard]] virtual bool IsPicked() const = 0;
    virtual void ClearPick() = 0;
    /// Stores the pick of part @p k, counted from the base.
    virtual void OnPicked(std::uint32_t k) = 0;

    std::uint32_t m_uAttribMask;  ///< for glPushAttrib()

protected:
    ~RenderObject() = default;
};
