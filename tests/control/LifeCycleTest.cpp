// Creation and destruction of viewers without a display: hundreds, several at once, during an import, and a thousand
// imports.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "KV_ScenePane/DebugOutput.h"
#include "KV_ScenePane/ScenePane.h"
#include "support/ProcessSize.h"
#include "support/TestFolder.h"

namespace {

using KV_ScenePane::CreateScenePane;
using KV_ScenePane::ImportMeasurementEntry;
using KV_ScenePane::Picture;
using KV_ScenePane::ScenePane;
using KV_ScenePane::WindowRequest;

// Before main(), so that this process does not log into the machine's temporary folder.
[[maybe_unused]] const std::string& g_logFolder = TestFolder();

WindowRequest OffScreen(int width, int height) {
    WindowRequest request;
    request.width = width, request.height = height;
    return request;
}

WindowRequest NoPicture() {
    WindowRequest request;
    request.kind = WindowRequest::Kind::NoPicture;
    return request;
}

/// The colour of a picture of one colour; 1, which no opaque pixel has, when there are several.
std::uint32_t OnlyColor(ScenePane& pane) {
    Picture picture;
    EXPECT_TRUE(pane.CapturePicture(&picture));
    for (const std::uint32_t pixel : picture.pixels)
        if (pixel != picture.pixels[0]) return 1;
    return picture.pixels.empty() ? 1 : picture.pixels[0] & 0xFFFFFF;
}

/// A square of @p side x @p side points.
void ImportSquare(KV_ScenePane::_DKV_ScenePane& methods, int side) {
    std::vector<float> vertices;
    std::vector<std::int32_t> triangles;
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x) {
            vertices.insert(vertices.end(), {static_cast<float>(x), static_cast<float>(y), 0.0f});
            const int i = y * side + x;
            if (x + 1 < side && y + 1 < side)
                triangles.insert(triangles.end(), {i, i + 1, i + side, i + 1, i + side + 1, i + side});
        }
    methods.ImportMeshFromMemory(side * side, static_cast<std::int32_t>(triangles.size() / 3), vertices.data(),
                                 triangles.data());
}

TEST(Viewers, OpenAndCloseManyTimesWithoutALeak) {
    const auto openAndClose = [] {
        std::string reason;
        const auto pane = CreateScenePane(OffScreen(64, 48), &reason);
        ASSERT_NE(pane, nullptr) << reason;
        ImportSquare(pane->Methods(), 20);
        pane->Methods().CenterView();
        Picture picture;
        ASSERT_TRUE(pane->CapturePicture(&picture));
        ASSERT_NE(picture.pixels[24 * 64 + 32], picture.pixels[0]) << "the square is not in the middle";
    };
    for (int i = 0; i < 20; ++i) openAndClose();  // the driver's one-time allocations
    const int descriptors = OpenDescriptors();
    const long megabytes = ResidentMegabytes();
    for (int i = 20; i < kManyViewers; ++i) {
        openAndClose();
        if (HasFatalFailure()) FAIL() << "viewer " << i;
    }
    EXPECT_EQ(OpenDescriptors(), descriptors);
    EXPECT_LT(ResidentMegabytes() - megabytes, 28 + kQuarantineMegabytes)
        << "more than a tenth of a megabyte a viewer stays";
}

TEST(Viewers, CoexistInAnyNumberAndCloseInAnyOrder) {
    std::vector<std::unique_ptr<ScenePane>> panes;
    for (int i = 0; i < 12; ++i) {
        panes.push_back(CreateScenePane(OffScreen(16, 16), nullptr));
        ASSERT_NE(panes.back(), nullptr);
        panes.back()->Methods().SetBackgroundColors(i % 2 ? 0xFF0000 : 0x0000FF, i % 2 ? 0xFF0000 : 0x0000FF);
    }
    for (const std::size_t i : {3u, 0u, 11u, 7u}) panes[i].reset();
    for (std::size_t i = 0; i < panes.size(); ++i) {
        if (panes[i] == nullptr) continue;
        EXPECT_EQ(OnlyColor(*panes[i]), i % 2 ? 0x0000FFu : 0xFF0000u) << i;
    }
}

TEST(Viewers, AreUnaffectedWhenAnotherOneCloses) {
    auto left = CreateScenePane(OffScreen(40, 30), nullptr);
    auto right = CreateScenePane(OffScreen(64, 48), nullptr);
    ASSERT_TRUE(left && right);
    ImportSquare(left->Methods(), 10);
    ImportSquare(right->Methods(), 10);
    left->Methods().CenterView();
    right->Methods().CenterView();
    Picture before, after;
    ASSERT_TRUE(right->CapturePicture(&before));
    ASSERT_NE(before.pixels[24 * 64 + 32], before.pixels[0]);
    left->Methods().PerformRefresh();  // its context is current now
    left.reset();
    ASSERT_TRUE(right->CapturePicture(&after));
    EXPECT_EQ(after.pixels, before.pixels);
    right->Methods().SetObjectColor(0, 0x0000FF);
    ASSERT_TRUE(right->CapturePicture(&after));
    EXPECT_NE(after.pixels[24 * 64 + 32], before.pixels[24 * 64 + 32]);
}

