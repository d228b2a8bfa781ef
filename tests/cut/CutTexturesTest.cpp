// The silhouette and the textures that a freehand session starts with.
#include <future>

#include "render/GlSnapshot.h"
#include "render/SceneFixture.h"

namespace {

using Pixels = std::vector<std::uint32_t>;
constexpr std::uint32_t kWhite = 0xFFFFFFFF;

class CutTextures : public SceneInEveryWindow {
protected:
    Pixels Image(std::uint32_t name, int width, int height) {
        Pixels pixels(static_cast<std::size_t>(width * height), 0xDEADBEEF);
        glBindTexture(GL_TEXTURE_2D, name);
        glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
        glBindTexture(GL_TEXTURE_2D, 0);
        return pixels;
    }
    /// The silhouette in the present window, top row first; every pixel of it is white or 0.
    Pixels Silhouette() {
        const auto textures = pane->CreateCutMaskTextures();
        if (textures == nullptr) return {};
        drawnWidth = textures->m_nWidth;
        Pixels pixels = Image(textures->m_uSilhouetteTexture, textures->m_nWidth, textures->m_nHeight);
        EXPECT_EQ(std::ranges::count_if(pixels, [](std::uint32_t p) { return p != kWhite && p != 0; }), 0);
        return pixels;
    }
    /// Left, top, right, bottom of what is white, inclusive.
    static std::array<int, 4> WhiteBox(const Pixels& pixels, int width) {
        std::array<int, 4> box{INT32_MAX, INT32_MAX, -1, -1};
        for (int i = 0; i < static_cast<int>(pixels.size()); ++i) {
            if (pixels[static_cast<std::size_t>(i)] == 0) continue;
            box = {std::min(box[0], i % width), std::min(box[1], i / width), std::max(box[2], i % width),
                   std::max(box[3], i / width)};
        }
        return box;
    }
    std::array<int, 4> SilhouetteBox() {
        const Pixels pixels = Silhouette();
        return WhiteBox(pixels, drawnWidth);
    }

    int drawnWidth = 0;  ///< of the last Silhouette()
    static constexpr std::array<int, 4> kNone{INT32_MAX, INT32_MAX, -1, -1};
};

INSTANTIATE_TEST_SUITE_P(Kinds, CutTextures, testing::ValuesIn(WindowKinds()),
                         [](const auto& row) { return NameOf(row.param); });

TEST_P(CutTextures, HaveTheSizeOfTheDrawingAreaAndStartEmpty) {
    Frame();
    const auto textures = pane->CreateCutMaskTextures();
    ASSERT_NE(textures, nullptr);
    EXPECT_EQ(textures->m_nWidth, 320);
    EXPECT_EQ(textures->m_nHeight, 240);
    for (const std::uint32_t name :
         {textures->m_uLineTexture, textures->m_uFillTexture, textures->m_uSilhouetteTexture}) {
        EXPECT_EQ(Image(name, 320, 240), Pixels(320 * 240, 0));
        glBindTexture(GL_TEXTURE_2D, name);
        GLint value = 0;
        for (const GLenum filter : {GL_TEXTURE_MIN_FILTER, GL_TEXTURE_MAG_FILTER}) {
            glGetTexParameteriv(GL_TEXTURE_2D, filter, &value);
            EXPECT_EQ(value, GL_NEAREST);
        }
        glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_INTERNAL_FORMAT, &value);
        EXPECT_EQ(value, GL_RGBA8);
        glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_WIDTH, &value);
        EXPECT_EQ(value, 320);
    }
    glBindTexture(GL_TEXTURE_2D, 0);
    for (const std::uint32_t name : {textures->m_uLineBuffer, textures->m_uFillBuffer}) {
        glBindBuffer(GL_PIXEL_UNPACK_BUFFER, name);
        GLint size = 0, usage = 0;
        glGetBufferParameteriv(GL_PIXEL_UNPACK_BUFFER, GL_BUFFER_SIZE, &size);
        glGetBufferParameteriv(GL_PIXEL_UNPACK_BUFFER, GL_BUFFER_USAGE, &usage);
        EXPECT_EQ(size, 320 * 240 * 4);
        EXPECT_EQ(usage, GL_STREAM_DRAW);
        Pixels content(320 * 240, 1);
        glGetBufferSubData(GL_PIXEL_UNPACK_BUFFER, 0, size, content.data());
        EXPECT_EQ(content, Pixels(320 * 240, 0));
    }
    glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

// 24 pixels per unit; the square reaches from the middle up and to the left.
TEST_P(CutTextures, ShowTheObjectsWithTheTopRowFirst) {
    Add({.center = {-1, 2, 0}, .half = 1}, {1, 0, 0});
    Frame();
    EXPECT_EQ(SilhouetteBox(), (std::array{112, 48, 159, 95}));
}

