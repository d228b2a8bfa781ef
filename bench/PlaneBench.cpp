// Cost of a mouse move at the clip plane beside a closed mesh of few or of a million triangles; CPU time of the thread.
//   Move    without its frame: painting is blocked. Hover beside the handles, drag of the arrow, drag of a sphere,
//           rotation and move of the whole plane with Ctrl
//   Frame   the frame that such a move draws, in a window of 320 x 240 pixels
#include <benchmark/benchmark.h>

#include <memory>
#include <stdexcept>
#include <string>

#include "SphereFixture.h"
#include "control/ScenePaneCtrl.h"
#include "platform/WindowFactory.h"

namespace {

using Kind = KV_ScenePane::MouseInput::Kind;

enum Moving : std::int64_t { Hover, Arrow, Ball, RotatePlane, MovePlane };

/// The plane is seen from the side.
class PlanePane {
public:
    explicit PlanePane(std::int32_t columns) {
        KV_ScenePane::WindowRequest request;
        request.kind = KV_ScenePane::WindowRequest::Kind::OffScreen;
        request.width = 320;
        request.height = 240;
        control = std::make_unique<CKV_ScenePaneCtrl>(MakePaneWindow(request));
        std::string reason;
        if (!control->CreateControlWindow(&reason)) throw std::runtime_error("no window: " + reason);
        KV_ScenePane::MeshBuffers sphere = MakeBenchSphere(columns, columns / 2);
        control->m_vpMeshes.push_back(std::make_shared<Mesh>(std::move(sphere.m_vVertices),
                                                             std::move(sphere.m_vTriangles), std::wstring(), false));
        control->CenterView();
        control->SetViewMode(KV_ScenePane::ViewFromMinusYZUp);
        control->m_bClipPlaneVisible = control->m_bClipPlaneActive = 1;
        control->PerformRefresh();  // builds the buffers
    }

    /// @return whether the control is in the mode of that drag
    bool Begin(Moving moving) {
        m_flags = moving == Hover         ? 0
                  : moving == MovePlane   ? KV_ScenePane::kMouseRight | KV_ScenePane::kMouseCtrl
                  : moving == RotatePlane ? KV_ScenePane::kMouseLeft | KV_ScenePane::kMouseCtrl
                                          : KV_ScenePane::kMouseLeft;
        const std::int32_t modes[] = {ModeIdle, ModePlaneHandle, ModePlaneHandle, ModePlaneRotate, ModePlaneMove};
        if (moving == Arrow) control->m_clipPlane.OnPicked(0);
        if (moving == Ball) control->m_clipPlane.OnPicked(2);
        if (moving == MovePlane)
            Input(Kind::RightDown, 100, 100);
        else if (moving != Hover)
            Input(Kind::LeftDown, 100, 100);
        return control->m_nInteractionMode == modes[moving];
    }
    void Move() {
        m_isUp = !m_isUp;
        Input(Kind::Move, 100, m_isUp ? 90 : 100);
    }

    std::unique_ptr<CKV_ScenePaneCtrl> control;

private:
    void Input(Kind kind, int x, int y) { control->OnMouse({kind, m_flags, x, y, 0}); }

    std::uint32_t m_flags = 0;
    bool m_isUp = false;
};

void Move(benchmark::State& state) {
    PlanePane pane(static_cast<std::int32_t>(state.range(0)));
    if (!pane.Begin(static_cast<Moving>(state.range(1))))
        return state.SkipWithError("the press did not begin the drag");
    pane.control->BlockPaintEvents(KV_ScenePane::kVariantTrue);
    for (auto _ : state) pane.Move();
}
BENCHMARK(Move)
    ->ArgNames({"columns", "moving"})
    ->ArgsProduct({{10, 1000}, {Hover, Arrow, Ball, RotatePlane, MovePlane}})
    ->Unit(benchmark::kMicrosecond);

void Frame(benchmark::State& state) {
    PlanePane pane(static_cast<std::int32_t>(state.range(0)));
    if (!pane.Begin(Arrow)) return state.SkipWithError("the press did not begin the drag");
    for (auto _ : state) pane.Move();
}
BENCHMARK(Frame)->ArgName("columns")->Arg(10)->Arg(1000)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
