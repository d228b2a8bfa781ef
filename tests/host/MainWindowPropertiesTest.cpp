// The persisted properties in the window: the property page beside the menus, the settings of the user, and the about
// box.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QMessageBox>
#include <QPushButton>
#include <QScrollBar>
#include <QStatusBar>
#include <optional>

#include "CutCommands.h"
#include "EventPane.h"
#include "PropertyDialog.h"
#include "Settings.h"
#include "host/HeadlessRuns.h"
#include "host/MeshFiles.h"
#include "host/ModalDialogs.h"
#include "host/PointerFixture.h"

namespace {

std::string StoreWith(const std::string& version, int mode, bool reduced) {
    return "KV_ScenePane properties " + version + "\nDrawMosaic=0\nDrawMode=" + std::to_string(mode) +
           "\nMoveReduced=" + (reduced ? "1\n" : "0\n");
}

class MainWindowProperties : public MainWindowFixture {
protected:
    /// Opens the property page by its menu.
    PropertyDialog& OpenPage() const {
        Trigger("Properties...");
        auto* const dialog = m_window->findChild<PropertyDialog*>();
        if (dialog == nullptr || !dialog->isVisible()) throw std::runtime_error("no property page was opened");
        return *dialog;
    }
    [[nodiscard]] QComboBox& Mode() const { return Find<QComboBox>("DrawMode"); }
    [[nodiscard]] QCheckBox& Reduced() const { return Find<QCheckBox>("MoveReduced"); }
    [[nodiscard]] QCheckBox& Mosaic() const { return Find<QCheckBox>("DrawMosaic"); }
    void Click(QDialogButtonBox::StandardButton button) const {
        m_window->findChild<PropertyDialog*>()->findChild<QDialogButtonBox*>()->button(button)->click();
    }
    /// The render mode that the menu has checked.
    [[nodiscard]] std::string CheckedMode() const {
        std::string checked;
        for (const char* const name : {"Points", "Wireframe", "Flat shaded", "Gouraud shaded", "Bounding boxes",
                                       "Lit per pixel", "Background only", "Shadow map"}) {
            if (MenuAction(name).isChecked()) checked += name;
        }
        return checked;
    }
    /// The viewer's window is destroyed from outside, and the window has handled it.
    void LoseViewer() const {
        DestroyXWindow(m_window->Pane()->NativeWindow());
        if (!WaitUntil([&] { return Messages().find("There is no viewer:") != std::string::npos; }))
            throw std::runtime_error("the window does not notice the loss");
    }
    static constexpr auto kOk = QDialogButtonBox::Ok, kApply = QDialogButtonBox::Apply;
};

// ---- the page and the menus

TEST_F(MainWindowProperties, ThePageSetsWhatTheMenusShow) {
    Show();
    OpenPage();
    EXPECT_EQ(Mode().currentIndex(), 3);
    Mode().setCurrentIndex(1);
    Reduced().setChecked(true);
    Mosaic().setChecked(true);
    Click(kApply);
    EXPECT_EQ(Methods().GetDrawMode(), KV_ScenePane::DrawModeWireframe);
    EXPECT_EQ(Methods().GetMoveReduced(), KV_ScenePane::kVariantTrue);
    EXPECT_EQ(Methods().GetDrawMosaic(), KV_ScenePane::kVariantTrue);
    EXPECT_EQ(CheckedMode(), "Wireframe");
    EXPECT_TRUE(MenuAction("Always").isChecked());
}

TEST_F(MainWindowProperties, TheOpenPageFollowsTheMenus) {
    Show();
    OpenPage();
    Trigger("Points");
    EXPECT_EQ(Mode().currentIndex(), 0);
    Trigger("Lit per pixel");
    EXPECT_EQ(Mode().currentIndex(), -1);
    EXPECT_EQ(Mode().placeholderText(), "(another mode, see the Render menu)");
    Trigger("Always");
    EXPECT_TRUE(Reduced().isChecked());
    EXPECT_FALSE(m_window->findChild<QDialogButtonBox*>()->button(kApply)->isEnabled());
}

TEST_F(MainWindowProperties, MenusAndPageFollowAChangeByAnotherCaller) {
    Show();
    OpenPage();
    Methods().SetDrawMode(KV_ScenePane::DrawModeFlat);
    Methods().SetMoveReduced(KV_ScenePane::kVariantTrue);
    EXPECT_TRUE(WaitUntil([&] { return CheckedMode() == "Flat shaded"; })) << CheckedMode();
    EXPECT_TRUE(MenuAction("Always").isChecked());
    EXPECT_EQ(Mode().currentIndex(), 2);
    EXPECT_TRUE(Reduced().isChecked());
    Methods().SetDrawMode(100);
    EXPECT_TRUE(WaitUntil([&] { return CheckedMode().empty(); })) << "the menu has no such mode";
    EXPECT_EQ(Mode().currentIndex(), -1);
}

TEST_F(MainWindowProperties, TheRenderModeCannotBeChangedUnderALasso) {
    Show();
    WriteStl(m_folder / "a.stl");
    Import({m_folder / "a.stl"});
    OpenPage();
    EXPECT_TRUE(Mode().isEnabled());
    m_window->Cuts().Start(KV_ScenePane::PolygonInside);
    EXPECT_FALSE(MenuAction("Properties...").isEnabled());
    EXPECT_FALSE(Mode().isEnabled());
    m_window->Cuts().Cancel();
    EXPECT_TRUE(WaitUntil([&] { return Mode().isEnabled(); }));
}

TEST_F(MainWindowProperties, ThePageClosesWithTheViewerAndWithTheWindow) {
    Show();
    PropertyDialog& page = OpenPage();
    Mosaic().setChecked(true);
    LoseViewer();
    EXPECT_FALSE(page.isVisible());
    EXPECT_FALSE(MenuAction("Properties...").isEnabled());
    m_window->ShowProperties();
    EXPECT_FALSE(page.isVisible());

    Show();
    PropertyDialog& second = OpenPage();
    EXPECT_FALSE(Mosaic().isChecked()) << "what was not applied is not stored";
    EXPECT_TRUE(m_window->close());
    EXPECT_FALSE(second.isVisible());
}

/// Real keys.
class MainWindowPropertyKeys : public PointerFixture {
protected:
    [[nodiscard]] PropertyDialog* Page() const { return m_window->findChild<PropertyDialog*>(); }
    [[nodiscard]] bool IsPageActive() const { return Page() != nullptr && Page()->isActiveWindow(); }
};

TEST_F(MainWindowPropertyKeys, OpenChangeAndCloseThePage) {
    Xdotool("key alt+Return");
    ASSERT_TRUE(WaitUntil([&] { return IsPageActive(); }));
    Xdotool("key p");  // Points
    ASSERT_TRUE(WaitUntil([&] { return Find<QComboBox>("DrawMode").currentIndex() == 0; }));
    Xdotool("key Return");
    EXPECT_TRUE(WaitUntil([&] { return !Page()->isVisible(); }));
    EXPECT_EQ(Methods().GetDrawMode(), KV_ScenePane::DrawModePoints);
    EXPECT_TRUE(MenuAction("Points").isChecked());
}

TEST_F(MainWindowPropertyKeys, OpenThePageWhileTheViewerHasTheKeyboard) {
    Xdotool("mousemove " + At(Middle()) + " click 1");
    WaitForViewerFocus();
    Xdotool("mousemove " + At(m_window->mapToGlobal(QPoint(200, 5))) + " key alt+Return");
    ASSERT_TRUE(WaitUntil([&] { return IsPageActive(); }));
    Xdotool("key Escape");
    EXPECT_TRUE(WaitUntil([&] { return !Page()->isVisible(); }));
}

TEST_F(MainWindowPropertyKeys, LeaveTheWindowUsableBesideThePage) {
    Trigger("Properties...");
    ASSERT_TRUE(WaitUntil([&] { return IsPageActive(); }));
    m_window->activateWindow();
    ASSERT_TRUE(WaitUntil([&] { return m_window->isActiveWindow(); }));
    Xdotool("key ctrl+1");
    EXPECT_TRUE(WaitUntil([&] { return Methods().GetDrawMode() == KV_ScenePane::DrawModeWireframe; }));
    EXPECT_EQ(Find<QComboBox>("DrawMode").currentIndex(), 1);
    EXPECT_TRUE(Page()->isVisible());
}

TEST_F(MainWindowPropertyKeys, OpenAndCloseTheAboutBox) {
    const DialogAnswer<QMessageBox> answer([](QMessageBox& box) {
        EXPECT_EQ(box.windowTitle(), "About KV_ScenePane Control");
        EXPECT_EQ(box.text(), "KV_ScenePane Control, Version 5.5");
        ASSERT_TRUE(WaitUntil([&] { return box.isActiveWindow(); }));
        Xdotool("key Escape");
        if (!WaitUntil([&] { return !box.isVisible(); })) box.reject(), ADD_FAILURE() << "Escape closes nothing";
    });
    Xdotool("key alt+h");
    ASSERT_TRUE(WaitUntil([&] { return QApplication::activePopupWidget() != nullptr; }));
    Xdotool("key a");
    EXPECT_TRUE(WaitUntil([&] { return answer.WasShown() && QApplication::activeModalWidget() == nullptr; }));
    EXPECT_EQ(MiddlePixel(), kBackground) << "the viewer goes on";
}

// ---- the settings of the user

TEST_F(MainWindowProperties, AreThoseOfANewViewerAtAFirstStart) {
    Show();
    EXPECT_EQ(Methods().GetDrawMode(), KV_ScenePane::DrawModeGouraud);
    EXPECT_EQ(Methods().GetMoveReduced(), KV_ScenePane::kVariantFalse);
    EXPECT_EQ(Methods().GetDrawMosaic(), KV_ScenePane::kVariantFalse);
    EXPECT_EQ(Messages(), "");
    m_window.reset();
    EXPECT_EQ(StoredProperties(), std::nullopt) << "the user has changed nothing";
}

TEST_F(MainWindowProperties, AreStoredWhenTheyAreChanged) {
    Show();
    Trigger("Wireframe");
    EXPECT_EQ(StoredProperties(), StoreWith("1.0", 1, false));
    Trigger("Always");
    EXPECT_EQ(StoredProperties(), StoreWith("1.0", 1, true));
    OpenPage();
    Mode().setCurrentIndex(0);
    Click(kApply);
    EXPECT_EQ(StoredProperties(), StoreWith("1.0", 0, true));
}

TEST_F(MainWindowProperties, AreStoredAtTheEndWhenAnotherCallerHasChangedThem) {
    Show();
    Methods().SetDrawMode(KV_ScenePane::DrawModePoints);
    m_window.reset();
    EXPECT_EQ(StoredProperties(), StoreWith("1.0", 0, false));
}

TEST_F(MainWindowProperties, AreInTheNextWindowBeforeItsFirstFrame) {
    Show();
    OpenPage();
    Mode().setCurrentIndex(1);
    Mosaic().setChecked(true);
    Reduced().setChecked(true);
    Click(kOk);
    m_window = std::make_unique<MainWindow>(HostOptions());
    int mode = -1;
    const auto* const viewer = m_window->findChild<ViewerWidget*>();
    // Inside the creation of the viewer: no event of its window was handled yet.
    QObject::connect(viewer, &ViewerWidget::Ready, viewer, [&] { mode = Methods().GetDrawMode(); });
    m_window->show();
    ASSERT_TRUE(WaitUntil([&] { return mode != -1; }));
    EXPECT_EQ(mode, 1);
    EXPECT_EQ(Methods().GetDrawMosaic(), KV_ScenePane::kVariantTrue);
    EXPECT_EQ(Methods().GetMoveReduced(), KV_ScenePane::kVariantTrue);
    EXPECT_EQ(CheckedMode(), "Wireframe");
    EXPECT_TRUE(MenuAction("Always").isChecked());
    EXPECT_EQ(Messages(), "");
}

TEST_F(MainWindowProperties, StayForTheNextWindowWhenTheViewerIsLost) {
    Show();
    Trigger("Points");
    LoseViewer();
    m_window.reset();
    Show();
    EXPECT_EQ(Methods().GetDrawMode(), KV_ScenePane::DrawModePoints);
}

TEST_F(MainWindowProperties, StayWhenTheContextIsMadeAgain) {
    Show();
    Trigger("Flat shaded");
    Trigger("Always");
    Methods().RecreateOpenglContext(3, 3, 0);
    EXPECT_EQ(Methods().GetDrawMode(), KV_ScenePane::DrawModeFlat);
    EXPECT_EQ(Methods().GetMoveReduced(), KV_ScenePane::kVariantTrue);
}

TEST_F(MainWindowProperties, OfTheWindowThatWasChangedLastAreStored) {
    Show();
    Trigger("Wireframe");
    StoreProperties(StoreWith("1.0", 2, true));  // as a second program does meanwhile
    m_window.reset();
    EXPECT_EQ(StoredProperties(), StoreWith("1.0", 2, true)) << "this window had changed nothing since";
    Show();
    StoreProperties(StoreWith("1.0", 0, false));
    Trigger("Never");
    EXPECT_EQ(StoredProperties(), StoreWith("1.0", 2, false)) << "with all properties of the window";
}

// ---- the command line

TEST_F(MainWindowProperties, GiveWayToTheModeOfTheCommandLineForOneWindow) {
    StoreProperties(StoreWith("1.0", 1, true));
    HostOptions options;
    options.drawMode = KV_ScenePane::DrawModePoints;
    Show(options);
    EXPECT_EQ(Methods().GetDrawMode(), KV_ScenePane::DrawModePoints);
    EXPECT_EQ(Methods().GetMoveReduced(), KV_ScenePane::kVariantTrue);
    EXPECT_EQ(CheckedMode(), "Points");
    Trigger("Never");
    EXPECT_EQ(StoredProperties(), StoreWith("1.0", 1, false)) << "the mode was not the user's choice";
    EXPECT_EQ(Methods().GetDrawMode(), KV_ScenePane::DrawModePoints);
    m_window.reset();
    EXPECT_EQ(StoredProperties(), StoreWith("1.0", 1, false));
}

TEST_F(MainWindowProperties, AreNotStoredForAModeOfTheCommandLine) {
    HostOptions options;
    options.drawMode = KV_ScenePane::DrawModePoints;
    Show(options);
    m_window.reset();
    EXPECT_EQ(StoredProperties(), std::nullopt);
    StoreProperties("damaged");
    Show(options);
    EXPECT_EQ(Methods().GetDrawMode(), KV_ScenePane::DrawModePoints);
    m_window.reset();
    EXPECT_EQ(StoredProperties(), "damaged");
}

TEST_F(MainWindowProperties, HaveTheModeOfTheCommandLineOnceTheUserChoosesIt) {
    HostOptions options;
    options.drawMode = KV_ScenePane::DrawModePoints;
    Show(options);
    Trigger("Points");
    EXPECT_EQ(StoredProperties(), StoreWith("1.0", 0, false));
    Trigger("Flat shaded");
    EXPECT_EQ(StoredProperties(), StoreWith("1.0", 2, false));
}

// ---- stores that cannot be read

struct BadStore {
    const char* name;
    std::string store;
    const char* reason;
};
void PrintTo(const BadStore& row, std::ostream* out) { *out << row.name; }

const BadStore kBadStores[] = {
    {"Empty", "", "There is no store of properties"},
    {"OtherText", "no store at all\n", "There is no store of properties"},
    {"CutShort", StoreWith("1.0", 1, true).substr(0, 60), "The store of properties is damaged: "},
    {"NoNumber", "KV_ScenePane properties 1.0\nDrawMode=many\n", "The store of properties is damaged: "},
    {"NewerMajorVersion", StoreWith("2.0", 1, true), "The properties were stored by a newer version of the viewer"},
};
class MainWindowBadStore : public MainWindowProperties, public testing::WithParamInterface<BadStore> {};

TEST_P(MainWindowBadStore, IsReportedInOneLineAndKeptUntilAPropertyIsChanged) {
    StoreProperties(GetParam().store);
    Show();
    QApplication::processEvents();  // messages of the viewer come later
    EXPECT_EQ(Methods().GetDrawMode(), KV_ScenePane::DrawModeGouraud);
    EXPECT_EQ(Methods().GetMoveReduced(), KV_ScenePane::kVariantFalse);
    EXPECT_EQ(CheckedMode(), "Gouraud shaded");
    const std::string messages = Messages();
    EXPECT_EQ(messages.find(GetParam().reason), 0u) << messages;
    EXPECT_NE(messages.find(". The properties of the viewer have their default values. What is stored stays; change a "
                            "property in Render > Properties to replace it."),
              std::string::npos)
        << messages;
    EXPECT_EQ(messages.find('\n'), std::string::npos) << messages;
    EXPECT_EQ(m_window->statusBar()->currentMessage().toStdString(), messages);
    m_window.reset();
    EXPECT_EQ(StoredProperties(), GetParam().store);
    Show();
    Trigger("Wireframe");
    EXPECT_EQ(StoredProperties(), StoreWith("1.0", 1, false));
    Show();
    EXPECT_EQ(Messages(), "");
}

INSTANTIATE_TEST_SUITE_P(Stores, MainWindowBadStore, testing::ValuesIn(kBadStores),
                         [](const auto& row) { return row.param.name; });

struct WindowSize {
    int width, height;
};
void PrintTo(const WindowSize& size, std::ostream* out) { *out << size.width << " x " << size.height; }
class MainWindowOfASize : public MainWindowFixture, public testing::WithParamInterface<WindowSize> {};

TEST_P(MainWindowOfASize, ShowsTheReasonOfABadStoreWhole) {
    StoreProperties("KV_ScenePane properties 1.0\nDrawMode=abc\n");
    Show();
    m_window->resize(GetParam().width, GetParam().height);
    MessagePane& pane = m_window->Messages();
    const auto isWhole = [&] {
        QTextCursor cursor(pane.document());
        const QRect start = pane.cursorRect(cursor);
        cursor.movePosition(QTextCursor::End);
        const QRect end = pane.cursorRect(cursor);
        return start.top() >= 0 && end.bottom() <= pane.viewport()->height() && end.top() > start.top();
    };
    EXPECT_TRUE(WaitUntil(isWhole)) << pane.viewport()->width() << " x " << pane.viewport()->height();
    EXPECT_FALSE(pane.horizontalScrollBar()->isVisible());
    EXPECT_GE(pane.viewport()->width(), 25 * pane.fontMetrics().averageCharWidth());
    EXPECT_EQ(m_window->width(), GetParam().width) << "the panes leave the window as narrow as it was";
}

INSTANTIATE_TEST_SUITE_P(Sizes, MainWindowOfASize, testing::Values(WindowSize{1280, 800}, WindowSize{1024, 768}),
                         [](const auto& size) { return "Width" + std::to_string(size.param.width); });

TEST_F(MainWindowProperties, AreReadFromAListThatTheSettingsFileMadeOfTheText) {
    QSettings("scenepane", "scenepane").setValue("viewer/properties", QStringList{"a", "b"});
    Show();
    EXPECT_EQ(Messages().find("There is no store of properties"), 0u) << Messages();
}

TEST_F(MainWindowProperties, AreNotReadByRunsWithoutAWindow) {
    StoreProperties(StoreWith("1.0", KV_ScenePane::DrawModeNothing, false));
    WriteStl(m_folder / "a.stl");
    HostOptions options;
    options.action = HostAction::Screenshot;
    options.files = {m_folder / "a.stl"};
    options.view = KV_ScenePane::ViewObliqueZUp;  // a corner of the tetrahedron is in the middle
    options.width = options.height = 64;
    options.picturePath = m_folder / "a.png";
    const Printed errors;
    ASSERT_EQ(RunScreenshot(options, errors), kExitGood) << errors.Text();
    EXPECT_NE(ReadPng(options.picturePath).At(32, 32), kBackground);
}

// ---- the about box

TEST_F(MainWindowProperties, TheAboutBoxIsThatOfTheViewer) {
    Show();
    const DialogAnswer<QMessageBox> answer([&](QMessageBox& box) {
        EXPECT_EQ(box.windowTitle(), "About KV_ScenePane Control");
        EXPECT_EQ(box.text(), "KV_ScenePane Control, Version 5.5");
        EXPECT_EQ(box.parentWidget(), m_window.get());
        box.accept();
    });
    Trigger("About KV_ScenePane");
    EXPECT_TRUE(answer.WasShown()) << "AboutBox() returns when it was closed";
}

TEST_F(MainWindowProperties, TheAboutBoxIsShownWithoutAViewerToo) {
    Show();
    LoseViewer();
    const DialogAnswer<QMessageBox> answer([](QMessageBox& box) {
        EXPECT_EQ(box.text(), "KV_ScenePane Control, Version 5.5");
        box.accept();
    });
    EXPECT_TRUE(MenuAction("About KV_ScenePane").isEnabled());
    Trigger("About KV_ScenePane");
    EXPECT_TRUE(answer.WasShown());
}

TEST_F(MainWindowProperties, TheViewerCanBeLostBehindTheAboutBox) {
    Show();
    const DialogAnswer<QMessageBox> answer([&](QMessageBox& box) {
        LoseViewer();
        EXPECT_EQ(m_window->Pane(), nullptr);
        box.accept();
    });
    Trigger("About KV_ScenePane");
    EXPECT_TRUE(answer.WasShown());
    EXPECT_NE(Messages().find("There is no viewer: The viewer has lost its window."), std::string::npos) << Messages();
}

TEST_F(MainWindowProperties, TheWindowCanBeDestroyedBehindTheAboutBox) {
    Show();
    const DialogAnswer<QMessageBox> answer([&](QMessageBox&) { m_window.reset(); });
    Trigger("About KV_ScenePane");
    EXPECT_TRUE(answer.WasShown());
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(MainWindowProperties, TheLossOfTheViewerIsInTheListOfEvents) {
    Show();
    EXPECT_EQ(m_window->Events().Text().count("ReadyStateChange"), 0);
    LoseViewer();
    EXPECT_EQ(m_window->Events().Text().count("ReadyStateChange()"), 1);
}

}  // namespace
