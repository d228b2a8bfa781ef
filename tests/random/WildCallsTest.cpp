// Random calls with random mouse and keys and without a model: whatever a host calls in between, drags, picks, delayed
// presses and lassos leave a viewer that is whole. The settings are those of RandomCallsTest.cpp.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "KV_ScenePane/PathText.h"
#include "control/ScenePaneCtrl.h"
#include "random/RandomRun.h"
#include "support/GlNow.h"
#include "support/ScratchFolder.h"

namespace {

constexpr std::int64_t kCallsPerRun = 500, kCallsPerCheck = 50;

std::int64_t Setting(const char* name, std::int64_t otherwise) {
    const char* const text = std::getenv(name);
    return text == nullptr ? otherwise : std::atoll(text);
}

/// An error other than the stack underflow that each shadow pass raises on purpose.
GLenum OpenGlError() {
    GLenum error = glGetError();
    while (error == GL_STACK_UNDERFLOW) error = glGetError();
    return error;
}

/// Arguments by type and name: any number, but valid where the viewer checks nothing.
class WildRun {
public:
    WildRun(std::uint64_t seed, const std::filesystem::path& folder)
        : m_run(seed, folder), m_random(m_run.random), m_numbers(3000), m_screenShot(std::size_t{2048} * 2048) {
        for (const char* name : {"a.pcm", "c.pax", "tetrahedron.ply", "garbage.ply", "e1.ply", "e1.stl", "missing.pcm"})
            m_paths.push_back(KV_ScenePane::WidePath((folder / name).string()));
        for (const float i : {0.0f, 1.0f, 2.0f}) m_mesh.m_vVertices.push_back({i * 10.0f, i * i * 9.0f, 1.0f});
        m_mesh.m_vTriangles.push_back({{0, 1, 2}});
    }

    [[nodiscard]] bool IsAlive() { return m_run.IsAlive(); }

    void Step() {
        const double kind = m_random.Fraction();
        if (kind < 0.5) {
            UseMouse();
        } else if (kind < 0.55) {
            UseKey();
        } else if (kind < 0.6) {
            m_run.BeginCall("process events");
            m_run.viewer->ProcessEvents();
        } else {
            CallAnyMethod();
        }
        m_run.viewer->TakeEvents();
        if (!m_run.model.hasPicture || !m_run.viewer->Control()->MakeContextCurrent()) return;
        EXPECT_EQ(OpenGlError(), 0u);
    }

    void Check() {
        m_run.BeginCall("check");
        const auto count = [this](const char* method) { return std::get<std::int32_t>(m_run.Ask(method, {})); };
        const CKV_ScenePaneCtrl& control = *m_run.viewer->Control();
        EXPECT_EQ(std::get<std::int16_t>(m_run.Ask("GetNumObjects", {})), std::ssize(m_run.viewer->CutCounts()));
        EXPECT_EQ(count("GetNumberOfNeedles"), std::ssize(control.m_vNeedles));
        EXPECT_LE(count("GetNumberOfNeedles"), control.m_nMaxNeedles);
        EXPECT_EQ(count("GetNumberOfPickPointSpheres"), std::ssize(control.m_vPickPointSpheres));
        std::set<std::int32_t> ids;
        for (const Needle& needle : control.m_vNeedles) ids.insert(needle.id);
        EXPECT_EQ(ids.size(), control.m_vNeedles.size());
        for (const auto& mesh : control.m_vpMeshes) {
            ASSERT_NE(mesh, nullptr);
            for (const Triangle& triangle : mesh->m_vTriangles)
                for (const std::int32_t corner : triangle.v) ASSERT_LT(corner, std::ssize(mesh->m_vVertices));
        }
        if (control.m_pInteractionDlg == nullptr) {
            EXPECT_NE(control.m_nInteractionMode, ModeAlignInteractive);
            EXPECT_NE(control.m_nInteractionMode, ModeAlignPickPoints);
        }
        if (m_run.model.hasPicture) {
            m_run.Ask("PerformRefresh", {});
            EXPECT_EQ(OpenGlError(), 0u);
        }
    }

private:
    void UseMouse() {
        const bool modest = m_random.Chance(0.95);
        KV_ScenePane::MouseInput input;
        input.kind = static_cast<KV_ScenePane::MouseInput::Kind>(m_random.Int(0, 8));
        input.flags = static_cast<std::uint32_t>(m_random.Int(0, 31));
        input.x = modest ? m_random.Int(-20, 120) : m_random.WildInt();
        input.y = modest ? m_random.Int(-20, 100) : m_random.WildInt();
        input.delta = m_random.Chance(0.8) ? 120 : m_random.WildInt();
        m_run.BeginCall("mouse " + std::to_string(static_cast<int>(input.kind)) + " at " + std::to_string(input.x) +
                        " " + std::to_string(input.y) + " flags " + std::to_string(input.flags));
        m_run.viewer->SendMouse(input);
    }
    void UseKey() {
        const std::int32_t code = m_random.OneOf<std::int32_t>({17, 27, 32, 38, 40, 46, 65});
        m_run.BeginCall("key " + std::to_string(code));
        m_run.viewer->SendKey({m_random.Chance(0.7), code, 1, 0});
    }

