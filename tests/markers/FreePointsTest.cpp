// The methods of free points: ids, records, buffers, boxes and contexts. What is drawn: FreePointsDrawTest.cpp.
#include <atomic>
#include <chrono>
#include <cstring>
#include <limits>
#include <mutex>
#include <thread>

#include "render/SceneFixture.h"
#include "support/BareContext.h"
#include "support/ProcessSize.h"

using namespace lighting;

namespace {

constexpr float kNan = std::numeric_limits<float>::quiet_NaN(), kInf = std::numeric_limits<float>::infinity();

using Floats = std::vector<float>;

std::int32_t Import(CKV_ScenePaneCtrl& control, const Floats& xyz, const Floats& colors, float alpha = 1.0f) {
    EXPECT_EQ(xyz.size(), colors.size());
    return control.ImportPoints(static_cast<std::int32_t>(xyz.size() / 3), xyz.data(), colors.data(), alpha);
}
/// A set of one white point.
std::int32_t ImportOne(CKV_ScenePaneCtrl& control, const Floats& at) { return Import(control, at, {1, 1, 1}); }

class FreePointMethods : public SceneTest {
protected:
    [[nodiscard]] int Repaints() const {
        return pane.window->refreshes + pane.window->invalidates + pane.window->eraseInvalidates;
    }
    static Floats BytesOf(GLuint buffer) {
        glBindBuffer(GL_ARRAY_BUFFER, buffer);
        GLint size = -1;
        glGetBufferParameteriv(GL_ARRAY_BUFFER, GL_BUFFER_SIZE, &size);
        Floats values(static_cast<std::size_t>(size) / sizeof(float));
        glGetBufferSubData(GL_ARRAY_BUFFER, 0, size, values.data());
        glBindBuffer(GL_ARRAY_BUFFER, 0);
        return values;
    }
};

// ---- ids

TEST_F(FreePointMethods, GiveTheSmallestFreeId) {
    EXPECT_EQ(ImportOne(*pane, {0, 0, 0}), 0);
    EXPECT_EQ(ImportOne(*pane, {1, 0, 0}), 1);
    EXPECT_EQ(ImportOne(*pane, {2, 0, 0}), 2);
    pane->DeletePoints(0);
    pane->DeletePoints(1);
    EXPECT_EQ(ImportOne(*pane, {3, 0, 0}), 0);
    EXPECT_EQ(ImportOne(*pane, {4, 0, 0}), 1);
    EXPECT_EQ(ImportOne(*pane, {5, 0, 0}), 3);
}

TEST_F(FreePointMethods, KeepTheSetsInTheOrderOfTheirImports) {
    for (int i = 0; i < 3; ++i) ImportOne(*pane, {0, 0, 0});
    pane->DeletePoints(1);
    ImportOne(*pane, {0, 0, 0});
    std::vector<std::int32_t> ids;
    for (const auto& [id, points] : pane->m_mapFreePoints) {
        ids.push_back(id);
        EXPECT_EQ(points.id, id);
    }
    EXPECT_EQ(ids, (std::vector<std::int32_t>{0, 2, 1}));
}

// ---- the record and its buffers

TEST_F(FreePointMethods, StoreTheRecordOfASet) {
    const std::int32_t id = Import(*pane, {1, 5, -3, 2, 4, -6}, {1, 0, 0, 0, 1, 0}, 0.25f);
    const FreePointSet& points = pane->m_mapFreePoints[id];
    EXPECT_EQ(points.id, id);
    EXPECT_EQ(points.numPoints, 2);
    EXPECT_EQ(points.visible, 1);
    EXPECT_EQ(points.alpha, 0.25f);
    EXPECT_EQ(points.boxMin, (Float3{1, 4, -6}));
    EXPECT_EQ(points.boxMax, (Float3{2, 5, -3}));
    EXPECT_FALSE(points.isContextGone);
}

TEST_F(FreePointMethods, UploadTheArraysAsTheyAre) {
    Floats xyz{1, 2, 3, kNan, 5, -0.0f, 7, kInf, 9};
    Floats colors{0.1f, 0.2f, 0.3f, 2.0f, -1.0f, 0.6f, 0.7f, 0.8f, 0.9f};
    const FreePointSet& points = pane->m_mapFreePoints[Import(*pane, xyz, colors)];
    const Floats position = BytesOf(points.positionBuffer), color = BytesOf(points.colorBuffer);
    ASSERT_EQ(position.size(), xyz.size());
    ASSERT_EQ(color.size(), colors.size());
    EXPECT_EQ(std::memcmp(position.data(), xyz.data(), sizeof(float) * xyz.size()), 0);
    EXPECT_EQ(std::memcmp(color.data(), colors.data(), sizeof(float) * colors.size()), 0);
}

TEST_F(FreePointMethods, MakeAVertexArrayWithBothAttributesAndUnbindIt) {
    const FreePointSet& points = pane->m_mapFreePoints[ImportOne(*pane, {0, 0, 0})];
    EXPECT_EQ(Get(GL_VERTEX_ARRAY_BINDING), 0);
    EXPECT_EQ(Get(GL_ARRAY_BUFFER_BINDING), 0);
    glBindVertexArray(points.vertexArray);
    for (const auto& [index, buffer] : {std::pair{0u, points.positionBuffer}, {1u, points.colorBuffer}}) {
        const auto attribute = [index = index](GLenum name) {
            GLint value = -1;
            glGetVertexAttribiv(index, name, &value);
            return value;
        };
        EXPECT_EQ(attribute(GL_VERTEX_ATTRIB_ARRAY_ENABLED), 1);
        EXPECT_EQ(attribute(GL_VERTEX_ATTRIB_ARRAY_BUFFER_BINDING), static_cast<GLint>(buffer));
        EXPECT_EQ(attribute(GL_VERTEX_ATTRIB_ARRAY_SIZE), 3);
        EXPECT_EQ(attribute(GL_VERTEX_ATTRIB_ARRAY_TYPE), GL_FLOAT);
        EXPECT_EQ(attribute(GL_VERTEX_ATTRIB_ARRAY_NORMALIZED), 0);
        EXPECT_EQ(attribute(GL_VERTEX_ATTRIB_ARRAY_STRIDE), 0);
    }
    glBindVertexArray(0);
    EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
}

TEST_F(FreePointMethods, DoNotKeepTheArraysOfTheHost) {
    Floats xyz{0, 0, 0}, colors{0, 1, 0};
    Import(*pane, xyz, colors);
    xyz.assign(3, kNan);
    colors.assign(3, 0.5f);
    pane->SetPointCloudRenderPointSize(0.25f);
    Frame();
    ExpectPixel(160, 120, {0, 1, 0});
}

TEST_F(FreePointMethods, GiveASetOfZeroPointsAnId) {
    EXPECT_EQ(pane->ImportPoints(0, nullptr, nullptr, 1.0f), 0);
    ImportOne(*pane, {100, 200, 300});
    EXPECT_EQ(Import(*pane, {}, {}, 0.5f), 2);
    EXPECT_EQ(pane->m_mapFreePoints[2].numPoints, 0);
    const Box box = pane->GetSceneBoundingBox();
    EXPECT_EQ(box.min, (Float3{100, 200, 300}));
    EXPECT_EQ(box.max, (Float3{100, 200, 300}));
    Frame();
    EXPECT_EQ(PixelsThatAreNotBackground(), 0);
}

// The arrays of the host exist before and after: the growth is the copy of the driver.
TEST_F(FreePointMethods, NeedNoMoreMemoryThanTheCopyOfTheDriver) {
    constexpr std::size_t kPoints = 2'000'000;
    const Floats xyz(3 * kPoints, 0.5f), colors(3 * kPoints, 0.25f);
    const long before = ResidentKilobytes();
    Import(*pane, xyz, colors);
    const long imported = ResidentKilobytes();
    EXPECT_EQ(pane->m_mapFreePoints[0].numPoints, static_cast<std::int32_t>(kPoints));
    // 24 bytes are in the arrays of the host; 60 in all are the limit.
    EXPECT_LE(1024.0 * static_cast<double>(imported - before) / kPoints, 36.0);
    EXPECT_GE(1024.0 * static_cast<double>(imported - before) / kPoints, 20.0) << "nothing was measured";
    pane->m_mapFreePoints.clear();
}

#ifndef NDEBUG
TEST_F(FreePointMethods, RefuseNegativeCountsAndNullArrays) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const float point[3] = {};
    EXPECT_DEATH(pane->ImportPoints(-1, point, point, 1.0f), "numPoints");
    EXPECT_DEATH(pane->ImportPoints(1, nullptr, point, 1.0f), "xyz");
    EXPECT_DEATH(pane->ImportPoints(1, point, nullptr, 1.0f), "colors");
}
#endif