TEST(Viewers, WithDifferentContextsDrawAlternateFrames) {
    WindowRequest sampled = OffScreen(33, 21);
    sampled.samples = 4, sampled.glMajor = 4, sampled.glMinor = 0;
    const auto plain = CreateScenePane(OffScreen(20, 50), nullptr);
    const auto other = CreateScenePane(sampled, nullptr);
    ASSERT_TRUE(plain && other);
    plain->Methods().SetBackgroundColors(0x00FF00, 0x00FF00);
    other->Methods().SetBackgroundColors(0x0000FF, 0x0000FF);
    for (int i = 0; i < 20; ++i) {
        EXPECT_EQ(OnlyColor(*plain), 0x00FF00u) << i;
        EXPECT_EQ(OnlyColor(*other), 0xFF0000u) << i;
        plain->Methods().PerformInvalidate();
        other->Methods().PerformInvalidate();
        plain->ProcessEvents();
        other->ProcessEvents();
    }
}

TEST(Viewers, CanBeDestroyedDuringAParallelImport) {
    for (const WindowRequest& request : {OffScreen(32, 32), NoPicture()}) {
        auto pane = CreateScenePane(request, nullptr);
        ASSERT_NE(pane, nullptr);
        void* control = nullptr;
        ImportMeasurementEntry import = nullptr;
        pane->Methods().BeginParallelImport(&control, &import);
        ASSERT_NE(control, nullptr);
        const auto work = [&](int index) {
            const std::vector<float> points{0, 0, 0, 1000, 0, 0, 0, 1000, 0, 1000, 1000, 0}, confidence(4, 1.0f);
            const std::vector<float> trafo{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
            const std::vector<std::uint8_t> classes(4, 0);
            EXPECT_TRUE(import(control, L"grid", 2, 2, points.data(), confidence.data(), trafo.data(), classes.data(),
                               nullptr, 0xFFFFFF, index));
        };
        std::vector<std::thread> workers;
        for (int i = 0; i < 4; ++i) workers.emplace_back(work, i);
        for (std::thread& worker : workers) worker.join();
        EXPECT_EQ(pane->Methods().GetNumObjects(), 0);  // all are staged
        pane.reset();
    }
    const auto next = CreateScenePane(OffScreen(8, 8), nullptr);  // no lock is still held
    ASSERT_NE(next, nullptr);
    next->Methods().SetBackgroundColors(0xFFFFFF, 0xFFFFFF);
    EXPECT_EQ(OnlyColor(*next), 0xFFFFFFu);
}

void ImportAndClear(ScenePane& pane, int times) {
    for (int i = 0; i < times; ++i) {
        ImportSquare(pane.Methods(), 64);
        pane.Methods().PerformRefresh();
        pane.Methods().ClearData();
    }
    ASSERT_EQ(pane.Methods().GetNumObjects(), 0);
}

TEST(Memory, StaysFlatOverAThousandImportsAndClears) {
    for (const WindowRequest& request : {OffScreen(32, 32), NoPicture()}) {
        const auto pane = CreateScenePane(request, nullptr);
        ASSERT_NE(pane, nullptr);
        ImportAndClear(*pane, 100);
        const long megabytes = ResidentMegabytes();
        ImportAndClear(*pane, 900);  // 225 MB of vertices and triangles in all, and the same in OpenGL buffers
        EXPECT_LE(ResidentMegabytes() - megabytes, 8 + kQuarantineMegabytes);
    }
}

TEST(TheLibrary, PrintsNothingWhenTheHostHasASink) {
    const auto useIt = [] {
        WindowRequest refused = OffScreen(8, 8);
        refused.glMajor = 9;
        std::string reason;
        EXPECT_EQ(CreateScenePane(refused, &reason), nullptr);
        WindowRequest noWindow;
        noWindow.kind = WindowRequest::Kind::Child;
        noWindow.display = ":54321";
        EXPECT_EQ(CreateScenePane(noWindow, &reason), nullptr);
        const auto pane = CreateScenePane(OffScreen(8, 8), &reason);
        ASSERT_NE(pane, nullptr);
        KV_ScenePane::_DKV_ScenePane& methods = pane->Methods();
        methods.ImportScan(L"/no/such/file.pcm", 0);
        methods.ImportScan(L"/no/such/file.pax", 0);
        methods.ImportScan(L"/no/such/file.xdt", 0);
        methods.AlignInteractive();
        methods.AlignPickPoints();
        methods.FinishInteraction();
        methods.AboutBox();
        float f = 0;
        methods.GetObjectBoundingBox(5, &f, &f, &f, &f, &f, &f);
        ImportSquare(methods, 5);
        methods.SetShadowMode(1);
        methods.PerformRefresh();
        methods.RecreateOpenglContext(9, 9, 0);
    };
    std::string heard;
    KV_ScenePane::SetDebugOutputSink([&heard](std::string_view text) { heard += text; });
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    useIt();
    const std::string errors = testing::internal::GetCapturedStderr();
    const std::string output = testing::internal::GetCapturedStdout();
    KV_ScenePane::SetDebugOutputSink({});
    EXPECT_EQ(output, "");
    EXPECT_EQ(errors, "");
    EXPECT_NE(heard.find("Requested version: 9.3"), std::string::npos) << heard;
    EXPECT_NE(heard.find("Requested version: 9.9"), std::string::npos) << heard;
}

TEST(TheLibrary, WritesTheDebuggerOutputToStandardErrorWithoutASink) {
    const auto pane = CreateScenePane(NoPicture(), nullptr);
    ASSERT_NE(pane, nullptr);
    testing::internal::CaptureStderr();
    float f = 0;
    pane->Methods().GetObjectBoundingBox(5, &f, &f, &f, &f, &f, &f);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "CKV_ScenePaneCtrl::GetObjectBoundingBox() object index out of range!\n- objectIdx = 5\n"
              "- m_vpMeshes.size() = 0\n");
}

}  // namespace
