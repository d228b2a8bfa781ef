// Cost of an alignment. The moving object is a grid with two triangles per vertex. CPU time of the thread that drives
// the viewer, but for the last two groups.
//   MoveVertices      a mouse step without a frame: the transform of all vertices and normals, and the box
//   ComputeBox        the box alone
//   CopyOfTheVertices the yardstick: the same bytes, into memory that is mapped already
//   Pack              vertices into the layout of the buffer, in the pieces of an upload
//   Upload            the same bytes, packed in advance, in the same pieces: the driver's share
//   BuildAfterAMove   both together, as a frame after a step does them. With all = 1 the vertex buffer is new and the
//                     indices are uploaded, too, as for a changed object
//   DragStep          a step by the mouse with its frame, in a window of 1024 x 768 pixels. Frame: the same frame of
//                     objects that have not moved. CPU time of the process, since the driver draws on all cores
//   MatchPairs        the fit of picked points
#include <GL/glew.h>
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <random>
#include <span>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "KV_UtilsLantern/KV_UtilsLantern.h"
#include "align/RigidMotion.h"
#include "control/ScenePaneCtrl.h"
#include "platform/WindowFactory.h"
#include "render/VertexPacking.h"

namespace {

using KV_ScenePane::MouseInput;

constexpr std::size_t kPiece = std::size_t{256} * 1024;  // of an upload, in bytes

/// A wavy square from -50 to 50, with normals.
std::shared_ptr<Mesh> MakeGrid(std::int64_t vertexCount, bool hasColors) {
    const auto side = static_cast<std::int32_t>(std::sqrt(static_cast<double>(vertexCount)));
    std::vector<Vertex> vertices;
    vertices.reserve(static_cast<std::size_t>(side) * static_cast<std::size_t>(side));
    const float step = 100.0f / static_cast<float>(side);
    for (std::int32_t row = 0; row < side; ++row)
        for (std::int32_t column = 0; column < side; ++column) {
            const float x = static_cast<float>(column) * step - 50, y = static_cast<float>(row) * step - 50;
            const float slope = std::cos(0.2f * x), length = std::sqrt(slope * slope + 1);
            vertices.push_back(
                {x, y, 5 * std::sin(0.2f * x), -slope / length, 0, 1 / length, static_cast<std::uint32_t>(column), 0});
        }
    std::vector<Triangle> triangles;
    triangles.reserve(2 * vertices.size());
    for (std::int32_t row = 0; row + 1 < side; ++row)
        for (std::int32_t column = 0; column + 1 < side; ++column) {
            const std::int32_t corner = row * side + column, above = corner + side;
            triangles.push_back({{corner, corner + 1, above + 1}});
            triangles.push_back({{corner, above + 1, above}});
        }
    return std::make_shared<Mesh>(std::move(vertices), std::move(triangles), std::wstring(), hasColors);
}

/// Back and forth in turn, so that the object does not drift.
class SmallTurns {
public:
    const CACADQTrafo& Next() { return m_turns[m_next ^= 1]; }

private:
    CACADQTrafo m_turns[2] = {RotationAbout({0.6, 0, 0.8}, 0.01, {1, 2, 3}),
                              RotationAbout({0.6, 0, 0.8}, -0.01, {1, 2, 3})};
    std::size_t m_next = 0;
};

void CountVertices(benchmark::State& state, const Mesh& mesh, std::size_t bytesPerVertex) {
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(mesh.GetVertexCount()));
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(mesh.GetVertexCount() * bytesPerVertex));
}

void Sizes(benchmark::internal::Benchmark* bench) {
    bench->ArgName("vertices")->Arg(1'000'000)->Arg(2'000'000)->Unit(benchmark::kMillisecond);
}

// ---- the vertices

void MoveVertices(benchmark::State& state) {
    const auto mesh = MakeGrid(state.range(0), false);
    SmallTurns turns;
    for (auto _ : state) mesh->ApplyTrafo(turns.Next());
    CountVertices(state, *mesh, sizeof(Vertex));
}
BENCHMARK(MoveVertices)->Apply(Sizes);

void ComputeBox(benchmark::State& state) {
    const auto mesh = MakeGrid(state.range(0), false);
    for (auto _ : state) {
        mesh->ComputeBoundingBox();
        benchmark::ClobberMemory();
    }
    CountVertices(state, *mesh, sizeof(Vertex));
}
BENCHMARK(ComputeBox)->Apply(Sizes);

