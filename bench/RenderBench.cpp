// Upload of meshes and drawing of frames, off-screen. Each figure has a baseline: a copy of the same bytes, or a bare
// loop that draws the same buffers without a control, setting and restoring all OpenGL state around each object. A
// frame ends with glFinish() in both cases; the CPU time of a frame is that of all threads of the process. Objects
// outside the view cost only the submission of their calls.
#include <GL/glew.h>
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstring>
#include <memory>
#include <vector>

#include "control/ScenePaneCtrl.h"
#include "platform/WindowFactory.h"

using namespace KV_ScenePane;

namespace {

/// A control on an off-screen surface; its context is current.
class BenchPane {
public:
    BenchPane(int width, int height) {
        KV_ScenePane::WindowRequest request;
        request.width = width;
        request.height = height;
        m_control = std::make_unique<CKV_ScenePaneCtrl>(MakePaneWindow(request));
        std::string reason;
        if (!m_control->CreateControlWindow(&reason)) throw std::runtime_error("no off-screen surface: " + reason);
        m_control->MakeContextCurrent();
    }
    CKV_ScenePaneCtrl* operator->() const { return m_control.get(); }
    void Frame() const {
        m_control->PerformRefresh();
        glFinish();
    }

private:
    std::unique_ptr<CKV_ScenePaneCtrl> m_control;
};

/// A wavy square of @p side x @p side quads, 100 units wide.
std::shared_ptr<Mesh> Waves(int side) {
    std::vector<Vertex> vertices;
    vertices.reserve(static_cast<std::size_t>(side + 1) * static_cast<std::size_t>(side + 1));
    const float step = 100.0f / static_cast<float>(side);
    for (int row = 0; row <= side; ++row)
        for (int column = 0; column <= side; ++column) {
            const float x = static_cast<float>(column) * step - 50, y = static_cast<float>(row) * step - 50;
            const float slope = std::cos(0.2f * x), length = std::sqrt(slope * slope + 1);
            vertices.push_back({x, y, 5 * std::sin(0.2f * x), -slope / length, 0, 1 / length, 0, 0});
        }
    std::vector<Triangle> triangles;
    triangles.reserve(2 * static_cast<std::size_t>(side) * static_cast<std::size_t>(side));
    for (int row = 0; row < side; ++row)
        for (int column = 0; column < side; ++column) {
            const int corner = row * (side + 1) + column, above = corner + side + 1;
            triangles.push_back({{corner, corner + 1, above + 1}});
            triangles.push_back({{corner, above + 1, above}});
        }
    return std::make_shared<Mesh>(std::move(vertices), std::move(triangles), std::wstring(), false);
}

int SideOf(std::int64_t triangleCount) { return static_cast<int>(std::sqrt(static_cast<double>(triangleCount) / 2)); }

// ---- buffers

std::size_t BytesOnTheGpu(const Mesh& mesh) {
    const std::size_t triangles = mesh.GetTriangleCount();
    return mesh.GetVertexCount() * (mesh.m_bHasVertexColors ? 28 : 24) +
           4 * (3 * triangles + triangles + triangles / 10);
}

void BuildBuffers_Triangles(benchmark::State& state) {
    const BenchPane pane(64, 64);
    const auto mesh = Waves(SideOf(state.range(0)));
    mesh->m_bHasVertexColors = state.range(1) != 0;
    for (auto _ : state) {
        mesh->ReleaseBuffers();
        mesh->MarkBuffersDirty();
        mesh->Draw(KV_ScenePane::DrawModeNothing, false);  // only builds the buffers
        glFinish();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(BytesOnTheGpu(*mesh)));
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(mesh->GetTriangleCount()));
    mesh->ReleaseBuffers();
}
BENCHMARK(BuildBuffers_Triangles)
    ->ArgNames({"triangles", "colors"})
    ->Args({5'000'000, 0})
    ->Args({5'000'000, 1})
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

void CopyOfTheSameBytes(benchmark::State& state) {
    const auto mesh = Waves(SideOf(state.range(0)));
    const std::vector<char> source(BytesOnTheGpu(*mesh), 'x');
    std::vector<char> target(source.size());
    for (auto _ : state) {
        std::memcpy(target.data(), source.data(), source.size());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(source.size()));
}
BENCHMARK(CopyOfTheSameBytes)->Arg(5'000'000)->Unit(benchmark::kMillisecond)->UseRealTime();

