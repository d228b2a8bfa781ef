// The base of every object in the scene: box, colour, centre, transform, visibility.
#pragma once
#include <cstdint>

#include "geometry/CACADQTrafo.h"

/// The geometry is in the world frame: m_Trafo records which transform was applied to it, nothing applies it again.
class CACADObject {
public:
    virtual ~CACADObject() = 0;
    /// Computes m_fCenter. Here: the origin. Returns 0.
    virtual int ComputeCenter();
    /// Draws with the current rendering context.
    /// @param mode     KV_ScenePane::DrawMode, points to bounding box; any other value draws nothing
    /// @param reduced  draws a tenth of the points instead, whatever the mode
    virtual void Draw(std::int32_t mode, bool reduced) = 0;
    /// Recomputes the box from the geometry; linear in the vertices.
    virtual void ComputeBoundingBox() = 0;
    /// Applies @p trafo to the geometry; the caller records it in m_Trafo. Here: nothing.
    virtual void ApplyTrafo(const CACADQTrafo& trafo);

    /// The object colour as 0x00BBGGRR; each channel is truncated from its value times 255.
    [[nodiscard]] std::uint32_t GetColorRef() const;
    /// Bits 24 to 31 are ignored.
    void SetColorRef(std::uint32_t value);
    void GetBoundingBox(float* minX, float* maxX, float* minY, float* maxY, float* minZ, float* maxZ) const;
    /// Stores the box; widens an axis that is thinner than 0.0001 (or inverted) by 0.01 on both sides.
    void SetBoundingBox(float minX, float maxX, float minY, float maxY, float minZ, float maxZ);
    /// Writes three floats, world frame. Computed on the first request after a change of the geometry.
    void GetCenter(float* out);

    float m_fBoundingBox[6] = {-1, 1, -1, 1, -1, 1};  ///< min x, max x, min y, max y, min z, max z; world frame
    float m_fColor[3] = {1, 1, 1};                    ///< r, g, b in 0..1
    float m_fCenter[3] = {0, 0, 0};                   ///< world frame, meaningful when m_bCenterValid
    bool m_bCenterValid = false;
    int m_iObjectTag = -1;  ///< role in an alignment: -1 fixed, 0 variable
    CACADQTrafo m_Trafo;    ///< the transform that the vertices contain: sensor to world
    int m_iVisible = 1;     ///< drawn when not 0
};
