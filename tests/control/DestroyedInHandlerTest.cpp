// A host may destroy its viewer inside any of its handlers, from whichever call they run: the control lives until the
// outermost call has returned, and fires and draws nothing more.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>

#include "base/DebugOutput.h"
#include "control/AutomationTable.h"
#include "control/ScenePaneHandle.h"
#include "support/ControlFixture.h"
#include "support/Wait.h"
#include "support/XvfbServer.h"
#include "view/UserInput.h"

namespace {

using KV_ScenePane::MouseInput;
using KV_ScenePane::ScenePane;
using KV_ScenePane::WindowRequest;

/// Runs a function in every event, and counts the events.
class HostEvents final : public KV_ScenePane::_DKV_ScenePaneEvents {
public:
    std::function<void()> inside = [] {};
    int fired = 0;

    void SelectObjCoords(std::int16_t, float, float, float, std::int32_t, std::int32_t, std::int32_t) override {
        Run();
    }
    void ReadyStateChange() override { Run(); }
    void ViewDirectionChanged(float, float, float) override { Run(); }
    void CustomKeyDown(std::int32_t, std::int32_t, std::int32_t) override { Run(); }
    void PickPointCountChanged(std::int32_t) override { Run(); }
    void AlignmentDone() override { Run(); }
    void SegmentationDone(std::int16_t) override { Run(); }
    void CutMaskApplied(std::int64_t) override { Run(); }

private:
    void Run() {
        ++fired;
        inside();
    }
};

/// What a control's window reports.
struct WindowNotes {
    bool isDead = false;  ///< destroyed, with the control
    int swaps = 0;
    int captures = 0;             ///< presses that were handled
    bool writesInFrames = false;  ///< a text to the debugger output in each frame
};

class MortalProbe final : public WindowProbe {
public:
    MortalProbe(std::unique_ptr<PaneWindow> window, WindowNotes& notes)
        : WindowProbe(std::move(window)), m_notes(notes) {}
    ~MortalProbe() override { m_notes.isDead = true; }
    void SetCapture() override {
        ++m_notes.captures;
        WindowProbe::SetCapture();
    }
    void SwapBuffers() override {
        ++m_notes.swaps;
        if (m_notes.writesInFrames) DebugOutput("in a frame\n");
        WindowProbe::SwapBuffers();
    }

private:
    WindowNotes& m_notes;
};

/// A host with one viewer of a pickable scene.
class DestroyedInHandler : public testing::TestWithParam<WindowRequest::Kind> {
protected:
    DestroyedInHandler() {
        WindowRequest request;
        request.kind = GetParam();
        request.width = 100, request.height = 80;
        request.showMessage = [this](const std::string&) {
            ++messages;
            if (messagesDestroy) events.inside();
        };
        request.showAbout = [this](const KV_ScenePane::AboutText&) {
            ++messages;
            events.inside();
        };
        if (GetParam() == WindowRequest::Kind::TopLevel) XvfbServer::Shared();
        auto control =
            std::make_shared<CKV_ScenePaneCtrl>(std::make_unique<MortalProbe>(MakePaneWindow(request), notes));
        std::string reason;
        if (!control->CreateControlWindow(&reason)) ADD_FAILURE() << reason;
        AddMesh(*control, {{-1, -1, 0}, {1, -1, 0}, {0, 1, 0}}, {Triangle{{0, 1, 2}}});
        AddMesh(*control, {{-1, -1, 1}, {1, -1, 1}, {0, 1, 1}}, {Triangle{{0, 1, 2}}});
        pane = MakeHandle(std::move(control));
        pane->Connect(&events);
        pane->Methods().CenterView();
        pane->Methods().SetPickMode(KV_ScenePane::PickModePoints);
        pane->Methods().TracingMode(1);
        pane->Methods().PerformRefresh();
        events.fired = 0;
    }
    ~DestroyedInHandler() override { KV_ScenePane::SetDebugOutputSink({}); }

