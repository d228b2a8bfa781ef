// The pane of needles and the viewer: each follows what the user does in the other.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QCheckBox>
#include <QDockWidget>
#include <QDoubleSpinBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSpinBox>
#include <QStatusBar>
#include <QTreeWidget>
#include <cstdlib>
#include <fstream>

#include "ColorButton.h"
#include "EventPane.h"
#include "NeedlePanel.h"
#include "ViewerWidget.h"
#include "host/MainWindowFixture.h"
#include "host/ModalDialogs.h"

namespace {

using KV_ScenePane::MouseInput;

/// The scene is a flat grid of 60 x 60 points at height 0. It faces -Z and is seen from there, with +X at the left.
class MainWindowNeedles : public MainWindowFixture {
protected:
    void SetUp() override {
        Show();
        WritePcm(m_folder / "flat.pcm", 60, 60);
        Import({m_folder / "flat.pcm"});
        ASSERT_EQ(ObjectsInViewer(), 1) << Messages();
        m_window->ShowView(KV_ScenePane::ViewFromMinusZYUp);
        Find<QDockWidget>("needles").raise();
        m_window->activateWindow();
        ASSERT_TRUE(WaitUntil([&] { return m_window->isActiveWindow(); }));
        ClearEvents();
    }
    static void Xdotool(const std::string& commands) { ASSERT_EQ(std::system(("xdotool " + commands).c_str()), 0); }
    [[nodiscard]] QCheckBox& Create() const { return Find<QCheckBox>("needleCreate"); }
    [[nodiscard]] QCheckBox& ShowBox() const { return Find<QCheckBox>("needleShow"); }
    [[nodiscard]] QSpinBox& Limit() const { return Find<QSpinBox>("needleLimit"); }
    [[nodiscard]] QTreeWidget& List() const { return Find<QTreeWidget>("needleList"); }
    [[nodiscard]] QDoubleSpinBox& Size(const char* name) const { return Find<QDoubleSpinBox>(name); }
    [[nodiscard]] std::string StatusText() const { return m_window->statusBar()->currentMessage().toStdString(); }

