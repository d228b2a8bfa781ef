// The images of the host over the scene: position, blending, list of overlays, invalid images, new contexts.
#include <limits>

#include "render/GlSnapshot.h"
#include "render/SceneFixture.h"
#include "support/BareContext.h"
#include "support/DriverTraits.h"
#include "support/ProcessSize.h"

using namespace lighting;

namespace {

/// Pixels of different colours, bytes in the order blue, green, red, alpha, top row first.
struct Image {
    Image(int w, int h, std::uint8_t alpha = 255) : width(w), height(h) {
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x)
                for (const int byte : {(7 * x + 3 * y) % 256, (60 + 5 * y) % 256, (120 + 11 * x) % 256, int{alpha}})
                    bytes.push_back(static_cast<std::uint8_t>(byte));
    }
    static Image Plain(int w, int h, const std::array<int, 4>& bgra) {
        Image image(w, h);
        for (std::size_t i = 0; i < image.bytes.size(); ++i) image.bytes[i] = static_cast<std::uint8_t>(bgra[i % 4]);
        return image;
    }
    [[nodiscard]] Vec3 At(int x, int y) const {
        const std::uint8_t* p = &bytes[static_cast<std::size_t>(4 * (y * width + x))];
        return {p[2] / 255.0, p[1] / 255.0, p[0] / 255.0};
    }
    int width, height;
    std::vector<std::uint8_t> bytes;
};

struct Anchor {
    float relPosX = 0, relPosY = 0, relOffsetX = 0, relOffsetY = 0, absOffsetX = 0, absOffsetY = 0;
};

int AddImage(CKV_ScenePaneCtrl& control, const Image& image, const Anchor& a = {}) {
    return control.AddOverlayData(image.bytes.data(), image.width, image.height, a.relPosX, a.relPosY, a.relOffsetX,
                                  a.relOffsetY, a.absOffsetX, a.absOffsetY);
}

class OverlayScene : public SceneTest {
protected:
    using SceneTest::SceneTest;
    /// Expects the pixels of the image at that position and ignores all others.
    void ExpectPixelsOf(const Image& image, int left, int top) {
        for (int y = 0; y < image.height; ++y)
            for (int x = 0; x < image.width; ++x)
                if (DistanceAt(left + x, top + y, image.At(x, y)) > 1.0) {
                    ExpectPixel(left + x, top + y, image.At(x, y), 1.0);
                    return;  // one failure is enough
                }
    }
    /// Expects the image with its first pixel at that position, clipped to the window, and background around it.
    void ExpectImageAt(const Image& image, int left, int top) {
        int seen = 0;
        for (int y = 0; y < picture.height; ++y)
            for (int x = 0; x < picture.width; ++x) {
                const bool in = x >= left && y >= top && x < left + image.width && y < top + image.height;
                seen += in ? 1 : 0;
                const Vec3 expected = in ? image.At(x - left, y - top) : kBackground;
                if (DistanceAt(x, y, expected) > 1.0) {
                    ExpectPixel(x, y, expected, 1.0);
                    return;  // one failure is enough
                }
            }
        EXPECT_GT(seen, 0);
    }
};

/// The tests that run off-screen and in an X11 window.
class Overlays : public OverlayScene, public testing::WithParamInterface<WindowKind> {
protected:
    Overlays() : OverlayScene(GetParam()) {}
};

INSTANTIATE_TEST_SUITE_P(Windows, Overlays, testing::ValuesIn(WindowKinds()),
                         [](const auto& row) { return NameOf(row.param); });

TEST_P(Overlays, OfAnySizeAreShownPixelByPixel) {
    const std::pair<int, int> sizes[] = {{1, 1}, {3, 5}, {5, 3}, {17, 1}, {1, 19}, {64, 64}, {101, 37}};
    for (const auto& [width, height] : sizes) {
        const Image image(width, height);
        const int index = AddImage(*pane, image, {.absOffsetX = 40, .absOffsetY = 30});
        Frame();
        ExpectImageAt(image, 40, 30);
        pane->SetOverlayVisibility(index, 0);
    }
}

