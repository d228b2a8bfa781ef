// Every method of the surface by its id on a real viewer, from C++ and from C: with right arguments it has its effect,
// with missing, too many or wrongly typed ones there is a clear refusal and nothing happens.
#include <GL/glew.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "KV_ScenePane/PathText.h"
#include "KV_ScenePane/kv_scenepane.h"
#include "control/AutomationTable.h"
#include "control/CInterfacePane.h"
#include "control/ScenePaneHandle.h"
#include "control/ViewerSnapshot.h"
#include "platform/ComponentRegistry.h"
#include "support/ControlFixture.h"
#include "support/ScratchFolder.h"
#include "support/TestFolder.h"

namespace {

[[maybe_unused]] const std::string& g_logFolder = TestFolder();

using Arguments = std::vector<AutomationValue>;

int32_t CountEvent(void* user, int32_t, const kv_value*, size_t) {
    ++*static_cast<int*>(user);
    return 0;
}

int32_t CountAbout(void* user, const char*, const char*) {
    ++*static_cast<int*>(user);
    return 0;
}

constexpr std::size_t kSlotWords = 64;  ///< of m_buffer, per argument
constexpr std::uint32_t kNotWritten = 0x5A5A5A5A;

/// A viewer with one of everything that an id or an index names, all with the number 0.
class TestSurface {
public:
    TestSurface() {
        kv_window_request request{};
        kv_window_request_init(&request);
        request.width = 60;
        request.height = 40;
        request.gpu = KV_SOFTWARE;
        request.show_about = CountAbout;
        request.user = &m_events;
        m_pane = kv_create(&request);
        if (m_pane == nullptr) throw std::runtime_error(kv_last_error());
        KV_ScenePane::_DKV_ScenePane& methods = Methods();
        const std::int32_t triangle[] = {0, 1, 2};
        const float corners[] = {0, 0, 0, 30, 0, 0, 0, 30, 0};
        methods.ImportMeshFromMemory(3, 1, corners, triangle);
        methods.CenterView();
        methods.AddPickPointSphere(1, 2, 3, 0xFF);
        methods.CreateNeedle(0, 0, 0, 0, 0, 0, 10);
        methods.SelectNeedle(0);
        methods.ImportPoints(1, corners, corners, 1);
        methods.CreateLine3D(0, 2, corners);
        const std::uint8_t pixel[4] = {};
        methods.AddOverlayData(pixel, 1, 1, 0, 0, 0, 0, 0, 0);
        m_pane->m_pViewer->ProcessEvents();
        kv_connect(m_pane, CountEvent, &m_events);
        m_buffer.resize(std::size_t{2048} * 2048);
        for (std::size_t i = 0; i < 3; ++i) m_mesh.m_vVertices.push_back({corners[3 * i], corners[3 * i + 1], 0});
        m_mesh.m_vTriangles.push_back({{0, 1, 2}});
        std::ofstream(m_folder / "triangle.ply") << "ply\nformat ascii 1.0\nelement vertex 3\nproperty float x\n"
                                                    "property float y\nproperty float z\nelement face 1\n"
                                                    "property list uchar int vertex_indices\nend_header\n"
                                                    "0 0 0\n1 0 0\n0 1 0\n3 0 1 2\n";
    }
    ~TestSurface() { kv_destroy(m_pane); }
    TestSurface(const TestSurface&) = delete;
    TestSurface& operator=(const TestSurface&) = delete;