TEST_P(CutTextures, ShowBackFacesAndTexturedObjectsAndNoHiddenOnes) {
    Add({.center = {-3, 0, 0}, .half = 1, .turned = true});
    Add({.center = {3, 0, 0}, .half = 1}).m_iVisible = 0;
    Mesh& textured = Add({.center = {0, 3, 0}, .half = 1});
    AddPlainTexture(textured, {0, 0, 0, 0});
    Frame();
    EXPECT_EQ(SilhouetteBox(), (std::array{64, 24, 183, 143}));
    textured.m_iVisible = 0;
    EXPECT_EQ(SilhouetteBox(), (std::array{64, 96, 111, 143}));
    pane->m_vpMeshes[0]->m_iVisible = 0;
    EXPECT_EQ(SilhouetteBox(), kNone);
}

TEST_P(CutTextures, EndAtAnActiveClipPlane) {
    Add({});  // columns 112 to 207
    pane->m_clipPlane.SetCenter({1, 0, 0});
    pane->m_clipPlane.SetNormal({-1, 0, 0});
    Frame();
    EXPECT_EQ(SilhouetteBox(), (std::array{112, 72, 207, 167})) << "the plane does not clip";
    pane->m_bClipPlaneActive = 1;
    EXPECT_EQ(SilhouetteBox(), (std::array{112, 72, 183, 167}));
    pane->m_bClipPlaneActive = 0;
    EXPECT_EQ(SilhouetteBox(), (std::array{112, 72, 207, 167}));
}

TEST_P(CutTextures, ShowSolidObjectsInEveryDrawMode) {
    Add({});
    for (std::int16_t mode = 0; mode <= 7; ++mode) {
        pane->m_nDrawMode = mode;
        pane->m_bMoveReduced = pane->m_bMoving = 1;
        Frame();
        const Pixels pixels = Silhouette();
        EXPECT_EQ(std::ranges::count(pixels, kWhite), 96 * 96) << "mode " << mode;
    }
}

TEST_P(CutTextures, FollowAWindowThatHasChangedItsSizeSinceTheLastFrame) {
    Add({.center = {0, 1, 0}, .half = 1});
    Frame();
    Resize(200, 400);  // 20 pixels per unit
    EXPECT_EQ(SilhouetteBox(), (std::array{80, 160, 119, 199}));
    EXPECT_EQ(drawnWidth, 200);
    Frame();
    EXPECT_EQ(picture.width, 200);
    EXPECT_EQ(DrawnPixelsIn(80, 160, 120, 200), 1600);
    EXPECT_EQ(PixelsThatAreNotBackground(), 1600);
}

TEST_P(CutTextures, AreMadeAgainAtTheFirstClickWhenTheViewHasTurnedSinceTheStart) {
    Add({.center = {-1, 2, 0}, .half = 1});
    Frame();
    pane->StartSegmentation(KV_ScenePane::FreehandInside);
    const auto* const unturned = pane->m_pCutMask.get();
    pane->OnLeftDown(KV_ScenePane::kMouseLeft, 20, 20);
    ASSERT_NE(pane->m_pCutSession, nullptr);
    EXPECT_EQ(pane->m_pCutSession->m_pTextures.get(), unturned);
    pane->EndSegmentation();
    pane->StartSegmentation(KV_ScenePane::FreehandInside);
    pane->SetViewParams(0, 1, 0, -1, 0, 0, 0, 0, 0, 1, 1);  // a quarter turn, as a turntable does in its frames
    pane->OnLeftDown(KV_ScenePane::kMouseLeft, 20, 20);
    ASSERT_NE(pane->m_pCutSession, nullptr);
    Frame();
    const CutMaskTextures& textures = *pane->m_pCutSession->m_pTextures;
    const std::array<int, 4> box = WhiteBox(Image(textures.m_uSilhouetteTexture, 320, 240), 320);
    EXPECT_EQ(box, SilhouetteBox());
    EXPECT_NE(box, (std::array{112, 48, 159, 95})) << "where it was at the start";
    EXPECT_NE(box, kNone);
}

TEST_P(CutTextures, LeaveColourAndDepthOfTheFrameAlone) {
    Add({}, {0.2, 0.9, 0.4});
    Frame();
    pane->m_frameTarget.Bind();
    const auto read = [](GLenum format, GLenum type) {
        std::vector<std::uint8_t> bytes(320 * 240 * 4);
        glReadPixels(0, 0, 320, 240, format, type, bytes.data());
        return bytes;
    };
    const auto colors = read(GL_RGBA, GL_UNSIGNED_BYTE), depths = read(GL_DEPTH_COMPONENT, GL_FLOAT);
    const GlSnapshot before = TakeGlSnapshot();
    const auto textures = pane->CreateCutMaskTextures();
    ExpectSameGlState(before, TakeGlSnapshot(), "the silhouette");
    ExpectDefaultStacksAndBindings();
    EXPECT_EQ(read(GL_RGBA, GL_UNSIGNED_BYTE), colors);
    EXPECT_EQ(read(GL_DEPTH_COMPONENT, GL_FLOAT), depths);
    EXPECT_EQ(pane.window->swaps, 1) << "of the frame";
}