    void CallAnyMethod() {
        const auto methods = AutomationMethods();
        const AutomationMethod& method = methods[m_random.Index(methods.size())];
        const CKV_ScenePaneCtrl& control = *m_run.viewer->Control();
        m_objects = std::ssize(control.m_vpMeshes);
        m_spheres = std::ssize(control.m_vPickPointSpheres);
        m_overlays = std::ssize(control.m_vOverlays);
        if (IsLeftOut(method.name)) return;
        for (float& number : m_numbers) number = m_random.Chance(0.99) ? m_random.Float(-60, 60) : m_random.WildFloat();
        std::vector<AutomationValue> arguments;
        for (std::size_t i = 0; i < method.arguments.size(); ++i) arguments.push_back(Argument(method, i));
        if (method.name == "SetSize") arguments = {m_random.Short(-1, 150), m_random.Short(-1, 150)};
        if (method.name == "RecreateOpenglContext") arguments = {3, 3, 0};
        if (method.name == "ImportMeshFromMemory") {
            for (std::int32_t& corner : m_ids) corner = m_random.Int(0, 5);
            arguments = {6, 5, arguments[2], static_cast<void*>(m_ids.data())};
        }
        // Cuts and imports may fail, and the placement of the plane without a registry does.
        m_run.Call(std::string(method.name).c_str(), std::move(arguments),
                   {.failure = Expected::Maybe, .anyEvents = true});
    }

    /// What would be slow, or grow without end, or has no valid index.
    bool IsLeftOut(std::string_view name) {
        if (name == "RecreateOpenglContext" || name == "CaptureScreenShot") return m_random.Chance(0.9);
        if (name == "GetMeshDataSize" || name == "ExportMesh") return m_objects == 0;
        if (name.ends_with("PickPointSphere") || name == "GetPickPointSphereCoords") {
            if (name == "AddPickPointSphere") return m_spheres > 20;
            return m_spheres == 0 && name != "FindNearestPickPointSphere";
        }
        if (name == "SetOverlayVisibility") return m_overlays == 0;
        if (name == "AddOverlayData") return m_overlays > 5;
        if (name.starts_with("Import")) return m_objects > 12;
        return name == "BlockPaintEvents" && m_random.Chance(0.7);
    }

    AutomationValue Argument(const AutomationMethod& method, std::size_t place) {
        const std::string_view name = method.arguments[place].name, of = method.name;
        switch (method.signature[place + 1]) {
            case 's':
                if (of == "GetMeshDataSize" || of == "ExportMesh") return Index16(m_objects);
                return m_random.Chance(0.7) ? m_random.Short(0, 7) : m_random.WildShort();
            case 'i':
                if (of == "SetOverlayVisibility" && name == "index") return Index(m_overlays);
                if (of.ends_with("PickPointSphere") && name == "id") return Index(m_spheres);
                if (of == "GetPickPointSphereCoords") return Index(m_spheres);
                if (name == "number" || name.starts_with("num")) return m_random.Int(0, 9);
                if (name == "width" || name == "height") return m_random.Int(-1, 6);
                return m_random.Chance(0.6) ? m_random.Int(-1, 12) : m_random.WildInt();
            case 'f':
                return m_random.Chance(0.8) ? m_random.Float(-50, 50) : m_random.WildFloat();
            case 'w':
                return m_paths[m_random.Index(m_paths.size())].c_str();
            default:
                return Pointer(of, name);
        }
    }
    AutomationValue Pointer(std::string_view of, std::string_view name) {
        if (name == "mesh") return static_cast<void*>(&m_mesh);
        if (of == "CaptureScreenShot") return static_cast<void*>(m_screenShot.data());
        if (of == "GetCutMasks") return static_cast<void*>(name == "count" ? &m_count : nullptr);
        if (name == "id") return static_cast<void*>(m_ids.data());
        // Outputs of one method do not share their place.
        m_nextOutput = (m_nextOutput + 100) % 2000;
        return static_cast<void*>(&m_numbers[m_nextOutput]);
    }
    std::int32_t Index(std::ptrdiff_t count) { return m_random.Int(0, static_cast<std::int32_t>(count) - 1); }
    std::int16_t Index16(std::ptrdiff_t count) { return static_cast<std::int16_t>(Index(count)); }

    RandomRun m_run;
    Random& m_random;
    std::vector<float> m_numbers;
    std::array<std::int32_t, 40> m_ids{};
    std::vector<std::uint32_t> m_screenShot;
    std::vector<std::wstring> m_paths;
    KV_ScenePane::MeshBuffers m_mesh{false};
    std::int32_t m_count = 0;
    std::size_t m_nextOutput = 0;
    std::ptrdiff_t m_objects = 0, m_spheres = 0, m_overlays = 0;
};

}  // namespace

TEST(WildCalls, LeaveTheViewerWhole) {
    const std::int64_t calls = Setting("KV_RANDOM_CALLS", 10'000) / 2, seed = Setting("KV_RANDOM_SEED", 1);
    PrintEachCall(Setting("KV_RANDOM_TRACE", 0) != 0);
    InstallCrashReport();
    std::int64_t made = 0;
    for (std::int64_t number = Setting("KV_RANDOM_RUN", 0); made < calls; ++number) {
        const std::string name = "KV_RANDOM_SEED=" + std::to_string(seed) + " KV_RANDOM_RUN=" + std::to_string(number);
        SetRunName(name);
        const ScratchFolder folder;
        PrepareFiles(folder.Path());
        WildRun run(static_cast<std::uint64_t>(seed) * 7'000'003 + static_cast<std::uint64_t>(number), folder.Path());
        for (std::int64_t i = 0; i < kCallsPerRun && run.IsAlive(); ++i, ++made) {
            try {
                run.Step();
                if (i % kCallsPerCheck == 0) run.Check();
            } catch (const Mismatch& mismatch) {
                ADD_FAILURE() << mismatch.what();
            }
            if (testing::Test::HasFailure()) FAIL() << "repeat with " << name << "\nlast calls:\n" << LastCalls();
        }
        ++made;
    }
}
