// Scenes that are cut, and lassos by the calls of a host.
#pragma once
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <functional>
#include <memory>
#include <numbers>
#include <string>
#include <utility>
#include <vector>

#include "KV_ScenePane/CutMask.h"
#include "support/ControlFixture.h"

using KV_ScenePane::LassoPoint;
using KV_ScenePane::SegmentationMode;

/// All six ways, by their numbers.
inline constexpr SegmentationMode kAllWays[] = {KV_ScenePane::PolygonOutside, KV_ScenePane::PolygonInside,
                                                KV_ScenePane::PolygonVisible, KV_ScenePane::FreehandOutside,
                                                KV_ScenePane::FreehandInside, KV_ScenePane::FreehandVisible};
inline const char* const kNamesOfWays[] = {"PolygonOutside",  "PolygonInside",  "PolygonVisible",
                                           "FreehandOutside", "FreehandInside", "FreehandVisible"};
inline bool IsFreehand(SegmentationMode way) { return way >= KV_ScenePane::FreehandOutside; }

struct LassoCorner {
    int x = 0, y = 0;  ///< pixels of the drawing area
};
using LassoCorners = std::vector<LassoCorner>;

/// Counterclockwise from the upper left corner.
inline LassoCorners RectangleOf(int left, int top, int right, int bottom) {
    return {{left, top}, {left, bottom}, {right, bottom}, {right, top}};
}

inline std::vector<LassoPoint> FractionsOf(const LassoCorners& corners, int width, int height) {
    std::vector<LassoPoint> points;
    points.reserve(corners.size());
    for (const auto& [x, y] : corners)
        points.push_back({static_cast<double>(x) / width, static_cast<double>(y) / height});
    return points;
}

/// The camera looks down the z axis at the origin. 10 units fill the shorter side of the window: 48 pixels per unit at
/// 640 x 480, with (0, 0) at pixel (320, 240). Window depth runs from 0 at z = 60 to 1 at z = -20.
inline void LookDown(CKV_ScenePaneCtrl& control) {
    control.m_fAxisX = {1, 0, 0};
    control.m_fAxisY = {0, 1, 0};
    control.m_fAxisZ = {0, 0, 1};
    control.m_fViewCenter = {0, 0, 0};
    control.m_fSceneSize = 10;
    control.m_fZoom = 1;
    control.SetupViewMatrices();
}

/// n x n vertices over [-half, half] in x and y, row by row from the lowest, facing the camera.
inline std::shared_ptr<Mesh> MakePlate(int n, double half, double z) {
    std::vector<Vertex> vertices;
    std::vector<Triangle> triangles;
    const auto at = [&](int i) { return static_cast<float>(-half + 2 * half * i / (n - 1)); };
    for (int row = 0; row < n; ++row)
        for (int column = 0; column < n; ++column)
            vertices.push_back({.x = at(column), .y = at(row), .z = static_cast<float>(z), .nz = 1});
    for (int row = 0; row + 1 < n; ++row)
        for (int column = 0; column + 1 < n; ++column) {
            const std::int32_t a = row * n + column, b = a + 1, c = a + n, d = c + 1;
            triangles.push_back({{a, b, d}});
            triangles.push_back({{a, d, c}});
        }
    return std::make_shared<Mesh>(std::move(vertices), std::move(triangles), std::wstring(), false);
}

/// A closed ball of columns x rings vertices and two poles, which are on the z axis through its centre.
inline std::shared_ptr<Mesh> MakeBall(const Float3& center, double radius, int columns = 48, int rings = 23) {
    std::vector<Vertex> vertices;
    std::vector<Triangle> triangles;
    const auto put = [&](double polar, double around) {
        const double n[3] = {std::sin(polar) * std::cos(around), std::sin(polar) * std::sin(around), std::cos(polar)};
        Vertex v;
        v.x = center[0] + static_cast<float>(radius * n[0]);
        v.y = center[1] + static_cast<float>(radius * n[1]);
        v.z = center[2] + static_cast<float>(radius * n[2]);
        v.nx = static_cast<float>(n[0]), v.ny = static_cast<float>(n[1]), v.nz = static_cast<float>(n[2]);
        vertices.push_back(v);
    };
    put(0, 0);
    for (int ring = 1; ring <= rings; ++ring)
        for (int column = 0; column < columns; ++column)
            put(std::numbers::pi * ring / (rings + 1), 2 * std::numbers::pi * column / columns);
    put(std::numbers::pi, 0);
    const std::int32_t south = columns * rings + 1;
    for (int column = 0; column < columns; ++column) {
        const std::int32_t next = (column + 1) % columns;
        triangles.push_back({{0, 1 + column, 1 + next}});
        triangles.push_back({{south, south - columns + next, south - columns + column}});
        for (int ring = 0; ring + 1 < rings; ++ring) {
            const std::int32_t upper = 1 + ring * columns, lower = upper + columns;
            triangles.push_back({{upper + column, lower + column, lower + next}});
            triangles.push_back({{upper + column, lower + next, upper + next}});
        }
    }
    return std::make_shared<Mesh>(std::move(vertices), std::move(triangles), std::wstring(), false);
}

