// Cost of picks.
//   PickSurface         a pick on one object of a million triangles; the vertices of the triangles are in the order of
//   a
//                       scan, or the triangles in no order at all
//   PlainLoop           a plain loop in double precision over the same triangles, which gives the same bits
//   PickSurface_Scene   a pick in a scene of that object alone, or beside 29 more like it whose boxes the line misses
//   Hover_WithDriver    a move of the mouse over the shown clip plane, beside its handles; CPU time of the thread
//   Hover_WithoutDriver the same while no context is current: the code of the viewer, the geometry of GLU and the calls
//                       to the dispatch library
//   RawCallsOfAHover    the OpenGL calls of a hover alone, from a display list, and the reading of the pixel
#include <GL/glew.h>
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "DetachableWindow.h"
#include "control/ScenePaneCtrl.h"
#include "platform/WindowFactory.h"

namespace {

enum class Order : std::int8_t { Scan, None };

/// A wavy surface of about a million triangles, 71 units wide, at @p x in front of the camera.
std::shared_ptr<Mesh> MakeSurface(Order order, float x) {
    constexpr std::int32_t kCells = 708;
    std::vector<Vertex> vertices;
    std::vector<Triangle> triangles;
    for (std::int32_t row = 0; row <= kCells; ++row)
        for (std::int32_t column = 0; column <= kCells; ++column) {
            const float u = 0.1f * static_cast<float>(column), v = 0.1f * static_cast<float>(row);
            vertices.push_back({.x = x + u, .y = v, .z = 5 * std::sin(0.1f * u) * std::cos(0.13f * v), .nz = 1});
        }
    for (std::int32_t row = 0; row < kCells; ++row)
        for (std::int32_t column = 0; column < kCells; ++column) {
            const std::int32_t a = row * (kCells + 1) + column, b = a + kCells + 1;
            triangles.push_back({{a, a + 1, b + 1}});
            triangles.push_back({{a, b + 1, b}});
        }
    if (order == Order::None) std::shuffle(triangles.begin(), triangles.end(), std::mt19937(1));
    return std::make_shared<Mesh>(std::move(vertices), std::move(triangles), std::wstring(), false);
}

/// The nearest hit by its squared distance, or -1. The operations of geometry/MeshIntersect.cpp on one triangle.
double PlainLoop(const Mesh& mesh, const Double3& o, const Double3& d) {
    const auto at = [&](std::int32_t index) {
        const Vertex& vertex = mesh.m_vVertices.at(static_cast<std::size_t>(index));
        return Double3{vertex.x, vertex.y, vertex.z};
    };
    double best = -1;
    for (const Triangle& triangle : mesh.m_vTriangles) {
        const Double3 p0 = at(triangle.v[0]), p1 = at(triangle.v[1]), p2 = at(triangle.v[2]);
        const Double3 e1 = p1 - p0, e2 = p2 - p0, r = o - p0, normal = Cross(e1, e2);
        const double determinant = -Dot(d, normal);
        if (!(std::abs(determinant) > 1e-5)) continue;
        const Double3 rd = Cross(r, d);
        const double u = Dot(e2, rd) / determinant, v = -Dot(e1, rd) / determinant;
        if (!(u >= 0 && u <= 1 && v >= 0 && v <= 1 && u + v <= 1)) continue;
        const double t = Dot(r, normal) / determinant, squared = t * t * Dot(d, d);
        if (best < 0 || squared < best) best = squared;
    }
    return best;
}

/// A control of 64 x 64 pixels that shows a surface, seen along -z.
class PickPane {
public:
    PickPane() {
        KV_ScenePane::WindowRequest request;
        request.kind = KV_ScenePane::WindowRequest::Kind::OffScreen;
        request.width = request.height = 64;
        auto detachable = std::make_unique<DetachableWindow>(MakePaneWindow(request));
        window = detachable.get();
        control = std::make_unique<CKV_ScenePaneCtrl>(std::move(detachable));
        std::string reason;
        if (!control->CreateControlWindow(&reason)) throw std::runtime_error("no window: " + reason);
        control->PerformRefresh();  // stores the size
    }
    ~PickPane() {
        window->AttachContext();  // to delete the buffers
    }
    PickPane(const PickPane&) = delete;
    PickPane& operator=(const PickPane&) = delete;

