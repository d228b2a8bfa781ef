// The note over the view: when it is shown, and that neither the mouse nor pictures have it.
#include "ViewNote.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QImage>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>
#include <cstdlib>
#include <functional>

#include "host/PointerFixture.h"

namespace {

struct NoteCase {
    const char* name;
    ViewNoteState state;
    const char* start;  ///< of the text; empty for no note
};
void PrintTo(const NoteCase& row, std::ostream* out) { *out << row.name; }

ViewNoteState Shown() { return {.hasViewer = true, .objects = 2, .visibleObjects = 2}; }

ViewNoteState With(ViewNoteState state, const std::function<void(ViewNoteState&)>& change) {
    change(state);
    return state;
}

const NoteCase kNoteCases[] = {
    {"NoViewer", {}, ""},
    {"Empty", {.hasViewer = true}, "Open scans and meshes with Ctrl+O"},
    {"EmptyDuringAnImport", {.hasViewer = true, .isBusy = true}, ""},
    {"MarksOnly", {.hasViewer = true, .hasMarks = true}, ""},
    {"Objects", Shown(), ""},
    {"OneOfTwoHidden", With(Shown(), [](auto& state) { state.visibleObjects = 1; }), ""},
    {"AllHidden", With(Shown(), [](auto& state) { state.visibleObjects = 0; }), "2 object(s), all hidden"},
    {"BackgroundOnly", With(Shown(), [](auto& state) { state.drawMode = 6; }), "The render mode \"Background only\""},
    {"PerPixel", With(Shown(), [](auto& state) { state.drawMode = 5; }), ""},
    {"PerPixelWithShadows", With(Shown(), [](auto& state) { state.drawMode = 5, state.shadows = true; }),
     "The render mode \"Lit per pixel\""},
    {"GouraudWithShadows", With(Shown(), [](auto& state) { state.shadows = true; }), ""},
    {"AllClipped", With(Shown(), [](auto& state) { state.isAllClipped = true; }), "The clip plane cuts everything"},
};
class NoteOfState : public testing::TestWithParam<NoteCase> {};

TEST_P(NoteOfState, SaysWhyThePictureShowsNothing) {
    const QString note = NoteOf(GetParam().state);
    if (QString(GetParam().start).isEmpty())
        EXPECT_EQ(note, "");
    else
        EXPECT_TRUE(note.startsWith(GetParam().start)) << note.toStdString();
}
INSTANTIATE_TEST_SUITE_P(View, NoteOfState, testing::ValuesIn(kNoteCases),
                         [](const auto& row) { return row.param.name; });

/// A flat scan in the middle of the view.
class ViewNoteInWindow : public PointerFixture {
protected:
    [[nodiscard]] ViewNote& Note() const { return Find<ViewNote>("viewNote"); }
    [[nodiscard]] bool IsShown(const char* start) const {
        return WaitUntil([&] { return Note().isVisible() && Note().text().startsWith(start); });
    }
    [[nodiscard]] bool IsHidden() const {
        return WaitUntil([&] { return Note().isHidden(); });
    }
    void ImportOne() {
        WriteXdt(m_folder / "a.xdt", 40, 40);
        Import({m_folder / "a.xdt"});
    }
    /// What the X server shows at the middle of the note: Qt grabs a widget by painting it anew.
    [[nodiscard]] QImage NoteOnScreen() const {
        const QPoint corner = Note().mapTo(m_window.get(), QPoint());
        return m_window->screen()
            ->grabWindow(m_window->winId(), corner.x(), corner.y(), Note().width(), Note().height())
            .toImage();
    }
};

TEST_F(ViewNoteInWindow, IsOnTheScreenOverTheEmptyView) {
    ASSERT_TRUE(IsShown("Open scans"));
    const QRgb ground = Note().palette().color(QPalette::ToolTipBase).rgb();
    const auto share = [&] {
        const QImage picture = NoteOnScreen();
        int same = 0;
        for (int y = 0; y < picture.height(); ++y) {
            for (int x = 0; x < picture.width(); ++x) same += picture.pixel(x, y) == ground ? 1 : 0;
        }
        return static_cast<double>(same) / (picture.width() * picture.height());
    };
    EXPECT_TRUE(WaitUntil([&] { return share() > 0.5; })) << share();
    Methods().PerformInvalidate();
    (void)DrawFrame();
    EXPECT_GT(share(), 0.5) << "the viewer drew over it";
    EXPECT_LT(share(), 0.98) << "it has no text";
}

TEST_F(ViewNoteInWindow, GoesWithTheFirstObjectAndReturnsAfterTheLast) {
    ASSERT_TRUE(IsShown("Open scans"));
    ImportOne();
    EXPECT_TRUE(IsHidden());
    m_window->RemoveObjects({0});
    EXPECT_TRUE(IsShown("Open scans"));
    m_window->Undo();
    EXPECT_TRUE(IsHidden());
    m_window->ClearScene();
    EXPECT_TRUE(IsShown("Open scans"));
}

TEST_F(ViewNoteInWindow, IsInNoPictureOfTheViewer) {
    ASSERT_TRUE(IsShown("Open scans"));
    const auto with = DrawFrame().pixels;
    Note().hide();
    EXPECT_EQ(DrawFrame().pixels, with);
}

TEST_F(ViewNoteInWindow, LetsDragsAndClicksThrough) {
    ASSERT_TRUE(IsShown("Open scans"));
    const std::array<float, 10> before = View();
    const QPoint on = Note().mapToGlobal(Note().rect().center());
    Xdotool("mousemove " + At(on) + " mousedown 1");
    WaitForInput();
    Xdotool("mousemove " + At(on + QPoint(60, 0)) + " mouseup 1");
    EXPECT_TRUE(WaitUntil([&] { return View() != before; })) << "the drag began on the note";
    Xdotool("mousemove " + At(on) + " click 3");
    ASSERT_TRUE(WaitUntil([] { return QApplication::activePopupWidget() != nullptr; }));
    QApplication::activePopupWidget()->close();
}

TEST_F(ViewNoteInWindow, StaysInTheMiddleOfAViewOfAnotherSize) {
    ASSERT_TRUE(IsShown("Open scans"));
    m_window->resize(900, 640);
    const auto isCentred = [&] {
        const QRect view(m_viewer->mapToGlobal(QPoint()), m_viewer->size());
        const QRect note(Note().mapToGlobal(QPoint()), Note().size());
        return view.contains(note) && std::abs(view.center().x() - note.center().x()) <= 1;
    };
    EXPECT_TRUE(WaitUntil(isCentred));
}

TEST_F(ViewNoteInWindow, NamesHiddenObjects) {
    ImportOne();
    m_window->Objects().Row(0)->setCheckState(ObjectList::kName, Qt::Unchecked);
    EXPECT_TRUE(IsShown("1 object(s), all hidden"));
    m_window->Objects().Row(0)->setCheckState(ObjectList::kName, Qt::Checked);
    EXPECT_TRUE(IsHidden());
}

TEST_F(ViewNoteInWindow, StaysWhileShadowsHideTheObjects) {
    ImportOne();
    Methods().SetShadowMode(1);
    Methods().SetDrawMode(KV_ScenePane::DrawModePerPixel);
    EXPECT_TRUE(IsShown("The render mode \"Lit per pixel\""));
    // A menu clears the status bar, not the note.
    QMenu& file = *m_window->findChild<QMenuBar*>()->actions().front()->menu();
    file.popup(Middle());
    file.close();
    QCoreApplication::processEvents();
    EXPECT_TRUE(IsShown("The render mode \"Lit per pixel\""));
    EXPECT_TRUE(MenuAction("Shadows").isChecked());
    EXPECT_TRUE(MenuAction("Shadows").isEnabled()) << "it can be switched off";
    Trigger("Shadows");
    EXPECT_TRUE(IsHidden());
    EXPECT_EQ(Methods().GetShadowMode(), 0);
}

TEST_F(ViewNoteInWindow, IsNeverCausedByTheMenusOfShadowsAndModes) {
    ImportOne();
    Trigger("Shadows");
    EXPECT_FALSE(MenuAction("Lit per pixel").isEnabled());
    EXPECT_TRUE(MenuAction("Lit per pixel").toolTip().contains("shows no objects while shadows are on"));
    Xdotool("mousemove " + At(Middle()) + " click 1 key ctrl+5");
    WaitForInput();
    EXPECT_EQ(Methods().GetDrawMode(), KV_ScenePane::DrawModeGouraud);
    Trigger("Shadows");
    EXPECT_TRUE(MenuAction("Lit per pixel").isEnabled());
    Trigger("Lit per pixel");
    EXPECT_FALSE(MenuAction("Shadows").isEnabled());
    EXPECT_TRUE(MenuAction("Shadows").toolTip().contains("not with this render mode"));
    Trigger("Gouraud shaded");
    EXPECT_TRUE(MenuAction("Shadows").isEnabled());
    EXPECT_FALSE(MenuAction("Shadows").toolTip().contains("not with"));
    EXPECT_TRUE(IsHidden());
}

TEST_F(ViewNoteInWindow, SaysThatTheBackgroundOnlyModeShowsNothing) {
    ImportOne();
    Trigger("Background only");
    EXPECT_TRUE(IsShown("The render mode \"Background only\""));
    Trigger("Points");
    EXPECT_TRUE(IsHidden());
}

TEST_F(ViewNoteInWindow, SaysThatTheClipPlaneCutsEverythingAway) {
    ImportOne();
    Trigger("Clip the scene");
    EXPECT_TRUE(IsHidden());
    Methods().SetClipPlane(0, 0, 1000, 0, 0, 1);
    EXPECT_TRUE(IsShown("The clip plane cuts everything"));
    Trigger("Clip the scene");
    EXPECT_TRUE(IsHidden());
}

}  // namespace
