// The textures of a freehand lasso after each frame, and what a session leaves in OpenGL.
#include <functional>

#include "cut/LassoScript.h"
#include "render/GlSnapshot.h"
#include "render/SceneFixture.h"

namespace {

using Pixels = std::vector<std::uint32_t>;

Pixels TextureImage(std::uint32_t name, int width, int height) {
    Pixels pixels(static_cast<std::size_t>(width * height), 0xDEADBEEF);
    glBindTexture(GL_TEXTURE_2D, name);
    glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    glBindTexture(GL_TEXTURE_2D, 0);
    return pixels;
}

/// Mappings of pixel buffers while it lives: what was mapped, and which of them fail.
class MappedBuffers {
public:
    MappedBuffers() {
        lengths.clear();
        fails = nullptr;
        losesPixels = false;
        s_map = __glewMapBufferRange;
        s_unmap = __glewUnmapBuffer;
        __glewMapBufferRange = &Map;
        __glewUnmapBuffer = &Unmap;
    }
    ~MappedBuffers() {
        __glewMapBufferRange = s_map;
        __glewUnmapBuffer = s_unmap;
    }
    MappedBuffers(const MappedBuffers&) = delete;
    MappedBuffers& operator=(const MappedBuffers&) = delete;

    static inline std::vector<GLsizeiptr> lengths;    ///< bytes
    static inline std::function<bool(GLuint)> fails;  ///< whether the mapping of a buffer fails
    static inline bool losesPixels = false;           ///< the driver reports them lost when it unmaps

private:
    static void* GLAPIENTRY Map(GLenum target, GLintptr offset, GLsizeiptr length, GLbitfield access) {
        GLint buffer = 0;
        glGetIntegerv(GL_PIXEL_UNPACK_BUFFER_BINDING, &buffer);
        lengths.push_back(length);
        return fails && fails(static_cast<GLuint>(buffer)) ? nullptr : s_map(target, offset, length, access);
    }
    static GLboolean GLAPIENTRY Unmap(GLenum target) {
        const GLboolean kept = s_unmap(target);
        return losesPixels ? static_cast<GLboolean>(GL_FALSE) : kept;
    }
    static inline PFNGLMAPBUFFERRANGEPROC s_map = nullptr;
    static inline PFNGLUNMAPBUFFERPROC s_unmap = nullptr;
};

class CutSessionDraw : public SceneTest {
protected:
    /// Textures of a window of this size, with the silhouette of an empty scene.
    std::unique_ptr<CutMaskTextures> Textures(int width, int height) {
        pane.window->Resize(width, height);
        auto textures = pane->CreateCutMaskTextures();
        EXPECT_NE(textures, nullptr);
        EXPECT_EQ(textures->m_nWidth, width);
        EXPECT_EQ(textures->m_nHeight, height);
        return textures;
    }
    LassoPair Pair(int width, int height, int x, int y, const LassoTints& tints = {}) {
        return {Textures(width, height), x, y, tints, pane->m_progUseMask};
    }
    static void ExpectSameImages(const LassoPair& pair) {
        const CutSession& session = pair.session;
        const cut_reference::Session& reference = pair.reference;
        const CutMaskTextures& textures = *session.m_pTextures;
        EXPECT_EQ(session.m_vLines, reference.lines);
        EXPECT_EQ(session.m_vComposite, reference.composite);
        EXPECT_EQ(session.m_rcBounds, reference.bounds);
        EXPECT_EQ(session.m_rcShown, reference.shown);
        EXPECT_EQ(session.m_ptLast, (LassoPixel{reference.last.first, reference.last.second}));
        EXPECT_EQ(session.m_vPending.size(), reference.pending.size());
        EXPECT_EQ(session.m_optPreview.has_value(), reference.preview.has_value());
        std::optional<LassoPixel> newest;
        if (reference.newest) newest = LassoPixel{reference.newest->first, reference.newest->second};
        EXPECT_EQ(session.GetLastPoint(), newest);
        EXPECT_EQ(TextureImage(textures.m_uLineTexture, pair.width, pair.height), reference.lineTexture);
        EXPECT_EQ(TextureImage(textures.m_uFillTexture, pair.width, pair.height), reference.fillTexture);
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    }
    static void Draw(LassoPair& pair, bool withFill = true) {
        pair.session.Draw(withFill);
        pair.reference.Draw(withFill);
    }
};

TEST_F(CutSessionDraw, MakesTheImagesOfThePlainMethodAfterEveryStep) {
    std::mt19937 random(4);
    const std::vector<LassoTints> tints = AllTints();
    for (int round = 0; round < 60; ++round) {
        const int width = std::uniform_int_distribution<int>(3, 70)(random),
                  height = std::uniform_int_distribution<int>(3, 50)(random);
        LassoPair pair = Pair(width, height, std::uniform_int_distribution<int>(0, width)(random),
                              std::uniform_int_distribution<int>(0, height)(random),
                              tints[static_cast<std::size_t>(round) % tints.size()]);
        for (int step = 0; step < 12; ++step) {
            for (int i = std::uniform_int_distribution<int>(0, 2)(random); i > 0; --i) pair.DoSomething(random);
            Draw(pair, std::uniform_int_distribution<int>(0, 3)(random) != 0);
            ExpectSameImages(pair);
            ExpectSameMask(pair, width, height);
            if (HasFailure()) {
                ADD_FAILURE() << "round " << round << ", step " << step << ", " << width << " x " << height;
                return;
            }
        }
    }
}

TEST_F(CutSessionDraw, WithoutFillDrawsTheLinesAlone) {
    LassoPair pair = Pair(40, 30, 10, 5);
    pair.Add(20, 5);
    pair.Add(20, 15);
    Draw(pair, false);
    ExpectSameImages(pair);
    EXPECT_EQ(pair.reference.fillTexture, Pixels(1200, 0));
    Draw(pair, true);
    ExpectSameImages(pair);
    EXPECT_EQ(pair.reference.fillTexture[40 * 6 + 18], 0x7F0000FFu);
}

TEST_F(CutSessionDraw, WipesAWiderRubberBand) {
    LassoPair pair = Pair(40, 30, 10, 5, AllTints()[1]);  // the outside is tinted
    pair.Add(14, 5);
    pair.Preview(30, 25);
    Draw(pair);
    pair.Preview(12, 8);
    Draw(pair);
    ExpectSameImages(pair);
    EXPECT_EQ(pair.reference.fillTexture[40 * 20 + 25], 0x7F0000FFu);
    EXPECT_EQ(pair.reference.lineTexture[40 * 25 + 30], 0u);
    Draw(pair);  // the band stays until the mouse moves
    ExpectSameImages(pair);
    EXPECT_EQ(pair.reference.lineTexture[40 * 8 + 12], 0xFFFFFF00u);
}

// The bytes of a redraw follow the box of the lasso, not the window.
TEST_F(CutSessionDraw, UploadsTheChangedRectangleOnly) {
    LassoPair pair = Pair(300, 200, 100, 50);
    pair.Add(110, 60);
    const MappedBuffers mapped;
    Draw(pair);
    EXPECT_EQ(MappedBuffers::lengths, (std::vector<GLsizeiptr>{4 * 11 * 11, 4 * 300 * 200})) << "the tint starts whole";
    MappedBuffers::lengths.clear();
    pair.Preview(105, 65);
    Draw(pair);
    EXPECT_EQ(MappedBuffers::lengths, (std::vector<GLsizeiptr>{4 * 11 * 16, 4 * 13 * 18}));
    MappedBuffers::lengths.clear();
    pair.Preview(105, 55);
    Draw(pair);
    EXPECT_EQ(MappedBuffers::lengths, (std::vector<GLsizeiptr>{4 * 11 * 16, 4 * 13 * 18})) << "with the wiped band";
    MappedBuffers::lengths.clear();
    Draw(pair);
    EXPECT_TRUE(MappedBuffers::lengths.empty()) << "nothing has changed";
    ExpectSameImages(pair);
}

TEST_F(CutSessionDraw, KeepsItsPointsWhileABufferCannotBeMapped) {
    LassoPair pair = Pair(40, 30, 10, 5);
    pair.Add(20, 5);
    pair.Preview(20, 15);
    const MappedBuffers mapped;
    MappedBuffers::fails = [](GLuint) { return true; };
    for (int frame = 0; frame < 3; ++frame) {
        pair.session.Draw(true);
        pair.reference.Draw(true, false, false);
        ExpectSameImages(pair);
        EXPECT_EQ(pair.session.m_vPending, (std::vector<LassoPixel>{{20, 5}}));
        EXPECT_EQ(pair.session.m_optPreview, (LassoPixel{20, 15}));
    }
    MappedBuffers::fails = nullptr;
    Draw(pair);
    ExpectSameImages(pair);
    EXPECT_TRUE(pair.session.m_vPending.empty());
    EXPECT_EQ(pair.reference.fillTexture[40 * 6 + 18], 0x7F0000FFu);
}

TEST_F(CutSessionDraw, CatchesUpAfterAnyMappingThatFailed) {
    std::mt19937 random(5);
    for (int round = 0; round < 30; ++round) {
        LassoPair pair = Pair(33, 27, 5 + round % 20, 9, AllTints()[static_cast<std::size_t>(round) % 4]);
        const CutMaskTextures& textures = *pair.session.m_pTextures;
        const MappedBuffers mapped;
        for (int step = 0; step < 15; ++step) {
            pair.DoSomething(random);
            const bool lines = random() % 2 == 0, fill = random() % 2 == 0;
            MappedBuffers::fails = [&](GLuint buffer) { return buffer == textures.m_uLineBuffer ? !lines : !fill; };
            pair.session.Draw(true);
            pair.reference.Draw(true, lines, fill);
            ExpectSameImages(pair);
            if (HasFailure()) return;
        }
    }
}

TEST_F(CutSessionDraw, SendsPixelsAgainThatTheDriverHasLost) {
    LassoPair pair = Pair(40, 30, 10, 5, AllTints()[1]);
    pair.Add(14, 5);
    pair.Add(14, 9);
    Draw(pair);
    const Pixels lines = pair.reference.lineTexture;
    {
        const MappedBuffers mapped;
        MappedBuffers::losesPixels = true;
        pair.Preview(30, 25);
        Draw(pair);
        EXPECT_EQ(TextureImage(pair.session.m_pTextures->m_uLineTexture, 40, 30), lines);
    }
    Draw(pair);
    ExpectSameImages(pair);
}

// Nothing can be said of what the texture shows of them.
TEST_F(CutSessionDraw, SendsTheWholeLostRectangleAgain) {
    LassoPair pair = Pair(40, 30, 10, 5, AllTints()[1]);
    pair.Add(14, 5);
    Draw(pair);
    const MappedBuffers mapped;
    MappedBuffers::losesPixels = true;
    pair.Preview(30, 25);
    Draw(pair);
    MappedBuffers::losesPixels = false;
    MappedBuffers::lengths.clear();
    pair.Preview(12, 8);
    Draw(pair);
    ExpectSameImages(pair);
    EXPECT_EQ(MappedBuffers::lengths, (std::vector<GLsizeiptr>{4 * 21 * 21, 4 * 23 * 23}));
}

TEST_F(CutSessionDraw, LeavesTheStateOfOpenGlAsItWas) {
    LassoPair pair = Pair(64, 48, 10, 5);
    Frame();
    pair.Add(20, 5);
    pair.Add(20, 15);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 2);
    glColor3f(0.25f, 0.5f, 0.75f);
    glPointSize(5);
    for (const GLenum unit : {GL_TEXTURE1, GL_TEXTURE0}) {
        glActiveTexture(unit);
        glBindTexture(GL_TEXTURE_2D, pair.session.m_pTextures->m_uSilhouetteTexture);
    }
    for (int frame = 0; frame < 3; ++frame) {
        const GlSnapshot before = TakeGlSnapshot();
        pair.session.Draw(true);
        ExpectSameGlState(before, TakeGlSnapshot(), "the session");
        glActiveTexture(GL_TEXTURE1);
        EXPECT_EQ(Get(GL_TEXTURE_BINDING_2D), static_cast<GLint>(pair.session.m_pTextures->m_uSilhouetteTexture));
        glActiveTexture(GL_TEXTURE0);
        pair.Preview(30, 30 + frame);
    }
    ExpectDefaultStacksAndBindings();
}