TEST_P(CutTextures, AreMadeUnderTheWaitCursorAndQueueARepaint) {
    Frame();
    pane.window->Forget();
    const auto textures = pane->CreateCutMaskTextures();
    EXPECT_EQ(pane.window->waitCursorsBegun, 1);
    EXPECT_EQ(pane.window->waitCursorsEnded, 1);
    EXPECT_EQ(pane.window->invalidates, 1);
    EXPECT_EQ(pane.window->eraseInvalidates + pane.window->refreshes, 0);
}

bool IsDrawLockFree() {
    return std::async(std::launch::async,
                      [] {
                          const bool isFree = g_drawLock->try_lock();
                          if (isFree) g_drawLock->unlock();
                          return isFree;
                      })
        .get();
}

int s_unlockedBindings = 0;
std::vector<GLuint> s_boundFramebuffers;
PFNGLBINDFRAMEBUFFERPROC s_bindFramebuffer = nullptr;
void GLAPIENTRY BindUnderTheLock(GLenum target, GLuint framebuffer) {
    s_boundFramebuffers.push_back(framebuffer);
    if (IsDrawLockFree()) ++s_unlockedBindings;
    s_bindFramebuffer(target, framebuffer);
}

TEST_P(CutTextures, AreMadeUnderTheLockOfDrawingAndLeaveNoFramebuffer) {
    Frame();
    s_boundFramebuffers.clear();
    s_unlockedBindings = 0;
    s_bindFramebuffer = __glewBindFramebuffer;
    __glewBindFramebuffer = &BindUnderTheLock;
    const auto textures = pane->CreateCutMaskTextures();
    __glewBindFramebuffer = s_bindFramebuffer;
    EXPECT_GE(s_boundFramebuffers.size(), 2u);
    EXPECT_EQ(s_unlockedBindings, 0);
    EXPECT_TRUE(IsDrawLockFree());
    for (const GLuint name : s_boundFramebuffers)
        EXPECT_EQ(glIsFramebuffer(name) == GL_TRUE, name == pane->m_frameTarget.Name()) << name;
}

TEST_P(CutTextures, AreMadeInTheContextOfTheirControl) {
    Add({});
    Frame();
    TestControl other(GetParam(), 64, 48);
    other->PerformRefresh();
    ASSERT_TRUE(other->MakeContextCurrent());
    EXPECT_EQ(SilhouetteBox(), (std::array{112, 72, 207, 167}));
    ASSERT_TRUE(pane->MakeContextCurrent());
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_P(CutTextures, DoNotDependOnTheSamplesOfTheFrame) {
    ASSERT_TRUE(pane->MakeContextCurrent());
    const GLint samples = Get(GL_MAX_SAMPLES) >= 4 ? 4 : 0;
    pane->RecreateOpenglContext(3, 3, samples);
    Frame();
    Look(320, 240);
    Add({.center = {0.01, 0.01, 0}, .half = 1.3});
    Frame();
    EXPECT_NE(SilhouetteBox(), kNone);  // every pixel is white or 0
}

TEST_P(CutTextures, OfAWindowOfFewPixelsAreMade) {
    Add({.half = 20});
    Frame();
    for (const auto& [w, h] : {std::pair{1, 1}, {2, 2}, {1, 9}, {9, 1}, {3, 3}}) {
        pane.window->Resize(w, h);
        const Pixels pixels = Silhouette();
        EXPECT_EQ(static_cast<int>(pixels.size()), w * h);
        EXPECT_EQ(drawnWidth, w);
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    }
}

TEST_P(CutTextures, OfAWindowWithoutAreaAreNotMade) {
    Frame();
    for (const auto& [w, h] : {std::pair{0, 0}, {0, 50}, {50, 0}, {-3, 50}, {-1, -1}}) {
        pane->SetSize(static_cast<std::int16_t>(w), static_cast<std::int16_t>(h));
        const WindowSize size = pane.window->ClientSize();
        if (size.width > 0 && size.height > 0) continue;  // X11 has no such window
        EXPECT_EQ(pane->CreateCutMaskTextures(), nullptr) << w << " x " << h;
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    }
}

TEST(CutTexturesWithoutPicture, AreNotMade) {
    NoPictureControl pane;
    EXPECT_EQ(pane->CreateCutMaskTextures(), nullptr);
    EXPECT_EQ(pane.window->waitCursorsBegun, pane.window->waitCursorsEnded);
    pane->StartSegmentation(4);
    EXPECT_EQ(pane->m_pCutMask, nullptr);
    pane->OnLeftDown(KV_ScenePane::kMouseLeft, 20, 20);
    EXPECT_EQ(pane->m_pCutSession, nullptr);
    EXPECT_EQ(pane->m_nInteractionMode, ModeMaskLasso);
}

}  // namespace