    KV_ScenePane::_DKV_ScenePane& Methods() { return m_pane->m_pViewer->Methods(); }
    CKV_ScenePaneCtrl& Control() { return ControlOf(*m_pane->m_pViewer); }
    /// The viewer, the material of its context, the files that it may have written, and the registry of the process.
    std::string Snapshot() {
        CKV_ScenePaneCtrl& control = Control();
        std::array<float, 4> specular{};
        if (control.MakeContextCurrent()) glGetMaterialfv(GL_FRONT, GL_SPECULAR, specular.data());
        const ComponentPtr component(KV_Components_Ordinal2("{312F34D3-886E-4DEB-8B33-D8F9B923D637}"));
        return ViewerSnapshot(control).Text() + "specular " + std::to_string(specular[0]) + "\nfiles " +
               std::to_string(m_folder.FileCount()) + (component == nullptr ? "\n" : "\nregistry\n");
    }
    [[nodiscard]] bool IsPaintPending() { return Control().m_pWindow->IsPaintPending(); }
    std::vector<std::uint32_t> Pixels() {
        KV_ScenePane::Picture picture;
        EXPECT_TRUE(m_pane->m_pViewer->CapturePicture(&picture));
        return picture.pixels;
    }

    /// By name and type: indices and ids 0, other numbers 1, arrays of zeros that are long enough.
    AutomationValue RightArgument(const AutomationMethod& method, std::size_t place) {
        const std::string_view name = method.arguments[place].name;
        switch (method.signature[place + 1]) {
            case 's':
                return std::int16_t{name == "idx" || name == "objIdx" || name == "objectIdx" ? std::int16_t{0}
                                                                                             : std::int16_t{1}};
            case 'i':
                return std::int32_t{name == "id" || name == "index" ? 0 : 1};
            case 'f':
                return 0.5f;
            case 'w':
                return m_path.c_str();
            default:
                if (name == "mesh") return static_cast<void*>(&m_mesh);
                return static_cast<void*>(Slot(place));
        }
    }
    Arguments RightArguments(const AutomationMethod& method) {
        std::ranges::fill(m_buffer, 0u);  // an output of another method is no input
        Arguments arguments;
        for (std::size_t i = 0; i < method.arguments.size(); ++i) {
            arguments.push_back(RightArgument(method, i));
            if (method.arguments[i].output) std::fill_n(Slot(i), kSlotWords, kNotWritten);
        }
        if (method.name == "ImportMesh") arguments[0] = m_meshFile.c_str();
        if (method.name == "ExportMesh") arguments[1] = m_exportFile.c_str();
        if (method.name == "ImportMeasurementFromMemory")
            arguments = {
                3,   3, static_cast<void*>(m_points), static_cast<void*>(m_confidence), static_cast<void*>(m_trafo),
                0xFF};
        if (method.name == "RecreateOpenglContext") arguments = {3, 3, 0};
        if (method.name == "SetViewParams")
            std::ranges::copy(std::array{0.0f, 1.0f, 0.0f, 0.0f, 0.0f, 1.0f}, arguments.begin());
        if (method.name == "CreateNeedle" || method.name == "CreateLine3D") arguments[0] = 5;
        if (method.name == "CreateNeedles") arguments[1] = static_cast<void*>(m_freeId);
        if (method.name == "SetObjectVisibility") arguments[1] = std::int16_t{0};
        if (method.name == "SetMaxNumberOfNeedles" || method.name == "SetOverlayVisibility") arguments.back() = 0;
        if (method.name == "SetPointsVisibility") arguments[1] = std::int16_t{0};
        if (method.name == "SetClipPlaneEnabled") arguments[0] = 0;
        if (method.name == "AllowMouseInteraction") arguments[0] = std::int16_t{7};
        if (method.name == "SetScanSkipVal") arguments[0] = std::int16_t{2};
        if (method.name == "GetCutMasks") arguments[1] = static_cast<void*>(nullptr);
        return arguments;
    }

    /// Whether a method has written one of its outputs.
    [[nodiscard]] bool HasWritten(const AutomationMethod& method) {
        for (std::size_t i = 0; i < method.arguments.size(); ++i)
            if (method.arguments[i].output &&
                std::any_of(Slot(i), Slot(i) + kSlotWords, [](std::uint32_t word) { return word != kNotWritten; }))
                return true;
        return false;
    }