TEST_F(CutSessionDraw, WithoutOpenGlObjectsDoesNothing) {
    Frame();
    CutSession session(TexturesOfSize(64, 48), {10, 5}, {0xFFFF00, 1}, {255, 0.5f}, {0, 0}, pane->m_progUseMask);
    session.AddPoint(0.5f, 0.5f);
    const GlSnapshot before = TakeGlSnapshot();
    session.Draw(true);
    ExpectSameGlState(before, TakeGlSnapshot(), "the session");
    EXPECT_EQ(session.m_vPending.size(), 1u);
}

TEST_F(CutSessionDraw, DoesNotAllocateForItsFills) {
    LassoPair pair = Pair(60, 50, 30, 25);
    const LassoPixel* const stack = pair.session.m_vFloodStack.data();
    std::mt19937 random(6);
    for (int step = 0; step < 200; ++step) {
        pair.DoSomething(random);
        pair.session.Draw(true);
        ASSERT_EQ(pair.session.m_vFloodStack.data(), stack);
    }
}

// ---- the OpenGL objects

/// Notes which textures still exist when a buffer is deleted.
class DeletedBuffers {
public:
    explicit DeletedBuffers(const CutMaskTextures& textures) {
        s_names = {textures.m_uLineTexture, textures.m_uFillTexture, textures.m_uSilhouetteTexture};
        deleted.clear();
        texturesLeft = 0;
        s_delete = __glewDeleteBuffers;
        __glewDeleteBuffers = &Delete;
    }
    ~DeletedBuffers() { __glewDeleteBuffers = s_delete; }
    DeletedBuffers(const DeletedBuffers&) = delete;
    DeletedBuffers& operator=(const DeletedBuffers&) = delete;