TEST_P(Overlays, AreUploadedWithTheDefaultUnpackState) {
    ASSERT_TRUE(pane->MakeContextCurrent());
    EXPECT_EQ(Get(GL_UNPACK_ALIGNMENT), 4);
    for (const GLenum name : {GL_UNPACK_ROW_LENGTH, GL_UNPACK_SKIP_ROWS, GL_UNPACK_SKIP_PIXELS, GL_UNPACK_SWAP_BYTES,
                              GL_UNPACK_LSB_FIRST, GL_PIXEL_UNPACK_BUFFER_BINDING})
        EXPECT_EQ(Get(name), 0);
}

TEST_P(Overlays, DoNotChangeTheOpenGlStateWhenAdded) {
    ASSERT_TRUE(pane->MakeContextCurrent());
    const GlSnapshot before = TakeGlSnapshot();
    AddImage(*pane, Image(3, 3));
    ExpectSameGlState(before, TakeGlSnapshot(), "AddOverlayData");
}

// ---- position

struct Pinned {
    const char* name;
    Anchor anchor;
    int left, top;  ///< of an image of 20 x 10 in a window of 320 x 240
};
void PrintTo(const Pinned& row, std::ostream* out) { *out << row.name; }

const Pinned kPinned[] = {
    {"TopLeft", {}, 0, 0},
    {"TopRight", {.relPosX = 1, .relOffsetX = -1}, 300, 0},
    {"BottomLeft", {.relPosY = 1, .relOffsetY = -1}, 0, 230},
    {"BottomRight", {.relPosX = 1, .relPosY = 1, .relOffsetX = -1, .relOffsetY = -1}, 300, 230},
    {"LeftEdgeInTheMiddle", {.relPosY = 0.5f, .relOffsetY = -0.5f}, 0, 115},
    {"RightEdgeInTheMiddle", {.relPosX = 1, .relPosY = 0.5f, .relOffsetX = -1, .relOffsetY = -0.5f}, 300, 115},
    {"TopEdgeInTheMiddle", {.relPosX = 0.5f, .relOffsetX = -0.5f}, 150, 0},
    {"BottomEdgeInTheMiddle", {.relPosX = 0.5f, .relPosY = 1, .relOffsetX = -0.5f, .relOffsetY = -1}, 150, 230},
    {"Centre", {.relPosX = 0.5f, .relPosY = 0.5f, .relOffsetX = -0.5f, .relOffsetY = -0.5f}, 150, 115},
    {"AMarginInPixels",
     {.relPosX = 1, .relPosY = 1, .relOffsetX = -1, .relOffsetY = -1, .absOffsetX = -7, .absOffsetY = -9},
     293,
     221},
    {"PartsOfEverything",
     {.relPosX = 0.25f, .relPosY = 0.75f, .relOffsetX = 2, .relOffsetY = -3, .absOffsetX = 5, .absOffsetY = 1},
     125,
     151},
    {"PartlyOutsideAtTheTopLeft", {.absOffsetX = -13, .absOffsetY = -4}, -13, -4},
    {"PartlyOutsideAtTheBottomRight", {.relPosX = 1, .relPosY = 1, .absOffsetX = -3, .absOffsetY = -2}, 317, 238},
};

class OverlayAnchors : public OverlayScene, public testing::WithParamInterface<Pinned> {};

INSTANTIATE_TEST_SUITE_P(Table, OverlayAnchors, testing::ValuesIn(kPinned),
                         [](const auto& row) { return row.param.name; });

TEST_P(OverlayAnchors, PlaceTheImage) {
    const Image image(20, 10);
    AddImage(*pane, image, GetParam().anchor);
    Frame();
    ExpectImageAt(image, GetParam().left, GetParam().top);
}