    static kv_value ToC(const AutomationValue& value) {
        kv_value result{};
        if (const auto* i16 = std::get_if<std::int16_t>(&value)) result = {KV_SHORT, {.i16 = *i16}};
        if (const auto* i32 = std::get_if<std::int32_t>(&value)) result = {KV_LONG, {.i32 = *i32}};
        if (const auto* f32 = std::get_if<float>(&value)) result = {KV_FLOAT, {.f32 = *f32}};
        if (const auto* wide = std::get_if<const wchar_t*>(&value)) result = {KV_STRING, {.wide = *wide}};
        if (const auto* pointer = std::get_if<void*>(&value)) result = {KV_POINTER, {.pointer = *pointer}};
        return result;
    }
    kv_status InvokeInC(std::int32_t id, const Arguments& arguments, kv_value* result = nullptr) {
        std::vector<kv_value> values;
        std::ranges::transform(arguments, std::back_inserter(values), ToC);
        return kv_invoke(m_pane, id, values.data(), values.size(), result);
    }

    /// Refused from C++ and from C with a text that has these parts; no event, no result, no change.
    void ExpectRefused(const AutomationMethod& method, const Arguments& arguments, const std::string& text,
                       const std::string& before) {
        AutomationValue result = 1.5f;
        EXPECT_EQ(InvokeMethod(Methods(), method.id, arguments, &result), AutomationStatus::BadArguments);
        EXPECT_EQ(result, AutomationValue(1.5f));
        kv_value c{KV_INT64, {.i64 = 77}};
        EXPECT_EQ(InvokeInC(method.id, arguments, &c), KV_BAD_ARGUMENTS);
        EXPECT_TRUE(c.type == KV_INT64 && c.as.i64 == 77);
        const std::string reason = kv_last_error();
        EXPECT_TRUE(reason.starts_with(method.name)) << reason;
        EXPECT_NE(reason.find(text), std::string::npos) << reason << " lacks " << text;
        EXPECT_EQ(m_events, 0);
        EXPECT_EQ(Snapshot(), before);
    }

    std::uint32_t* Slot(std::size_t place) { return m_buffer.data() + kSlotWords * place; }

