// Aligns two meshes twice: alignment_host
//
// The program makes an off-screen viewer with a mesh that may move and one that stays, aligns them by pairs of points
// that it knows, takes that back, and lets an operator pick the points, whose clicks and keys it sends itself. It
// includes public headers only and needs no display.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <string>

#include "KV_ScenePane/Modes.h"
#include "KV_ScenePane/ScenePane.h"

namespace {

using KV_ScenePane::AlignmentPair;
using KV_ScenePane::AlignmentPhase;
using KV_ScenePane::AlignmentResult;
using KV_ScenePane::MouseInput;
using KV_ScenePane::ScenePane;
using Point = std::array<float, 3>;

constexpr int kWidth = 600, kHeight = 300;
constexpr std::int16_t kMoving = 0, kFixed = 1;

/// A quarter turn about the z axis and a shift: where the moving mesh belongs.
Point Truth(const Point& p) { return {30 - p[1], p[0], p[2] + 5}; }

/// Four corners and a tip that is beside the middle.
constexpr Point kPyramid[] = {{-10, -10, 0}, {10, -10, 0}, {10, 10, 0}, {-10, 10, 0}, {2, 1, 4}};

void AddPyramid(ScenePane& viewer, bool moved, const wchar_t* name) {
    KV_ScenePane::MeshBuffers mesh(false);
    for (const Point& corner : kPyramid) {
        const Point p = moved ? Truth(corner) : corner;
        KV_ScenePane::Vertex& vertex = mesh.m_vVertices.emplace_back();
        vertex.x = p[0], vertex.y = p[1], vertex.z = p[2], vertex.nz = 1;
    }
    mesh.m_vTriangles = {{{0, 1, 4}}, {{1, 2, 4}}, {{2, 3, 4}}, {{3, 0, 4}}};
    viewer.Methods().ImportMeshedMeasurement(&mesh, name, 0xC8D4DC);
}

void PrintResult(const char* how, const AlignmentResult& result) {
    double largest = 0;
    for (const double residual : result.residuals) largest = std::max(largest, residual);
    std::printf("%s: %s, %zu pairs, largest residual below %.1f\n", how, result.isFound ? "found" : "not found",
                result.pairs.size(), std::ceil(2 * largest + 1e-3) / 2);
}

/// The first three rows of an object's transform, rounded to whole numbers.
void PrintTransform(ScenePane& viewer, std::int16_t object) {
    std::array<float, 16> t{};
    viewer.Methods().GetTrafoOfScan(object, &t[0], &t[1], &t[2], &t[3], &t[4], &t[5], &t[6], &t[7], &t[8], &t[9],
                                    &t[10], &t[11], &t[12], &t[13], &t[14], &t[15]);
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 4; ++column) std::printf(" %ld", std::lround(t[4 * row + column]));
        std::printf("\n");
    }
}

// ---- an operator, by the input of a host

/// The pixel of a point in the view from +z after CenterView(): the diagonal of the scene's box is as long as the
/// shorter side of the window.
std::array<int, 2> PixelOf(ScenePane& viewer, const Point& p) {
    std::array<float, 12> box{};
    for (const std::int16_t object : {kMoving, kFixed}) {
        float* const b = &box[static_cast<std::size_t>(6 * object)];
        viewer.Methods().GetObjectBoundingBox(object, b, b + 1, b + 2, b + 3, b + 4, b + 5);
    }
    double center[3], diagonal = 0;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const double low = std::min(box[2 * axis], box[2 * axis + 6]),
                     high = std::max(box[2 * axis + 1], box[2 * axis + 7]);
        center[axis] = (low + high) / 2;
        diagonal += (high - low) * (high - low);
    }
    const double pixelsPerUnit = kHeight / std::sqrt(diagonal);
    return {static_cast<int>(std::lround(kWidth / 2 + pixelsPerUnit * (p[0] - center[0]))),
            static_cast<int>(std::lround(kHeight / 2 - pixelsPerUnit * (p[1] - center[1])))};
}