    /// The numbers of the rows, the selected one in brackets.
    [[nodiscard]] std::string Needles() const {
        std::string text;
        for (int i = 0; i < List().topLevelItemCount(); ++i) {
            const QTreeWidgetItem* const item = List().topLevelItem(i);
            const std::string id = item->text(NeedlePanel::kId).toStdString();
            text.append(text.empty() ? "" : " ").append(item->isSelected() ? "[" + id + "]" : id);
        }
        return text;
    }
    void AddNeedle(int id, float x = 0) const {
        ASSERT_NE(Methods().CreateNeedle(id, x, 0, 0, x, 0, 10), KV_ScenePane::kVariantFalse) << id;
    }
    void AddNeedles(int last) const {
        for (int id = 1; id <= last; ++id) AddNeedle(id, static_cast<float>(id));
    }
    void Send(MouseInput::Kind kind, int x, int y) const {
        MouseInput input;
        input.kind = kind;
        input.flags = kind == MouseInput::Kind::LeftUp ? 0 : KV_ScenePane::kMouseLeft;
        input.x = x;
        input.y = y;
        m_window->Pane()->SendMouse(input);
    }
    /// Of the left button, beside the middle of the viewer. The frame before it shows what is clicked.
    void DoubleClick(int right = 0, int down = 0) const {
        const KV_ScenePane::Picture frame = DrawFrame();
        const int x = frame.width / 2 + right, y = frame.height / 2 + down;
        for (const auto kind : {MouseInput::Kind::LeftDown, MouseInput::Kind::LeftUp, MouseInput::Kind::DoubleClick,
                                MouseInput::Kind::LeftUp})
            Send(kind, x, y);
    }
    void ClearEvents() const { m_window->Events().Clear(); }
    /// The lines of the event pane about needles.
    [[nodiscard]] std::string NeedleEvents() const {
        QStringList lines = m_window->Events().Text().split('\n').filter("Needle");
        return lines.join(' ').remove("Needle").remove("id = ").toStdString();
    }
    [[nodiscard]] std::vector<NeedleMark> Marks() const { return m_window->Needles().Marks(); }
    void WriteNeedles(const std::string& name, const std::vector<NeedleMark>& marks) const {
        std::string reason;
        ASSERT_TRUE(WriteNeedleFile(m_folder / name, marks, &reason)) << reason;
    }
};

// ---- switches

TEST_F(MainWindowNeedles, SwitchesTheMouseAndWithItTheDrawing) {
    Create().click();
    EXPECT_NE(Methods().GetNeedlePickingMode(), 0);
    EXPECT_NE(Methods().GetNeedleDrawingMode(), 0) << "what is created must be seen";
    EXPECT_TRUE(ShowBox().isChecked());
    ShowBox().click();
    EXPECT_EQ(Methods().GetNeedleDrawingMode(), 0);
    EXPECT_NE(Methods().GetNeedlePickingMode(), 0);
    Create().click();
    EXPECT_EQ(Methods().GetNeedlePickingMode(), 0);
}

TEST_F(MainWindowNeedles, SaysWhatTheMouseDoesOnceItIsSwitchedOn) {
    Create().click();
    for (const char* const word : {"Double click", "Click on a head", "Drag", "Delete"}) {
        EXPECT_NE(StatusText().find(word), std::string::npos) << StatusText();
        EXPECT_TRUE(Find<QLabel>("needleText").text().contains(word)) << word;
        EXPECT_TRUE(Create().toolTip().contains(word)) << word;
    }
    Create().click();
    EXPECT_EQ(Find<QLabel>("needleText").text(), "");
}

TEST_F(MainWindowNeedles, ShowsAndHidesThemAtOnce) {
    NeedleMark mark{.id = 1, .pin = {29.5f, 29.5f, 0}, .head = {29.5f, 29.5f, -10}, .look = {}};
    mark.look.headRadius = 5;
    const std::uint32_t surface = MiddlePixel();
    (void)m_window->Needles().Place({mark});
    EXPECT_NE(MiddlePixel(), surface);
    ShowBox().click();
    EXPECT_EQ(MiddlePixel(), surface);
}

// ---- list and viewer

TEST_F(MainWindowNeedles, ListsWhatADoubleClickCreates) {
    Create().click();
    DoubleClick(-40);
    DoubleClick(40);
    EXPECT_EQ(Needles(), "1 [2]");
    EXPECT_EQ(NeedleEvents(), "Created(1) Selected(1) Deselected(1) Created(2) Selected(2)");
    const std::vector<NeedleMark> marks = Marks();
    ASSERT_EQ(marks.size(), 2u);
    EXPECT_GT(marks[0].pin[0], 29.5f);
    EXPECT_LT(marks[1].pin[0], 29.5f);
    EXPECT_NEAR(marks[0].pin[2], 0, 0.1) << "on the surface";
    EXPECT_LT(marks[0].head[2], marks[0].pin[2]) << "towards the viewer";
}

TEST_F(MainWindowNeedles, DoNotCentreTheViewByADoubleClick) {
    Methods().SetViewParams(1, 0, 0, 0, 1, 0, 20, 20, 0, 1, 0);
    const auto view = View();
    Create().click();
    DoubleClick();
    EXPECT_EQ(View(), view);
    EXPECT_EQ(Needles(), "[1]");
    Create().click();
    DoubleClick();
    EXPECT_NE(View(), view) << "without needles it does";
}

TEST_F(MainWindowNeedles, FollowTheViewer) {
    AddNeedles(3);
    EXPECT_EQ(Needles(), "1 2 3");
    Methods().SelectNeedle(2);
    EXPECT_EQ(Needles(), "1 [2] 3");
    Methods().SelectNeedle(3);
    EXPECT_EQ(Needles(), "1 2 [3]");
    Methods().DeselectAllNeedles();
    EXPECT_EQ(Needles(), "1 2 3");
    Methods().SelectNeedle(1);
    (void)Methods().DeleteNeedle(1);
    EXPECT_EQ(Needles(), "2 3") << "the next row is not selected: no needle is";
    Methods().SelectNeedle(3);
    Methods().SetMaxNumberOfNeedles(1);
    EXPECT_EQ(Needles(), "2") << "deleted without a deselection";
    EXPECT_FALSE(Find<QPushButton>("needleDelete").isEnabled()) << "nothing is selected";
    Methods().DeleteNeedles();
    EXPECT_EQ(Needles(), "");
}

TEST_F(MainWindowNeedles, AreSelectedInTheViewerByTheirRow) {
    AddNeedles(3);
    ClearEvents();
    List().setCurrentItem(List().topLevelItem(1));
    EXPECT_EQ(NeedleEvents(), "Selected(2)") << "once: the event does not select again";
    List().setCurrentItem(List().topLevelItem(2));
    EXPECT_EQ(NeedleEvents(), "Selected(2) Deselected(2) Selected(3)");
    EXPECT_EQ(Needles(), "1 2 [3]");
    List().clearSelection();
    EXPECT_EQ(NeedleEvents(), "Selected(2) Deselected(2) Selected(3) Deselected(3)");
    EXPECT_EQ(Needles(), "1 2 3");
}

TEST_F(MainWindowNeedles, AreDeselectedWithTheMouseSwitchedOff) {
    Create().click();
    DoubleClick();
    EXPECT_EQ(Needles(), "[1]");
    Create().click();
    EXPECT_EQ(Needles(), "1");
}

TEST_F(MainWindowNeedles, ShowTheirPositions) {
    ASSERT_NE(Methods().CreateNeedle(5, 1, -2.5f, 0.125f, 1e6f, 0, 3.14159f), 0);
    const QTreeWidgetItem* const item = List().topLevelItem(0);
    EXPECT_EQ(item->text(NeedlePanel::kPin), "1, -2.5, 0.125");
    EXPECT_EQ(item->text(NeedlePanel::kHead), "1e+06, 0, 3.1416");
}

TEST_F(MainWindowNeedles, StayWhenTheSceneIsCleared) {
    AddNeedles(2);
    m_window->ClearScene();
    EXPECT_EQ(Needles(), "1 2");
    EXPECT_EQ(Methods().GetNumberOfNeedles(), 2);
}

TEST_F(MainWindowNeedles, LeaveTheListWithTheViewer) {
    AddNeedles(2);
    ASSERT_EQ(std::system(("xdotool windowclose " + std::to_string(m_window->Pane()->NativeWindow())).c_str()), 0);
    ASSERT_TRUE(WaitUntil([&] { return m_window->Pane() == nullptr; }));
    EXPECT_EQ(Needles(), "");
    EXPECT_FALSE(m_window->Needles().isEnabled());
    EXPECT_TRUE(Marks().empty());
    EXPECT_FALSE(m_window->SaveNeedles(m_folder / "a.json"));
    EXPECT_FALSE(m_window->LoadNeedles(m_folder / "a.json"));
}

// ---- deletion

TEST_F(MainWindowNeedles, AreDeletedByTheDeleteKeyInTheList) {
    AddNeedles(3);
    ClearEvents();
    List().setCurrentItem(List().topLevelItem(1));
    List().setFocus();
    ASSERT_TRUE(WaitUntil([&] { return List().hasFocus(); }));
    Xdotool("key Delete");
    EXPECT_TRUE(WaitUntil([&] { return Needles() == "1 3"; })) << Needles();
    EXPECT_EQ(NeedleEvents(), "Selected(2) Deselected(2) Deleted(2)");
    EXPECT_FALSE(Find<QPushButton>("needleDelete").isEnabled()) << "nothing is selected";
}

TEST_F(MainWindowNeedles, AreDeletedByTheDeleteKeyInTheViewer) {
    Create().click();
    AddNeedles(2);
    Methods().SelectNeedle(1);
    KV_ScenePane::KeyInput key;
    key.nChar = KV_ScenePane::kKeyDelete;
    m_window->Pane()->SendKey(key);
    EXPECT_EQ(Needles(), "2");
}

TEST_F(MainWindowNeedles, AreDeletedByTheButton) {
    auto& button = Find<QPushButton>("needleDelete");
    AddNeedles(2);
    EXPECT_FALSE(button.isEnabled());
    Methods().SelectNeedle(1);
    EXPECT_TRUE(button.isEnabled());
    button.click();
    EXPECT_EQ(Needles(), "2");
    EXPECT_FALSE(button.isEnabled());
}

TEST_F(MainWindowNeedles, AreAllDeletedOnceTheUserAgrees) {
    auto& button = Find<QPushButton>("needleDeleteAll");
    EXPECT_FALSE(button.isEnabled());
    AddNeedles(3);
    for (const auto answer : {QMessageBox::No, QMessageBox::Yes}) {
        const DialogAnswer<QMessageBox> dialog([=](QMessageBox& box) {
            EXPECT_TRUE(box.text().contains("all 3 needles")) << box.text().toStdString();
            box.button(answer)->click();
        });
        button.click();
        EXPECT_TRUE(dialog.WasShown());
        EXPECT_EQ(Needles(), answer == QMessageBox::No ? "1 2 3" : "");
    }
    EXPECT_FALSE(button.isEnabled());
}

// ---- the limit

TEST_F(MainWindowNeedles, SayThatTheLimitIsReachedUntilThereIsRoom) {
    Create().click();
    Limit().setValue(1);
    DoubleClick(-40);
    const auto isWarned = [&] { return Find<QLabel>("needleText").text().contains("limit of 1 is reached"); };
    EXPECT_FALSE(isWarned());
    DoubleClick(40);
    EXPECT_EQ(Needles(), "1") << "selected no more, since the double click was elsewhere";
    EXPECT_TRUE(isWarned());
    EXPECT_NE(StatusText().find("limit of 1 is reached"), std::string::npos) << StatusText();
    EXPECT_TRUE(NeedleEvents().ends_with("Created(-1)")) << NeedleEvents();
    Limit().setValue(2);
    EXPECT_FALSE(isWarned());
    DoubleClick(40);
    EXPECT_EQ(Needles(), "1 [2]");
}

TEST_F(MainWindowNeedles, AreNotDeletedWhileALargerLimitIsTyped) {
    AddNeedles(8);
    Limit().setFocus();
    ASSERT_TRUE(WaitUntil([&] { return Limit().hasFocus(); }));
    Limit().selectAll();
    Xdotool("key 1 key 2");
    EXPECT_TRUE(WaitUntil([&] { return Limit().text() == "12"; })) << Limit().text().toStdString();
    EXPECT_EQ(Methods().GetNumberOfNeedles(), 8);
    Xdotool("key Return");
    EXPECT_TRUE(WaitUntil([&] { return Limit().value() == 12; })) << Limit().value();
    AddNeedle(9);
    EXPECT_EQ(Limit().minimum(), 9) << "a limit below the number would delete needles";
    (void)Methods().DeleteNeedle(9);
    EXPECT_EQ(Limit().minimum(), 8);
}

TEST_F(MainWindowNeedles, WithTheNumberMinusOneAreNoWarning) {
    AddNeedle(-1);
    EXPECT_EQ(Needles(), "-1");
    EXPECT_EQ(Find<QLabel>("needleText").text(), "");
}

TEST_F(MainWindowNeedles, ShowTheHintOfTheMouseAgainOnceThereIsRoom) {
    Create().click();
    const QString hint = Find<QLabel>("needleText").text();
    const auto& text = Find<QLabel>("needleText");
    const auto isHinted = [&] { return text.text() == hint && StatusText() == hint.toStdString(); };
    EXPECT_TRUE(isHinted());
    Limit().setValue(1);
    DoubleClick(-40);
    DoubleClick(40);
    EXPECT_FALSE(isHinted());
    (void)Methods().DeleteNeedle(1);
    EXPECT_TRUE(isHinted()) << StatusText();
}

TEST_F(MainWindowNeedles, SayWhyALowerLimitIsNotAccepted) {
    AddNeedles(4);
    Limit().setFocus();
    ASSERT_TRUE(WaitUntil([&] { return Limit().hasFocus(); }));
    Limit().selectAll();
    Xdotool("key 3 key Return");
    EXPECT_TRUE(WaitUntil([&] { return Find<QLabel>("needleText").text().contains("There are 4 needles"); }));
    EXPECT_NE(StatusText().find("There are 4 needles"), std::string::npos) << StatusText();
    EXPECT_EQ(Limit().value(), 8);
    EXPECT_EQ(Methods().GetNumberOfNeedles(), 4);
    (void)Methods().DeleteNeedle(1);
    EXPECT_EQ(Find<QLabel>("needleText").text(), "");
}

TEST_F(MainWindowNeedles, DoNotMoveTheControlsByTheirHints) {
    const auto top = [&] {
        QCoreApplication::processEvents();
        return List().y();
    };
    m_window->resize(900, 800);
    Create().click();
    Limit().setValue(1);
    const int before = top();
    DoubleClick(-40);
    DoubleClick(40);
    EXPECT_EQ(top(), before);
    const auto& text = Find<QLabel>("needleText");
    EXPECT_GE(text.height(), text.heightForWidth(text.width())) << "it is read as a whole";
    Create().click();
    EXPECT_EQ(top(), before);
}

// ---- the look

TEST_F(MainWindowNeedles, HaveTheLookThatWasSetWhenTheyWereCreated) {
    Create().click();
    const std::pair<const char*, double> kSizes[] = {
        {"needleLength", 5}, {"needleHeadRadius", 2}, {"needlePinSize", 0.5}, {"needleHitPointRadius", 0}};
    for (const auto& [name, size] : kSizes) Size(name).setValue(size);
    const std::pair<const char*, std::int32_t> kColors[] = {{"needleHeadColor", 0x00FF00},
                                                            {"needlePinColor", 0x010203},
                                                            {"needleHitPointColor", 0x040506},
                                                            {"needleSelectionColor", 0x070809}};
    for (const auto& [name, color] : kColors) emit Find<ColorButton>(name).ColorChosen(color);
    const NeedleLook look{5, 2, 0x00FF00, 0.5f, 0x010203, 0, 0x040506, 0x070809};
    DoubleClick();
    Size("needleHeadRadius").setValue(3);
    AddNeedle(9);
    const std::vector<NeedleMark> marks = Marks();
    ASSERT_EQ(marks.size(), 2u);
    EXPECT_EQ(marks[0].look, look);
    EXPECT_FLOAT_EQ(marks[0].pin[2] - marks[0].head[2], 5);
    EXPECT_EQ(marks[1].look.headRadius, 3);
    Methods().DeselectAllNeedles();
    const std::uint32_t middle = MiddlePixel();
    EXPECT_GT((middle >> 8) & 0xFF, 3 * (middle & 0xFF)) << "the viewer has the green head: " << std::hex << middle;
    EXPECT_GT((middle >> 8) & 0xFF, 3 * (middle >> 16));
}

TEST_F(MainWindowNeedles, AreSuggestedSizesInProportionToTheScene) {
    // The first sizes suit a diagonal of 100; the grid has one of 59 times the root of 2, and a box slightly thicker.
    EXPECT_DOUBLE_EQ(Size("needleLength").value(), 8.3);
    EXPECT_DOUBLE_EQ(Size("needleHeadRadius").value(), 0.83);
    EXPECT_DOUBLE_EQ(Size("needlePinSize").value(), 0.28);
    EXPECT_DOUBLE_EQ(Size("needleHitPointRadius").value(), 0.21);
    EXPECT_EQ(Size("needleHeadRadius").text(), QLocale().toString(0.83));
    Create().click();
    DoubleClick();
    EXPECT_FLOAT_EQ(Marks().at(0).look.headRadius, 0.83f);
}

TEST_F(MainWindowNeedles, KeepTheSizesThatTheUserChose) {
    Size("needleLength").setValue(1);
    WritePcm(m_folder / "large.pcm", 200, 200);
    Import({m_folder / "large.pcm"});
    EXPECT_EQ(Size("needleLength").value(), 1);
    Find<QPushButton>("needleFit").click();
    EXPECT_DOUBLE_EQ(Size("needleLength").value(), 28);
}

TEST_F(MainWindowNeedles, HaveOneSizeAlsoWhenTheSceneGrows) {
    AddNeedle(1);
    WritePcm(m_folder / "large.pcm", 200, 200);
    Import({m_folder / "large.pcm"});
    EXPECT_DOUBLE_EQ(Size("needleLength").value(), 8.3);
}

// ---- files

TEST_F(MainWindowNeedles, AreSavedWithTheirPresentPositionsAndLooks) {
    AddNeedles(2);
    ASSERT_TRUE(m_window->SaveNeedles(m_folder / "a.json"));
    EXPECT_EQ(Messages(), (m_folder / "a.json") + ": 2 needles saved");
    EXPECT_EQ(StatusText(), Messages());
    std::vector<NeedleMark> read;
    std::string reason;
    ASSERT_TRUE(ReadNeedleFile(m_folder / "a.json", &read, &reason)) << reason;
    ASSERT_EQ(read.size(), 2u);
    EXPECT_EQ(read[1].id, 2);
    EXPECT_EQ(read[1].pin, (std::array<float, 3>{2, 0, 0}));
    EXPECT_EQ(read[1].head, (std::array<float, 3>{2, 0, 10}));
    EXPECT_FLOAT_EQ(read[1].look.headRadius, 0.83f);
}

TEST_F(MainWindowNeedles, AreLoadedWithTheirLooksAndShown) {
    NeedleMark mark{.id = 4, .pin = {1, 2, 3}, .head = {4, 5, 6}, .look = {}};
    mark.look.headRadius = 7;
    mark.look.pinColor = 0x123456;
    WriteNeedles("a.json", {mark});
    ASSERT_TRUE(m_window->LoadNeedles(m_folder / "a.json"));
    EXPECT_EQ(Messages(), (m_folder / "a.json") + ": 1 needle added");
    EXPECT_TRUE(ShowBox().isChecked());
    EXPECT_EQ(Needles(), "4");
    EXPECT_EQ(Marks(), std::vector{mark});
    AddNeedle(5);
    EXPECT_FLOAT_EQ(Marks().at(1).look.headRadius, 0.83f) << "new needles have the look of the pane";
}

TEST_F(MainWindowNeedles, RaiseTheLimitWhenMoreAreLoaded) {
    AddNeedle(3, 50);
    std::vector<NeedleMark> marks;
    for (int id = 1; id <= 12; ++id) marks.push_back({.id = id, .pin = {}, .head = {0, 0, 1}, .look = {}});
    WriteNeedles("a.json", marks);
    ASSERT_TRUE(m_window->LoadNeedles(m_folder / "a.json"));
    EXPECT_EQ(Limit().value(), 12);
    EXPECT_EQ(Methods().GetNumberOfNeedles(), 12);
    EXPECT_EQ(Messages(),
              (m_folder / "a.json") + ": 11 needles added; not added, because there are needles with their numbers: 3");
    EXPECT_EQ(Marks().at(0).pin[0], 50) << "the old one is as it was";
    EXPECT_FLOAT_EQ(Marks().at(0).look.headRadius, 0.83f);
}

TEST_F(MainWindowNeedles, OfADamagedFileAreRefusedAsAWhole) {
    std::ofstream(m_folder / "a.json")
        << "{\"format\": \"scenepane needles\", \"version\": 1, \"needles\": [\n"
           "{\"id\": 1, \"pin\": [0, 0, 0], \"head\": [0, 0, 1]},\n{\"id\": 2, \"pin\": [0, 0, 1e99]}]}";
    EXPECT_FALSE(m_window->LoadNeedles(m_folder / "a.json"));
    EXPECT_EQ(Messages(),
              (m_folder / "a.json") + ": no needles added: entry 2: key \"pin\": the number is out of range");
    EXPECT_EQ(Needles(), "");
    EXPECT_FALSE(ShowBox().isChecked());
}

TEST_F(MainWindowNeedles, OfOptionsThatAreNotAllAddedAreFailures) {
    const NeedleMark mark{.id = 4, .pin = {1, 2, 3}, .head = {4, 5, 6}, .look = {}};
    WriteNeedles("a.json", {mark});
    WriteNeedles("none.json", {});
    std::ofstream(m_folder / "damaged.json") << "{";
    HostOptions options;
    for (const char* const name : {"a.json", "none.json", "damaged.json", "missing.json"})
        options.needleFiles.push_back(m_folder / name);
    for (const bool twice : {false, true}) {  // the second time all numbers are in use
        HostOptions now = options;
        now.needleFiles.resize(twice ? 4 : 1);
        if (twice) now.needleFiles.insert(now.needleFiles.begin(), m_folder / "a.json");
        m_window = std::make_unique<MainWindow>(now);
        std::vector<std::string> failed;
        QObject::connect(m_window.get(), &MainWindow::FileFailed,
                         [&](const std::string& file, const std::string& reason) {
                             failed.push_back(file.substr(file.rfind('/') + 1) + ": " + reason.substr(0, 26));
                         });
        m_window->show();
        ASSERT_TRUE(WaitUntil([&] { return Needles() == "4"; }));
        QCoreApplication::processEvents();
        EXPECT_EQ(m_window->HaveAllFilesAdded(), !twice);
        if (!twice) {
            EXPECT_TRUE(failed.empty());
            continue;
        }
        ASSERT_EQ(failed.size(), 4u);
        EXPECT_EQ(failed[0], "a.json: not added, their numbers a");
        EXPECT_EQ(failed[1], "none.json: the file holds no needles");
        EXPECT_EQ(failed[2].find("damaged.json: "), 0u);
        EXPECT_EQ(failed[3].find("missing.json: "), 0u);
        EXPECT_NE(Messages().find("none.json: no needles added: the file holds no needles"), std::string::npos);
    }
}

TEST_F(MainWindowNeedles, ThatCannotBeSavedAreReported) {
    AddNeedle(1);
    EXPECT_FALSE(m_window->SaveNeedles(m_folder / "no/a.json"));
    EXPECT_EQ(Messages(), (m_folder / "no/a.json") + ": not written: No such file or directory");
}

TEST_F(MainWindowNeedles, AreSavedAndLoadedByTheButtons) {
    AddNeedles(2);
    const QString path = QString::fromStdString(m_folder / "marks");
    const auto type = [](QFileDialog& dialog, const QString& name) {
        dialog.findChild<QLineEdit*>("fileNameEdit")->setText(name);
        static_cast<QDialog&>(dialog).accept();
    };
    const DialogAnswer<QFileDialog> save([&](QFileDialog& dialog) { type(dialog, path); });
    Find<QPushButton>("needleSave").click();
    EXPECT_TRUE(save.WasShown());
    EXPECT_TRUE(QFileInfo::exists(path + ".json")) << "the suffix is added";
    Methods().DeleteNeedles();
    EXPECT_FALSE(Find<QPushButton>("needleSave").isEnabled());
    const DialogAnswer<QFileDialog> load([&](QFileDialog& dialog) { type(dialog, path + ".json"); });
    Find<QPushButton>("needleLoad").click();
    EXPECT_TRUE(load.WasShown());
    EXPECT_EQ(Needles(), "1 2");
}

}  // namespace