// ---- repaints

TEST_F(FreePointMethods, AskForARepaintOnDeletionOnly) {
    const std::int32_t id = ImportOne(*pane, {0, 0, 0});
    pane->SetPointsVisibility(id, 0);
    pane->SetPointsVisibility(id, -1);
    pane->SetPointsVisibility(id + 1, 0);
    pane->DeletePoints(id + 1);
    pane->DeletePoints(-1);
    EXPECT_EQ(Repaints(), 0);
    pane->DeletePoints(id);
    EXPECT_EQ(pane.window->eraseInvalidates, 1);
    EXPECT_EQ(Repaints(), 1);
    pane->DeletePoints(id);
    EXPECT_EQ(Repaints(), 1);
}

TEST_F(FreePointMethods, ShowASetForEveryValueButZero) {
    const std::int32_t id = ImportOne(*pane, {0, 0, 0});
    for (const std::int16_t value : std::initializer_list<std::int16_t>{-1, 1, 256}) {
        pane->SetPointsVisibility(id, 0);
        EXPECT_EQ(pane->m_mapFreePoints[id].visible, 0);
        pane->SetPointsVisibility(id, value);
        EXPECT_NE(pane->m_mapFreePoints[id].visible, 0) << value;
    }
}

// The memory stays allocated until the context goes, and no name is used again before.
TEST_F(FreePointMethods, LeaveTheBuffersOfADeletedSetToTheContext) {
    const FreePointSet points = pane->m_mapFreePoints[ImportOne(*pane, {0, 0, 0})];
    pane->DeletePoints(0);
    pane->ProcessEvents();
    EXPECT_EQ(glIsVertexArray(points.vertexArray), GL_TRUE);
    EXPECT_EQ(glIsBuffer(points.positionBuffer), GL_TRUE);
    EXPECT_EQ(glIsBuffer(points.colorBuffer), GL_TRUE);
}