TEST_P(Overlays, KeepSizeAndDistanceToTheEdgesWhenTheWindowIsResized) {
    const Image image(20, 10);
    AddImage(*pane, image,
             {.relPosX = 1, .relPosY = 1, .relOffsetX = -1, .relOffsetY = -1, .absOffsetX = -5, .absOffsetY = -5});
    for (const auto& [width, height] : {std::pair{400, 200}, {101, 303}, {640, 480}}) {
        Resize(width, height);
        Frame();
        ASSERT_EQ(picture.width, width);
        ExpectImageAt(image, width - 25, height - 15);
    }
}

TEST_P(Overlays, DoNotFollowTheView) {
    const Image image(20, 10);
    AddImage(*pane, image, {.absOffsetX = 9, .absOffsetY = 8});
    pane->SetViewMode(KV_ScenePane::ViewObliqueZUp);
    pane->m_fZoom = 0.3f;
    pane->SetupViewMatrices();
    Frame();
    ExpectImageAt(image, 9, 8);
}

TEST_P(Overlays, AtFractionalPositionsAreInterpolated) {
    Image image = Image::Plain(2, 4, {0, 0, 0, 255});
    for (std::size_t y = 0; y < 4; ++y) image.bytes[8 * y + 6] = 200;  // red of the second column
    AddImage(*pane, image, {.absOffsetX = 100.5f, .absOffsetY = 50});
    Frame();
    // The centre of column 101 is at 1.0 in the image, the border of its two pixels.
    ExpectPixel(101, 52, {100 / 255.0, 0, 0});
}

TEST_P(Overlays, AtHalfPixelsDoNotMixOppositeEdges) {
    const Image image(6, 5);
    AddImage(*pane, image, {.absOffsetX = 100.5f, .absOffsetY = 50.5f});
    Frame();
    // A pixel shows the mean of the four image pixels that meet at its centre; beyond an edge, those at the edge. The
    // outermost pixel centres are on the border of the quad: drivers choose which of them they draw.
    const auto mean = [&image](int x, int y) {
        Vec3 sum{};
        for (const auto& [dx, dy] : {std::pair{-1, -1}, {-1, 0}, {0, -1}, {0, 0}})
            sum =
                sum + 0.25 * image.At(std::clamp(x + dx, 0, image.width - 1), std::clamp(y + dy, 0, image.height - 1));
        return sum;
    };
    int drawnAtTheBorder = 0;
    for (int y = 0; y <= image.height; ++y)
        for (int x = 0; x <= image.width; ++x) {
            const bool border = x == 0 || y == 0 || x == image.width || y == image.height;
            if (border && DistanceAt(100 + x, 50 + y, kBackground) <= 1.0) continue;
            ExpectPixel(100 + x, 50 + y, mean(x, y), 1.5);  // some means end in .5
            drawnAtTheBorder += border ? 1 : 0;
        }
    EXPECT_GT(drawnAtTheBorder, 0) << "no edge was compared";
}

// ---- colour

TEST_P(Overlays, AreBlendedByTheirAlpha) {
    for (const int alpha : {0, 1, 64, 128, 254}) {
        const int index = AddImage(*pane, Image::Plain(8, 8, {240, 40, 140, alpha}), {.absOffsetX = 30});
        Frame();
        const double a = alpha / 255.0;
        ExpectPixel(34, 4, a * Vec3{140 / 255.0, 40 / 255.0, 240 / 255.0} + (1 - a) * kBackground, 1.0);
        pane->SetOverlayVisibility(index, 0);
    }
}

TEST_P(Overlays, AreDrawnInTheOrderOfTheirIndices) {
    AddImage(*pane, Image::Plain(8, 8, {0, 0, 255, 255}));
    AddImage(*pane, Image::Plain(8, 8, {255, 0, 0, 128}), {.absOffsetX = 4});
    Frame();
    ExpectPixel(2, 4, {1, 0, 0}, 1.0);
    ExpectPixel(6, 4, {127 / 255.0, 0, 128 / 255.0}, 1.0);
    ExpectPixel(10, 4, (128 / 255.0) * Vec3{0, 0, 1} + (127 / 255.0) * kBackground, 1.0);
}

