// Scans that an operator aligns by hand, and where they must be: poses computed in double from the travels of the mouse
// alone, with a camera and a composition of the test's own.
#pragma once
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <utility>
#include <vector>

#include "align/CAlignInteractiveDlg.h"
#include "support/ControlFixture.h"

/// A rigid motion: p' = sum of column i times p[i], plus the offset.
struct Pose {
    std::array<Double3, 3> columns{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
    Double3 offset{};

    [[nodiscard]] Double3 Rotated(const Double3& p) const {
        return p[0] * columns[0] + p[1] * columns[1] + p[2] * columns[2];
    }
    [[nodiscard]] Double3 operator()(const Double3& p) const { return Rotated(p) + offset; }
};

/// First @p inner, then @p outer.
inline Pose After(const Pose& outer, const Pose& inner) {
    Pose both;
    for (std::size_t i = 0; i < 3; ++i) both.columns[i] = outer.Rotated(inner.columns[i]);
    both.offset = outer(inner.offset);
    return both;
}

/// Right-handed, by Rodrigues' formula for a vector. @param axis  of any length but 0
inline Double3 Turned(const Double3& v, const Double3& axis, double angle) {
    const Double3 k = (1 / Length(axis)) * axis;
    return std::cos(angle) * v + std::sin(angle) * Cross(k, v) + ((1 - std::cos(angle)) * Dot(k, v)) * k;
}

inline Pose TurnAbout(const Double3& axis, double angle, const Double3& pivot) {
    Pose turn;
    for (Double3& column : turn.columns) column = Turned(column, axis, angle);
    turn.offset = pivot - turn.Rotated(pivot);
    return turn;
}

inline Pose ShiftBy(const Double3& offset) { return {.offset = offset}; }

/// As a host reads it.
inline Pose PoseOfScan(CKV_ScenePaneCtrl& control, std::int16_t idx) {
    std::array<float, 16> m{};
    EXPECT_EQ(control.GetTrafoOfScan(idx, &m[0], &m[1], &m[2], &m[3], &m[4], &m[5], &m[6], &m[7], &m[8], &m[9], &m[10],
                                     &m[11], &m[12], &m[13], &m[14], &m[15]),
              0);
    Pose pose;
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t i = 0; i < 3; ++i) pose.columns[i][row] = m[4 * row + i];
        pose.offset[row] = m[4 * row + 3];
    }
    return pose;
}

inline void SetPoseOfScan(CKV_ScenePaneCtrl& control, std::int16_t idx, const Pose& pose) {
    const auto at = [&](std::size_t row, std::size_t i) { return static_cast<float>(pose.columns[i][row]); };
    const auto offset = [&](std::size_t row) { return static_cast<float>(pose.offset[row]); };
    EXPECT_EQ(control.SetTrafoOfScan(idx, at(0, 0), at(0, 1), at(0, 2), offset(0), at(1, 0), at(1, 1), at(1, 2),
                                     offset(1), at(2, 0), at(2, 1), at(2, 2), offset(2), 0, 0, 0, 1),
              0);
}

/// The distance that the two move a point of length 100 apart at most.
inline double Difference(const Pose& a, const Pose& b) {
    double squared = 0;
    for (std::size_t i = 0; i < 3; ++i) squared += Dot(a.columns[i] - b.columns[i], a.columns[i] - b.columns[i]);
    return 100 * std::sqrt(squared) + Length(a.offset - b.offset);
}

/// What the test knows of the camera.
struct HandCamera {
    explicit HandCamera(const CKV_ScenePaneCtrl& control)
        : right(ToDouble3(control.m_fAxisX)),
          up(ToDouble3(control.m_fAxisY)),
          toViewer(ToDouble3(control.m_fAxisZ)),
          width(control.m_pWindow->ClientSize().width),
          height(control.m_pWindow->ClientSize().height),
          unitsPerPixel(static_cast<double>(control.m_fZoom) * control.m_fSceneSize / std::min(width, height)) {}

    /// In the plane of the window; y downward.
    [[nodiscard]] Double3 Travel(double dx, double dy) const { return unitsPerPixel * (dx * right - dy * up); }
    /// About the viewing axis: the larger of the two angles.
    [[nodiscard]] Pose Roll(double dx, double dy, const Double3& pivot) const {
        const double a = -dx * std::numbers::pi / width, b = dy * std::numbers::pi / height;
        return TurnAbout(toViewer, std::abs(b) > std::abs(a) ? b : a, pivot);
    }
    /// What a travel does in a rotation mode.
    [[nodiscard]] Pose Rotate(int mode, double dx, double dy, const Double3& pivot) const {
        constexpr double kPi = std::numbers::pi;
        if (mode == 0) return TurnAbout(right, dy * kPi / height, pivot);
        if (mode == 1) return TurnAbout(up, dx * kPi / width, pivot);
        if (mode == 2) return Roll(dx, dy, pivot);
        if (mode == 3)
            return TurnAbout(dy * right + dx * up, std::hypot(dx, dy) * kPi / std::min(width, height), pivot);
        return {};
    }

    Double3 right, up, toViewer;
    double width, height, unitsPerPixel;
};