    DetachableWindow* window = nullptr;  ///< of the control
    std::unique_ptr<CKV_ScenePaneCtrl> control;
};

const char* NameOf(Order order) { return order == Order::Scan ? "scan" : "none"; }

void PickSurface(benchmark::State& state) {
    const auto order = static_cast<Order>(state.range(0));
    state.SetLabel(NameOf(order));
    PickPane pane;
    pane.control->m_vpMeshes.push_back(MakeSurface(order, 0));
    pane.control->CenterView();
    KV_ScenePane::SurfacePoint hit;
    for (auto _ : state)
        if (!pane.control->PickSurface(31, 30, &hit)) return state.SkipWithError("nothing was hit");
    state.SetItemsProcessed(state.iterations() *
                            static_cast<std::int64_t>(pane.control->m_vpMeshes[0]->m_vTriangles.size()));
}
BENCHMARK(PickSurface)->DenseRange(0, 1)->Unit(benchmark::kMillisecond);

void PlainLoop(benchmark::State& state) {
    const auto order = static_cast<Order>(state.range(0));
    state.SetLabel(NameOf(order));
    const auto mesh = MakeSurface(order, 0);
    for (auto _ : state) {
        const double squared = PlainLoop(*mesh, {35.03, 35.01, 400}, {0, 0, 1});
        if (squared < 0) return state.SkipWithError("nothing was hit");
        benchmark::DoNotOptimize(squared);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(mesh->m_vTriangles.size()));
}
BENCHMARK(PlainLoop)->DenseRange(0, 1)->Unit(benchmark::kMillisecond);

void PickSurface_Scene(benchmark::State& state) {
    PickPane pane;
    pane.control->m_vpMeshes.push_back(MakeSurface(Order::Scan, 0));
    pane.control->CenterView();
    // Beside the first one. They share their data: a box that is missed costs no look at it.
    const auto beside = MakeSurface(Order::Scan, 100);
    for (std::int64_t i = 1; i < state.range(0); ++i) pane.control->m_vpMeshes.push_back(beside);
    KV_ScenePane::SurfacePoint hit;
    for (auto _ : state)
        if (!pane.control->PickSurface(31, 30, &hit)) return state.SkipWithError("nothing was hit");
}
BENCHMARK(PickSurface_Scene)->ArgName("objects")->Arg(1)->Arg(30)->Unit(benchmark::kMillisecond);

// ---- hover

enum class Driver : std::int8_t { Real, None };

void Hover(benchmark::State& state, Driver driver) {
    PickPane pane;
    pane.control->m_bClipPlaneVisible = 1;
    pane.control->CenterView();
    if (driver == Driver::None) {
        pane.window->DetachContext();
        if (!OpenGlCallsDoNothing()) return state.SkipWithError("OpenGL calls without a context have an effect here");
    }
    for (auto _ : state) pane.control->OnMouse({KV_ScenePane::MouseInput::Kind::Move, 0, 1, 1, 0});
    if (pane.control->m_clipPlane.IsPicked()) state.SkipWithError("the mouse was not beside the handles");
}
void Hover_WithDriver(benchmark::State& state) { Hover(state, Driver::Real); }
void Hover_WithoutDriver(benchmark::State& state) { Hover(state, Driver::None); }
BENCHMARK(Hover_WithDriver)->Unit(benchmark::kMicrosecond);
BENCHMARK(Hover_WithoutDriver)->Unit(benchmark::kMicrosecond);

void RawCallsOfAHover(benchmark::State& state) {
    PickPane pane;
    pane.control->CenterView();
    CKV_ScenePaneCtrl& control = *pane.control;
    RenderObject* const objects[] = {&control.m_clipPlane};
    control.PickRenderObjectsAt(objects, 1, 1);  // makes the target
    if (!control.MakeContextCurrent()) return state.SkipWithError("no context");
    const GLuint list = glGenLists(1);
    glNewList(list, GL_COMPILE);
    control.m_clipPlane.DrawPickIds(0);
    glEndList();
    for (auto _ : state) {
        glPushAttrib(GL_ALL_ATTRIB_BITS);
        control.m_idTarget.Bind();
        glViewport(-1, -1, 64, 64);
        glClearColor(1, 1, 1, 1);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        glEnable(GL_DEPTH_TEST);
        for (const GLenum name :
             {GL_BLEND, GL_DITHER, GL_FOG, GL_LIGHTING, GL_TEXTURE_1D, GL_TEXTURE_2D, GL_TEXTURE_3D, GL_MULTISAMPLE})
            glDisable(name);
        glShadeModel(GL_FLAT);
        glCallList(list);
        std::uint32_t pixel = 0;
        glReadPixels(0, 0, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, &pixel);
        benchmark::DoNotOptimize(pixel);
        control.m_frameTarget.Bind();
        glPopAttrib();
    }
    glDeleteLists(list, 1);
}
BENCHMARK(RawCallsOfAHover)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
