// Cost of a mouse move, from the input event to the end of the frame that it draws, with a button held and clean
// buffers. CPU time of the thread that drives the viewer.
//   Move_WithDriver     everything
//   Move_WithoutDriver  the same moves while no context is current: every OpenGL call returns at once from the empty
//                       function that the dispatch library (libglvnd) has for that case, and the swap does nothing.
//                       What remains is the code of the viewer, the matrices of GLU and the calls to the dispatch
//                       library
//   MakeCurrent         making a context current that is current already. Move_WithoutDriver does not contain it; the
//                       counter make_current is the number of such calls per move
#include <GL/glew.h>
#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "DetachableWindow.h"
#include "control/ScenePaneCtrl.h"
#include "platform/WindowFactory.h"
#include "support/XvfbServer.h"

namespace {

using KV_ScenePane::MouseInput;

/// A control of 16 x 16 pixels, so that rasterising costs almost nothing, with many objects of two triangles.
class MousePane {
public:
    MousePane(KV_ScenePane::WindowRequest::Kind kind, std::int64_t objects) {
        KV_ScenePane::WindowRequest request;
        request.kind = kind;
        request.width = request.height = 16;
        auto detachable = std::make_unique<DetachableWindow>(MakePaneWindow(request));
        window = detachable.get();
        control = std::make_unique<CKV_ScenePaneCtrl>(std::move(detachable));
        std::string reason;
        if (!control->CreateControlWindow(&reason)) throw std::runtime_error("no window: " + reason);
        for (std::int64_t i = 0; i < objects; ++i) control->m_vpMeshes.push_back(Object(static_cast<float>(i)));
        control->CenterView();
        control->PerformRefresh();  // stores the size, builds the buffers
    }
    ~MousePane() {
        window->AttachContext();  // to delete the buffers
    }
    MousePane(const MousePane&) = delete;
    MousePane& operator=(const MousePane&) = delete;

    /// Starts a drag: the left button rotates, the right one pans.
    /// @return whether the control is in the mode of that drag
    bool Press(bool right) {
        m_flags = right ? KV_ScenePane::kMouseRight : KV_ScenePane::kMouseLeft;
        control->OnMouse({right ? MouseInput::Kind::RightDown : MouseInput::Kind::LeftDown, m_flags, 8, 8, 0});
        return control->m_nInteractionMode == (right ? ModePan : ModeRotate);
    }
    /// One pixel to the right and back in turn, so that the view does not drift.
    void Move() {
        m_isRight = !m_isRight;
        control->OnMouse({MouseInput::Kind::Move, m_flags, m_isRight ? 9 : 8, 8, 0});
    }

    DetachableWindow* window = nullptr;  ///< of the control
    std::unique_ptr<CKV_ScenePaneCtrl> control;

private:
    static std::shared_ptr<Mesh> Object(float z) {
        std::vector<Vertex> vertices;
        for (const auto& [x, y] : {std::pair{0.0f, 0.0f}, {1, 0}, {1, 1}, {0, 1}})
            vertices.push_back({.x = x, .y = y, .z = z, .nz = 1});
        return std::make_shared<Mesh>(std::move(vertices), std::vector<Triangle>{{{0, 1, 2}}, {{0, 2, 3}}},
                                      std::wstring(), false);
    }

    std::uint32_t m_flags = 0;
    bool m_isRight = false;
};

KV_ScenePane::WindowRequest::Kind KindOf(std::int64_t x11) {
    if (x11 == 0) return KV_ScenePane::WindowRequest::Kind::OffScreen;
    XvfbServer::Shared();  // without other windows
    return KV_ScenePane::WindowRequest::Kind::TopLevel;
}
enum class Driver { Real, None };

void Moves(benchmark::State& state, Driver driver) {
    MousePane pane(KindOf(state.range(2)), state.range(0));
    if (!pane.Press(state.range(1) != 0)) return state.SkipWithError("the press did not begin the drag");
    pane.Move();
    if (driver == Driver::None) {
        pane.window->DetachContext();
        if (!OpenGlCallsDoNothing()) return state.SkipWithError("OpenGL calls without a context have an effect here");
    }
    pane.window->makeCurrents = pane.window->swaps = 0;
    for (auto _ : state) pane.Move();
    if (pane.window->swaps != state.iterations()) return state.SkipWithError("not every move drew a frame");
    state.counters["make_current"] =
        static_cast<double>(pane.window->makeCurrents) / static_cast<double>(state.iterations());
}
void Move_WithDriver(benchmark::State& state) { Moves(state, Driver::Real); }
void Move_WithoutDriver(benchmark::State& state) { Moves(state, Driver::None); }
void MoveCases(benchmark::internal::Benchmark* bench) {
    bench->ArgNames({"objects", "pan", "x11"})->ArgsProduct({{1, 100, 1000}, {0, 1}, {0, 1}});
    bench->Unit(benchmark::kMicrosecond);
}
BENCHMARK(Move_WithDriver)->Apply(MoveCases);
BENCHMARK(Move_WithoutDriver)->Apply(MoveCases);

void MakeCurrent(benchmark::State& state) {
    MousePane pane(KindOf(state.range(0)), 1);
    bool isCurrent = true;
    for (auto _ : state) isCurrent = pane.control->MakeContextCurrent() && isCurrent;
    if (!isCurrent) state.SkipWithError("the context was lost");
}
BENCHMARK(MakeCurrent)->ArgName("x11")->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