void Click(ScenePane& viewer, const std::array<int, 2>& pixel) {
    MouseInput mouse;
    mouse.kind = MouseInput::Kind::LeftDown;
    mouse.flags = KV_ScenePane::kMouseLeft;
    mouse.x = pixel[0], mouse.y = pixel[1];
    viewer.SendMouse(mouse);
    mouse.kind = MouseInput::Kind::LeftUp;
    mouse.flags = 0;
    viewer.SendMouse(mouse);
}

void Type(ScenePane& viewer, std::int32_t key) {
    KV_ScenePane::KeyInput input;
    input.nChar = key;
    viewer.SendKey(input);
}

/// What a hint for the operator is made from.
void PrintPhase(const ScenePane& viewer) {
    const KV_ScenePane::AlignmentPicks picks = viewer.GetAlignmentPicks();
    const char* const phase = picks.phase == AlignmentPhase::PickMoving  ? "pick on the moving mesh"
                              : picks.phase == AlignmentPhase::PickFixed ? "pick on the fixed mesh"
                                                                         : "no alignment";
    std::printf("%s: %zu and %zu points\n", phase, picks.moving.size(), picks.fixed.size());
}

class Events final : public KV_ScenePane::_DKV_ScenePaneEvents {
public:
    void AlignmentDone() override { std::printf("AlignmentDone\n"); }
};

// ---- the two ways

void AlignByPairs(ScenePane& viewer) {
    std::array<AlignmentPair, 4> pairs{};
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        const Point target = Truth(kPyramid[i]);
        for (std::size_t axis = 0; axis < 3; ++axis) {
            pairs[i].moving.point[axis] = kPyramid[i][axis];
            pairs[i].fixed.point[axis] = target[axis];
        }
    }
    viewer.AlignByPairs(pairs);
    PrintResult("by pairs", viewer.GetAlignmentResult());
    PrintTransform(viewer, kMoving);
}

void AlignByPicks(ScenePane& viewer) {
    // On three faces of the pyramid.
    constexpr Point kPicked[] = {{-4, -7, 0}, {8, 3, 0}, {-5, 6, 0}};
    viewer.Methods().AlignPickPoints();
    for (const Point& p : kPicked) Click(viewer, PixelOf(viewer, p));
    Click(viewer, PixelOf(viewer, {0, -8, 0}));
    Type(viewer, KV_ScenePane::kKeyDelete);  // drops the last point
    PrintPhase(viewer);
    Type(viewer, KV_ScenePane::kKeySpace);
    for (const Point& p : kPicked) {
        PrintPhase(viewer);
        Click(viewer, PixelOf(viewer, Truth(p)));  // the third one aligns
    }
    PrintPhase(viewer);
    PrintResult("by picked points", viewer.GetAlignmentResult());
    PrintTransform(viewer, kMoving);
}

}  // namespace

int main() {
    KV_ScenePane::WindowRequest request;
    request.kind = KV_ScenePane::WindowRequest::Kind::OffScreen;
    request.width = kWidth;
    request.height = kHeight;
    std::string reason;
    Events events;  // outlives the viewer
    const auto viewer = CreateScenePane(request, &reason);
    if (!viewer) return std::fprintf(stderr, "no viewer: %s\n", reason.c_str()), 1;
    viewer->Connect(&events);
    auto& methods = viewer->Methods();
    AddPyramid(*viewer, false, L"moving");
    AddPyramid(*viewer, true, L"fixed");
    methods.ResetVariableObjects();
    methods.AddVariableObject(kMoving);

    AlignByPairs(*viewer);
    methods.SetTrafoOfScan(kMoving, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1);  // takes the alignment back

    methods.SetViewMode(KV_ScenePane::ViewFromPlusZYUp);
    methods.CenterView();
    methods.PerformRefresh();
    AlignByPicks(*viewer);
    return 0;
}