// ---- the box of the scene

TEST_F(FreePointMethods, CountInTheBoxOfTheSceneWhileVisible) {
    Add({.center = {0, 0, 0}, .half = 2});  // its box is 0.01 thick on each side
    const std::int32_t id = Import(*pane, {10, 0, 0, 12, 30, -5}, Floats(6, 0.5f));
    EXPECT_EQ(pane->GetSceneBoundingBox().min, (Float3{-2, -2, -5}));
    EXPECT_EQ(pane->GetSceneBoundingBox().max, (Float3{12, 30, 0.01f}));
    pane->SetPointsVisibility(id, 0);
    EXPECT_EQ(pane->GetSceneBoundingBox().max, (Float3{2, 2, 0.01f}));
    pane->CenterView();
    EXPECT_EQ(pane->m_fViewCenter, (Float3{0, 0, 0}));
    pane->SetPointsVisibility(id, -1);
    pane->CenterView();
    EXPECT_EQ(pane->m_fViewCenter, (Float3{5, 14, -2.495f}));
    pane->DeletePoints(id);
    EXPECT_EQ(pane->GetSceneBoundingBox().max, (Float3{2, 2, 0.01f}));
}

TEST_F(FreePointMethods, ThatAreNotFiniteDoNotDisturbTheFit) {
    Import(*pane, {kNan, 0, 0, 0, kInf, 0, 0, 0, -kInf}, Floats(9, 0.5f));
    EXPECT_EQ(pane->GetSceneBoundingBox().min, (Float3{-50, -50, -50}));
    EXPECT_EQ(pane->GetSceneBoundingBox().max, (Float3{50, 50, 50}));
    Import(*pane, {1, 2, 3, kNan, 500, 500, 5, 4, 7, 600, 600, kInf}, Floats(12, 0.5f));
    EXPECT_EQ(pane->GetSceneBoundingBox().min, (Float3{1, 2, 3}));
    EXPECT_EQ(pane->GetSceneBoundingBox().max, (Float3{5, 4, 7}));
    pane->CenterView();
    EXPECT_EQ(pane->m_fViewCenter, (Float3{3, 3, 5}));
    EXPECT_EQ(pane->m_fSceneSize, 6.0f);
}

// ---- ClearData and contexts

TEST_F(FreePointMethods, SurviveClearData) {
    pane->SetPointCloudRenderPointSize(0.25f);
    Import(*pane, {0, 0, 0}, {0, 1, 0});
    pane->ClearData();
    EXPECT_EQ(pane->m_mapFreePoints.size(), 1u);
    Look(320, 240);
    Frame();
    ExpectPixel(160, 120, {0, 1, 0});
    EXPECT_EQ(ImportOne(*pane, {0, 0, 0}), 1);
}

