// Drags of a slow scene with the real pointer: drawn reduced, ended by one full frame, and not stored.
#include <gtest/gtest.h>

#include <QAction>
#include <QCheckBox>

#include "PropertyDialog.h"
#include "ReducedDrawing.h"
#include "Settings.h"
#include "host/MeshFiles.h"
#include "host/PointerFixture.h"

namespace {

class MainWindowReduced : public PointerFixture {
protected:
    void SetUp() override {
        PointerFixture::SetUp();
        WriteStl(m_folder / "a.stl");
        Import({m_folder / "a.stl"});
        m_window->Reducing().SetSlowFrame(0);  // every scene is a slow one
        QObject::connect(&m_window->Reducing(), &ReducedDrawing::AboutToStart, [this] { ++m_starts; });
    }
    void TearDown() override {
        if (m_isHeld) Xdotool("mouseup 1");
        PointerFixture::TearDown();
    }
    /// Presses the left button and moves, and holds it.
    void StartDrag() {
        Xdotool("mousemove " + At(Middle()) + " mousedown 1");
        m_isHeld = true;
        WaitForInput();
        Xdotool("mousemove " + At(Middle() + QPoint(20, 0)));
        WaitForInput();
    }
    void Release() {
        Xdotool("mouseup 1");
        m_isHeld = false;
        WaitForInput();
    }
    [[nodiscard]] bool Property() const { return Methods().GetMoveReduced() != KV_ScenePane::kVariantFalse; }
    [[nodiscard]] std::uint64_t Frames() const { return m_window->Pane()->GetFrameStatistics().count; }

    int m_starts = 0;
    bool m_isHeld = false;
};

TEST_F(MainWindowReduced, ADragIsDrawnReducedAndEndsWithOneFullFrame) {
    const auto stored = StoredProperties();
    StartDrag();
    EXPECT_TRUE(Property());
    EXPECT_TRUE(MenuAction("Automatically for slow scenes").isChecked());
    const std::uint64_t before = Frames();
    Release();
    EXPECT_FALSE(Property());
    EXPECT_EQ(Frames(), before + 1) << "that of the release, which is drawn after the property was set back";
    EXPECT_EQ(m_starts, 1);
    EXPECT_EQ(StoredProperties(), stored);
    EXPECT_FALSE(m_window->Pane()->IsModified());
}

TEST_F(MainWindowReduced, TheWheelIsNoDrag) {
    Xdotool("mousemove " + At(Middle()) + " click 2 click --repeat 5 --delay 1 4");
    WaitForInput();
    EXPECT_EQ(m_starts, 0);
    EXPECT_FALSE(Property());
}

TEST_F(MainWindowReduced, AQuickSceneIsDraggedInFull) {
    m_window->Reducing().SetSlowFrame(1e9);
    StartDrag();
    EXPECT_FALSE(Property());
    Release();
    EXPECT_EQ(m_starts, 0);
}

TEST_F(MainWindowReduced, APlainLeftDragOfTheDelayedSchemeMovesNothing) {
    m_window->ChooseMouseScheme(MouseScheme::Delayed);
    StartDrag();
    EXPECT_EQ(m_starts, 0);
    Release();
}

TEST_F(MainWindowReduced, ThePropertyPageShowsTheUsersChoiceDuringADrag) {
    StartDrag();
    ASSERT_TRUE(Property());
    m_window->ShowProperties();
    EXPECT_FALSE(Find<QCheckBox>("MoveReduced").isChecked());
    EXPECT_FALSE(Property());
    m_window->findChild<PropertyDialog*>()->close();
}

TEST_F(MainWindowReduced, AChangeOfTheRenderModeDuringADragIsStoredWithoutTheReduction) {
    StartDrag();
    ASSERT_TRUE(Property());
    m_window->ShowDrawMode(KV_ScenePane::DrawModeFlat);
    ASSERT_TRUE(StoredProperties().has_value());
    EXPECT_NE(StoredProperties()->find("DrawMode=2"), std::string::npos) << *StoredProperties();
    EXPECT_NE(StoredProperties()->find("MoveReduced=0"), std::string::npos) << *StoredProperties();
}

TEST_F(MainWindowReduced, AWindowThatIsClosedDuringADragStoresNothing) {
    const auto stored = StoredProperties();
    StartDrag();
    ASSERT_TRUE(Property());
    m_window.reset();
    EXPECT_EQ(StoredProperties(), stored);
}

}  // namespace
