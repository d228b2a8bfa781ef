// A host whose handler calls back into the viewer: every method from every event, and again what has fired the event.
// Afterwards the viewer is whole: its lists are as the events said, it has its window, and it draws without an error.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "control/AutomationTable.h"
#include "control/ScenePaneHandle.h"
#include "support/ControlFixture.h"
#include "support/GlNow.h"
#include "support/TestFolder.h"

namespace {

using KV_ScenePane::ScenePane;
using KV_ScenePane::WindowRequest;

[[maybe_unused]] const std::string& g_logFolder = TestFolder();

constexpr int kWidth = 60, kHeight = 40;

/// Passes every event on as its name, and keeps what the events say of needles and pick-point spheres.
class Handler final : public KV_ScenePane::_DKV_ScenePaneEvents {
public:
    std::function<void(std::string_view event)> onEvent = [](std::string_view) {};
    std::set<std::int32_t> needles;
    std::int32_t spheres = 0;
    int spheresReported = 0;

    void ReadyStateChange() override { onEvent("ReadyStateChange"); }
    void SelectViewDirection(float, float, float, float, float, float) override { onEvent("SelectViewDirection"); }
    void SelectObjCoords(std::int16_t, float, float, float, std::int32_t, std::int32_t, std::int32_t) override {
        onEvent("SelectObjCoords");
    }
    void SegmentationDone(std::int16_t) override { onEvent("SegmentationDone"); }
    void ViewDirectionChanged(float, float, float) override { onEvent("ViewDirectionChanged"); }
    void AlignmentDone() override { onEvent("AlignmentDone"); }
    void NeedleCreated(std::int32_t id) override {
        needles.insert(id);
        onEvent("NeedleCreated");
    }
    void NeedleSelected(std::int32_t) override { onEvent("NeedleSelected"); }
    void NeedleDeleted(std::int32_t id) override {
        needles.erase(id);
        onEvent("NeedleDeleted");
    }
    void NeedleDeselected(std::int32_t) override { onEvent("NeedleDeselected"); }
    void CustomKeyDown(std::int32_t, std::int32_t, std::int32_t) override { onEvent("CustomKeyDown"); }
    void PickPointCountChanged(std::int32_t newCount) override {
        spheres = newCount;
        onEvent("PickPointCountChanged");
    }
    void CutMaskApplied(std::int64_t) override { onEvent("CutMaskApplied"); }
};

/// A triangle across the window, seen from the front also after a method has changed the view.
void ImportTriangle(ScenePane& pane) {
    pane.Methods().SetDefaultZoomFactor(1);
    pane.Methods().SetViewMode(KV_ScenePane::ViewFromPlusZYUp);
    const float vertices[] = {-9, -9, 0, 9, -9, 0, 0, 9, 0};
    const std::int32_t triangle[] = {0, 1, 2};
    pane.Methods().ImportMeshFromMemory(3, 1, vertices, triangle);
    pane.Methods().CenterView();
}

// ---- every method with arguments that are valid in any state

/// What the indices and pointers of a method need.
void PrepareFor(std::string_view method, ScenePane& pane) {
    KV_ScenePane::_DKV_ScenePane& m = pane.Methods();
    if (method.find("PickPointSphere") != std::string_view::npos && m.GetNumberOfPickPointSpheres() == 0)
        m.AddPickPointSphere(1, 2, 3, 4);
    if (method == "GetMeshDataSize" && m.GetNumObjects() == 0) ImportTriangle(pane);
    if (method == "SetOverlayVisibility" && ControlOf(pane).m_vOverlays.empty()) {
        const std::array<std::uint8_t, 16> image{};
        m.AddOverlayData(image.data(), 2, 2, 0, 0, 0, 0, 0, 0);
    }
}

/// An id or a flag of 1, unless the method needs another number. @param i  place of the argument, from 1
std::int32_t NumberFor(std::string_view method, std::size_t i) {
    if (method == "RecreateOpenglContext") return i < 3 ? 3 : 0;
    // Indices, which begin at 0; the clip plane is not placed at data that may be too few for an estimate.
    const bool isIndex = method.find("PickPointSphere") != std::string_view::npos || method == "SetOverlayVisibility";
    return isIndex || method == "SetClipPlaneEnabled" ? 0 : 1;
}

void CallMethod(const AutomationMethod& method, ScenePane& pane) {
    static std::vector<std::uint32_t> screenshot(std::size_t{2048} * 2048);
    PrepareFor(method.name, pane);
    std::array<std::uint8_t, 2048> memory{};  // of zeros: ids, coordinates and corners of triangles
    KV_ScenePane::MeshBuffers mesh(false);
    mesh.m_vVertices.resize(3);
    mesh.m_vTriangles.resize(1);
    std::vector<AutomationValue> arguments;
    for (std::size_t i = 1; i < method.signature.size(); ++i) switch (method.signature[i]) {
            case 's':
                arguments.emplace_back(method.name == "SetSize" ? std::int16_t{50} : std::int16_t{0});
                break;
            case 'i':
                arguments.emplace_back(NumberFor(method.name, i));
                break;
            case 'f':
                arguments.emplace_back(0.5f);
                break;
            case 'w':
                arguments.emplace_back(L"");
                break;
            default:
                arguments.emplace_back(method.name == "CaptureScreenShot" ? static_cast<void*>(screenshot.data())
                                       : method.name == "ImportMeshedMeasurement" ? static_cast<void*>(&mesh)
                                                                                  : memory.data() + 64 * i);
                break;
        }
    // The registry counts these two: as many of one as of the other.
    if (method.name == "FinalizeKVReg") pane.Methods().InitializeKVReg();
    EXPECT_EQ(InvokeMethod(pane.Methods(), method.id, arguments, nullptr), AutomationStatus::Done) << method.name;
    if (method.name == "InitializeKVReg") pane.Methods().FinalizeKVReg();
}

// ---- every event

struct EventRow {
    const char* name;
    void (*fire)(ScenePane& pane);  ///< what fires it, also in the state that any method has left
};
void PrintTo(const EventRow& row, std::ostream* out) { *out << row.name; }

const KV_ScenePane::LassoPoint kWholeWindow[] = {{0.02, 0.02}, {0.02, 0.97}, {0.97, 0.97}, {0.97, 0.02}};

void CreateOneNeedle(ScenePane& pane) {
    pane.Methods().SetMaxNumberOfNeedles(20);
    pane.Methods().DeleteNeedle(7);
    pane.Methods().CreateNeedle(7, 0, 0, 0, 0, 0, 9);
}

void SelectOneNeedle(ScenePane& pane) {
    CreateOneNeedle(pane);
    pane.Methods().SelectNeedle(7);
}

void Cut(ScenePane& pane) {
    ImportTriangle(pane);
    (void)pane.CutWithLasso(KV_ScenePane::PolygonInside, kWholeWindow);
}

const EventRow kEvents[] = {
    {"ReadyStateChange",
     [](ScenePane& pane) {
         pane.Methods().RecreateOpenglContext(9, 9, 0);
         pane.Methods().RecreateOpenglContext(3, 3, 0);
     }},
    {"SelectViewDirection",
     [](ScenePane& pane) {
         ImportTriangle(pane);
         pane.Methods().SetPickMode(KV_ScenePane::PickModeCross);
         ControlOf(pane).OnRightDoubleClick(0, 1, 1);  // no input reaches it
     }},
    {"SelectObjCoords",
     [](ScenePane& pane) {
         ImportTriangle(pane);
         pane.Methods().SetPickMode(KV_ScenePane::PickModePoints);
         pane.SendMouse({.kind = KV_ScenePane::MouseInput::Kind::DoubleClick, .x = kWidth / 2, .y = kHeight / 2});
     }},
    {"SegmentationDone", Cut},
    {"ViewDirectionChanged",
     [](ScenePane& pane) {
         pane.Methods().TracingMode(1);
         (void)pane.Methods().SetViewParams(1, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0);
     }},
    {"AlignmentDone",
     [](ScenePane& pane) {
         ImportTriangle(pane);
         pane.Methods().AddVariableObject(0);
         pane.Methods().AlignInteractive();
         pane.Methods().FinishInteraction();
     }},
    {"NeedleCreated", CreateOneNeedle},
    {"NeedleSelected", SelectOneNeedle},
    {"NeedleDeleted",
     [](ScenePane& pane) {
         SelectOneNeedle(pane);
         pane.Methods().DeleteNeedle(7);
     }},
    {"NeedleDeselected",
     [](ScenePane& pane) {
         SelectOneNeedle(pane);
         pane.Methods().DeselectNeedle(7);
     }},
    {"CustomKeyDown", [](ScenePane& pane) { pane.SendKey({.nChar = 'X'}); }},
    {"PickPointCountChanged", [](ScenePane& pane) { pane.Methods().AddPickPointSphere(1, 2, 3, 4); }},
    {"CutMaskApplied", Cut},
};

class CallsInsideEveryEvent : public testing::TestWithParam<EventRow> {
protected:
    CallsInsideEveryEvent() {
        WindowRequest request;
        request.width = kWidth, request.height = kHeight;
        request.showMessage = [](const std::string&) {};
        std::string reason;
        pane = CreateScenePane(request, &reason);
        if (pane == nullptr) throw std::runtime_error(reason);
        pane->Connect(&handler);
    }