    /// From here on every event, message and text of the debugger output destroys the viewer.
    void DestroyInside() {
        events.inside = [this] {
            if (pane == nullptr) return;
            pane.reset();
            EXPECT_FALSE(notes.isDead) << "the control is still on the stack";
            swapsAtEnd = notes.swaps;
        };
        KV_ScenePane::SetDebugOutputSink([this](std::string_view) { events.inside(); });
    }

    /// A call of the host in which a handler destroys the viewer.
    template <typename Call>
    void ExpectEndOf(const char* name, Call call) {
        SCOPED_TRACE(name);
        DestroyInside();
        call(*pane);
        EXPECT_EQ(pane, nullptr) << "no handler has run";
        EXPECT_TRUE(notes.isDead);
        EXPECT_LE(events.fired + messages, 1);
        EXPECT_EQ(notes.swaps, swapsAtEnd) << "a frame was drawn afterwards";
    }

    static void Click(ScenePane& pane, MouseInput::Kind kind) { pane.SendMouse({.kind = kind, .x = 50, .y = 40}); }

    WindowNotes notes;
    int swapsAtEnd = 0, messages = 0;
    bool messagesDestroy = true;
    HostEvents events;
    std::unique_ptr<ScenePane> pane;
};

INSTANTIATE_TEST_SUITE_P(Windows, DestroyedInHandler,
                         testing::Values(WindowRequest::Kind::OffScreen, WindowRequest::Kind::TopLevel),
                         [](const auto& row) {
                             return row.param == WindowRequest::Kind::OffScreen ? "OffScreen" : "TopLevel";
                         });

TEST_P(DestroyedInHandler, OutsideACallEndsAtOnce) {
    pane.reset();
    EXPECT_TRUE(notes.isDead);
}

TEST_P(DestroyedInHandler, OfAKey) {
    ExpectEndOf("Escape", [](ScenePane& p) { p.SendKey({.nChar = KV_ScenePane::kKeyEscape}); });
}

TEST_P(DestroyedInHandler, OfAKeyThatStartsAnAnimation) {
    pane->Methods().ToggleAnimationOnSpacebar(1);
    ExpectEndOf("Space", [](ScenePane& p) { p.SendKey({.nChar = KV_ScenePane::kKeySpace}); });
}

TEST_P(DestroyedInHandler, OfAPick) {
    ExpectEndOf("double click", [](ScenePane& p) { Click(p, MouseInput::Kind::DoubleClick); });
}

TEST_P(DestroyedInHandler, OfTheMouseFilter) {
    int filtered = 0;
    const auto filter = [&](const MouseInput&) {
        ++filtered;
        events.inside();
        return false;
    };
    pane->SetMouseFilter(filter);
    ExpectEndOf("press", [](ScenePane& p) { Click(p, MouseInput::Kind::LeftDown); });
    EXPECT_EQ(filtered, 1);
    EXPECT_EQ(notes.captures, 0) << "the press was handled all the same";
}

TEST_P(DestroyedInHandler, OfTheMouseFilterThatThrowsAfterwardsPassesTheExceptionOn) {
    pane->SetMouseFilter([&](const MouseInput&) -> bool {
        pane.reset();
        throw std::runtime_error("filter");
    });
    EXPECT_THROW(Click(*pane, MouseInput::Kind::DoubleClick), std::runtime_error);
    EXPECT_TRUE(notes.isDead);
}

TEST_P(DestroyedInHandler, CallsNoMouseFilterAfterwards) {
    int filtered = 0;
    const auto owned = std::make_shared<int>();
    pane->SetMouseFilter([&filtered, owned](const MouseInput&) {
        ++filtered;
        return false;
    });
    CKV_ScenePaneCtrl& control = ControlOf(*pane);
    events.inside = [&] {
        if (pane == nullptr) return;
        pane.reset();
        EXPECT_EQ(owned.use_count(), 1) << "the filter of a destroyed viewer is kept";
        control.SendMouse({.kind = MouseInput::Kind::Move, .x = 50, .y = 40});  // as its window may do
    };
    Click(*pane, MouseInput::Kind::DoubleClick);
    EXPECT_EQ(pane, nullptr);
    EXPECT_EQ(filtered, 1);
}

TEST_P(DestroyedInHandler, OfADrag) {
    Click(*pane, MouseInput::Kind::LeftDown);
    ExpectEndOf("move", [](ScenePane& p) {
        p.SendMouse({.kind = MouseInput::Kind::Move, .flags = KV_ScenePane::kMouseLeft, .x = 70, .y = 30});
    });
}

TEST_P(DestroyedInHandler, OfAPickInTheDelayedScheme) {
    pane->Methods().SetIGDRotation(1);
    Click(*pane, MouseInput::Kind::LeftDown);
    Click(*pane, MouseInput::Kind::LeftUp);
    ScenePane& viewer = *pane;
    const auto processUntilDestroyed = [&](ScenePane&) {
        EXPECT_TRUE(WaitUntil([&] { return pane == nullptr; }, [&] { viewer.ProcessEvents(); }));
    };
    ExpectEndOf("timer", processUntilDestroyed);
}

TEST_P(DestroyedInHandler, OfAMethodThatFires) {
    ExpectEndOf("SetPickMode", [](ScenePane& p) { p.Methods().SetPickMode(0); });
}

TEST_P(DestroyedInHandler, OfAMethodThatFiresAndDraws) {
    ExpectEndOf("SetViewParams", [](ScenePane& p) {
        EXPECT_EQ(p.Methods().SetViewParams(1, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0), KV_ScenePane::kVariantTrue);
    });
}

TEST_P(DestroyedInHandler, OfAMethodThatIsCalledByItsId) {
    ExpectEndOf("id 18", [](ScenePane& p) {
        const AutomationValue mode = std::int16_t{0};
        EXPECT_EQ(InvokeMethod(p.Methods(), 18, {&mode, 1}, nullptr), AutomationStatus::Done);
    });
}

TEST_P(DestroyedInHandler, OfAMethodInsideAnotherHandler) {
    events.inside = [&] {
        if (events.fired == 1) pane->Methods().SetPickMode(0);  // fires again, from inside
        if (events.fired == 2 && pane != nullptr) pane.reset();
        EXPECT_FALSE(notes.isDead);
    };
    pane->SendKey({.nChar = KV_ScenePane::kKeyEscape});
    EXPECT_EQ(events.fired, 2);
    EXPECT_TRUE(notes.isDead);
}

TEST_P(DestroyedInHandler, ThatThrowsAfterwardsPassesTheExceptionOn) {
    events.inside = [&] {
        pane.reset();
        throw std::runtime_error("handler");
    };
    EXPECT_THROW(pane->SendKey({.nChar = KV_ScenePane::kKeyEscape}), std::runtime_error);
    EXPECT_TRUE(notes.isDead);
}

TEST_P(DestroyedInHandler, OfTheDebuggerOutput) {
    ExpectEndOf("GetObjectBoundingBox", [](ScenePane& p) {
        float box[6];
        p.Methods().GetObjectBoundingBox(99, &box[0], &box[1], &box[2], &box[3], &box[4], &box[5]);
        EXPECT_EQ(box[0], 1.0f);
    });
}

TEST_P(DestroyedInHandler, OfTheMessageOfARefusedContext) {
    ExpectEndOf("RecreateOpenglContext", [](ScenePane& p) { p.Methods().RecreateOpenglContext(9, 9, 0); });
}

TEST_P(DestroyedInHandler, OfTheReadyStateAfterARefusedContext) {
    messagesDestroy = false;
    DestroyInside();
    pane->Methods().RecreateOpenglContext(9, 9, 0);
    EXPECT_EQ(pane, nullptr);
    EXPECT_TRUE(notes.isDead);
    EXPECT_EQ(messages, 1);
    EXPECT_EQ(events.fired, 1);
}

TEST_P(DestroyedInHandler, OfTheAboutBox) {
    ExpectEndOf("AboutBox", [](ScenePane& p) { p.Methods().AboutBox(); });
}

TEST_P(DestroyedInHandler, OfTheReasonOfARefusedStoreOfProperties) {
    std::string reason;
    ExpectEndOf("LoadProperties", [&](ScenePane& p) { EXPECT_FALSE(p.LoadProperties("damaged", &reason)); });
    EXPECT_NE(reason, "");
}

// ---- alignments

TEST_P(DestroyedInHandler, OfAnAlignmentThatEndsWithTheWindow) {
    pane->Methods().AddVariableObject(0);
    for (int i = 0; i < 2; ++i) pane->Methods().AlignInteractive();
    ExpectEndOf("RecreateOpenglContext", [](ScenePane& p) { p.Methods().RecreateOpenglContext(3, 3, 0); });
}

TEST_P(DestroyedInHandler, OfAnAlignmentByHand) {
    pane->Methods().AddVariableObject(0);
    pane->Methods().AlignInteractive();
    ExpectEndOf("FinishInteraction", [](ScenePane& p) { p.Methods().FinishInteraction(); });
}

TEST_P(DestroyedInHandler, OfAnAlignmentByHandThatEscapeEnds) {
    pane->Methods().AddVariableObject(0);
    pane->Methods().AlignInteractive();
    events.inside = [&] {
        if (events.fired == 2) pane.reset();  // after the event of the key
        EXPECT_FALSE(notes.isDead);
    };
    pane->SendKey({.nChar = KV_ScenePane::kKeyEscape});
    EXPECT_EQ(pane, nullptr);
    EXPECT_TRUE(notes.isDead);
    EXPECT_EQ(events.fired, 2);
}

TEST_P(DestroyedInHandler, OfAnAlignmentByPointsThatItsLastPickEnds) {
    pane->Methods().SetPickMode(KV_ScenePane::PickModeOff);
    pane->Methods().AddVariableObject(1);  // the upper triangle
    pane->Methods().SetViewMode(KV_ScenePane::ViewFromPlusZYUp);
    pane->Methods().AlignPickPoints();
    Click(*pane, MouseInput::Kind::LeftDown);
    Click(*pane, MouseInput::Kind::LeftUp);
    pane->SendKey({.nChar = KV_ScenePane::kKeySpace});
    ASSERT_EQ(pane->GetAlignmentPicks().phase, KV_ScenePane::AlignmentPhase::PickFixed);
    events.fired = 0;
    ExpectEndOf("the click", [](ScenePane& p) { Click(p, MouseInput::Kind::LeftDown); });
}

// ---- cuts by lasso

const KV_ScenePane::LassoPoint kWholeWindow[] = {{0.02, 0.02}, {0.02, 0.97}, {0.97, 0.97}, {0.97, 0.02}};
const KV_ScenePane::LassoPoint kCornerOfTheWindow[] = {{0.02, 0.02}, {0.02, 0.05}, {0.04, 0.05}};

TEST_P(DestroyedInHandler, OfACut) {
    ExpectEndOf("CutWithLasso",
                [](ScenePane& p) { EXPECT_TRUE(p.CutWithLasso(KV_ScenePane::FreehandInside, kWholeWindow)); });
}

TEST_P(DestroyedInHandler, OfACutByTheMouse) {
    pane->Methods().StartSegmentation(KV_ScenePane::FreehandVisible);
    for (const auto& [x, y] : {std::pair{2, 2}, {2, 77}, {97, 77}})
        pane->SendMouse({.kind = MouseInput::Kind::LeftDown, .flags = KV_ScenePane::kMouseLeft, .x = x, .y = y});
    ExpectEndOf("right press", [](ScenePane& p) {
        p.SendMouse({.kind = MouseInput::Kind::RightDown, .flags = KV_ScenePane::kMouseRight, .x = 97, .y = 2});
    });
}

TEST_P(DestroyedInHandler, OfTheEndOfACut) {
    events.inside = [&] {
        if (events.fired == 2) pane.reset();
        EXPECT_FALSE(notes.isDead);
    };
    EXPECT_TRUE(pane->CutWithLasso(KV_ScenePane::PolygonInside, kWholeWindow));
    EXPECT_EQ(pane, nullptr);
    EXPECT_TRUE(notes.isDead);
}

TEST_P(DestroyedInHandler, OfACutThatHitsNothing) {
    ExpectEndOf("CutWithLasso",
                [](ScenePane& p) { EXPECT_FALSE(p.CutWithLasso(KV_ScenePane::FreehandVisible, kCornerOfTheWindow)); });
}

TEST_P(DestroyedInHandler, OfACancelledSession) {
    pane->Methods().StartSegmentation(KV_ScenePane::FreehandInside);
    Click(*pane, MouseInput::Kind::LeftDown);
    ExpectEndOf("EndSegmentation", [](ScenePane& p) { p.Methods().EndSegmentation(); });
}

TEST_P(DestroyedInHandler, OfASessionThatACutOfTheHostCancels) {
    pane->Methods().StartSegmentation(KV_ScenePane::PolygonInside);
    ExpectEndOf("CutWithLasso",
                [](ScenePane& p) { EXPECT_FALSE(p.CutWithLasso(KV_ScenePane::PolygonInside, kWholeWindow)); });
}

TEST_P(DestroyedInHandler, OfTheFrameOfASession) {
    notes.writesInFrames = true;
    ExpectEndOf("StartSegmentation", [](ScenePane& p) { p.Methods().StartSegmentation(KV_ScenePane::FreehandInside); });
}

TEST_P(DestroyedInHandler, OfTheFrameOfACut) {
    notes.writesInFrames = true;
    ExpectEndOf("CutWithLasso",
                [](ScenePane& p) { EXPECT_FALSE(p.CutWithLasso(KV_ScenePane::FreehandInside, kWholeWindow)); });
}

TEST_P(DestroyedInHandler, OfTheMessageOfColoursThatASessionRefuses) {
    pane->Methods().SetLassoCuttingColors(255, 0.0f, 0, 0.5f);
    ExpectEndOf("CutWithLasso",
                [](ScenePane& p) { EXPECT_FALSE(p.CutWithLasso(KV_ScenePane::FreehandInside, kWholeWindow)); });
}

TEST_P(DestroyedInHandler, OfTheFrameAfterAnUndo) {
    ASSERT_TRUE(pane->CutWithLasso(KV_ScenePane::PolygonInside, kWholeWindow));
    events.fired = 0;
    notes.writesInFrames = true;
    ExpectEndOf("PerformUndo", [](ScenePane& p) { EXPECT_EQ(p.Methods().PerformUndo(), 0); });
}

// The sink runs after the frame: the destruction does not take the context from under it.
TEST_P(DestroyedInHandler, OfAFrame) {
    notes.writesInFrames = true;
    ExpectEndOf("PerformRefresh", [](ScenePane& p) { p.Methods().PerformRefresh(); });
}

TEST_P(DestroyedInHandler, OfACapturedFrame) {
    notes.writesInFrames = true;
    KV_ScenePane::Picture picture;
    ExpectEndOf("CapturePicture", [&](ScenePane& p) { EXPECT_TRUE(p.CapturePicture(&picture)); });
    EXPECT_EQ(picture.pixels.size(), 8000u);
}

TEST_P(DestroyedInHandler, OfAFrameOfProcessEvents) {
    notes.writesInFrames = true;
    pane->Methods().PerformInvalidate();
    ExpectEndOf("ProcessEvents", [](ScenePane& p) { p.ProcessEvents(); });
}

TEST_P(DestroyedInHandler, MayBeReplacedByANewViewer) {
    WindowRequest request;
    request.width = 60, request.height = 40;
    bool replaced = false;
    events.inside = [&] {
        if (replaced) return;
        replaced = true;
        pane = CreateScenePane(request, nullptr);
    };
    pane->SendKey({.nChar = KV_ScenePane::kKeyEscape});
    EXPECT_TRUE(notes.isDead);
    ASSERT_NE(pane, nullptr);
    KV_ScenePane::Picture picture;
    EXPECT_TRUE(pane->CapturePicture(&picture));
    EXPECT_EQ(picture.pixels.size(), 2400u);
}

TEST_P(DestroyedInHandler, OfAnotherViewerIsSafeToo) {
    WindowRequest request;
    auto other = CreateScenePane(request, nullptr);
    ASSERT_NE(other, nullptr);
    events.inside = [&] { other.reset(); };
    Click(*pane, MouseInput::Kind::DoubleClick);
    EXPECT_EQ(other, nullptr);
    EXPECT_FALSE(notes.isDead);
    KV_ScenePane::Picture picture;
    EXPECT_TRUE(pane->CapturePicture(&picture));
}

// Every method, property and call of the handle passes its arguments on: the control of a handle answers as one
// without.
TEST(ScenePaneHandle, PassesEveryMethodOn) {
    WindowRequest request;
    request.kind = WindowRequest::Kind::NoPicture;
    const auto pane = CreateScenePane(request, nullptr);
    CKV_ScenePaneCtrl direct(MakePaneWindow(request));
    std::string reason;
    ASSERT_TRUE(direct.CreateControlWindow(&reason));
    CapturedDebugOutput output;
    std::vector<std::uint8_t> memory(256), directMemory(256);
    for (const AutomationMethod& method : AutomationMethods()) {
        // The address of the control; a pointer to a mesh; indices that must be valid; 16 MB.
        static const std::set<std::string_view> kOthers{"BeginParallelImport", "ImportMeshedMeasurement",
                                                        "GetMeshDataSize", "SetOverlayVisibility", "CaptureScreenShot"};
        if (kOthers.contains(method.name)) continue;
        const auto call = [&](KV_ScenePane::_DKV_ScenePane& target, std::vector<std::uint8_t>& bytes) {
            std::ranges::fill(bytes, std::uint8_t{0});  // valid indices, whatever a method reads
            // The methods that take the id of a sphere get 3, and others empty the list.
            while (target.GetNumberOfPickPointSpheres() < 5) target.AddPickPointSphere(1, 2, 3, 4);
            std::vector<AutomationValue> arguments;
            std::int16_t next = 3;
            for (const char letter : method.signature.substr(1)) switch (letter) {
                    case 's':
                        arguments.emplace_back(next++);
                        break;
                    case 'i':
                        arguments.emplace_back(std::int32_t{next++});
                        break;
                    case 'f':
                        arguments.emplace_back(static_cast<float>(next++));
                        break;
                    case 'w':
                        arguments.emplace_back(L"");
                        break;
                    default:
                        arguments.emplace_back(static_cast<void*>(bytes.data() + 8 * (next++ % 16)));
                        break;
                }
            AutomationValue result;
            EXPECT_EQ(InvokeMethod(target, method.id, arguments, &result), AutomationStatus::Done);
            return result;
        };
        const AutomationValue expected = call(direct, directMemory);
        const std::string expectedOutput = output.Take();
        EXPECT_EQ(call(pane->Methods(), memory), expected) << method.name;
        EXPECT_EQ(output.Take(), expectedOutput) << method.name;
        EXPECT_EQ(memory, directMemory) << method.name;
        EXPECT_EQ(ControlOf(*pane).m_nInteractionMode, direct.m_nInteractionMode) << method.name;
    }
}

}  // namespace