TEST_F(FreePointMethods, UploadIntoTheContextOfTheirControlWhateverIsCurrent) {
    TestControl other(WindowKind::OffScreen, 320, 240);
    other->PerformRefresh();
    const BareContext foreign;
    const auto check = [](CKV_ScenePaneCtrl& control, const FreePointSet& points) {
        ASSERT_TRUE(control.MakeContextCurrent());
        EXPECT_EQ(glIsVertexArray(points.vertexArray), GL_TRUE);
        EXPECT_EQ(glIsBuffer(points.positionBuffer), GL_TRUE);
        EXPECT_EQ(BytesOf(points.positionBuffer), (Floats{1, 2, 3}));
    };
    const std::int32_t id = ImportOne(*pane, {1, 2, 3});
    check(*pane, pane->m_mapFreePoints[id]);
    ASSERT_TRUE(other->MakeContextCurrent());
    const std::int32_t next = ImportOne(*pane, {1, 2, 3});
    EXPECT_EQ(Get(GL_VERTEX_ARRAY_BINDING), 0);
    check(*pane, pane->m_mapFreePoints[next]);
    EXPECT_TRUE(other->m_mapFreePoints.empty());
}

TEST_F(FreePointMethods, WaitForAFrameOfAnotherControl) {
    std::atomic<bool> released = false;
    std::mutex mutex;
    mutex.lock();  // until the other thread has the lock
    std::thread frame([&] {
        g_drawLock->lock();
        mutex.unlock();
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        released = true;
        g_drawLock->unlock();
    });
    mutex.lock();
    ImportOne(*pane, {0, 0, 0});
    EXPECT_TRUE(released);
    mutex.unlock();
    frame.join();
}

// The next context gives the same names to other objects: here to the set at the right.
TEST_F(FreePointMethods, OfAContextThatIsGoneKeepTheirNamesAndAreNotDrawn) {
    pane->SetPointCloudRenderPointSize(0.25f);
    Floats many;
    for (int i = 0; i < 1000; ++i) many.insert(many.end(), {-3, 0, 0});
    const std::int32_t old = Import(*pane, many, Floats(many.size(), 1.0f));
    const FreePointSet before = pane->m_mapFreePoints[old];
    pane->RecreateOpenglContext(3, 3, 0);
    const FreePointSet& after = pane->m_mapFreePoints[old];
    EXPECT_EQ(after.vertexArray, before.vertexArray);
    EXPECT_EQ(after.positionBuffer, before.positionBuffer);
    EXPECT_EQ(after.colorBuffer, before.colorBuffer);
    EXPECT_EQ(after.numPoints, 1000);
    Look(320, 240);
    Frame();
    EXPECT_EQ(PixelsThatAreNotBackground(), 0);

    const std::int32_t fresh = Import(*pane, {3, 0, 0}, {0, 1, 0});
    EXPECT_EQ(fresh, 1);
    EXPECT_EQ(pane->m_mapFreePoints[fresh].vertexArray, before.vertexArray) << "the names differ: nothing is tested";
    pane->m_mapFreePoints[fresh].alpha = 0.5f;  // drawn twice it would be more opaque
    Frame();
    ExpectPixel(232, 120, 0.5 * kBackground + 0.5 * Vec3{0, 1, 0}, 1.0);
    EXPECT_EQ(PixelsThatAreNotBackground(), 144);
    EXPECT_EQ(pane->GetSceneBoundingBox().min, (Float3{-3, 0, 0})) << "its box still counts";
    pane->DeletePoints(old);
    Frame();
    EXPECT_EQ(PixelsThatAreNotBackground(), 144);
}

TEST(FreePointsWithoutAPicture, HaveAnIdARecordAndABox) {
    NoPictureControl control;
    EXPECT_EQ(Import(*control, {1, 2, 3, 5, 6, 7}, Floats(6, 0.5f), 0.5f), 0);
    EXPECT_EQ(ImportOne(*control, {9, 2, 3}), 1);
    const FreePointSet& points = control->m_mapFreePoints[0];
    EXPECT_EQ(points.numPoints, 2);
    EXPECT_EQ(points.alpha, 0.5f);
    EXPECT_EQ(points.vertexArray + points.positionBuffer + points.colorBuffer, 0u);
    EXPECT_EQ(control->GetSceneBoundingBox().max, (Float3{9, 6, 7}));
    control->SetPointsVisibility(1, 0);
    EXPECT_EQ(control->GetSceneBoundingBox().max, (Float3{5, 6, 7}));
    control->PerformRefresh();
    control->CenterView();
    control->ProcessEvents();
    EXPECT_EQ(control->m_fViewCenter, (Float3{3, 4, 5}));
    control->DeletePoints(0);
    EXPECT_EQ(Import(*control, {0, 0, 0}, {0, 0, 0}), 0);
}

}  // namespace