TEST_P(Overlays, CoverEveryObjectUnlit) {
    Add({.center = {0, 0, 55}, .half = 5});  // in front of everything
    const Image image(20, 10);
    AddImage(*pane, image, {.absOffsetX = 150, .absOffsetY = 100});
    Frame();
    for (const auto& [x, y] : {std::pair{0, 0}, {19, 9}, {7, 3}}) ExpectPixel(150 + x, 100 + y, image.At(x, y), 1.0);
}

TEST_P(Overlays, AreNotDisturbedByShadowsOrTexturedObjects) {
    const Image image(20, 10);
    AddImage(*pane, image, {.absOffsetX = 5, .absOffsetY = 5});
    Add({});
    using namespace KV_ScenePane;
    for (const DrawMode mode : {DrawModePerPixel, DrawModeShadowMap, DrawModeGouraud}) {
        pane->m_nDrawMode = mode;
        pane->SetShadowMode(mode == DrawModeGouraud ? 1 : 0);
        Frame();
        ExpectPixel(5, 5, image.At(0, 0), 1.0);
        ExpectPixel(24, 14, image.At(19, 9), 1.0);
    }
}

// ---- list

TEST_P(Overlays, KeepTheirIndexWhenTheyAreHidden) {
    const Image first = Image::Plain(8, 8, {0, 0, 255, 255}), second = Image::Plain(8, 8, {0, 255, 0, 255});
    EXPECT_EQ(AddImage(*pane, first), 0);
    pane->SetOverlayVisibility(0, 0);
    EXPECT_EQ(AddImage(*pane, second, {.absOffsetX = 20}), 1);
    Frame();
    ExpectImageAt(second, 20, 0);
    pane->SetOverlayVisibility(0, 1);
    pane->SetOverlayVisibility(1, 0);
    Frame();
    ExpectImageAt(first, 0, 0);
    EXPECT_EQ(AddImage(*pane, second), 2);
}

TEST_P(Overlays, AreVisibleByTheLowByteOfTheArgument) {
    const Image image(8, 8);
    AddImage(*pane, image);
    for (const std::int32_t off : {256, 0x7FFFFF00, 0}) {
        pane->SetOverlayVisibility(0, off);
        EXPECT_EQ(pane->m_vOverlays[0].m_bVisible, 0);
        Frame();
        EXPECT_EQ(PixelsThatAreNotBackground(), 0) << off;
    }
    for (const std::int32_t on : {-1, 2, 0x101}) {
        pane->SetOverlayVisibility(0, on);
        EXPECT_EQ(pane->m_vOverlays[0].m_bVisible, on & 0xFF);
        Frame();
        ExpectImageAt(image, 0, 0);
    }
}

TEST_P(Overlays, DoNotRequestAFrame) {
    pane.window->Forget();
    AddImage(*pane, Image(8, 8));
    pane->SetOverlayVisibility(0, 0);
    EXPECT_EQ(pane.window->refreshes + pane.window->invalidates + pane.window->eraseInvalidates, 0);
}

TEST_P(Overlays, AreCopiedDuringTheCall) {
    const Image image(8, 8);
    Image given = image;
    AddImage(*pane, given);
    std::fill(given.bytes.begin(), given.bytes.end(), std::uint8_t{0});
    Frame();
    ExpectImageAt(image, 0, 0);
}

TEST_P(Overlays, CanBeAddedWhileAnotherContextIsCurrent) {
    OffscreenControl other(100, 100);
    ASSERT_TRUE(other->MakeContextCurrent());
    const Image image(8, 8);
    AddImage(*pane, image);
    Frame();
    ExpectImageAt(image, 0, 0);
}

TEST_P(Overlays, RemainWhenTheDataIsCleared) {
    const Image image(8, 8);
    AddImage(*pane, image);
    pane->ClearData();
    Frame();
    ExpectImageAt(image, 0, 0);
}

// ---- no image