/// The share of the driver in BuildBuffers: the same bytes, packed in advance, into a newly allocated buffer.
void UploadOfTheSameBytes(benchmark::State& state) {
    const BenchPane pane(64, 64);
    const auto mesh = Waves(SideOf(state.range(0)));
    const std::vector<char> source(BytesOnTheGpu(*mesh), 'x');
    GLuint buffer = 0;
    for (auto _ : state) {
        glDeleteBuffers(1, &buffer);
        glGenBuffers(1, &buffer);
        glBindBuffer(GL_ARRAY_BUFFER, buffer);
        glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(source.size()), source.data(), GL_STATIC_DRAW);
        glFinish();
    }
    glDeleteBuffers(1, &buffer);
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(source.size()));
}
BENCHMARK(UploadOfTheSameBytes)->Arg(5'000'000)->Unit(benchmark::kMillisecond)->UseRealTime();

// ---- frames

/// The OpenGL calls of a frame of the control, without the control.
class BareLoop {
public:
    explicit BareLoop(CKV_ScenePaneCtrl& control) : m_control(control) {}

    void Frame(bool shadows) const {
        glClear(GL_DEPTH_BUFFER_BIT);
        Background();
        glColorMaterial(GL_FRONT, GL_DIFFUSE);
        glEnable(GL_COLOR_MATERIAL);
        if (shadows)
            ObjectsWithShadows();
        else if (m_control.m_nDrawMode == DrawModePerPixel)
            ObjectsPerPixel();
        else
            Objects(m_control.m_nDrawMode);
        glDisable(GL_COLOR_MATERIAL);
        m_control.m_pWindow->SwapBuffers();
        glFinish();
    }

private:
    static void Background() {
        for (const GLenum matrix : {GL_PROJECTION, GL_MODELVIEW}) {
            glMatrixMode(matrix);
            glPushMatrix();
            glLoadIdentity();
        }
        glColor3f(0.1f, 0.1f, 0.2f);
        glBegin(GL_QUADS);
        glVertex3f(-1, 1, 0), glVertex3f(1, 1, 0), glVertex3f(1, -1, 0), glVertex3f(-1, -1, 0);
        glEnd();
        for (const GLenum matrix : {GL_PROJECTION, GL_MODELVIEW}) {
            glMatrixMode(matrix);
            glPopMatrix();
        }
        glClear(GL_DEPTH_BUFFER_BIT);
    }
    static void Object(const Mesh& mesh, int mode) {
        const GLfloat tint[4] = {mesh.m_fColor[0], mesh.m_fColor[1], mesh.m_fColor[2], 1}, white[4] = {1, 1, 1, 1};
        glPushAttrib(0xFFFFF);
        glColor4f(1, 1, 1, 0.5f);
        glPointSize(2);
        if (mode == DrawModeFlat || mode == DrawModeGouraud) {
            glShadeModel(mode == DrawModeFlat ? GL_FLAT : GL_SMOOTH);
            glPushAttrib(GL_LIGHTING_BIT | GL_DEPTH_BUFFER_BIT);
            glEnable(GL_LIGHT0);
            glEnable(GL_LIGHTING);
            glLightfv(GL_LIGHT0, GL_DIFFUSE, tint);
            glColor4fv(white);
            glEnable(GL_DEPTH_TEST);
            glEnableClientState(GL_VERTEX_ARRAY);
            glEnableClientState(GL_NORMAL_ARRAY);
            glDisableClientState(GL_COLOR_ARRAY);
            glDisableClientState(GL_TEXTURE_COORD_ARRAY);
            glBindBuffer(GL_ARRAY_BUFFER, mesh.m_uVertexBuffer);
            glVertexPointer(3, GL_FLOAT, 24, nullptr);
            glNormalPointer(GL_FLOAT, 24, reinterpret_cast<const void*>(std::size_t{12}));
            glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, mesh.m_uTriangleBuffer);
            glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(3 * mesh.GetTriangleCount()), GL_UNSIGNED_INT, nullptr);
            glBindBuffer(GL_ARRAY_BUFFER, 0);
            glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
            glDisableClientState(GL_VERTEX_ARRAY);
            glDisableClientState(GL_NORMAL_ARRAY);
            glPopAttrib();
        }
        glPopAttrib();
    }
    void Objects(int mode) const {
        for (const auto& mesh : m_control.m_vpMeshes) Object(*mesh, mode);
    }
    void ObjectsPerPixel() const {
        for (const auto& mesh : m_control.m_vpMeshes) {
            glUseProgram(m_control.m_progPerPixel);
            Object(*mesh, DrawModeFlat);
        }
        glUseProgram(0);
    }
    void ObjectsWithShadows() const {
        // The depth pass; the matrices of the camera serve for the light, since only the cost matters.
        GLfloat projection[16], modelView[16];
        GLint viewport[4];
        glGetFloatv(GL_PROJECTION_MATRIX, projection);
        glGetFloatv(GL_MODELVIEW_MATRIX, modelView);
        glGetIntegerv(GL_VIEWPORT, viewport);
        glBindFramebuffer(GL_FRAMEBUFFER, m_control.m_nShadowFbo);
        glViewport(0, 0, 2048, 2048);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        glEnable(GL_DEPTH_TEST);
        glUseProgram(m_control.m_progDepth);
        Objects(DrawModeFlat);
        m_control.m_frameTarget.Bind();
        glViewport(viewport[0], viewport[1], viewport[2], viewport[3]);
        // The lit pass.
        glBindTexture(GL_TEXTURE_2D, m_control.m_nShadowTexture);
        const GLuint program = m_control.m_progShadow;
        glUseProgram(program);
        glUniform1i(glGetUniformLocation(program, "ShadowMap"), 0);
        glUniformMatrix4fv(glGetUniformLocation(program, "shadowProjection"), 1, GL_FALSE, projection);
        glUniformMatrix4fv(glGetUniformLocation(program, "shadowModelView"), 1, GL_FALSE, modelView);
        Objects(m_control.m_nDrawMode);
        glUseProgram(0);
        glBindTexture(GL_TEXTURE_2D, 0);
    }

    CKV_ScenePaneCtrl& m_control;
};

