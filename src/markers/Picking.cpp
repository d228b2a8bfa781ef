// What lies under a pixel: the scene's objects by a line through their triangles, helper objects by drawing their parts
// as numbers. The line against the triangles is geometry/MeshIntersect.cpp.
#include <GL/glew.h>

#include <array>

#include "control/ScenePaneCtrl.h"

namespace {

constexpr float kPickDepth = 0.1f;  // window depth where the line begins
constexpr std::uint32_t kNoId = 0xFFFFFF;

/// Nothing but the colour that a part sets may reach its pixels.
void SetStateForIds() {
    glDrawBuffer(GL_BACK);
    glClearColor(1, 1, 1, 1);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glEnable(GL_DEPTH_TEST);
    for (const GLenum name :
         {GL_BLEND, GL_DITHER, GL_FOG, GL_LIGHTING, GL_TEXTURE_1D, GL_TEXTURE_2D, GL_TEXTURE_3D, GL_MULTISAMPLE})
        glDisable(name);
    glShadeModel(GL_FLAT);
}

std::uint32_t ReadId(std::int32_t x, std::int32_t y) {
    std::array<std::uint8_t, 4> pixel{255, 255, 255, 255};  // stays outside the window, where nothing can be read
    glReadBuffer(GL_BACK);
    glReadPixels(x, y, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel.data());
    return pixel[0] + 256u * pixel[1] + 65536u * pixel[2];
}

struct Part {
    RenderObject* object;
    std::uint32_t number;
};

}  // namespace

void CKV_ScenePaneCtrl::SetPickMode(std::int16_t mode) {
    m_nPickMode = mode;
    m_bPickPointValid = 0;
    m_vPickPointSpheres.clear();
    if (m_pEvents != nullptr) m_pEvents->PickPointCountChanged(0);
}

std::int16_t CKV_ScenePaneCtrl::GetPickMode() { return static_cast<std::int16_t>(m_nPickMode); }

std::int32_t CKV_ScenePaneCtrl::PickObjectAt(std::int32_t x, std::int32_t y, Float3* hit) {
    Float3 origin{};
    if (UnprojectPoint(x, y, kPickDepth, &origin[0], &origin[1], &origin[2]) == 0) return -1;
    std::int32_t picked = -1;
    float nearest = 0.0f;
    for (std::size_t i = 0; i < m_vpMeshes.size(); ++i) {
        if (m_vpMeshes[i]->m_iVisible == 0) continue;
        std::int32_t triangle = 0;
        Float3 point{};
        const float distance = m_vpMeshes[i]->IntersectLine(origin.data(), m_fAxisZ.data(), &triangle, point.data());
        if (!(distance >= 0.0f) || (picked >= 0 && !(distance < nearest))) continue;
        picked = static_cast<std::int32_t>(i);
        nearest = distance;
        *hit = point;
    }
    if (picked < 0) return -1;
    m_fPickPoint = *hit;
    m_bPickPointValid = 1;
    return picked;
}

void CKV_ScenePaneCtrl::PickRenderObjectsAt(std::span<RenderObject* const> objects, std::int32_t x, std::int32_t y) {
    if (!MakeContextCurrent()) return;
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    SetStateForIds();
    std::vector<Part> parts;  // by id
    for (RenderObject* const object : objects) {
        object->ClearPick();
        const std::uint32_t count = object->DrawPickIds(static_cast<std::uint32_t>(parts.size()));
        for (std::uint32_t k = 0; k < count; ++k) parts.push_back({object, k});
    }
    const std::uint32_t id = ReadId(x, y);
    glPopAttrib();
    if (id < kNoId && id < parts.size()) parts[id].object->OnPicked(parts[id].number);
}

void CKV_ScenePaneCtrl::OnRightDoubleClick(std::uint32_t /*flags*/, std::int32_t /*x*/, std::int32_t /*y*/) {
    if (m_nPickMode != KV_ScenePane::PickModeCross) return;
    m_bAnimationRunning = 0;
    const auto hit = FindViewAxisHit(m_fAxisZ);
    if (!hit || m_pEvents == nullptr) return;
    m_pEvents->SelectViewDirection((*hit)[0], (*hit)[1], (*hit)[2], m_fAxisZ[0], m_fAxisZ[1], m_fAxisZ[2]);
}
