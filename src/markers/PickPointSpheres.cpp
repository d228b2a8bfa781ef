// Pick-point spheres: the balls that a host puts at points it has picked. The id of a sphere is its index.
#include <GL/glew.h>
//
#include <GL/glu.h>

#include <algorithm>
#include <cassert>
#include <cstdlib>
#include <limits>

#include "control/ScenePaneCtrl.h"

namespace {

constexpr int kSlices = 20, kStacks = 20;

[[maybe_unused]] bool IsIndex(std::int32_t id, const std::vector<PickPointSphere>& spheres) {
    return id >= 0 && static_cast<std::size_t>(id) < spheres.size();
}

// More pixels along one axis than this do not count, see FindNearestPickPointSphere(): their square must fit 64 bits.
constexpr std::int64_t kFarPixels = 1 << 16;

std::int64_t PixelsBetween(std::int64_t a, std::int64_t b) { return std::min(std::abs(a - b), kFarPixels); }

}  // namespace

// The event comes before the repaint. Its handler may change the list: what is returned or passed is computed first.
std::int32_t CKV_ScenePaneCtrl::AddPickPointSphere(float x, float y, float z, std::int32_t color) {
    m_vPickPointSpheres.push_back({x, y, z, static_cast<std::uint32_t>(color)});
    const auto count = static_cast<std::int32_t>(m_vPickPointSpheres.size());
    Fire(&KV_ScenePane::_DKV_ScenePaneEvents::PickPointCountChanged, count);
    RefreshControl();
    return count - 1;
}

void CKV_ScenePaneCtrl::MovePickPointSphere(std::int32_t id, float x, float y, float z) {
    assert(IsIndex(id, m_vPickPointSpheres));
    PickPointSphere& sphere = m_vPickPointSpheres[static_cast<std::size_t>(id)];
    sphere = {x, y, z, sphere.color};
    RefreshControl();
}

void CKV_ScenePaneCtrl::RemovePickPointSphere(std::int32_t id) {
    assert(IsIndex(id, m_vPickPointSpheres));
    m_vPickPointSpheres.erase(m_vPickPointSpheres.begin() + id);
    Fire(&KV_ScenePane::_DKV_ScenePaneEvents::PickPointCountChanged,
         static_cast<std::int32_t>(m_vPickPointSpheres.size()));
    RefreshControl();
}

void CKV_ScenePaneCtrl::ClearPickPointSpheres() {
    m_vPickPointSpheres.clear();
    Fire(&KV_ScenePane::_DKV_ScenePaneEvents::PickPointCountChanged, 0);
    RefreshControl();
}

std::int32_t CKV_ScenePaneCtrl::GetNumberOfPickPointSpheres() {
    return static_cast<std::int32_t>(m_vPickPointSpheres.size());
}

void CKV_ScenePaneCtrl::GetPickPointSphereCoords(std::int32_t id, float* x, float* y, float* z) {
    assert(IsIndex(id, m_vPickPointSpheres));
    const PickPointSphere& sphere = m_vPickPointSpheres[static_cast<std::size_t>(id)];
    *x = sphere.x;
    *y = sphere.y;
    *z = sphere.z;
}

// By pixels alone: neither the depth nor the radius counts. The first of several at the same distance wins.
std::int32_t CKV_ScenePaneCtrl::FindNearestPickPointSphere(std::int32_t sx, std::int32_t sy) {
    std::int32_t nearest = -1;
    std::int64_t nearestDistance = std::numeric_limits<std::int32_t>::max();
    for (std::size_t i = 0; i < m_vPickPointSpheres.size(); ++i) {
        const PickPointSphere& sphere = m_vPickPointSpheres[i];
        std::int32_t x = 0, y = 0;
        if (!ProjectPoint(sphere.x, sphere.y, sphere.z, &x, &y)) continue;
        const std::int64_t dx = PixelsBetween(x, sx), dy = PixelsBetween(y, sy);
        const std::int64_t distance = dx * dx + dy * dy;
        if (distance >= nearestDistance) continue;
        nearest = static_cast<std::int32_t>(i);
        nearestDistance = distance;
    }
    return nearest;
}

// Lit, in the colour of each sphere: the frame has set glColorMaterial().
void CKV_ScenePaneCtrl::DrawPickPointSpheres() {
    glPushAttrib(GL_LIGHTING_BIT | GL_DEPTH_BUFFER_BIT | GL_CURRENT_BIT);
    glEnable(GL_DEPTH_TEST);
    glEnable(GL_LIGHTING);
    glEnable(GL_LIGHT0);
    for (const PickPointSphere& sphere : m_vPickPointSpheres) {
        glPushMatrix();
        glTranslatef(sphere.x, sphere.y, sphere.z);
        const auto channel = [&](int shift) { return static_cast<GLubyte>(sphere.color >> shift); };
        glColor3ub(channel(0), channel(8), channel(16));
        gluSphere(m_pQuadric, m_fPickRadius, kSlices, kStacks);
        glPopMatrix();
    }
    glPopAttrib();
}
