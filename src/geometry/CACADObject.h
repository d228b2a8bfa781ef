// What any scene object has: box, colour, centre, transform, visibility.
#pragma once
#include <cstdint>

#include "geometry/CACADQTrafo.h"

class CACADObject {
public:
    virtual ~CACADObject() = 0;
    /// Computes m_fCenter. Here: the origin. Returns 0.
    virtual int ComputeCenter();
    /// Draws with the current rendering context.
    /// @param mode     0 points, 1 wireframe, 2 flat, 3 Gouraud, 4 bounding box; any other draws nothing
    /// @param reduced  a tenth of the points only
    virtual void Draw(std::int32_t mode, bool reduced) = 0;
    virtual void ComputeBoundingBox() = 0;
    /// Bakes @p trafo into the geometry. Here: nothing.
    virtual void ApplyTrafo(const CACADQTrafo& trafo);

    /// 0x00BBGGRR, each channel truncated from channel times 255.
    [[nodiscard]] std::uint32_t GetColorRef() const;
    /// Bits 24 to 31 are ignored.
    void SetColorRef(std::uint32_t value);
    void GetBoundingBox(float* minX, float* maxX, float* minY, float* maxY, float* minZ, float* maxZ) const;
    /// Widens an axis that is thinner than 0.0001 (or inverted) by 0.01 on both sides.
    void SetBoundingBox(float minX, float maxX, float minY, float maxY, float minZ, float maxZ);
    /// Three floats; computed on first request.
    void GetCenter(float* out);

    float m_fBoundingBox[6] = {-1, 1, -1, 1, -1, 1};  ///< min x, max x, min y, max y, min z, max z; world frame
    float m_fColor[3] = {1, 1, 1};                    ///< r, g, b in 0..1
    float m_fCenter[3] = {0, 0, 0};                   ///< world frame, meaningful when m_bCenterValid
    bool m_bCenterValid = false;
    int m_iObjectTag = -1;  ///< role in an alignment: -1 fixed, 0 variable
    CACADQTrafo m_Trafo;    ///< the transform now baked into the vertices
    int m_iVisible = 1;     ///< drawn when not 0
};