TEST_P(Overlays, WithoutPixelsAreTransparent) {
    EXPECT_EQ(pane->AddOverlayData(nullptr, 30, 20, 0, 0, 0, 0, 0, 0), 0);
    EXPECT_EQ(pane->m_vOverlays[0].m_nWidth, 30);
    EXPECT_EQ(pane->m_vOverlays[0].m_nHeight, 20);
    Frame();
    EXPECT_EQ(PixelsThatAreNotBackground(), 0);
    EXPECT_EQ(AddImage(*pane, Image(8, 8)), 1);
}

TEST_P(Overlays, OfZeroOrNegativeSizeHaveAnIndexAndShowNothing) {
    const Image image(8, 8);
    constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
    const std::pair<int, int> sizes[] = {{0, 0}, {0, 5}, {5, 0}, {-1, 5}, {5, -1}, {-3, -7}, {kLowest, kLowest}};
    std::int32_t index = 0;
    for (const auto& [width, height] : sizes)
        for (const std::uint8_t* const bytes : {image.bytes.data(), static_cast<const std::uint8_t*>(nullptr)})
            EXPECT_EQ(pane->AddOverlayData(bytes, width, height, 0.5f, 0.5f, 0, 0, 0, 0), index++) << width;
    Frame();
    EXPECT_EQ(PixelsThatAreNotBackground(), 0);
    pane->RecreateOpenglContext(3, 3, 0);
    Frame();
    EXPECT_EQ(PixelsThatAreNotBackground(), 0);
    EXPECT_EQ(AddImage(*pane, image), index);
    Frame();
    ExpectImageAt(image, 0, 0);
}

// A bound pixel buffer that is too small makes OpenGL reject the upload of a valid image.
TEST_P(Overlays, RejectedByOpenGlShowNothingAndLeaveNoError) {
    ASSERT_TRUE(pane->MakeContextCurrent());
    GLuint buffer = 0;
    glGenBuffers(1, &buffer);
    glBindBuffer(GL_PIXEL_UNPACK_BUFFER, buffer);
    glBufferData(GL_PIXEL_UNPACK_BUFFER, 1, nullptr, GL_STATIC_DRAW);
    const Image image(8, 8);
    EXPECT_EQ(AddImage(*pane, image), 0);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    EXPECT_EQ(pane.debugOutput.Take(), "CKV_ScenePaneCtrl::AddOverlayData(): OpenGL did not take the image\n");
    glDeleteBuffers(1, &buffer);
    Frame();
    EXPECT_EQ(PixelsThatAreNotBackground(), 0);
    EXPECT_EQ(AddImage(*pane, image, {.absOffsetX = 20}), 1);
    Frame();
    ExpectImageAt(image, 20, 0);
}

TEST_P(Overlays, AreUploadedDespiteAnEarlierOpenGlError) {
    ASSERT_TRUE(pane->MakeContextCurrent());
    glEnable(GL_TRIANGLES);  // not a capability: raises GL_INVALID_ENUM
    const Image image(8, 8);
    AddImage(*pane, image);
    EXPECT_EQ(pane.debugOutput.Take(), "");
    Frame();
    ExpectImageAt(image, 0, 0);
}

TEST_P(Overlays, LargerThanTheLimitOfTheDriverShowNothingAndReportWhy) {
    ASSERT_TRUE(pane->MakeContextCurrent());
    const int side = Get(GL_MAX_TEXTURE_SIZE);
    const Image widest = Image::Plain(side, 1, {0, 0, 255, 255}), tooWide = Image::Plain(side + 1, 1, {0, 0, 255, 255});
    EXPECT_EQ(AddImage(*pane, tooWide, {.absOffsetY = 9}), 0);
    EXPECT_EQ(pane.debugOutput.Take(),
              "CKV_ScenePaneCtrl::AddOverlayData(): the image is larger than the driver's textures\n");
    Frame();
    EXPECT_EQ(PixelsThatAreNotBackground(), 0);
    EXPECT_EQ(AddImage(*pane, widest, {.absOffsetY = 9}), 1);
    Frame();
    EXPECT_EQ(PixelsThatAreNotBackground(), 320);
    EXPECT_EQ(pane.debugOutput.Take(), "");
}

