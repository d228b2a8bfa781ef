// The lists of selected and variable objects keep their entries when an object is gone; whoever uses them skips these.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "support/ControlFixture.h"

namespace {

using Objects = std::vector<Mesh*>;

Mesh& AddTriangle(CKV_ScenePaneCtrl& control) {
    return AddMesh(control, {{-20, -20, 0}, {20, -20, 0}, {0, 20, 0}}, {Triangle{{0, 1, 2}}});
}

Objects Plain(const std::vector<std::shared_ptr<Mesh>>& live) {
    Objects objects;
    for (const auto& mesh : live) objects.push_back(mesh.get());
    return objects;
}

/// A way in which objects end. All of them leave the lists as they are.
struct EndOfObjects {
    const char* name;
    std::function<void(CKV_ScenePaneCtrl&)> run;
};
void PrintTo(const EndOfObjects& row, std::ostream* out) { *out << row.name; }

const EndOfObjects kEnds[] = {
    {"ClearData", [](CKV_ScenePaneCtrl& c) { c.ClearData(); }},
    {"DeleteObject", [](CKV_ScenePaneCtrl& c) { c.DeleteObject(0), c.DeleteObject(0); }},
    {"RecreateOpenglContext", [](CKV_ScenePaneCtrl& c) { c.RecreateOpenglContext(3, 3, 0); }},
    {"CutsThatReplaceThem",
     [](CKV_ScenePaneCtrl& c) {
         for (auto& mesh : c.m_vpMeshes)
             mesh = std::make_shared<Mesh>(std::vector<Vertex>(), std::vector<Triangle>(), std::wstring(), false);
     }},
    {"UndoStepsThatAreDropped",
     [](CKV_ScenePaneCtrl& c) {
         c.m_vUndoStack.push_back(c.m_vpMeshes);
         c.m_vpMeshes.clear();
         EXPECT_EQ(c.LiveSelection().size(), 2u) << "the step still holds them";
         c.m_vUndoStack.clear();
     }},
};

class SelectionAfter : public testing::TestWithParam<EndOfObjects> {};
INSTANTIATE_TEST_SUITE_P(All, SelectionAfter, testing::ValuesIn(kEnds), [](const auto& row) { return row.param.name; });

std::vector<std::uint32_t> Pixels(CKV_ScenePaneCtrl& control) {
    KV_ScenePane::Picture picture;
    EXPECT_TRUE(control.CapturePicture(&picture));
    return picture.pixels;
}

// The frames of the calls themselves and those after them read no freed object; the sanitizer build sees every access.
TEST_P(SelectionAfter, KeepsItsEntriesAndDrawsNoneOfThem) {
    OffscreenControl control(64, 48);
    AddTriangle(*control), AddTriangle(*control);
    for (const std::int16_t idx : {std::int16_t{0}, std::int16_t{1}})
        control->AddSelection(idx), control->AddVariableObject(idx);
    const Objects selected = control->m_vpSelection;
    ASSERT_EQ(Plain(control->LiveSelection()), selected);
    ASSERT_EQ(Plain(control->LiveVariableObjects()), selected);

    GetParam().run(*control);
    EXPECT_EQ(control->m_vpSelection, selected) << "the list itself stays";
    EXPECT_EQ(control->m_vpVariableObjects, selected);
    EXPECT_TRUE(control->LiveSelection().empty());
    EXPECT_TRUE(control->LiveVariableObjects().empty());
    const auto pixels = Pixels(*control);
    control->ResetSelection();
    EXPECT_EQ(Pixels(*control), pixels) << "a box of an object that is gone was drawn";
}

TEST(LiveSelection, SkipsOnlyWhatIsGoneInTheOrderOfTheList) {
    NoPictureControl control;
    for (int i = 0; i < 3; ++i) AddTriangle(*control);
    Mesh* const first = control->m_vpMeshes[0].get();
    Mesh* const last = control->m_vpMeshes[2].get();
    for (const std::int16_t idx : {std::int16_t{2}, std::int16_t{1}, std::int16_t{0}, std::int16_t{2}})
        control->AddSelection(idx);
    control->DeleteObject(1);
    EXPECT_EQ(control->m_vpSelection.size(), 4u);
    EXPECT_EQ(Plain(control->LiveSelection()), (Objects{last, first, last}));
}

TEST(LiveSelection, HasAnObjectThatOnlyAnUndoStepHolds) {
    NoPictureControl control;
    Mesh& mesh = AddTriangle(*control);
    control->AddSelection(0);
    control->m_vUndoStack.push_back(control->m_vpMeshes);
    control->DeleteObject(0);
    EXPECT_EQ(Plain(control->LiveSelection()), Objects{&mesh});
}

// The allocator gives the address of a deleted object to a new one of the same size.
TEST(LiveSelection, DoesNotTakeALaterObjectAtTheSameAddressForTheOldOne) {
    NoPictureControl control;
    alignas(Mesh) static std::byte place[sizeof(Mesh)];
    const auto makeThere = [] {
        return std::shared_ptr<Mesh>(new (place) Mesh({}, {}, std::wstring(), false),
                                     [](Mesh* mesh) { mesh->~Mesh(); });
    };
    control->m_vpMeshes.push_back(makeThere());
    control->AddSelection(0);
    control->AddVariableObject(0);
    control->DeleteObject(0);
    control->m_vpMeshes.push_back(makeThere());
    ASSERT_EQ(control->m_vpSelection[0], control->m_vpMeshes[0].get());
    EXPECT_TRUE(control->LiveSelection().empty());
    EXPECT_TRUE(control->LiveVariableObjects().empty());
    control->AddSelection(0);
    EXPECT_EQ(control->LiveSelection().size(), 1u) << "the new one";
}

TEST(LiveSelection, HasEntriesThatWereWrittenDirectlyWhileTheSceneHoldsThem) {
    NoPictureControl control;
    Mesh& first = AddTriangle(*control);
    Mesh& second = AddTriangle(*control);
    control->m_vpSelection = {&second};
    control->AddSelection(0);
    EXPECT_EQ(Plain(control->LiveSelection()), (Objects{&second, &first}));
    control->DeleteObject(1);
    EXPECT_EQ(Plain(control->LiveSelection()), Objects{&first});
    control->ResetSelection();
    EXPECT_TRUE(control->LiveSelection().empty());
}

TEST(LiveSelection, LivesAsLongAsTheResult) {
    NoPictureControl control;
    AddTriangle(*control);
    control->AddSelection(0);
    const auto live = control->LiveSelection();
    control->ClearData();
    ASSERT_EQ(live.size(), 1u);
    EXPECT_EQ(live[0]->GetVertexCount(), 3u);
}

}  // namespace
