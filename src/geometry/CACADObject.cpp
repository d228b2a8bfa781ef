// Colour, box and centre of a scene object. Its drawing is in render/MeshDraw.cpp.
#include "geometry/CACADObject.h"

#include <algorithm>

namespace {

// Truncated, not rounded: 0.999 is 254. Values outside 0..1 keep their low eight bits.
std::uint32_t ByteOf(float channel) {
    return static_cast<std::uint32_t>(static_cast<std::int32_t>(channel * 255.0)) & 0xFF;
}

// A flat object gets a box with some thickness, so that the view can fit it and a line can hit it. An inverted box
// counts as thin too, and stays inverted.
void WidenThinAxis(float& low, float& high) {
    const float extent = high - low;
    if (static_cast<double>(extent) < 0.0001) {
        high += 0.01f;
        low -= 0.01f;
    }
}

}  // namespace

CACADObject::~CACADObject() = default;

int CACADObject::ComputeCenter() {
    std::fill_n(m_fCenter, 3, 0.0f);
    m_bCenterValid = true;
    return 0;
}

void CACADObject::ApplyTrafo(const CACADQTrafo& /*trafo*/) {}

std::uint32_t CACADObject::GetColorRef() const {
    return ByteOf(m_fColor[0]) | (ByteOf(m_fColor[1]) << 8) | (ByteOf(m_fColor[2]) << 16);
}

void CACADObject::SetColorRef(std::uint32_t value) {
    for (int channel = 0; channel < 3; ++channel)
        m_fColor[channel] = static_cast<float>(((value >> (8 * channel)) & 0xFF) / 255.0);
}

void CACADObject::GetBoundingBox(float* minX, float* maxX, float* minY, float* maxY, float* minZ, float* maxZ) const {
    *minX = m_fBoundingBox[0];
    *maxX = m_fBoundingBox[1];
    *minY = m_fBoundingBox[2];
    *maxY = m_fBoundingBox[3];
    *minZ = m_fBoundingBox[4];
    *maxZ = m_fBoundingBox[5];
}

void CACADObject::SetBoundingBox(float minX, float maxX, float minY, float maxY, float minZ, float maxZ) {
    WidenThinAxis(minX, maxX);
    WidenThinAxis(minY, maxY);
    WidenThinAxis(minZ, maxZ);
    const float box[6] = {minX, maxX, minY, maxY, minZ, maxZ};
    std::copy_n(box, 6, m_fBoundingBox);
}

void CACADObject::GetCenter(float* out) {
    if (!m_bCenterValid) {
        ComputeCenter();
        m_bCenterValid = true;
    }
    std::copy_n(m_fCenter, 3, out);
}
