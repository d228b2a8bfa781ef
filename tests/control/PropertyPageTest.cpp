// The property page as data, and what it reads from a viewer and writes to it; the names of the component.
#include "KV_ScenePane/PropertyPage.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

#include "KV_ScenePane/Module.h"
#include "control/AutomationTable.h"
#include "support/ControlFixture.h"

namespace {

using KV_ScenePane::CKV_ScenePanePropPage;
using Kind = KV_ScenePane::PropertyPageControl::Kind;

TEST(PropertyPage, HasItsCaptionAndThreeControls) {
    EXPECT_EQ(CKV_ScenePanePropPage::kCaption, "General");
    const auto& controls = CKV_ScenePanePropPage::kControls;
    ASSERT_EQ(controls.size(), 3u);
    EXPECT_EQ(controls[0].id, 202);
    EXPECT_EQ(controls[0].label, "Rendering Mode:");
    EXPECT_EQ(controls[0].kind, Kind::DropDown);
    EXPECT_EQ(controls[0].property, "DrawMode");
    EXPECT_EQ(controls[0].start, -1);
    const std::vector<std::string_view> items(controls[0].items.begin(), controls[0].items.end());
    EXPECT_EQ(items, (std::vector<std::string_view>{"Points", "Wireframe", "Flat Shaded", "Gouraud Shaded"}));
    EXPECT_EQ(controls[1].id, 201);
    EXPECT_EQ(controls[1].label, "Mosaic Drawing:");
    EXPECT_EQ(controls[1].kind, Kind::CheckBox);
    EXPECT_EQ(controls[1].property, "DrawMosaic");
    EXPECT_EQ(controls[1].start, 0);
    EXPECT_TRUE(controls[1].items.empty());
    EXPECT_EQ(controls[2].id, 206);
    EXPECT_EQ(controls[2].label, "Reduced Movement:");
    EXPECT_EQ(controls[2].kind, Kind::CheckBox);
    EXPECT_EQ(controls[2].property, "MoveReduced");
    EXPECT_EQ(controls[2].start, 0);
    EXPECT_TRUE(controls[2].items.empty());
}

TEST(PropertyPage, IsBoundToPropertiesThatCanBeWritten) {
    std::set<std::string_view> writable;
    for (const AutomationProperty& property : AutomationProperties())
        if (property.writable) writable.insert(property.name);
    for (const auto& control : CKV_ScenePanePropPage::kControls) EXPECT_TRUE(writable.contains(control.property));
}

TEST(PropertyPage, StartsWithoutAnItemAndWithoutChecks) {
    const CKV_ScenePanePropPage page;
    EXPECT_EQ(page.m_nDrawMode, -1);
    EXPECT_FALSE(page.m_bDrawMosaic);
    EXPECT_FALSE(page.m_bMoveReduced);
}

TEST(PropertyPage, ShowsTheModes0To3AndNoItemForOthers) {
    NoPictureControl c;
    for (const int mode : {0, 1, 2, 3, 4, 5, 6, 7, 8, -1, -32768, 32767}) {
        c->SetDrawMode(static_cast<std::int16_t>(mode));
        CKV_ScenePanePropPage page;
        page.Load(*c);
        EXPECT_EQ(page.m_nDrawMode, mode >= 0 && mode <= 3 ? mode : -1) << mode;
    }
}

TEST(PropertyPage, WritesWhatTheUserChose) {
    NoPictureControl c;
    CKV_ScenePanePropPage page;
    page.Load(*c);
    EXPECT_EQ(page.m_nDrawMode, 3);
    for (const std::int16_t mode : {std::int16_t{0}, std::int16_t{1}, std::int16_t{2}, std::int16_t{3}})
        for (const bool flag : {true, false}) {
            page.m_nDrawMode = mode;
            page.m_bDrawMosaic = flag;
            page.m_bMoveReduced = !flag;
            page.Apply(*c);
            EXPECT_EQ(c->GetDrawMode(), mode);
            EXPECT_EQ(c->GetDrawMosaic(), flag ? -1 : 0);
            EXPECT_EQ(c->GetMoveReduced(), flag ? 0 : -1);
            CKV_ScenePanePropPage again;
            again.Load(*c);
            EXPECT_EQ(again.m_nDrawMode, mode);
            EXPECT_EQ(again.m_bDrawMosaic, flag);
            EXPECT_EQ(again.m_bMoveReduced, !flag);
        }
}

TEST(PropertyPage, LeavesOtherModesAsTheyAreUnlessAnItemIsChosen) {
    NoPictureControl c;
    for (const std::int16_t mode : {std::int16_t{4}, std::int16_t{5}, std::int16_t{6}, std::int16_t{7}}) {
        c->SetDrawMode(mode);
        CKV_ScenePanePropPage page;
        page.Load(*c);
        page.m_bDrawMosaic = !page.m_bDrawMosaic;
        page.Apply(*c);
        EXPECT_EQ(c->GetDrawMode(), mode);
        page.m_nDrawMode = 1;
        page.Apply(*c);
        EXPECT_EQ(c->GetDrawMode(), 1);
    }
}

TEST(PropertyPage, ThatIsAppliedUnchangedNeitherRepaintsNorModifies) {
    NoPictureControl c;
    for (const std::int16_t mode : {std::int16_t{3}, std::int16_t{6}}) {
        c->SetDrawMode(mode);
        c->m_bModified = false;
        c.window->Forget();
        CKV_ScenePanePropPage page;
        page.Load(*c);
        page.Apply(*c);
        EXPECT_EQ(c.window->eraseInvalidates, 0);
        EXPECT_FALSE(c->m_bModified);
    }
}

TEST(ModuleNames, AreThoseThatHostsLookUp) {
    EXPECT_EQ(KV_ScenePane::kTypeLibraryName, "KV_SCENEPANELib");
    EXPECT_EQ(KV_ScenePane::kTypeLibraryMajor, 1);
    EXPECT_EQ(KV_ScenePane::kTypeLibraryMinor, 0);
    EXPECT_EQ(KV_ScenePane::kTypeLibraryId, "{3FAC36D0-D252-4BFC-BC1D-528A2D693738}");
    EXPECT_EQ(KV_ScenePane::kDispatchName, "_DKV_ScenePane");
    EXPECT_EQ(KV_ScenePane::kDispatchHelp, "Dispatch interface for KV_ScenePane Control");
    EXPECT_EQ(KV_ScenePane::kDispatchId, "{49CD63A6-195A-4339-9A41-8E2CF4415AF7}");
    EXPECT_EQ(KV_ScenePane::kEventsName, "_DKV_ScenePaneEvents");
    EXPECT_EQ(KV_ScenePane::kEventsHelp, "Event interface for KV_ScenePane Control");
    EXPECT_EQ(KV_ScenePane::kEventsId, "{8B559603-64E7-4F67-9A3B-3840F65DA6C9}");
    EXPECT_EQ(KV_ScenePane::kControlName, "KV_ScenePane Control");
    EXPECT_EQ(KV_ScenePane::kControlProgId, "KVSCENEPANE.KVScenePaneCtrl.1");
    EXPECT_EQ(KV_ScenePane::kControlId, "{C65C1197-E1F2-4E7C-A84E-A73E8285A94D}");
    EXPECT_EQ(KV_ScenePane::kPropertyPageName, "KV_ScenePane Property Page");
    EXPECT_EQ(KV_ScenePane::kPropertyPageProgId, "KVSCENEPANE.KVScenePanePropPage.1");
    EXPECT_EQ(KV_ScenePane::kPropertyPageId, "{BB176A70-B883-4396-B6C9-8F3C484C5102}");
}

}  // namespace