    CapturedDebugOutput m_debugOutput;
    ScratchFolder m_folder;
    std::wstring m_path = KV_ScenePane::WidePath(m_folder / "missing.stl");
    std::wstring m_meshFile = KV_ScenePane::WidePath(m_folder / "triangle.ply");
    std::wstring m_exportFile = KV_ScenePane::WidePath(m_folder / "exported.stl");
    float m_points[27] = {0, 0, 0, 1, 0, 0, 2, 0, 0, 0, 1, 0, 1, 1, 0, 2, 1, 0, 0, 2, 0, 1, 2, 0, 2, 2, 0};
    float m_confidence[9] = {1, 1, 1, 1, 1, 1, 1, 1, 1};
    float m_trafo[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    std::vector<std::uint32_t> m_buffer;  // a slot per argument; of a screenshot all of it
    std::int32_t m_freeId[1] = {9};
    KV_ScenePane::MeshBuffers m_mesh{false};
    kv_pane* m_pane = nullptr;
    int m_events = 0;
};

/// Values of all types, with the letter that each has in a signature.
const std::pair<char, AutomationValue> kOneOfEachType[] = {{'v', std::monostate()},
                                                           {'s', std::int16_t{0}},
                                                           {'i', std::int32_t{0}},
                                                           {'f', 0.0f},
                                                           {'w', static_cast<const wchar_t*>(nullptr)},
                                                           {'p', static_cast<void*>(nullptr)}};

/// Methods whose only effect is their result.
const std::set<std::string_view> kReturnOnly = {"FindNearestPickPointSphere",
                                                "GetNumberOfPickPointSpheres",
                                                "GetPickMode",
                                                "GetCrossColor",
                                                "GetNumObjects",
                                                "GetObjectColor",
                                                "GetShadowMode",
                                                "GetLine3DDrawingMode",
                                                "GetScanSkipVal",
                                                "IsAnimationRunning",
                                                "GetNeedlePickingMode",
                                                "GetNeedleDrawingMode",
                                                "GetNumberOfNeedles"};

void Cut(TestSurface& surface) {
    constexpr KV_ScenePane::LassoPoint kLeftPart[] = {{0.02, 0.02}, {0.02, 0.97}, {0.5, 0.97}, {0.5, 0.02}};
    EXPECT_TRUE(surface.m_pane->m_pViewer->CutWithLasso(KV_ScenePane::PolygonInside, kLeftPart));
}

/// What must be there for a method to clear, to end, to take back or to return.
const std::map<std::string_view, void (*)(TestSurface&)> kPreparations = {
    {"FindNearestPickPointSphere", [](TestSurface& s) { s.Methods().ClearPickPointSpheres(); }},  // returns -1
    {"GetPickMode", [](TestSurface& s) { s.Methods().SetPickMode(2); }},
    {"GetCrossColor", [](TestSurface& s) { s.Methods().SetCrossColor(5); }},
    {"GetObjectColor", [](TestSurface& s) { s.Methods().SetObjectColor(0, 5); }},
    {"GetShadowMode", [](TestSurface& s) { s.Methods().SetShadowMode(1); }},
    {"GetLine3DDrawingMode", [](TestSurface& s) { s.Methods().SetLine3DDrawingMode(-1); }},
    {"GetScanSkipVal", [](TestSurface& s) { s.Methods().SetScanSkipVal(3); }},
    {"IsAnimationRunning", [](TestSurface& s) { s.Methods().StartAnimation(1); }},
    {"GetNeedlePickingMode", [](TestSurface& s) { s.Methods().SetNeedlePickingMode(-1); }},
    {"GetNeedleDrawingMode", [](TestSurface& s) { s.Methods().SetNeedleDrawingMode(-1); }},
    {"PerformRefresh", [](TestSurface& s) { s.Methods().PerformInvalidate(); }},
    {"ClearUndoStack", Cut},
    {"PerformUndo", Cut},
    {"ClearCutMasks", Cut},
    {"ResetSelection", [](TestSurface& s) { s.Methods().AddSelection(0); }},
    {"ResetVariableObjects", [](TestSurface& s) { s.Methods().AddVariableObject(0); }},
    {"EndSegmentation", [](TestSurface& s) { s.Methods().StartSegmentation(0); }},
    {"FinishInteraction", [](TestSurface& s) { s.Methods().AlignInteractive(); }},
    {"EndParallelImport",
     [](TestSurface& s) {
         void* control = nullptr;
         KV_ScenePane::ImportMeasurementEntry entry = nullptr;
         s.Methods().BeginParallelImport(&control, &entry);
     }},
    {"StopAnimation", [](TestSurface& s) { s.Methods().StartAnimation(1); }},
    {"SetClipPlaneDisabled", [](TestSurface& s) { s.Methods().SetClipPlaneEnabled(0); }},
    {"CenterView", [](TestSurface& s) { s.Methods().SetViewParams(1, 0, 0, 0, 1, 0, 70, 80, 90, 2, 0); }},
    {"DisplayClipPlanePartCloseToData", [](TestSurface& s) { s.Methods().SetClipPlane(70, 80, 5, 0, 0, 1); }},
    {"FinalizeKVReg", [](TestSurface& s) { s.Methods().InitializeKVReg(); }}};

}  // namespace

TEST(EveryMethodById, RefusesMissingAndSurplusArguments) {
    TestSurface surface;
    const std::vector<std::uint32_t> pixels = surface.Pixels();
    const std::string before = surface.Snapshot();
    surface.m_events = 0;
    for (const AutomationMethod& method : AutomationMethods()) {
        SCOPED_TRACE(method.name);
        const Arguments right = surface.RightArguments(method);
        for (std::size_t count = 0; count < right.size(); ++count)
            surface.ExpectRefused(method, Arguments(right.begin(), right.begin() + std::ptrdiff_t(count)),
                                  std::to_string(count), before);
        for (std::size_t surplus : {1, 2, 40}) {
            Arguments more = right;
            more.resize(right.size() + surplus, std::int16_t{1});
            surface.ExpectRefused(method, more, std::to_string(more.size()), before);
        }
    }
    EXPECT_EQ(surface.Pixels(), pixels);
}

TEST(EveryMethodById, RefusesEachArgumentOfAnotherType) {
    TestSurface surface;
    const std::vector<std::uint32_t> pixels = surface.Pixels();
    const std::string before = surface.Snapshot();
    surface.m_events = 0;
    int wrong = 0;
    for (const AutomationMethod& method : AutomationMethods()) {
        const Arguments right = surface.RightArguments(method);
        for (std::size_t place = 0; place < right.size(); ++place) {
            for (const auto& [code, value] : kOneOfEachType) {
                if (code == method.signature[place + 1]) continue;
                SCOPED_TRACE(std::string(method.name) + ", argument " + std::to_string(place) + " as " + code);
                Arguments arguments = right;
                arguments[place] = value;
                surface.ExpectRefused(method, arguments, std::string(method.arguments[place].name), before);
                ++wrong;
            }
        }
    }
    EXPECT_EQ(wrong, 5 * 244);  // the methods have 244 arguments
    EXPECT_EQ(surface.Pixels(), pixels);
}

TEST(EveryMethodById, RefusesUnknownIds) {
    TestSurface surface;
    const std::string before = surface.Snapshot();
    surface.m_events = 0;
    for (const std::int32_t id : {0, 1, 2, 3, 123, -1, -525, -551, -553, -609, 65540, INT32_MAX, INT32_MIN}) {
        SCOPED_TRACE(id);
        EXPECT_EQ(InvokeMethod(surface.Methods(), id, {}, nullptr), AutomationStatus::UnknownId);
        EXPECT_EQ(surface.InvokeInC(id, {}), KV_UNKNOWN_ID);
        EXPECT_NE(std::string(kv_last_error()).find(std::to_string(id)), std::string::npos) << kv_last_error();
        EXPECT_EQ(surface.Snapshot(), before);
    }
    EXPECT_EQ(surface.m_events, 0);
}

namespace {

/// With true the methods are called through the C interface.
class EveryMethodByIdWith : public testing::TestWithParam<bool> {};

}  // namespace

TEST_P(EveryMethodByIdWith, RightArgumentsHasItsEffect) {
    for (const AutomationMethod& method : AutomationMethods()) {
        SCOPED_TRACE(method.name);
        TestSurface surface;
        if (const auto found = kPreparations.find(method.name); found != kPreparations.end()) found->second(surface);
        const std::string before = surface.Snapshot();
        const bool wasPending = surface.IsPaintPending();
        surface.m_events = 0;
        const Arguments arguments = surface.RightArguments(method);
        kv_value result{};
        if (GetParam()) {
            result = {KV_INT64, {.i64 = 77}};
            EXPECT_EQ(surface.InvokeInC(method.id, arguments, &result), KV_DONE) << kv_last_error();
        } else {
            AutomationValue value;
            EXPECT_EQ(InvokeMethod(surface.Methods(), method.id, arguments, &value), AutomationStatus::Done);
            result = TestSurface::ToC(value);
        }
        EXPECT_EQ(result.type != KV_VOID, method.result != "void");
        bool hasEffect = surface.Snapshot() != before || surface.m_events > 0 || surface.HasWritten(method);
        if (kReturnOnly.contains(method.name)) {
            EXPECT_FALSE(hasEffect);
            hasEffect = result.type == KV_SHORT ? result.as.i16 != 0 : result.as.i32 != 0;
        }
        if (method.name == "PerformRefresh" || method.name == "PerformInvalidate")
            hasEffect = surface.IsPaintPending() != wasPending;
        EXPECT_EQ(hasEffect, method.name != "SetMeshFilename_Removed");
        if (method.name == "InitializeKVReg") surface.Methods().FinalizeKVReg();  // they are counted
    }
}
INSTANTIATE_TEST_SUITE_P(Interfaces, EveryMethodByIdWith, testing::Bool(),
                         [](const auto& row) { return row.param ? "FromC" : "FromCxx"; });