void CopyOfTheVertices(benchmark::State& state) {
    const auto mesh = MakeGrid(state.range(0), false);
    std::vector<Vertex> copy(mesh->m_vVertices.size());
    for (auto _ : state) {
        std::memcpy(copy.data(), mesh->m_vVertices.data(), copy.size() * sizeof(Vertex));
        benchmark::ClobberMemory();
    }
    CountVertices(state, *mesh, sizeof(Vertex));
}
BENCHMARK(CopyOfTheVertices)->Apply(Sizes);

// ---- the buffers

void LayoutCases(benchmark::internal::Benchmark* bench) {
    bench->ArgNames({"vertices", "colors"})->ArgsProduct({{1'000'000, 2'000'000}, {0, 1}});
    bench->Unit(benchmark::kMillisecond);
}

std::size_t StrideOf(const Mesh& mesh) { return mesh.m_bHasVertexColors ? kColoredStride : kPlainStride; }

void Pack(benchmark::State& state) {
    const auto mesh = MakeGrid(state.range(0), state.range(1) != 0);
    const std::size_t pieceCount = kPiece / StrideOf(*mesh);
    std::vector<std::byte> piece(kPiece);
    for (auto _ : state) {
        const VertexColorTable table = MakeVertexColorTable(mesh->m_fColor, false);
        for (std::size_t first = 0; first < mesh->m_vVertices.size(); first += pieceCount) {
            const std::size_t count = std::min(pieceCount, mesh->m_vVertices.size() - first);
            const auto part = std::span<const Vertex>(mesh->m_vVertices).subspan(first, count);
            mesh->m_bHasVertexColors ? PackColored(part, table, piece.data()) : PackPlain(part, piece.data());
            benchmark::ClobberMemory();
        }
    }
    CountVertices(state, *mesh, StrideOf(*mesh));
}
BENCHMARK(Pack)->Apply(LayoutCases);

std::unique_ptr<CKV_ScenePaneCtrl> MakePane(std::int32_t width, std::int32_t height) {
    KV_ScenePane::WindowRequest request;
    request.kind = KV_ScenePane::WindowRequest::Kind::OffScreen;
    request.width = width;
    request.height = height;
    auto control = std::make_unique<CKV_ScenePaneCtrl>(MakePaneWindow(request));
    std::string reason;
    if (!control->CreateControlWindow(&reason)) throw std::runtime_error("no off-screen surface: " + reason);
    control->MakeContextCurrent();
    return control;
}

/// @param state  vertices, and whether the buffer is allocated again each time
void Upload(benchmark::State& state) {
    const auto control = MakePane(64, 64);
    const auto mesh = MakeGrid(state.range(0), false);
    const std::size_t bytes = mesh->m_vVertices.size() * kPlainStride;
    const std::vector<std::byte> piece(kPiece, std::byte{1});
    GLuint buffer = 0;
    glGenBuffers(1, &buffer);
    glBindBuffer(GL_ARRAY_BUFFER, buffer);
    const auto allocate = [bytes] {
        glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(bytes), nullptr, GL_STATIC_DRAW);
    };
    allocate();
    for (auto _ : state) {
        if (state.range(1) != 0) allocate();
        for (std::size_t first = 0; first < bytes; first += kPiece)
            glBufferSubData(GL_ARRAY_BUFFER, static_cast<GLintptr>(first),
                            static_cast<GLsizeiptr>(std::min(kPiece, bytes - first)), piece.data());
        glFinish();
    }
    glDeleteBuffers(1, &buffer);
    CountVertices(state, *mesh, kPlainStride);
}
BENCHMARK(Upload)
    ->ArgNames({"vertices", "allocate"})
    ->ArgsProduct({{1'000'000, 2'000'000}, {0, 1}})
    ->Unit(benchmark::kMillisecond);

void BuildAfterAMove(benchmark::State& state) {
    const auto control = MakePane(64, 64);
    const auto mesh = MakeGrid(state.range(0), false);
    for (auto _ : state) {
        state.range(1) != 0 ? mesh->MarkBuffersDirty() : mesh->MarkVerticesDirty();
        mesh->Draw(KV_ScenePane::DrawModeNothing, false);  // only builds the buffers
        glFinish();
    }
    CountVertices(state, *mesh, kPlainStride);
    mesh->ReleaseBuffers();
}
BENCHMARK(BuildAfterAMove)
    ->ArgNames({"vertices", "all"})
    ->ArgsProduct({{1'000'000, 2'000'000}, {0, 1}})
    ->Unit(benchmark::kMillisecond);