TEST_P(Overlays, AreCompleteWhenTheSinkOfTheReasonAddsSomeItself) {
    ASSERT_TRUE(pane->MakeContextCurrent());
    const Image tooWide = Image::Plain(Get(GL_MAX_TEXTURE_SIZE) + 1, 1, {0, 0, 255, 255});
    const Image image(8, 8);
    for (int i = 0; i < 3; ++i) AddImage(*pane, tooWide);
    KV_ScenePane::SetDebugOutputSink([&](std::string_view) {
        for (int i = 0; i < 50; ++i) AddImage(*pane, image);  // the list grows beyond its memory
    });
    pane->RecreateOpenglContext(3, 3, 0);  // which reports each of the three again
    KV_ScenePane::SetDebugOutputSink({});
    ASSERT_EQ(pane->m_vOverlays.size(), 153u);
    for (std::size_t i = 0; i < 153; ++i) EXPECT_EQ(pane->m_vOverlays[i].m_uTexture != 0, i >= 3) << i;
}

TEST_P(Overlays, InAWindowWithoutAreaCauseNoOpenGlError) {
    if (GetParam() != WindowKind::OffScreen) GTEST_SKIP() << "an X window has at least one pixel";
    AddImage(*pane, Image(8, 8));
    for (const auto& [width, height] : {std::pair{0, 0}, {5, 0}, {0, 5}}) {
        Resize(width, height);
        pane->PerformRefresh();
        ASSERT_TRUE(pane->MakeContextCurrent());
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR)) << width << " " << height;
        EXPECT_EQ(pane->m_nWidth, width) << "no frame was drawn";
        EXPECT_EQ(pane->m_nHeight, height) << "no frame was drawn";
    }
}

// ---- a new context

TEST_P(Overlays, AreRestoredInANewContextWithIndexAndVisibility) {
    const Image first(8, 8), hidden = Image::Plain(8, 8, {0, 255, 0, 255}), third(11, 5);
    AddImage(*pane, first);
    AddImage(*pane, hidden, {.absOffsetX = 20});
    pane->AddOverlayData(nullptr, 30, 20, 0, 0, 0, 0, 100, 100);
    AddImage(*pane, third, {.relPosX = 1, .relPosY = 1, .relOffsetX = -1, .relOffsetY = -1});
    pane->SetOverlayVisibility(1, 0);
    pane->RecreateOpenglContext(3, 3, 0);
    Look(320, 240);
    pane->SetShadowMode(1);  // its texture may have the name that an overlay had in the old context
    Frame();
    ExpectPixelsOf(first, 0, 0);
    ExpectPixelsOf(third, 309, 235);
    EXPECT_EQ(PixelsThatAreNotBackground(), 8 * 8 + 11 * 5);
    pane->SetOverlayVisibility(1, 1);
    pane->SetOverlayVisibility(0, 0);
    Frame();
    ExpectPixelsOf(hidden, 20, 0);
    EXPECT_EQ(PixelsThatAreNotBackground(), 8 * 8 + 11 * 5);
    EXPECT_EQ(AddImage(*pane, first, {.absOffsetX = 60}), 4);
    Frame();
    ExpectPixelsOf(first, 60, 0);
    ExpectPixelsOf(third, 309, 235);
}

TEST_P(Overlays, AreRestoredInEveryNewContext) {
    const Image first(8, 8), second(11, 5);
    AddImage(*pane, first);
    for (const int samples : {0, 4, 0}) {
        ASSERT_TRUE(pane->MakeContextCurrent());
        pane->RecreateOpenglContext(3, 3, AvailableSamples(samples));
        ASSERT_TRUE(pane.window->Exists());
        if (pane->m_vOverlays.size() == 1) AddImage(*pane, second, {.absOffsetX = 40});
        Frame();
        ExpectPixelsOf(first, 0, 0);
        ExpectPixelsOf(second, 40, 0);
        EXPECT_EQ(PixelsThatAreNotBackground(), 8 * 8 + 11 * 5) << samples;
    }
}

