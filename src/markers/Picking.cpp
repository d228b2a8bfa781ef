// What is under a pixel: objects of the scene by a line through their triangles, helper objects by drawing their parts
// in colours that are numbers. The line against the objects is geometry/ObjectPick.cpp.
#include <GL/glew.h>

#include <algorithm>
#include <array>
#include <optional>
#include <vector>

#include "base/ScopeExit.h"
#include "control/ScenePaneCtrl.h"
#include "geometry/ObjectPick.h"
#include "geometry/PixelDifference.h"

namespace {

constexpr float kPickDepth = 0.1f;         // window depth of the line's origin, in front of the scene
constexpr std::uint32_t kNoId = 0xFFFFFF;  // the colour that the buffer is cleared to

/// Switches off everything that could change the colour of a part on its way to the pixels.
void SetStateForIds() {
    glClearColor(1, 1, 1, 1);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glEnable(GL_DEPTH_TEST);
    for (const GLenum name :
         {GL_BLEND, GL_DITHER, GL_FOG, GL_LIGHTING, GL_TEXTURE_1D, GL_TEXTURE_2D, GL_TEXTURE_3D, GL_MULTISAMPLE})
        glDisable(name);
    glShadeModel(GL_FLAT);
}

/// The number drawn in the only pixel of the target; kNoId where there is none.
std::uint32_t ReadId() {
    std::array<std::uint8_t, 4> pixel{255, 255, 255, 255};
    glReadPixels(0, 0, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel.data());
    return pixel[0] + 256u * pixel[1] + 65536u * pixel[2];
}

/// The nearest point of the visible objects on the line through a pixel.
std::optional<ObjectHit> FindNearestHit(CKV_ScenePaneCtrl& control, std::int32_t x, std::int32_t y) {
    // An unbounded line along the viewing axis: the projection is orthographic.
    Float3 origin{};
    if (control.UnprojectPoint(x, y, kPickDepth, &origin[0], &origin[1], &origin[2]) == 0) return std::nullopt;
    return FindNearestObject(control.m_vpMeshes, origin, control.m_fAxisZ);
}

struct Part {
    RenderObject* object;
    std::uint32_t number;
};

}  // namespace

// A new mode starts without picks. The host gets the event even when there were none before.
void CKV_ScenePaneCtrl::SetPickMode(std::int16_t mode) {
    m_nPickMode = mode;
    m_bPickPointValid = 0;
    m_vPickPointSpheres.clear();
    Fire(&KV_ScenePane::_DKV_ScenePaneEvents::PickPointCountChanged, 0);
}

std::int16_t CKV_ScenePaneCtrl::GetPickMode() { return static_cast<std::int16_t>(m_nPickMode); }

std::int32_t CKV_ScenePaneCtrl::PickObjectAt(std::int32_t x, std::int32_t y, Float3* hit) {
    const auto nearest = FindNearestHit(*this, x, y);
    if (!nearest) return -1;
    *hit = m_fPickPoint = nearest->point;
    m_bPickPointValid = 1;
    return static_cast<std::int32_t>(nearest->object);
}

bool CKV_ScenePaneCtrl::PickSurface(std::int32_t x, std::int32_t y, KV_ScenePane::SurfacePoint* hit) {
    const auto nearest = FindNearestHit(*this, x, y);
    if (!nearest) return false;
    hit->object = static_cast<std::int16_t>(nearest->object);
    hit->triangle = nearest->triangle;
    std::ranges::copy(nearest->point, hit->point);
    hit->distance = nearest->distance;
    return true;
}

void CKV_ScenePaneCtrl::PickRenderObjectsAt(std::span<RenderObject* const> objects, std::int32_t x, std::int32_t y) {
    if (!MakeContextCurrent()) return;
    std::vector<Part> parts;  // the index is the number that was drawn
    std::uint32_t id = kNoId;
    {
        glPushAttrib(GL_ALL_ATTRIB_BITS);
        const ScopeExit restore([this] {
            m_frameTarget.Bind();  // before the attributes, which hold the draw buffer of the frame
            glPopAttrib();
        });
        // Into a target of one pixel, with the viewport moved so that it is the one asked for: the shown frame and its
        // depth stay as they are.
        m_idTarget.SetSize(1, 1, 0);
        m_idTarget.Bind();
        glViewport(PixelDifference(0, x), PixelDifference(0, y), std::max(m_nWidth, 0), std::max(m_nHeight, 0));
        SetStateForIds();
        for (RenderObject* const object : objects) {
            object->ClearPick();
            const std::uint32_t count = object->DrawPickIds(static_cast<std::uint32_t>(parts.size()));
            for (std::uint32_t k = 0; k < count; ++k) parts.push_back({object, k});
        }
        if (x >= 0 && y >= 0 && x < m_nWidth && y < m_nHeight) id = ReadId();
    }
    // The part at the pixel stores the pick itself; the background has no part.
    if (id < kNoId && id < parts.size()) parts[id].object->OnPicked(parts[id].number);
}

void CKV_ScenePaneCtrl::OnRightDoubleClick(std::uint32_t /*flags*/, std::int32_t /*x*/, std::int32_t /*y*/) {
    if (m_nPickMode != KV_ScenePane::PickModeCross) return;
    m_bAnimationRunning = 0;
    const auto hit = FindViewAxisHit(m_fAxisZ);
    if (!hit) return;
    Fire(&KV_ScenePane::_DKV_ScenePaneEvents::SelectViewDirection, (*hit)[0], (*hit)[1], (*hit)[2], m_fAxisZ[0],
         m_fAxisZ[1], m_fAxisZ[2]);
}
