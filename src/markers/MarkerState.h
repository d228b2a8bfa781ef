// Picks and markers: pick-point spheres, needles, lines and free points. Markers are not scene objects.
#pragma once
#include <cstdint>
#include <unordered_set>
#include <vector>

#include "KV_ScenePane/Modes.h"
#include "geometry/Vector3.h"
#include "markers/FreePointMap.h"
#include "markers/Line3D.h"
#include "markers/Needle.h"
#include "markers/PickPointSphere.h"

/// Written by markers/ and by the setting methods of control/. Positions are in the world frame.
///
/// Invariants: m_fPickPoint is the last hit of a pick only while m_bPickPointValid is set. The id of a pick-point
/// sphere is its index. Ids in m_vLines3D differ. The key in m_mapFreePoints is the entry's id.
struct MarkerState {
    // Picking.
    std::int32_t m_nPickMode = KV_ScenePane::PickModeOff;  ///< KV_ScenePane::PickMode, or any other value of the host
    Float3 m_fPickPoint{};
    std::uint8_t m_bPickPointValid = 0;
    std::vector<PickPointSphere> m_vPickPointSpheres;
    float m_fPickRadius = 500.0f;

    // Needles and lines.
    NeedleRenderParameters m_needleRender;
    std::vector<Needle> m_vNeedles;
    std::int32_t m_nMaxNeedles = 8;
    std::vector<Line3D> m_vLines3D;
    std::unordered_set<std::int32_t> m_setLine3DIds;  ///< of m_vLines3D: a file may have a million lines
    std::uint8_t m_bNeedlePickingMode = 0, m_bNeedleDrawingMode = 0, m_bLine3DDrawingMode = 0;

    // Free points, by id.
    FreePointMap m_mapFreePoints;
};