TEST_P(Overlays, AddedWithoutAContextAreShownInTheNextOne) {
    const Image before(8, 8), between(11, 5);
    AddImage(*pane, before);
    pane->RecreateOpenglContext(9, 9, 0);
    ASSERT_FALSE(pane.window->Exists()) << "no driver has version 9.9";
    EXPECT_EQ(AddImage(*pane, between, {.absOffsetX = 40}), 1);
    EXPECT_EQ(AddImage(*pane, between, {.absOffsetX = 80}), 2);
    pane->SetOverlayVisibility(2, 0);
    pane->RecreateOpenglContext(3, 3, 0);
    ASSERT_TRUE(pane.window->Exists());
    Frame();
    ExpectPixelsOf(before, 0, 0);
    ExpectPixelsOf(between, 40, 0);
    EXPECT_EQ(PixelsThatAreNotBackground(), 8 * 8 + 11 * 5);
}

// 16 MiB per image, and the same again for the copy of the driver.
TEST(OverlayMemory, IsFreedWithTheContextAndWithTheControl) {
    TestFolder();
    const Image image = Image::Plain(2048, 2048, {0, 0, 255, 255});
    const auto use = [&] {
        const OffscreenControl pane(64, 64);
        AddImage(*pane, image);
        for (int i = 0; i < 3; ++i) {
            pane->PerformRefresh();
            pane->RecreateOpenglContext(3, 3, 0);
        }
    };
    use();
    const long before = ResidentMegabytes();
    for (int i = 0; i < 5; ++i) use();
    const long growth = ResidentMegabytes() - before;
    const BareContext context;
    EXPECT_LT(growth, 30 + kQuarantineMegabytes + 5 * 4 * LeakedMegabytesPerContext());
}

TEST(OverlaysWithoutOpenGl, AreListedWithoutATexture) {
    NoPictureControl pane;
    const Image image(8, 8);
    EXPECT_EQ(AddImage(*pane, image, {.relPosX = 0.5f}), 0);
    EXPECT_EQ(pane->AddOverlayData(nullptr, 3, 4, 0, 0, 0, 0, 0, 0), 1);
    ASSERT_EQ(pane->m_vOverlays.size(), 2u);
    EXPECT_EQ(pane->m_vOverlays[0].m_uTexture, 0u);
    EXPECT_EQ(pane->m_vOverlays[0].m_fRelPosX, 0.5f);
    EXPECT_EQ(pane->m_vOverlays[1].m_nHeight, 4);
    pane->SetOverlayVisibility(1, 0);
    EXPECT_EQ(pane->m_vOverlays[0].m_bVisible, 1);
    EXPECT_EQ(pane->m_vOverlays[1].m_bVisible, 0);
}

// The context of another control is current and must not receive the texture.
TEST(OverlaysWithoutOpenGl, MakeNoTextureInAnotherContext) {
    OffscreenControl other(100, 100);
    NoPictureControl pane;
    const auto countTextures = [&] {
        EXPECT_TRUE(other->MakeContextCurrent());
        int count = 0;
        for (GLuint name = 1; name < 1000; ++name) count += glIsTexture(name) == GL_TRUE ? 1 : 0;
        return count;
    };
    const int before = countTextures();
    AddImage(*pane, Image(8, 8));
    EXPECT_EQ(countTextures(), before);
    AddImage(*other, Image(8, 8));
    EXPECT_EQ(countTextures(), before + 1);
}

#ifndef NDEBUG
TEST(OverlayDeathTest, AnIndexOutOfRangeFailsTheAssertion) {
    EXPECT_DEATH(
        {
            NoPictureControl pane;
            pane->AddOverlayData(nullptr, 1, 1, 0, 0, 0, 0, 0, 0);
            pane->SetOverlayVisibility(1, 1);
        },
        "index");
    EXPECT_DEATH(
        {
            NoPictureControl pane;
            pane->SetOverlayVisibility(-1, 1);
        },
        "index");
}
#endif

}  // namespace