    /// Fires the event. Its handler makes the calls and fires it again, up to @p depth handlers inside each other.
    void Run(int depth, const std::function<void()>& calls) {
        int inside = 0;
        handled = 0;
        handler.onEvent = [&](std::string_view event) {
            if (event != GetParam().name || inside == depth) return;
            ++inside, ++handled;
            calls();
            GetParam().fire(*pane);
            --inside;
        };
        GetParam().fire(*pane);
        handler.onEvent = [](std::string_view) {};
        EXPECT_GE(handled, depth) << "the event has not fired";
    }

    /// Ends what a method may have left running, then compares the viewer with what its events said.
    void ExpectWhole() {
        KV_ScenePane::_DKV_ScenePane& m = pane->Methods();
        CKV_ScenePaneCtrl& control = ControlOf(*pane);
        m.BlockPaintEvents(0);
        m.StopAnimation();
        m.EndParallelImport();
        m.EndSegmentation();
        m.FinishInteraction();
        // An alignment that another one was opened over ends with the window only.
        if (!control.m_vInteractionDlgs.empty()) m.RecreateOpenglContext(3, 3, 0);
        pane->ProcessEvents();

        EXPECT_EQ(static_cast<std::size_t>(m.GetNumObjects()), control.m_vpMeshes.size());
        EXPECT_EQ(std::ranges::count(control.m_vpMeshes, nullptr), 0);
        EXPECT_EQ(pane->GetUndoStepCount(), static_cast<int>(control.m_vUndoStack.size()));
        std::set<std::int32_t> needles;
        for (const Needle& needle : control.m_vNeedles) needles.insert(needle.id);
        EXPECT_EQ(needles, handler.needles) << "by the events";
        EXPECT_EQ(m.GetNumberOfNeedles(), static_cast<std::int32_t>(handler.needles.size()));
        EXPECT_EQ(m.GetNumberOfPickPointSpheres(), handler.spheres) << "by the last event";
        EXPECT_EQ(control.m_nInteractionMode, 0);
        EXPECT_TRUE(control.m_vInteractionDlgs.empty());
        EXPECT_EQ(m.GetReadyState(), 4);
        ExpectAFrame();
    }