/// An irregular tetrahedron of about 10 units, so that no rotation leaves it as it is.
inline std::shared_ptr<Mesh> MakeScan(std::uint32_t color) {
    std::vector<Vertex> vertices = {{.x = 0, .y = 0, .z = 0, .nx = 1, .ny = 0, .nz = 0},
                                    {.x = 10, .y = 1, .z = 2, .nx = 0, .ny = 1, .nz = 0},
                                    {.x = -1, .y = 8, .z = 3, .nx = 0, .ny = 0, .nz = 1},
                                    {.x = 2, .y = -2, .z = 6, .nx = 0, .ny = 0.6f, .nz = 0.8f}};
    std::vector<Triangle> triangles = {{{0, 1, 2}}, {{0, 3, 1}}, {{0, 2, 3}}, {{1, 3, 2}}};
    auto mesh = std::make_shared<Mesh>(std::move(vertices), std::move(triangles), std::wstring(), false);
    mesh->SetColorRef(color);
    return mesh;
}

/// 640 x 480, an oblique camera of 0.125 units per pixel, four scans: 0 and 3 stay, 1 and 2 move. All of them have
/// poses of their own but 0 and 1.
class HandScene {
public:
    static constexpr std::int16_t kMoving[] = {1, 2};
    static constexpr std::uint32_t kColors[] = {0x0000FF, 0x80C040, 0xFF8003, 0x102030};

    explicit HandScene(std::int32_t width = 640, std::int32_t height = 480) : control(width, height) {
        for (const std::uint32_t color : kColors) pane.m_vpMeshes.push_back(MakeScan(color));
        SetPoseOfScan(pane, 2, TurnAbout({1, 2, 3}, 0.7, {4, 5, 6}));
        SetPoseOfScan(pane, 3, After(ShiftBy({-9, 4, 1}), TurnAbout({-1, 0.5, 2}, 2.1, {})));
        Look();
        for (const std::int16_t idx : kMoving) pane.AddVariableObject(idx);
        for (std::int16_t idx = 0; idx < 4; ++idx) start.push_back(PoseOfScan(pane, idx));
        expected = start;
        control.window->Forget();
    }

    /// From an oblique direction; x, y and z of the world have different directions in the window.
    void Look() {
        pane.m_fSceneSize = 60;
        pane.SetViewParams(0.8f, 0.6f, 0, -0.36f, 0.48f, 0.8f, 3, 2, 1, 1, 1);
        pane.PerformRefresh();
    }

    void Begin() {
        pane.AlignInteractive();
        ASSERT_NE(Dialog(), nullptr);
        pivot = ToDouble3(Dialog()->m_fPivot);
        control.window->Forget();
        control.events.events.clear();
    }
    [[nodiscard]] CAlignInteractiveDlg* Dialog() const {
        return dynamic_cast<CAlignInteractiveDlg*>(pane.m_pInteractionDlg);
    }

    // ---- the mouse; the flags of a release have the button no longer
    using Kind = KV_ScenePane::MouseInput::Kind;
    void Send(Kind kind, std::uint32_t flags, std::int32_t x, std::int32_t y) {
        pane.SendMouse({.kind = kind, .flags = flags, .x = x, .y = y});
    }
    void Press(std::uint32_t button, std::int32_t x, std::int32_t y, std::uint32_t keys = 0) {
        Send(button == KV_ScenePane::kMouseLeft ? Kind::LeftDown : Kind::RightDown, button | keys, x, y);
    }
    void Move(std::uint32_t flags, std::int32_t x, std::int32_t y) { Send(Kind::Move, flags, x, y); }
    void Release(std::uint32_t button, std::int32_t x, std::int32_t y, std::uint32_t keys = 0) {
        Send(button == KV_ScenePane::kMouseLeft ? Kind::LeftUp : Kind::RightUp, keys, x, y);
    }
    /// A whole drag along these pixels; the first move after the press begins it.
    void Drag(std::uint32_t button, const std::vector<std::pair<int, int>>& path) {
        Press(button, path.front().first, path.front().second);
        for (const auto& [x, y] : path) Move(button, x, y);
        Release(button, path.back().first, path.back().second);
    }

    // ---- where the moving scans must be
    void ExpectStep(const Pose& step) {
        for (const std::int16_t idx : kMoving) {
            Pose& pose = expected[static_cast<std::size_t>(idx)];
            pose = After(step, pose);
        }
        pivot = step(pivot);
    }
    void ExpectShift(double dx, double dy) { ExpectStep(ShiftBy(HandCamera(pane).Travel(dx, dy))); }
    void ExpectRotation(int mode, double dx, double dy) { ExpectStep(HandCamera(pane).Rotate(mode, dx, dy, pivot)); }
    /// Compares transforms and vertices. The coordinates are below 64, where neighbouring floats differ by 3.8e-6; a
    /// step rounds a vertex less than three times, and rounds the points of the mouse, whose error the lever of a
    /// rotation does not enlarge here.
    void Check(double tolerance = 1e-3) {
        for (std::int16_t idx = 0; idx < 4; ++idx) {
            SCOPED_TRACE(testing::Message() << "scan " << idx);
            const auto i = static_cast<std::size_t>(idx);
            EXPECT_LT(Difference(PoseOfScan(pane, idx), expected[i]), tolerance);
            const auto original = MakeScan(0);
            for (std::size_t v = 0; v < original->m_vVertices.size(); ++v) {
                const Vertex& from = original->m_vVertices[v];
                const Vertex& to = pane.m_vpMeshes[i]->m_vVertices[v];
                EXPECT_LT(Length(expected[i]({from.x, from.y, from.z}) - Double3{to.x, to.y, to.z}), tolerance);
                EXPECT_LT(Length(expected[i].Rotated({from.nx, from.ny, from.nz}) - Double3{to.nx, to.ny, to.nz}),
                          1e-5);
            }
        }
    }

    OffscreenControl control;
    CKV_ScenePaneCtrl& pane = *control;
    std::vector<Pose> start, expected;  ///< per scan
    Double3 pivot{};
};
