// Creation of the context, the log lines and messages of its failures, its initial state, and its recreation.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <regex>
#include <stdexcept>

#include "control/AutomationTable.h"
#include "control/ScenePaneHandle.h"
#include "control/ScriptedWindow.h"
#include "support/ControlFixture.h"
#include "support/GlNow.h"
#include "support/TestFolder.h"
#include "support/Wait.h"
#include "support/XvfbServer.h"

namespace {

using KV_ScenePane::WindowRequest;

// Before main(), so that no other test of this process has opened a log elsewhere.
[[maybe_unused]] const std::string& g_logFolder = TestFolder();

const char* const kParagraph =
    "\n\nThe 3D viewer could not be initialized. Possibly the wrong graphics card is used, the currently connected "
    "graphics card is deactivated in the Windows device manager or the correct driver is missing.";

/// The log lines written since its construction, without times and without the value of a diagnostic that varies by
/// driver.
class LogSinceNow {
public:
    LogSinceNow() : m_nStart(ReadLog().size()) {}
    [[nodiscard]] std::string Text() const {
        return std::regex_replace(ReadLog().substr(m_nStart), std::regex(R"(\[\d\d:\d\d:\d\d\.\d\d\d\] )"), "");
    }
    /// The same without a context that could report the number of alpha bits.
    [[nodiscard]] std::string TextWithoutAlphaBits() const {
        return std::regex_replace(Text(), std::regex("Alphabits: -?\\d+"), "Alphabits: ?");
    }

private:
    std::size_t m_nStart;
};

const std::string kBootstrap =
    "<INFO>: Create temporary ogl context\n"
    "<INFO>: Init glew successfull\n"
    "<INFO>: WGL_ARB_pixel_format found.\n"
    "<INFO>: WGL_ARB_create_context found. \n"
    "<INFO>: Opengl 3.3 supported.\n"
    "<DEBUG>: calling wglChoosePixelFormatARB\n";

std::string ProgramLines() {
    std::string lines;
    for (const char* name :
         {"perpixel", "texperpixel", "create mask", "use mask", "depth", "quad", "shadow", "freeFloatingPoints"})
        lines += std::string("<INFO>: Compile ") + name + " shaders.\n<INFO>: Build " + name + " program.\n";
    return lines;
}

const std::string kGoodStart = kBootstrap +
                               "<DEBUG>: Getting new device context + HDC\n"
                               "<INFO>: Opengl 3.3 context created.\n" +
                               ProgramLines() +
                               "<INFO>: Initalize framebuffer. \n"
                               "<INFO>: Init textures.\n"
                               "<INFO>: Initialize renderbuffer.\n"
                               "<INFO>: Alphabits: 8\n";

const std::string kRefusedVersion = kBootstrap +
                                    "<DEBUG>: Getting new device context + HDC\n"
                                    "<ERROR>: Failed to create Opengl 3.3 context. \n"
                                    "<INFO>: Alphabits: ?\n"
                                    "<ERROR>: Failed to create opengl context. <ERROR>: No OGL 3.3 context possible! "
                                    "<ERROR>: Using wrong graphic card?\n";

const std::string kRefusedFormat = kBootstrap +
                                   "<ERROR>: No valid pixel format!\n"
                                   "<INFO>: Alphabits: ?\n"
                                   "<ERROR>: Failed to create opengl context. <ERROR>: Using wrong graphic card?\n";

// ---- both windows

class ContextOf : public testing::TestWithParam<WindowRequest::Kind> {
protected:
    void SetUp() override {
        if (GetParam() != WindowRequest::Kind::OffScreen) XvfbServer::Shared();
        m_request.kind = GetParam();
        m_request.width = 100, m_request.height = 80;
        m_request.showMessage = [this](const std::string& text) { m_messages.push_back(text); };
    }
    std::unique_ptr<KV_ScenePane::ScenePane> Open() { return CreateScenePane(m_request, &m_reason); }