enum class Side { Control, BareLoop };

/// @param aside  moves the view to the right, in scene sizes
void DrawFrames(benchmark::State& state, const BenchPane& pane, Side side, float aside = 0) {
    pane->CenterView();
    pane.Frame();  // stores the size, builds the buffers
    pane->m_fViewCenter[0] += aside * pane->m_fSceneSize;
    pane->SetupViewMatrices();
    const BareLoop bare(*pane.operator->());
    const bool shadows = pane->m_bShadowEnabled != 0;
    bare.Frame(shadows);
    for (auto _ : state) {
        if (side == Side::Control)
            pane.Frame();
        else
            bare.Frame(shadows);
    }
    state.SetItemsProcessed(state.iterations());  // frames per second
}

void FrameOf(benchmark::State& state, Side side) {
    const BenchPane pane(1024, 768);
    pane->m_vpMeshes.push_back(Waves(SideOf(state.range(0))));
    pane->m_nDrawMode = static_cast<std::int16_t>(state.range(1));
    pane->SetShadowMode(static_cast<std::int16_t>(state.range(2)));
    DrawFrames(state, pane, side);
}
void Frame_Triangles(benchmark::State& state) { FrameOf(state, Side::Control); }
void BareLoop_Triangles(benchmark::State& state) { FrameOf(state, Side::BareLoop); }
void FrameCases(benchmark::internal::Benchmark* bench) {
    bench->ArgNames({"triangles", "mode", "shadows"})
        ->ArgsProduct({{100'000, 1'000'000}, {DrawModeGouraud, DrawModePerPixel}, {0, 1}});
    bench->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime()->UseRealTime();  // the rasteriser has threads
}
BENCHMARK(Frame_Triangles)->Apply(FrameCases);
BENCHMARK(BareLoop_Triangles)->Apply(FrameCases);

void CleanObjects(benchmark::State& state, Side side, float aside = 0) {
    const BenchPane pane(16, 16);  // few pixels: the cost per object dominates
    for (std::int64_t i = 0; i < state.range(0); ++i) pane->m_vpMeshes.push_back(Waves(1));
    DrawFrames(state, pane, side, aside);
}
void Frame_CleanObjects(benchmark::State& state) { CleanObjects(state, Side::Control); }
void BareLoop_CleanObjects(benchmark::State& state) { CleanObjects(state, Side::BareLoop); }
void ObjectCases(benchmark::internal::Benchmark* bench) {
    bench->ArgName("objects")->Arg(1)->Arg(100)->Arg(1000)->Unit(benchmark::kMicrosecond);
}
BENCHMARK(Frame_CleanObjects)->Apply(ObjectCases);
BENCHMARK(BareLoop_CleanObjects)->Apply(ObjectCases);

void Frame_ObjectsOutsideTheView(benchmark::State& state) { CleanObjects(state, Side::Control, 10); }
void BareLoop_ObjectsOutsideTheView(benchmark::State& state) { CleanObjects(state, Side::BareLoop, 10); }
BENCHMARK(Frame_ObjectsOutsideTheView)->Apply(ObjectCases);
BENCHMARK(BareLoop_ObjectsOutsideTheView)->Apply(ObjectCases);

}  // namespace

BENCHMARK_MAIN();