// ---- an operator, by the calls of a host

inline void Click(CKV_ScenePaneCtrl& control, KV_ScenePane::MouseInput::Kind kind, const LassoCorner& at) {
    using Kind = KV_ScenePane::MouseInput::Kind;
    const std::uint32_t flags = kind == Kind::LeftDown    ? KV_ScenePane::kMouseLeft
                                : kind == Kind::RightDown ? KV_ScenePane::kMouseRight
                                                          : 0;
    control.SendMouse({.kind = kind, .flags = flags, .x = at.x, .y = at.y});
}
inline void LeftClick(CKV_ScenePaneCtrl& control, const LassoCorner& at) {
    Click(control, KV_ScenePane::MouseInput::Kind::LeftDown, at);
    Click(control, KV_ScenePane::MouseInput::Kind::LeftUp, at);
}
inline void RightClick(CKV_ScenePaneCtrl& control, const LassoCorner& at) {
    Click(control, KV_ScenePane::MouseInput::Kind::RightDown, at);
    Click(control, KV_ScenePane::MouseInput::Kind::RightUp, at);
}
inline void PressEscape(CKV_ScenePaneCtrl& control) { control.SendKey({.nChar = KV_ScenePane::kKeyEscape}); }

/// A click for each corner, the last one with the right button, which cuts.
inline void DrawLasso(CKV_ScenePaneCtrl& control, const LassoCorners& corners) {
    for (std::size_t i = 0; i + 1 < corners.size(); ++i) LeftClick(control, corners[i]);
    RightClick(control, corners.back());
}
/// The session with its lasso.
inline void CutByOperator(CKV_ScenePaneCtrl& control, SegmentationMode way, const LassoCorners& corners) {
    control.StartSegmentation(way);
    DrawLasso(control, corners);
}

// ---- what a cut has left

using Masks = std::vector<std::shared_ptr<const ACAD::CutMask>>;

inline void ExpectSameMask(const ACAD::CutMask& mask, const ACAD::CutMask& expected) {
    EXPECT_EQ(mask.m_nKind, expected.m_nKind);
    EXPECT_EQ(mask.m_dProjection, expected.m_dProjection);
    EXPECT_EQ(mask.m_dModelView, expected.m_dModelView);
    EXPECT_EQ(mask.m_nViewport, expected.m_nViewport);
    EXPECT_EQ(mask.m_rcBounds, expected.m_rcBounds);
    EXPECT_EQ(mask.m_vBits.m_uCount, expected.m_vBits.m_uCount);
    EXPECT_TRUE(mask.m_vBits.m_vWords == expected.m_vBits.m_vWords) << "the bits differ";
    EXPECT_TRUE(mask.m_vDepth == expected.m_vDepth) << "the depths differ";
}

inline std::vector<std::size_t> VertexCounts(const CKV_ScenePaneCtrl& control) {
    std::vector<std::size_t> counts;
    counts.reserve(control.m_vpMeshes.size());
    for (const auto& mesh : control.m_vpMeshes) counts.push_back(mesh->GetVertexCount());
    return counts;
}

/// Receives the events of cuts: keeps them in their order and runs functions of the test in them.
class CutEvents final : public KV_ScenePane::_DKV_ScenePaneEvents {
public:
    std::function<void(const ACAD::CutMask&)> onMask = [](const ACAD::CutMask&) {};
    std::function<void(int)> onDone = [](int) {};

    void CutMaskApplied(std::int64_t addr) override {
        m_events.emplace_back("mask");
        onMask(*reinterpret_cast<const ACAD::CutMask*>(static_cast<std::intptr_t>(addr)));
    }
    void SegmentationDone(std::int16_t numObj) override {
        m_events.push_back("done " + std::to_string(numObj));
        onDone(numObj);
    }
    /// The events since the last call.
    std::vector<std::string> Take() { return std::exchange(m_events, {}); }

private:
    std::vector<std::string> m_events;
};
using EventNames = std::vector<std::string>;

/// 640 x 480, a plate of 41 x 41 vertices over 8 x 8 units in front of one of 11 x 11 over 9 x 9 units.
struct CutControl : OffscreenControl {
    explicit CutControl(int width = 640, int height = 480) : OffscreenControl(width, height) {
        control->m_vpMeshes = {MakePlate(41, 4, 2), MakePlate(11, 4.5, -2)};
        LookDown(*control);
        control->Connect(&host);
        control->PerformRefresh();
        window->Forget();
    }
    CutEvents host;
};

/// Around vertices of both plates of a CutControl: 5 x 5 of the front one, whose distance is 9.6 pixels, and the middle
/// one of the other one.
inline const LassoCorners kMiddleBlock = RectangleOf(297, 217, 343, 263);
inline constexpr std::size_t kFrontCount = 41 * 41, kBackCount = 11 * 11;
/// Around no vertex of them.
inline const LassoCorners kBetweenVertices = RectangleOf(322, 232, 327, 237);