    void ExpectAFrame() {
        ASSERT_TRUE(pane->HasWindow());
        pane->Methods().ClearData();
        pane->Methods().SetSize(kWidth, kHeight);
        pane->Methods().SetDrawMode(KV_ScenePane::DrawModeGouraud);
        pane->Methods().SetBackgroundColors(0xFF0000, 0xFF0000);
        pane->Methods().SetClipPlaneDisabled();
        ImportTriangle(*pane);
        KV_ScenePane::Picture picture;
        ASSERT_TRUE(pane->CapturePicture(&picture));
        ASSERT_EQ(picture.width, kWidth);
        const auto at = [&](int x, int y) { return picture.pixels.at(static_cast<std::size_t>(y * kWidth + x)); };
        EXPECT_EQ(at(1, 1), 0xFF0000FFu) << "the background";
        EXPECT_NE(at(kWidth / 2 + 2, kHeight / 2 + 2), 0xFF0000FFu) << "the triangle";
        EXPECT_EQ(GlErrorOf(ControlOf(*pane)), static_cast<GLenum>(GL_NO_ERROR));
    }

    CapturedDebugOutput output;
    Handler handler;
    std::unique_ptr<ScenePane> pane;
    int handled = 0;
};

INSTANTIATE_TEST_SUITE_P(Events, CallsInsideEveryEvent, testing::ValuesIn(kEvents),
                         [](const auto& row) { return row.param.name; });

TEST_P(CallsInsideEveryEvent, OfOneMethodAtATimeLeaveTheViewerWhole) {
#if defined(__SANITIZE_ADDRESS__)
    const std::size_t step = 3;  // slow there; the events start at different methods, so that each method has its turns
#else
    const std::size_t step = 1;
#endif
    const auto& methods = AutomationMethods();
    for (std::size_t i = std::string_view(GetParam().name).size() % step; i < methods.size(); i += step) {
        const AutomationMethod& method = methods[i];
        SCOPED_TRACE(method.name);
        ImportTriangle(*pane);
        const bool isSlow =
            method.name == "CaptureScreenShot" || GetParam().name == std::string_view("ReadyStateChange");
        Run(isSlow ? 1 : 2, [&] { CallMethod(method, *pane); });
        ExpectWhole();
        if (HasFatalFailure()) return;
    }
}

TEST_P(CallsInsideEveryEvent, OfAllMethodsAfterEachOtherLeaveTheViewerWhole) {
    std::vector<const AutomationMethod*> methods;
    methods.reserve(AutomationMethods().size());
    for (const AutomationMethod& method : AutomationMethods()) methods.push_back(&method);
    for (int pass = 0; pass < 2; ++pass) {
        ImportTriangle(*pane);
        Run(1, [&] {
            for (const AutomationMethod* method : methods) CallMethod(*method, *pane);
        });
        ExpectWhole();
        if (HasFatalFailure()) return;
        std::ranges::reverse(methods);
    }
}

TEST_P(CallsInsideEveryEvent, OfTheSameEventFiftyDeepLeaveTheViewerWhole) {
    ImportTriangle(*pane);
    Run(GetParam().name == std::string_view("ReadyStateChange") ? 10 : 50, [&] { pane->ProcessEvents(); });
    ExpectWhole();
}

TEST(EventsOfThisTest, AreAllOfTheTable) {
    std::set<std::string_view> names;
    for (const EventRow& row : kEvents) names.insert(row.name);
    EXPECT_EQ(names.size(), 13u);
    for (const AutomationEvent& event : AutomationEvents()) EXPECT_TRUE(names.contains(event.name)) << event.name;
}

}  // namespace