// ---- a whole step

/// A moving object beside a small fixed one, in an alignment by hand.
class AlignmentPane {
public:
    explicit AlignmentPane(std::int64_t vertexCount) : control(MakePane(1024, 768)) {
        control->m_vpMeshes = {MakeGrid(vertexCount, false), MakeGrid(100, false)};
        control->CenterView();
        control->PerformRefresh();  // stores the size, builds the buffers
        control->AddVariableObject(0);
        control->AlignInteractive();
        Send(MouseInput::Kind::RightDown, 500);
        Send(MouseInput::Kind::Move, 500);  // the first move of a drag moves nothing
    }
    ~AlignmentPane() { Send(MouseInput::Kind::RightUp, m_isRight ? 501 : 500); }
    AlignmentPane(const AlignmentPane&) = delete;
    AlignmentPane& operator=(const AlignmentPane&) = delete;

    /// One pixel to the right and back in turn.
    void Move() {
        m_isRight = !m_isRight;
        Send(MouseInput::Kind::Move, m_isRight ? 501 : 500);
        glFinish();
    }
    [[nodiscard]] Vertex FirstVertex() const { return control->m_vpMeshes[0]->m_vVertices.front(); }

    std::unique_ptr<CKV_ScenePaneCtrl> control;

private:
    void Send(MouseInput::Kind kind, std::int32_t x) {
        const bool isHeld = kind != MouseInput::Kind::RightUp;
        control->OnMouse({kind, isHeld ? KV_ScenePane::kMouseRight : 0u, x, 300, 0});
    }

    bool m_isRight = false;
};

void DragStep(benchmark::State& state) {
    AlignmentPane pane(state.range(0));
    const float before = pane.FirstVertex().x;
    pane.Move();
    if (!(pane.FirstVertex().x > before)) return state.SkipWithError("the drag moved nothing");
    for (auto _ : state) {
        pane.Move();
        if (pane.control->m_vpMeshes[0]->m_bBuffersDirty) return state.SkipWithError("a step drew no frame");
    }
    CountVertices(state, *pane.control->m_vpMeshes[0], sizeof(Vertex));
}
BENCHMARK(DragStep)->Apply(Sizes)->MeasureProcessCPUTime()->UseRealTime();

void Frame(benchmark::State& state) {
    const AlignmentPane pane(state.range(0));
    for (auto _ : state) {
        pane.control->PerformRefresh();
        glFinish();
    }
    CountVertices(state, *pane.control->m_vpMeshes[0], sizeof(Vertex));
}
BENCHMARK(Frame)->Apply(Sizes)->MeasureProcessCPUTime()->UseRealTime();

// ---- picked points

void MatchPairs(benchmark::State& state) {
    const auto count = static_cast<std::size_t>(state.range(0));
    const CACADQTrafo trafo = RotationAbout({0, 0.6, 0.8}, 1.0, {3, 2, 1});
    std::mt19937 random(1);
    std::uniform_real_distribution<float> coordinate(-50, 50), noise(-0.05f, 0.05f);
    std::vector<Vertex> points(count);
    for (Vertex& point : points)
        point.x = coordinate(random), point.y = coordinate(random), point.z = coordinate(random);
    std::vector<float> source, target;
    source.reserve(3 * count);
    target.reserve(3 * count);
    for (const Vertex& point : points) source.insert(source.end(), {point.x, point.y, point.z});
    Mesh moved(std::move(points), {}, L"", false);
    moved.ApplyTrafo(trafo);
    for (const Vertex& point : moved.m_vVertices)
        target.insert(target.end(), {point.x + noise(random), point.y + noise(random), point.z + noise(random)});
    float result[12] = {};
    for (auto _ : state)
        if (LANDLL_PickPointMatching(static_cast<int>(count), source.data(), target.data(), result) < 0)
            return state.SkipWithError("no fit");
    if (std::abs(result[0] - trafo.m_dRotation[0]) > 0.01) return state.SkipWithError("a wrong fit");
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(MatchPairs)->ArgName("pairs")->Arg(10)->Arg(1000)->Arg(1'000'000)->Unit(benchmark::kMicrosecond);

}  // namespace

BENCHMARK_MAIN();
