// Cuts taken back, and in which context the buffers of objects are deleted that this destroys.
#include <algorithm>

#include "cut/CutScene.h"
#include "support/GlNow.h"

namespace {

void CutMiddle(CutControl& c, SegmentationMode way = KV_ScenePane::PolygonInside) {
    ASSERT_TRUE(c->CutWithLasso(way, FractionsOf(kMiddleBlock, 640, 480)));
}
void CutCorner(CutControl& c) {
    ASSERT_TRUE(c->CutWithLasso(KV_ScenePane::PolygonInside, FractionsOf(RectangleOf(120, 40, 200, 120), 640, 480)));
}

TEST(PerformUndo, TakesBackOneCutAfterTheOther) {
    CutControl c;
    const auto original = c->m_vpMeshes;
    CutMiddle(c);
    const auto once = c->m_vpMeshes;
    CutCorner(c);
    EXPECT_EQ(c->GetUndoStepCount(), 2);
    c.host.Take();
    c.window->Forget();
    EXPECT_EQ(c->PerformUndo(), 1);
    EXPECT_EQ(c->m_vpMeshes, once);
    EXPECT_EQ(c->PerformUndo(), 0);
    EXPECT_EQ(c->m_vpMeshes, original);
    EXPECT_EQ(c.window->refreshes, 2);
    EXPECT_EQ(c->PerformUndo(), 0);
    EXPECT_EQ(c->m_vpMeshes, original);
    EXPECT_EQ(c.window->refreshes, 2) << "there was nothing to take back";
    EXPECT_EQ(c.window->invalidates + c.window->eraseInvalidates, 0);
    EXPECT_TRUE(c.host.Take().empty()) << "no event";
}

TEST(PerformUndo, HasNoStepOfACutThatHitNothing) {
    CutControl c;
    EXPECT_FALSE(c->CutWithLasso(KV_ScenePane::PolygonInside, FractionsOf(kBetweenVertices, 640, 480)));
    EXPECT_EQ(c->GetUndoStepCount(), 0);
}

TEST(PerformUndo, RestoresTheListDuringASessionAndLeavesTheSessionRunning) {
    for (const SegmentationMode way : {KV_ScenePane::PolygonInside, KV_ScenePane::FreehandInside}) {
        CutControl c;
        CutMiddle(c);
        c->StartSegmentation(way);
        LeftClick(*c, kMiddleBlock[0]);
        const CutSession* const session = c->m_pCutSession.get();
        c.host.Take();
        EXPECT_EQ(c->PerformUndo(), 0);
        EXPECT_EQ(VertexCounts(*c), (std::vector<std::size_t>{kFrontCount, kBackCount}));
        EXPECT_EQ(c->m_pCutSession.get(), session);
        for (std::size_t i = 1; i < 4; ++i) LeftClick(*c, kMiddleBlock[i]);
        RightClick(*c, kMiddleBlock[3]);
        EXPECT_EQ(c.host.Take(), (EventNames{"mask", "done 2"}));
        EXPECT_EQ(VertexCounts(*c), (std::vector<std::size_t>{kFrontCount - 25, kBackCount - 1}));
    }
}

TEST(PerformUndo, LosesWhatWasImportedAndBringsBackWhatWasDeleted) {
    CutControl c;
    const auto original = c->m_vpMeshes;
    CutMiddle(c);
    c->m_vpMeshes.push_back(MakePlate(3, 1, 0));
    c->DeleteObject(0);
    EXPECT_EQ(c->GetNumObjects(), 2);
    EXPECT_EQ(c->PerformUndo(), 0);
    EXPECT_EQ(c->m_vpMeshes, original);
}

TEST(PerformUndo, KeepsChangesOfAnObjectThatNoCutReplaced) {
    CutControl c;
    const auto untouched = MakePlate(3, 0.01, 5);
    for (Vertex& v : untouched->m_vVertices) v.x += 4.9f;
    c->m_vpMeshes.push_back(untouched);
    c->SetObjectColor(0, 0x112233);
    CutMiddle(c);
    ASSERT_EQ(c->m_vpMeshes[2], untouched);
    c->SetObjectColor(0, 0x445566);
    c->SetObjectColor(2, 0x445566);
    c->PerformUndo();
    EXPECT_EQ(c->GetObjectColor(2), 0x445566);
    EXPECT_NEAR(c->GetObjectColor(0) & 0xFF, 0x33, 1) << "the colour when it was replaced";
}

TEST(PerformUndo, SharesTheObjectsThatNoCutTouched) {
    CutControl c;
    const auto untouched = MakePlate(3, 0.01, 5);
    for (Vertex& v : untouched->m_vVertices) v.x += 4.9f;
    c->m_vpMeshes.push_back(untouched);
    for (int i = 0; i < 20; ++i) {
        const int x = 140 + 12 * i;
        ASSERT_TRUE(
            c->CutWithLasso(KV_ScenePane::PolygonVisible, FractionsOf(RectangleOf(x, 60, x + 14, 90), 640, 480)));
    }
    EXPECT_EQ(c->GetUndoStepCount(), 20);
    for (const auto& step : c->m_vUndoStack) EXPECT_EQ(step.at(2), untouched);
    EXPECT_EQ(untouched.use_count(), 22);
}

TEST(PerformUndo, LeavesTheCameraAndTheSelection) {
    CutControl c;
    c->AddSelection(0);
    CutMiddle(c);
    EXPECT_EQ(c->LiveSelection().size(), 1u) << "held by the undo step";
    c->SetViewMode(KV_ScenePane::ViewFromPlusXZUp);
    const Float3 axis = c->m_fAxisX;
    c->PerformUndo();
    EXPECT_EQ(c->m_fAxisX, axis);
    ASSERT_EQ(c->LiveSelection().size(), 1u);
    EXPECT_EQ(c->LiveSelection()[0], c->m_vpMeshes[0]);
}

TEST(PerformUndo, LetsGoOfTheSelectedObjectThatItReplaces) {
    CutControl c;
    CutMiddle(c);
    c->AddSelection(0);
    c->AddVariableObject(0);
    c->PerformUndo();
    EXPECT_TRUE(c->LiveSelection().empty());
    EXPECT_TRUE(c->LiveVariableObjects().empty());
    c->PerformRefresh();
    EXPECT_EQ(GlErrorOf(*c), GLenum{GL_NO_ERROR});
}

TEST(ClearUndoStack, DropsAllStepsAndNothingElse) {
    CutControl c;
    CutMiddle(c);
    CutCorner(c);
    const auto meshes = c->m_vpMeshes;
    c.host.Take();
    c.window->Forget();
    c->ClearUndoStack();
    EXPECT_EQ(c->GetUndoStepCount(), 0);
    EXPECT_EQ(c->PerformUndo(), 0);
    EXPECT_EQ(c->m_vpMeshes, meshes);
    EXPECT_EQ(c.window->refreshes + c.window->invalidates + c.window->eraseInvalidates, 0);
    EXPECT_TRUE(c.host.Take().empty());
}

TEST(ClearData, DropsTheUndoSteps) {
    CutControl c;
    CutMiddle(c);
    c->ClearData();
    EXPECT_EQ(c->GetUndoStepCount(), 0);
    EXPECT_EQ(c->PerformUndo(), 0);
    EXPECT_EQ(c->GetNumObjects(), 0);
}

// ---- contexts

/// Which of the first names are buffers in the current context.
std::vector<GLuint> Buffers() {
    std::vector<GLuint> names;
    for (GLuint name = 1; name < 300; ++name)
        if (glIsBuffer(name)) names.push_back(name);
    return names;
}

/// A call that may destroy objects, while another viewer's context is current.
struct DestroyRow {
    const char* name;
    std::function<void(CutControl&)> prepare, call;
};
/// An undo step and a freehand lasso.
void CutAndDrawAgain(CutControl& c) {
    CutMiddle(c);
    c->StartSegmentation(KV_ScenePane::FreehandInside);
    for (std::size_t i = 0; i < 3; ++i) LeftClick(*c, kMiddleBlock[i]);
}
const DestroyRow kDestroyers[] = {
    {"PerformUndo", [](auto& c) { CutMiddle(c); }, [](auto& c) { c->PerformUndo(); }},
    {"ClearUndoStack", [](auto& c) { CutMiddle(c); }, [](auto& c) { c->ClearUndoStack(); }},
    {"ClearData", [](auto& c) { CutMiddle(c); }, [](auto& c) { c->ClearData(); }},
    {"DeleteObject", [](auto&) {}, [](auto& c) { c->DeleteObject(0); }},
    {"EndSegmentation",
     [](auto& c) {
         c->StartSegmentation(KV_ScenePane::FreehandInside);
         LeftClick(*c, {100, 100});
     },
     [](auto& c) { c->EndSegmentation(); }},
    {"FinishSegmentation",
     [](auto& c) {
         c->StartSegmentation(KV_ScenePane::FreehandInside);
         for (std::size_t i = 0; i < 3; ++i) LeftClick(*c, kMiddleBlock[i]);
     },
     [](auto& c) { c->FinishSegmentation(false); }},
    {"StartSegmentation", [](auto& c) { c->StartSegmentation(KV_ScenePane::FreehandInside); },
     [](auto& c) { c->StartSegmentation(KV_ScenePane::PolygonInside), c->StartSegmentation(4); }},
    {"RecreateOpenglContext", &CutAndDrawAgain, [](auto& c) { c->RecreateOpenglContext(3, 3, 0); }},
    {"RecreateOpenglContextInAHandler", [](auto&) {},
     [](auto& c) {
         CutControl third;  // whose context is current when the handler returns
         c.host.onMask = [&](const ACAD::CutMask&) {
             c->RecreateOpenglContext(3, 3, 0);
             third->PerformRefresh();
         };
         CutMiddle(c, KV_ScenePane::FreehandInside);
         c->ClearData();
     }},
    {"Destroy", &CutAndDrawAgain, [](auto& c) { c.window->Destroy(); }},
    {"Destruction", &CutAndDrawAgain, [](auto& c) { c.control.reset(); }},
};

TEST(ObjectsOfTwoViewers, AreDestroyedInTheContextOfTheirOwn) {
    for (const DestroyRow& row : kDestroyers) {
        SCOPED_TRACE(row.name);
        CutControl c, other;
        row.prepare(c);
        c->PerformRefresh();
        other->PerformRefresh();
        ASSERT_TRUE(c->MakeContextCurrent());
        const auto before = Buffers();
        ASSERT_TRUE(other->MakeContextCurrent());
        const auto othersBefore = Buffers();
        ASSERT_FALSE(othersBefore.empty());
        row.call(c);
        ASSERT_TRUE(other->MakeContextCurrent());
        EXPECT_EQ(Buffers(), othersBefore);
        EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
        if (c.control == nullptr || !c->HasWindow()) continue;
        ASSERT_TRUE(c->MakeContextCurrent());
        if (std::string_view(row.name) != "StartSegmentation" &&
            std::string_view(row.name) != "FinishSegmentation") {  // which make others
            EXPECT_LT(Buffers().size(), before.size());
        }
        EXPECT_EQ(glGetError(), GLenum{GL_NO_ERROR});
    }
}

TEST(ObjectsOfTwoViewers, LeaveNoBuffersAfterManyCutsAndTheirUndo) {
    CutControl c, other;
    c->PerformRefresh();
    ASSERT_TRUE(c->MakeContextCurrent());
    const auto before = Buffers();
    for (int i = 0; i < 5; ++i) {
        other->PerformRefresh();
        CutMiddle(c, kAllWays[i + 1]);
        other->PerformRefresh();
        c->PerformUndo();
    }
    ASSERT_TRUE(c->MakeContextCurrent());
    EXPECT_EQ(Buffers(), before);
}

TEST(ObjectsOfTwoViewers, SurviveTheCutsOfAHandlerThatUsesTheOtherOne) {
    CutControl c, other;
    c.host.onMask = [&](const ACAD::CutMask&) {
        c->ClearData();
        other->PerformRefresh();  // whose context is current when the handler returns
    };
    ASSERT_TRUE(other->MakeContextCurrent());
    const auto othersBefore = Buffers();
    CutMiddle(c, KV_ScenePane::FreehandInside);
    c->PerformUndo();
    c->ClearData();
    ASSERT_TRUE(other->MakeContextCurrent());
    EXPECT_EQ(Buffers(), othersBefore);
}

}  // namespace
