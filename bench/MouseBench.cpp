// What a mouse move costs: from the input to the end of the frame that it draws, with a button held and nothing dirty.
// CPU time of the thread that drives the viewer.
//   Move_WithTheDriver  everything
//   Move_OurCodeAlone   the same moves while no context is current, so that every OpenGL call ends at once in the empty
//                       function that the dispatch library (libglvnd) keeps for that case, as the swap does here: what
//                       is left is the viewer's own code, GLU's few matrices and the calls up to the dispatch library
//   MakeCurrent         of a context that is current already: what Move_OurCodeAlone must leave out of the window;
//                       a move asks for it as often as the counter make_current tells
#include <GL/glew.h>
#include <benchmark/benchmark.h>

#include <memory>
#include <string>

#include "control/ScenePaneCtrl.h"
#include "platform/CurrentContext.h"
#include "platform/WindowFactory.h"
#include "support/WindowProbe.h"
#include "support/XvfbServer.h"

namespace {

using KV_ScenePane::MouseInput;

/// Once silent it says that its context is current while none is, and shows nothing.
class SilentWindow final : public WindowProbe {
public:
    using WindowProbe::WindowProbe;

    void FallSilent() {
        m_bSilent = true;
        ReleaseCurrentEgl();
        ReleaseCurrentGlx();
    }
    void Speak() {
        m_bSilent = false;
        MakeCurrent();
    }
    bool MakeCurrent() override {
        ++makeCurrents;
        return m_bSilent || WindowProbe::MakeCurrent();
    }
    void SwapBuffers() override {
        ++swaps;
        if (!m_bSilent) WindowProbe::SwapBuffers();
    }

    std::int64_t makeCurrents = 0, swaps = 0;

private:
    bool m_bSilent = false;
};

/// Whether OpenGL calls end in nothing, those of old and those that are loaded by name.
bool OpenGlIsSilent() {
    GLuint name = 0;
    glGenBuffers(1, &name);
    return CurrentContext() == nullptr && glGetString(GL_VERSION) == nullptr && name == 0;
}

/// A control of some pixels, so that the rasteriser has next to nothing to do, and of many objects of two triangles.
class MousePane {
public:
    MousePane(PaneWindowRequest::Kind kind, std::int64_t objects) {
        PaneWindowRequest request;
        request.kind = kind;
        request.width = request.height = 16;
        auto silent = std::make_unique<SilentWindow>(MakePaneWindow(request));
        window = silent.get();
        control = std::make_unique<CKV_ScenePaneCtrl>(std::move(silent));
        std::string reason;
        if (!control->CreateControlWindow(&reason)) throw std::runtime_error("no window: " + reason);
        for (std::int64_t i = 0; i < objects; ++i) control->m_vpMeshes.push_back(Object(static_cast<float>(i)));
        control->CenterView();
        control->PerformRefresh();  // takes the size, builds the buffers
    }
    ~MousePane() {
        window->Speak();  // the buffers are deleted in the context
    }
    MousePane(const MousePane&) = delete;
    MousePane& operator=(const MousePane&) = delete;

    /// The left button turns, the right one pans.
    bool Press(bool right) {
        m_flags = right ? KV_ScenePane::kMouseRight : KV_ScenePane::kMouseLeft;
        control->OnMouse({right ? MouseInput::Kind::RightDown : MouseInput::Kind::LeftDown, m_flags, 8, 8, 0});
        return control->m_nInteractionMode == (right ? ModePan : ModeRotate);
    }
    /// There and back by turns, so that the view stays where it is.
    void Move() {
        m_there = !m_there;
        control->OnMouse({MouseInput::Kind::Move, m_flags, m_there ? 9 : 8, 8, 0});
    }

    SilentWindow* window = nullptr;
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
    bool m_there = false;
};

PaneWindowRequest::Kind KindOf(std::int64_t x11) {
    if (x11 == 0) return PaneWindowRequest::Kind::OffScreen;
    XvfbServer::Shared();  // a server of its own: no other window is in the way
    return PaneWindowRequest::Kind::TopLevel;
}
enum class Driver { Real, None };

void Moves(benchmark::State& state, Driver driver) {
    MousePane pane(KindOf(state.range(2)), state.range(0));
    if (!pane.Press(state.range(1) != 0)) return state.SkipWithError("the press did not begin the drag");
    pane.Move();
    if (driver == Driver::None) {
        pane.window->FallSilent();
        if (!OpenGlIsSilent()) return state.SkipWithError("OpenGL calls without a context go somewhere here");
    }
    pane.window->makeCurrents = pane.window->swaps = 0;
    for (auto _ : state) pane.Move();
    if (pane.window->swaps != state.iterations()) return state.SkipWithError("not every move drew a frame");
    state.counters["make_current"] =
        static_cast<double>(pane.window->makeCurrents) / static_cast<double>(state.iterations());
}
void Move_WithTheDriver(benchmark::State& state) { Moves(state, Driver::Real); }
void Move_OurCodeAlone(benchmark::State& state) { Moves(state, Driver::None); }
void MoveCases(benchmark::internal::Benchmark* bench) {
    bench->ArgNames({"objects", "pan", "x11"})->ArgsProduct({{1, 100, 1000}, {0, 1}, {0, 1}});
    bench->Unit(benchmark::kMicrosecond);
}
BENCHMARK(Move_WithTheDriver)->Apply(MoveCases);
BENCHMARK(Move_OurCodeAlone)->Apply(MoveCases);

void MakeCurrent(benchmark::State& state) {
    MousePane pane(KindOf(state.range(0)), 1);
    bool isCurrent = true;
    for (auto _ : state) isCurrent = pane.control->MakeContextCurrent() && isCurrent;
    if (!isCurrent) state.SkipWithError("the context was lost");
}
BENCHMARK(MakeCurrent)->ArgName("x11")->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