    static inline std::vector<GLuint> deleted;
    static inline int texturesLeft = 0;

private:
    static void GLAPIENTRY Delete(GLsizei count, const GLuint* names) {
        deleted.insert(deleted.end(), names, names + count);
        for (const GLuint name : s_names) texturesLeft += glIsTexture(name) == GL_TRUE ? 1 : 0;
        s_delete(count, names);
    }
    static inline std::array<GLuint, 3> s_names{};
    static inline PFNGLDELETEBUFFERSPROC s_delete = nullptr;
};

TEST_F(CutSessionDraw, DeletesTheTexturesBeforeTheBuffers) {
    auto textures = Textures(40, 30);
    const std::array names{textures->m_uLineTexture, textures->m_uFillTexture, textures->m_uSilhouetteTexture};
    const GLuint lineBuffer = textures->m_uLineBuffer, fillBuffer = textures->m_uFillBuffer;
    for (const GLuint name : names) ASSERT_EQ(glIsTexture(name), GL_TRUE);
    ASSERT_EQ(glIsBuffer(lineBuffer), GL_TRUE);
    {
        const DeletedBuffers buffers(*textures);
        textures.reset();
        EXPECT_EQ(DeletedBuffers::texturesLeft, 0);
        std::ranges::sort(DeletedBuffers::deleted);
        std::vector<GLuint> expected{lineBuffer, fillBuffer};
        std::ranges::sort(expected);
        EXPECT_EQ(DeletedBuffers::deleted, expected);
    }
    for (const GLuint name : names) EXPECT_EQ(glIsTexture(name), GL_FALSE);
    EXPECT_EQ(glIsBuffer(lineBuffer), GL_FALSE);
    EXPECT_EQ(glIsBuffer(fillBuffer), GL_FALSE);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(CutSessionDraw, DeletesItsTexturesAlsoWhenItCannotStart) {
    auto textures = Textures(40, 30);
    const GLuint line = textures->m_uLineTexture;
    EXPECT_THROW(CutSession(std::move(textures), {10, 5}, {0xFFFF00, 1}, {255, 0}, {0, 0}, 0), std::invalid_argument);
    EXPECT_EQ(glIsTexture(line), GL_FALSE);
}

}  // namespace