    CapturedDebugOutput m_output;
    WindowRequest m_request;
    std::vector<std::string> m_messages;
    std::string m_reason;
};

TEST_P(ContextOf, ASuccessfulStartLogsEachStepAndShowsNoMessage) {
    const LogSinceNow log;
    const auto pane = Open();
    ASSERT_NE(pane, nullptr) << m_reason;
    EXPECT_EQ(log.Text(), kGoodStart);
    EXPECT_TRUE(m_messages.empty());
    EXPECT_TRUE(pane->HasWindow());
    EXPECT_EQ(m_output.Text(), "");
    if (GetParam() != WindowRequest::Kind::OffScreen) {  // an off-screen surface has no buffers to swap
        glBindFramebuffer(GL_FRAMEBUFFER, 0);
        EXPECT_EQ(GlInteger(GL_DOUBLEBUFFER), 1);
    }
}

TEST_P(ContextOf, ASecondControlLogsTheSameAgain) {
    const auto first = Open();
    const LogSinceNow log;
    const auto second = Open();
    ASSERT_NE(second, nullptr) << m_reason;
    EXPECT_EQ(log.Text(), kGoodStart);
}

TEST_P(ContextOf, ARefusedVersionIsLoggedAndShownWithItsNumber) {
    const LogSinceNow log;
    m_request.glMajor = 9, m_request.glMinor = 8;
    EXPECT_EQ(Open(), nullptr);
    EXPECT_EQ(log.TextWithoutAlphaBits(), kRefusedVersion);
    EXPECT_EQ(m_messages,
              (std::vector{std::string("OpenGL context could not be created. Requested version: 9.8") + kParagraph}));
    // It names the version of the driver, which the next request is granted.
    const std::string start = "OpenGL 9.8 is not offered by the driver: request 3.3 to ";
    ASSERT_TRUE(m_reason.starts_with(start)) << m_reason;
    const std::string offered = m_reason.substr(start.size());
    ASSERT_EQ(offered.size(), 3u) << m_reason;
    m_request.glMajor = offered[0] - '0', m_request.glMinor = offered[2] - '0';
    const auto pane = Open();
    ASSERT_NE(pane, nullptr) << m_reason;
    EXPECT_EQ(m_reason, "");
    EXPECT_EQ(10 * GlInteger(GL_MAJOR_VERSION) + GlInteger(GL_MINOR_VERSION),
              10 * m_request.glMajor + m_request.glMinor);
}

TEST_P(ContextOf, ARefusedFormatIsLoggedAndShownWithoutAVersion) {
    const auto pane = Open();
    ASSERT_NE(pane, nullptr) << m_reason;
    const LogSinceNow log;
    pane->Methods().RecreateOpenglContext(3, 3, 999);
    EXPECT_FALSE(pane->HasWindow());
    EXPECT_EQ(log.TextWithoutAlphaBits(), kRefusedFormat);
    EXPECT_EQ(m_messages, (std::vector{std::string("OpenGL context could not be created. ") + kParagraph}));
}

TEST_P(ContextOf, SamplesOfTheRequestAreUsedWhereTheDriverHasThem) {
    m_request.samples = 4;
    const auto pane = Open();
    ASSERT_NE(pane, nullptr) << m_reason;
    const int expected = GlInteger(GL_MAX_SAMPLES) >= 4 ? 4 : 0;  // softpipe has none
    EXPECT_EQ(ControlOf(*pane).m_nGlSamples, expected);
    EXPECT_EQ(GlInteger(GL_SAMPLES), expected);
    EXPECT_TRUE(m_messages.empty());
}

TEST_P(ContextOf, SamplesThatTheDriverDoesNotHaveAreLeftOutWithoutAWord) {
    const LogSinceNow log;
    m_request.samples = 999;
    const auto pane = Open();
    ASSERT_NE(pane, nullptr) << m_reason;
    EXPECT_EQ(log.Text(), kGoodStart);
    EXPECT_TRUE(m_messages.empty());
    EXPECT_EQ(m_output.Text(), "");
    EXPECT_EQ(ControlOf(*pane).m_nGlSamples, 0);
    EXPECT_EQ(GlInteger(GL_SAMPLES), 0);
    pane->Methods().RecreateOpenglContext(3, 3, 999);
    EXPECT_FALSE(pane->HasWindow()) << "a recreation is exact";
    EXPECT_EQ(m_messages.size(), 1u);
}

TEST_P(ContextOf, SamplesThatTheDriverDoesNotHaveAreARemarkWithThoseThatItHas) {
    m_request.samples = 999;
    ASSERT_NE(Open(), nullptr);
    const std::string start = "999 samples per pixel are not offered by the driver: ";
    ASSERT_TRUE(m_reason.starts_with(start)) << m_reason;
    const std::string offered = m_reason.substr(start.size());
    m_request.samples = 4;
    ASSERT_NE(Open(), nullptr);
    const bool isGranted = m_reason.empty();
    EXPECT_EQ(offered.find('4') != std::string::npos, isGranted) << offered << ", then: " << m_reason;
    if (!isGranted) {
        EXPECT_TRUE(offered.ends_with(" are") || offered.ends_with(" is")) << offered;
    }
}

TEST_P(ContextOf, NamesTheDriverInUse) {
    const auto pane = Open();
    ASSERT_NE(pane, nullptr) << m_reason;
    KV_ScenePane::GraphicsInfo info;
    ASSERT_TRUE(pane->GetGraphicsInfo(&info));
    EXPECT_EQ(info.renderer, reinterpret_cast<const char*>(glGetString(GL_RENDERER)));
    EXPECT_EQ(info.vendor, reinterpret_cast<const char*>(glGetString(GL_VENDOR)));
    EXPECT_EQ(info.version, reinterpret_cast<const char*>(glGetString(GL_VERSION)));
    if (GetParam() == WindowRequest::Kind::OffScreen)
        EXPECT_NE(info.device, "");
    else
        EXPECT_EQ(info.device, std::string("X display ") + std::getenv("DISPLAY"));
    pane->Methods().RecreateOpenglContext(9, 9, 0);
    const std::string renderer = info.renderer;
    EXPECT_FALSE(pane->GetGraphicsInfo(&info));
    EXPECT_EQ(info.renderer, renderer) << "untouched on failure";
}

TEST_P(ContextOf, WithoutAHookMessagesGoToTheDebuggerOutput) {
    m_request.showMessage = nullptr;
    m_request.glMajor = 9;
    EXPECT_EQ(Open(), nullptr);
    EXPECT_NE(m_output.Text().find(std::string("Requested version: 9.3") + kParagraph), std::string::npos)
        << m_output.Text();
}

TEST_P(ContextOf, RecreationSetsTheSamplesAndEmptiesTheScene) {
    const auto pane = Open();
    ASSERT_NE(pane, nullptr) << m_reason;
    auto& control = ControlOf(*pane);
    ASSERT_TRUE(control.MakeContextCurrent());
    EXPECT_EQ(GlInteger(GL_SAMPLE_BUFFERS), 0);
    EXPECT_TRUE(glIsEnabled(GL_MULTISAMPLE));  // the driver ignores it without samples
    GLuint marker = 0;
    do glGenTextures(1, &marker);
    while (marker < 1000);
    glBindTexture(GL_TEXTURE_2D, marker);
    ASSERT_TRUE(glIsTexture(marker));
    AddMesh(control, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {Triangle{{0, 1, 2}}});
    control.m_vUndoStack.push_back(control.m_vpMeshes);
    control.m_vLines3D.push_back({1, {{0, 0, 0}, {1, 1, 1}}});
    control.PerformRefresh();

    EXPECT_EQ(control.RecreateOpenglContext(3, 3, 4), -1);
    ASSERT_TRUE(pane->HasWindow());
    EXPECT_EQ(control.m_nGlSamples, 4);
    ASSERT_TRUE(control.MakeContextCurrent());
    EXPECT_EQ(GlInteger(GL_SAMPLE_BUFFERS), 1);
    EXPECT_EQ(GlInteger(GL_SAMPLES), 4);
    EXPECT_FALSE(glIsTexture(marker)) << "the context is still the old one";
    EXPECT_EQ(control.GetNumObjects(), 0);
    EXPECT_TRUE(control.m_vUndoStack.empty());
    EXPECT_TRUE(control.m_vLines3D.empty());
    EXPECT_TRUE(m_messages.empty());
    EXPECT_TRUE(glIsProgram(control.m_progShadow));
    EXPECT_TRUE(glIsFramebuffer(control.m_nShadowFbo));
    EXPECT_TRUE(glIsFramebuffer(control.m_nOffscreenFbo));
    EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
}

TEST_P(ContextOf, ARecreatedControlDrawsAsBefore) {
    const auto pane = Open();
    ASSERT_NE(pane, nullptr) << m_reason;
    const float vertices[] = {0, 0, 0, 10, 0, 0, 0, 10, 0};
    const std::int32_t triangles[] = {0, 1, 2};
    const auto show = [&] {
        pane->Methods().ImportMeshFromMemory(3, 1, vertices, triangles);
        pane->Methods().CenterView();
        KV_ScenePane::Picture picture;
        EXPECT_TRUE(pane->CapturePicture(&picture));
        return picture.pixels;
    };
    const auto before = show();
    EXPECT_GT(std::ranges::count_if(before, [&](auto p) { return p != before[0]; }), 50) << "nothing was drawn";
    EXPECT_EQ(pane->Methods().RecreateOpenglContext(3, 3, 0), -1);
    ASSERT_TRUE(pane->HasWindow());
    EXPECT_EQ(show(), before);
}

TEST_P(ContextOf, ARecreatedControlHasItsViewMatricesInItsFirstFrame) {
    const auto pane = Open();
    ASSERT_NE(pane, nullptr) << m_reason;
    auto& control = ControlOf(*pane);
    EXPECT_EQ(control.RecreateOpenglContext(3, 3, 0), -1);
    ASSERT_TRUE(control.MakeContextCurrent());
    // The empty scene is 100 * sqrt(3) high, 80 pixels: 50 units are 23.094 pixels.
    double x = 0, y = 0;
    control.ProjectPointDouble(50, 0, 0, &x, &y);
    EXPECT_NEAR(x, 73.094, 1e-3);
    EXPECT_NEAR(y, 40, 1e-3);
}

TEST_P(ContextOf, RecreationReachesTheRequestedVersion) {
    const auto pane = Open();
    ASSERT_NE(pane, nullptr) << m_reason;
    EXPECT_EQ(pane->Methods().RecreateOpenglContext(4, 0, 0), -1);
    ASSERT_TRUE(pane->HasWindow());
    EXPECT_GE(GlInteger(GL_MAJOR_VERSION), 4);
    EXPECT_EQ(GlInteger(GL_CONTEXT_PROFILE_MASK), GL_CONTEXT_COMPATIBILITY_PROFILE_BIT);
}

TEST_P(ContextOf, EightSamplesAreGrantedOrRefusedWithAMessage) {
    const auto pane = Open();
    ASSERT_NE(pane, nullptr) << m_reason;
    EXPECT_EQ(pane->Methods().RecreateOpenglContext(3, 3, 8), -1);
    if (pane->HasWindow()) {
        EXPECT_EQ(GlInteger(GL_SAMPLES), 8);
        EXPECT_EQ(GlInteger(GL_SAMPLE_BUFFERS), 1);
        EXPECT_TRUE(m_messages.empty());
    } else {  // OpenGL requires no more than four
        EXPECT_EQ(m_messages, (std::vector{std::string("OpenGL context could not be created. ") + kParagraph}));
    }
}

TEST_P(ContextOf, AfterAFailedRecreationEveryMethodCanBeCalled) {
    const auto pane = Open();
    ASSERT_NE(pane, nullptr) << m_reason;
    auto& control = ControlOf(*pane);
    AddMesh(control, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {Triangle{{0, 1, 2}}});
    control.PerformRefresh();
    const LogSinceNow log;
    EXPECT_EQ(control.RecreateOpenglContext(9, 9, 0), -1) << "a failure shows in the message alone";
    EXPECT_EQ(log.TextWithoutAlphaBits(), kRefusedVersion);
    EXPECT_EQ(m_messages,
              (std::vector{std::string("OpenGL context could not be created. Requested version: 9.9") + kParagraph}));
    EXPECT_FALSE(pane->HasWindow());
    EXPECT_EQ(control.GetNumObjects(), 0);
    EXPECT_EQ(control.m_hRC, nullptr);

    AddMesh(control, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {Triangle{{0, 1, 2}}});
    std::vector<std::uint8_t> memory(64);
    for (const AutomationMethod& method : AutomationMethods()) {
        if (method.name.find("PickPointSphere") != std::string_view::npos && control.m_vPickPointSpheres.empty())
            control.AddPickPointSphere(1, 2, 3, 4);  // some of them need a valid index
        if (method.name == "CaptureScreenShot" || method.name == "RecreateOpenglContext") continue;
        std::vector<AutomationValue> arguments;
        for (const char letter : method.signature.substr(1)) switch (letter) {
                case 's':
                    arguments.emplace_back(std::int16_t{0});
                    break;
                case 'i':
                    arguments.emplace_back(std::int32_t{0});
                    break;
                case 'f':
                    arguments.emplace_back(0.0f);
                    break;
                case 'w':
                    arguments.emplace_back(L"");
                    break;
                default:
                    arguments.emplace_back(static_cast<void*>(memory.data()));
                    break;
            }
        if (method.name == "ImportMeshedMeasurement") continue;  // its pointer is to a mesh, not to bytes
        if (method.name == "GetMeshDataSize" && control.GetNumObjects() == 0) continue;  // needs a valid index
        EXPECT_EQ(InvokeMethod(control, method.id, arguments, nullptr), AutomationStatus::Done) << method.name;
        const std::int32_t mode = method.name == "AlignInteractive"    ? ModeAlignInteractive
                                  : method.name == "AlignPickPoints"   ? ModeAlignPickPoints
                                  : method.name == "FinishInteraction" ? ModeIdle
                                                                       : control.m_nInteractionMode;
        EXPECT_EQ(control.m_nInteractionMode, mode) << method.name;
    }
    EXPECT_EQ(control.m_vInteractionDlgs.size(), 1u) << "the one that another one was opened over";
    KV_ScenePane::Picture picture;
    EXPECT_FALSE(pane->CapturePicture(&picture));
    pane->ProcessEvents();
    EXPECT_FALSE(pane->HasWindow());
}

TEST_P(ContextOf, AHookThatThrowsLeavesTheViewerAsOneThatReturns) {
    bool throws = false;
    m_request.showMessage = [&](const std::string&) {
        if (throws) throw std::runtime_error("hook");
    };
    const auto pane = Open();
    ASSERT_NE(pane, nullptr) << m_reason;
    CKV_ScenePaneCtrl& control = ControlOf(*pane);
    for (const bool hookThrows : {false, true}) {
        throws = hookThrows;
        if (throws)
            EXPECT_THROW(pane->Methods().RecreateOpenglContext(9, 9, 0), std::runtime_error);
        else
            pane->Methods().RecreateOpenglContext(9, 9, 0);
        EXPECT_FALSE(pane->HasWindow());
        EXPECT_EQ(pane->NativeWindow(), 0u);
        EXPECT_FALSE(control.MakeContextCurrent());
        EXPECT_EQ(control.m_hRC, nullptr);
        EXPECT_EQ(control.m_pDC, nullptr);
        KV_ScenePane::Picture picture;
        EXPECT_FALSE(pane->CapturePicture(&picture));
        pane->Methods().PerformInvalidate();
        pane->ProcessEvents();
        EXPECT_EQ(pane->Methods().RecreateOpenglContext(3, 3, 0), -1);
        ASSERT_TRUE(pane->HasWindow()) << "no way back, hook throws: " << hookThrows;
        EXPECT_TRUE(pane->CapturePicture(&picture));
    }
    EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
}

TEST_P(ContextOf, AHookThatThrowsDuringTheFirstCreationReachesTheCaller) {
    m_request.glMajor = 9;
    m_request.showMessage = [](const std::string&) { throw std::runtime_error("hook"); };
    EXPECT_THROW(Open(), std::runtime_error);
    m_request.glMajor = 3;
    EXPECT_NE(Open(), nullptr) << m_reason;
}

// A message box with an event loop of its own.
TEST_P(ContextOf, AHookMayProcessTheEventsOfItsViewer) {
    KV_ScenePane::ScenePane* viewer = nullptr;
    int shown = 0;
    m_request.showMessage = [&](const std::string&) {
        ++shown;
        for (int i = 0; i < 3; ++i) viewer->ProcessEvents();
        viewer->Methods().PerformRefresh();
        float box[6];
        viewer->Methods().GetObjectBoundingBox(0, &box[0], &box[1], &box[2], &box[3], &box[4], &box[5]);
    };
    const auto pane = Open();
    ASSERT_NE(pane, nullptr) << m_reason;
    viewer = pane.get();
    pane->Methods().PerformInvalidate();
    pane->Methods().RecreateOpenglContext(9, 9, 0);
    EXPECT_EQ(shown, 1);
    EXPECT_FALSE(pane->HasWindow());
    EXPECT_EQ(pane->Methods().RecreateOpenglContext(3, 3, 0), -1);
    KV_ScenePane::Picture picture;
    EXPECT_TRUE(pane->CapturePicture(&picture));
}

// The message of its timer arrives while there is no window.
TEST_P(ContextOf, ADelayedPressThatSpansARefusedRecreationIsDispatched) {
    const auto pane = Open();
    ASSERT_NE(pane, nullptr) << m_reason;
    CKV_ScenePaneCtrl& control = ControlOf(*pane);
    pane->Methods().SetIGDRotation(1);
    pane->SendMouse({.kind = KV_ScenePane::MouseInput::Kind::RightDown, .flags = KV_ScenePane::kMouseRight});
    pane->Methods().RecreateOpenglContext(9, 9, 0);
    control.m_pWindow->PostPrivateMessage(kTimerMessage);
    pane->ProcessEvents();
    EXPECT_TRUE(control.m_mouseDispatch.pending);
    pane->Methods().RecreateOpenglContext(3, 3, 0);
    ASSERT_TRUE(pane->HasWindow());
    EXPECT_TRUE(WaitUntil([&] { return !control.m_mouseDispatch.pending; }, [&] { pane->ProcessEvents(); }));
    EXPECT_EQ(control.m_nInteractionMode, ModeRotate);
}

INSTANTIATE_TEST_SUITE_P(Windows, ContextOf,
                         testing::Values(WindowRequest::Kind::OffScreen, WindowRequest::Kind::TopLevel),
                         [](const auto& row) {
                             return row.param == WindowRequest::Kind::OffScreen ? "OffScreen" : "TopLevel";
                         });

// ---- the first state

TEST(InitialState, HasMaterialsAndLightModelBeforeTheFirstFrame) {
    KV_ScenePane::WindowRequest request;
    request.kind = KV_ScenePane::WindowRequest::Kind::OffScreen;
    CKV_ScenePaneCtrl control(MakePaneWindow(request));
    control.m_bBlockPaint = 1;  // a frame would set the materials to the object colours
    std::string reason;
    ASSERT_TRUE(control.CreateControlWindow(&reason)) << reason;
    ASSERT_TRUE(control.MakeContextCurrent());
    using Four = std::array<float, 4>;
    EXPECT_EQ(GlMaterial(GL_FRONT, GL_DIFFUSE), (Four{0.1f, 0.1f, 0.1f, 1}));
    EXPECT_EQ(GlMaterial(GL_FRONT, GL_AMBIENT), (Four{0.3f, 0.3f, 0.3f, 1}));
    EXPECT_EQ(GlMaterial(GL_FRONT, GL_SPECULAR), (Four{0, 0, 0, 1}));
    EXPECT_EQ(GlMaterial(GL_FRONT, GL_SHININESS)[0], 64);
    EXPECT_EQ(GlMaterial(GL_BACK, GL_DIFFUSE), (Four{0.3f, 0.3f, 0.3f, 1}));
    EXPECT_EQ(GlMaterial(GL_BACK, GL_AMBIENT), (Four{0.1f, 0.2f, 0.1f, 1}));
    EXPECT_EQ(GlMaterial(GL_BACK, GL_SHININESS)[0], 0);  // OpenGL's initial value
    Four ambient{};
    glGetFloatv(GL_LIGHT_MODEL_AMBIENT, ambient.data());
    EXPECT_EQ(ambient, (Four{0.3f, 0.3f, 0.3f, 1}));
    EXPECT_EQ(GlInteger(GL_LIGHT_MODEL_TWO_SIDE), 1);
    float depth = 0;
    glGetFloatv(GL_DEPTH_CLEAR_VALUE, &depth);
    EXPECT_EQ(depth, 1.0f);
    EXPECT_TRUE(glIsEnabled(GL_MULTISAMPLE));
    EXPECT_NE(control.m_nFontListBase, 0u);
    EXPECT_TRUE(glIsList(control.m_nFontListBase));
    EXPECT_TRUE(glIsList(control.m_nFontListBase + 95));
    EXPECT_EQ(GlInteger(GL_DEPTH_BITS), 24);
    EXPECT_EQ(GlInteger(GL_ALPHA_BITS), 8);
    EXPECT_EQ(GlInteger(GL_CONTEXT_PROFILE_MASK), GL_CONTEXT_COMPATIBILITY_PROFILE_BIT);
    EXPECT_NE(control.m_hRC, nullptr);
    EXPECT_NE(control.m_pDC, nullptr);
    EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
}

TEST(NoPictureViewer, MakesNoContextAndLogsNothing) {
    const LogSinceNow log;
    NoPictureControl control;
    EXPECT_EQ(log.Text(), "");
    EXPECT_EQ(control->m_hRC, nullptr);
}

// ---- refusals that the driver of this machine does not make: scripted

struct Refusal {
    const char* name;
    std::function<void(ScriptedWindow&)> script;
    std::string log;
    std::string calls;
    bool tellsVersion;
    const char* remark;  ///< for the reason of CreateScenePane()
};
void PrintTo(const Refusal& row, std::ostream* out) { *out << row.name; }

const std::string kFirst = "<INFO>: Create temporary ogl context\n";
const std::string kGlew = "<INFO>: Init glew successfull\n", kNoGlew = "<ERROR>: Init glew failed\n";
const std::string kFormat = "<INFO>: WGL_ARB_pixel_format found.\n",
                  kNoFormat = "<ERROR>: WGL_ARB_pixel_format not found.\n";
const std::string kContext = "<INFO>: WGL_ARB_create_context found. \n",
                  kNoContext = "<ERROR>: WGL_ARB_create_context not found. \n";
const std::string k33 = "<INFO>: Opengl 3.3 supported.\n", kNo33 = "<ERROR>: Opengl 3.3 not supported.\n";
const std::string kInvalidEnd =
    "<INFO>: Alphabits: ?\n<ERROR>: Failed to create opengl context. <ERROR>: Using wrong graphic card?\n";
const std::string kFailedEnd =
    "<INFO>: Alphabits: ?\n<ERROR>: Failed to create opengl context. <ERROR>: No OGL 3.3 context possible! "
    "<ERROR>: Using wrong graphic card?\n";
const char* const kNoFurther = "BeginBootstrap EndBootstrap";

const Refusal kRefusals[] = {
    {"NoEntryPoints", [](auto& w) { w.report.entryPointsLoaded = false; },
     kFirst + kNoGlew + kFormat + kContext + k33 + kInvalidEnd, kNoFurther, false, ""},
    {"NoPixelFormatExtension", [](auto& w) { w.report.pixelFormatExtension = false; },
     kFirst + kGlew + kNoFormat + kContext + k33 + kInvalidEnd, kNoFurther, false, ""},
    {"NoCreateContextExtension", [](auto& w) { w.report.createContextExtension = false; },
     kFirst + kGlew + kFormat + kNoContext + k33 + kInvalidEnd, kNoFurther, false, ""},
    {"DriverBelow33",
     [](auto& w) {
         w.report.version33 = false;
         w.report.major = 2, w.report.minor = 1;
     },
     kFirst + kGlew + kFormat + kContext + kNo33 + kInvalidEnd, kNoFurther, false,
     "OpenGL 3.3 is not offered by the driver: it has 2.1"},
    {"NoFormat", [](auto& w) { w.formatChosen = false; },
     kFirst + kGlew + kFormat + kContext + k33 +
         "<DEBUG>: calling wglChoosePixelFormatARB\n<ERROR>: No valid pixel format!\n" + kInvalidEnd,
     "BeginBootstrap ChoosePixelFormat EndBootstrap", false, ""},
    {"FormatNotSet", [](auto& w) { w.formatSet = false; },
     kFirst + kGlew + kFormat + kContext + k33 +
         "<DEBUG>: calling wglChoosePixelFormatARB\n<DEBUG>: Getting new device context + HDC\n"
         "<ERROR>: Error setting pixel format 23\n" +
         kFailedEnd,
     "BeginBootstrap ChoosePixelFormat EndBootstrap SetPixelFormat 23", true, ""},
    {"NoContext", [](auto&) {},
     kFirst + kGlew + kFormat + kContext + k33 +
         "<DEBUG>: calling wglChoosePixelFormatARB\n<DEBUG>: Getting new device context + HDC\n"
         "<ERROR>: Failed to create Opengl 3.3 context. \n" +
         kFailedEnd,
     "BeginBootstrap ChoosePixelFormat EndBootstrap SetPixelFormat 23 CreateContext", true,
     "OpenGL 4.6 is not offered by the driver: request 3.3 to 4.5"},
};

class RefusingDriver : public testing::TestWithParam<Refusal> {};

TEST_P(RefusingDriver, IsRefusedWithItsLogLinesItsMessageAndNoFurtherStep) {
    auto owned = std::make_unique<ScriptedWindow>();
    ScriptedWindow& window = *owned;
    CKV_ScenePaneCtrl control(std::move(owned));
    window.report.major = 4, window.report.minor = 5;
    GetParam().script(window);
    control.m_nGlMajorVersion = 4, control.m_nGlMinorVersion = 6;
    const LogSinceNow log;
    EXPECT_FALSE(control.CreateControlWindow(nullptr));
    EXPECT_EQ(log.TextWithoutAlphaBits(), GetParam().log);
    std::string calls;
    for (const std::string& call : window.calls) calls += (calls.empty() ? "" : " ") + call;
    EXPECT_EQ(calls, GetParam().calls);
    EXPECT_EQ(control.m_strContextRemark, GetParam().remark);
    const std::string version = GetParam().tellsVersion ? "Requested version: 4.6" : "";
    EXPECT_EQ(window.messages, (std::vector{"OpenGL context could not be created. " + version + kParagraph}));
}
INSTANTIATE_TEST_SUITE_P(Lacking, RefusingDriver, testing::ValuesIn(kRefusals),
                         [](const auto& row) { return row.param.name; });

TEST(DriverWithoutBootstrapContext, IsRefusedWithTheNumberOfTheFormat) {
    auto owned = std::make_unique<ScriptedWindow>();
    ScriptedWindow& window = *owned;
    window.report = {.formatNumber = 17};
    CKV_ScenePaneCtrl control(std::move(owned));
    const LogSinceNow log;
    EXPECT_FALSE(control.CreateControlWindow(nullptr));
    EXPECT_EQ(log.TextWithoutAlphaBits(), kFirst + "<ERROR>: Error setting temporary pixel format 17\n" + kInvalidEnd);
    EXPECT_EQ(window.messages, (std::vector{std::string("OpenGL context could not be created. ") + kParagraph}));
}

TEST(PixelFormat, IsRequestedWithoutSamplesOnlyWhereTheseAreAWish) {
    for (const bool optional : {false, true}) {
        auto owned = std::make_unique<ScriptedWindow>();
        ScriptedWindow& window = *owned;
        window.formatChosen = false;
        CKV_ScenePaneCtrl control(std::move(owned));
        control.m_nGlSamples = 4;
        control.m_bSamplesOptional = optional;
        const LogSinceNow log;
        EXPECT_FALSE(control.CreateControlWindow(nullptr));
        EXPECT_EQ(window.format.samples, optional ? 0 : 4) << "of the last request";
        EXPECT_EQ(log.TextWithoutAlphaBits(), kRefusedFormat);
        EXPECT_EQ(window.messages, (std::vector{std::string("OpenGL context could not be created. ") + kParagraph}));
    }
}

TEST(PixelFormat, IsRequestedWithTheSamplesOfTheControl) {
    for (const std::int32_t samples : {0, 1, 8}) {
        auto owned = std::make_unique<ScriptedWindow>();
        ScriptedWindow& window = *owned;
        CKV_ScenePaneCtrl control(std::move(owned));
        control.m_nGlSamples = samples;
        control.m_nGlMajorVersion = 4, control.m_nGlMinorVersion = 1;
        EXPECT_FALSE(control.CreateControlWindow(nullptr));
        EXPECT_EQ(window.format.colorBits, 32);
        EXPECT_EQ(window.format.depthBits, 24);
        EXPECT_EQ(window.format.stencilBits, 0);
        EXPECT_EQ(window.format.alphaBits, 8);
        EXPECT_TRUE(window.format.doubleBuffer);
        EXPECT_EQ(window.requestedSamples.front(), samples);
        // The samples are those of the framebuffer of frames; the window shows their mean.
        EXPECT_EQ(window.format.samples, 0);
        EXPECT_EQ(window.format.sampleBuffers, 0);
        EXPECT_EQ(window.context.major, 4);
        EXPECT_EQ(window.context.minor, 1);
    }
}

// ---- destruction

struct NotingDialog : CInteractionDlg {
    NotingDialog(CKV_ScenePaneCtrl& control, std::function<void()> note) : m_note(std::move(note)) {
        m_pControl = &control;
    }
    void PostNcDestroy() override {
        m_note();
        OnInteractionClosed();
    }
    std::function<void()> m_note;
};

TEST(WindowDestruction, ClosesTheDialogThenClearsTheDataInItsContextThenDeletesTheContext) {
    OffscreenControl c;
    OffscreenControl other;
    std::vector<std::string> order;
    struct NotingMesh : Mesh {
        explicit NotingMesh(std::function<void()> note) : Mesh(L"", false), m_note(std::move(note)) {}
        ~NotingMesh() override { m_note(); }
        std::function<void()> m_note;
    };
    void* const ofC = c.window->ContextHandle();
    ASSERT_TRUE(c->MakeContextCurrent());
    GLuint marker = 0;
    do glGenTextures(1, &marker);
    while (marker < 1000);
    glBindTexture(GL_TEXTURE_2D, marker);
    c->m_vpMeshes.push_back(std::make_shared<NotingMesh>([&] {
        EXPECT_TRUE(glIsTexture(marker)) << "not in the control's own context";
        order.emplace_back("mesh");
    }));
    c->m_vInteractionDlgs.push_back(std::make_unique<NotingDialog>(*c.control, [&] {
        EXPECT_EQ(c.window->ContextHandle(), ofC);
        order.emplace_back("dialog");
    }));
    c->m_pInteractionDlg = c->m_vInteractionDlgs.back().get();
    c->m_pInteractionDlg->Create();
    ASSERT_TRUE(other->MakeContextCurrent());
    c.window->Destroy();
    EXPECT_EQ(order, (std::vector<std::string>{"dialog", "mesh"}));
    EXPECT_EQ(c.window->ContextHandle(), nullptr);
    EXPECT_FALSE(c->HasWindow());
    EXPECT_EQ(glGetString(GL_VERSION), nullptr) << "a context is still current";
    ASSERT_TRUE(other->MakeContextCurrent());
    EXPECT_NE(glGetString(GL_VERSION), nullptr);
}

// ---- a log that cannot be written

TEST(UnwritableLog, DoesNotPreventAWindow) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            const std::string folder = TestFolder() + "/unwritable";
            std::filesystem::create_directories(folder + "/viewer.log");  // refuses root as well
            setenv("TMPDIR", folder.c_str(), 1);
            const auto pane = CreateScenePane(WindowRequest(), nullptr);
            std::exit(pane != nullptr && std::filesystem::is_empty(folder + "/viewer.log") ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

}  // namespace
