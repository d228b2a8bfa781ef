// Panes and menus for input, logo, animation and events, with a viewer on an X server.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QKeySequence>
#include <QLabel>
#include <QMenuBar>
#include <QPushButton>
#include <QSlider>
#include <QSpinBox>
#include <map>
#include <utility>

#include "AnimationDriver.h"
#include "AnimationPanel.h"
#include "BackgroundDialog.h"
#include "ColorButton.h"
#include "DecorationPanel.h"
#include "EventPane.h"
#include "LogoPanel.h"
#include "ViewerWidget.h"
#include "host/MainWindowFixture.h"

namespace {

class MainWindowControls : public MainWindowFixture {
protected:
    void SetUp() override { Show(); }
    [[nodiscard]] std::string Events() const { return m_window->Events().Text().toStdString(); }
    void PressKey(std::int32_t nChar) const {
        KV_ScenePane::KeyInput key;
        key.nChar = nChar;
        m_window->Pane()->SendKey(key);
    }
};

TEST_F(MainWindowControls, ChoosesPickModesByTheirNames) {
    const std::pair<const char*, int> modes[] = {{"Points on objects", KV_ScenePane::PickModePoints},
                                                 {"Centre cross", KV_ScenePane::PickModeCross},
                                                 {"Off", KV_ScenePane::PickModeOff}};
    for (const auto& [name, mode] : modes) {
        Trigger(name);
        EXPECT_EQ(Methods().GetPickMode(), mode) << name;
    }
}

TEST_F(MainWindowControls, ChecksTheCrossInItsPickModeOnly) {
    auto& cross = Find<QCheckBox>("cross");
    EXPECT_FALSE(cross.isChecked());
    for (const char* const name : {"Centre cross", "Points on objects", "Centre cross", "Off"}) {
        Trigger(name);
        EXPECT_EQ(cross.isChecked(), QString(name) == "Centre cross") << name;
    }
}

TEST_F(MainWindowControls, ChoosesThePickModeOfTheCrossByItsCheckBox) {
    Trigger("Points on objects");
    Find<QCheckBox>("cross").click();
    EXPECT_EQ(Methods().GetPickMode(), 1);
    EXPECT_TRUE(MenuAction("Centre cross").isChecked());
    EXPECT_FALSE(MenuAction("Points on objects").isChecked());
    Find<QCheckBox>("cross").click();
    EXPECT_EQ(Methods().GetPickMode(), 0);
    EXPECT_TRUE(MenuAction("Off").isChecked());
}

TEST_F(MainWindowControls, ReducesTheSceneWhileMovingByItsMenu) {
    EXPECT_EQ(Methods().GetMoveReduced(), KV_ScenePane::kVariantFalse);
    Trigger("Always");
    EXPECT_EQ(Methods().GetMoveReduced(), KV_ScenePane::kVariantTrue);
    Trigger("Never");
    EXPECT_EQ(Methods().GetMoveReduced(), KV_ScenePane::kVariantFalse);
    Trigger("Always");
    Trigger("Automatically for slow scenes");
    EXPECT_EQ(Methods().GetMoveReduced(), KV_ScenePane::kVariantFalse) << "no drag runs";
}

TEST_F(MainWindowControls, ReportsALogoThatCannotBeRead) {
    EXPECT_FALSE(m_window->Logo().OpenImage(QString::fromStdString(m_folder / "none.png")));
    EXPECT_NE(Messages().find("none.png: no logo: there is no such file"), std::string::npos) << Messages();
}

// ---- animation

TEST_F(MainWindowControls, DrivesTheAnimationToItsEnd) {
    const AnimationDriver& driver = m_window->findChild<AnimationPanel*>()->Driver();
    auto& start = Find<QPushButton>("animationStart");
    const QString startText = start.text();
    Find<QDoubleSpinBox>("animationSpeed").setValue(0.25);  // slow: a machine under load draws few frames per second
    const auto before = View();
    int frames = 0;
    auto last = before;
    start.click();
    EXPECT_TRUE(driver.IsDriving());
    EXPECT_NE(start.text(), startText);
    QElapsedTimer timer;
    timer.start();
    EXPECT_TRUE(WaitUntil([&] {
        const auto now = View();
        if (now != last) ++frames;
        last = now;
        return !driver.IsDriving();
    }));
    EXPECT_GE(timer.elapsed(), 3900) << "one turn at a quarter of a turn per second";
    EXPECT_GE(frames, 3) << "only the timer requests frames";
    EXPECT_EQ(Methods().IsAnimationRunning(), KV_ScenePane::kVariantFalse);
    EXPECT_EQ(start.text(), startText);
}

TEST_F(MainWindowControls, StopsTheAnimationByItsButton) {
    auto& start = Find<QPushButton>("animationStart");
    start.click();
    EXPECT_NE(Methods().IsAnimationRunning(), KV_ScenePane::kVariantFalse);
    start.click();
    EXPECT_EQ(Methods().IsAnimationRunning(), KV_ScenePane::kVariantFalse);
    EXPECT_FALSE(m_window->findChild<AnimationPanel*>()->Driver().IsDriving());
}

TEST_F(MainWindowControls, DrivesAnAnimationThatTheSpaceBarStarts) {
    const AnimationDriver& driver = m_window->findChild<AnimationPanel*>()->Driver();
    PressKey(KV_ScenePane::kKeySpace);
    EXPECT_EQ(Methods().IsAnimationRunning(), KV_ScenePane::kVariantFalse) << "the check box is still clear";
    Find<QCheckBox>("animationSpacebar").click();
    PressKey(KV_ScenePane::kKeySpace);
    EXPECT_TRUE(WaitUntil([&] { return driver.IsDriving(); }));
    PressKey(KV_ScenePane::kKeySpace);
    EXPECT_TRUE(WaitUntil([&] { return !driver.IsDriving(); }));
    EXPECT_EQ(Methods().IsAnimationRunning(), KV_ScenePane::kVariantFalse);
}

TEST_F(MainWindowControls, DestroyedDuringAnAnimationEndsIt) {
    Find<QPushButton>("animationStart").click();
    m_window.reset();
    Show();
    EXPECT_EQ(MiddlePixel(), kBackground);
}

// ---- events

TEST_F(MainWindowControls, ListsEventsAsTheyFireNewestLast) {
    Find<QPushButton>("clearEvents").click();
    Trigger("Points on objects");
    PressKey('Q');
    EXPECT_EQ(Events(), "PickPointCountChanged(newCount = 0)\nCustomKeyDown(nChar = 81, nRepCnt = 1, nFlags = 0)");
    Find<QPushButton>("clearEvents").click();
    EXPECT_EQ(Events(), "");
}

TEST_F(MainWindowControls, ReportsChangesOfTheViewWhenTheirBoxIsChecked) {
    const auto set = [&] { ASSERT_TRUE(Methods().SetViewParams(1, 0, 0, 0, 0, -1, 0, 0, 0, 1, 0)); };
    set();
    EXPECT_EQ(Events().find("ViewDirectionChanged"), std::string::npos);
    Find<QCheckBox>("tracing").click();
    set();
    EXPECT_NE(Events().find("ViewDirectionChanged(vx = 0, vy = 1, vz = 0)"), std::string::npos) << Events();
    Find<QCheckBox>("tracing").click();
    Find<QPushButton>("clearEvents").click();
    set();
    EXPECT_EQ(Events(), "");
}

TEST(EventPane, KeepsTheLastThousandLines) {
    EventPane pane;
    for (int i = 0; i < 1001; ++i) pane.AddLine(QString::number(i));
    const QStringList lines = pane.Text().split('\n');
    ASSERT_EQ(lines.size(), 1000);
    EXPECT_EQ(lines.front(), "1");
    EXPECT_EQ(lines.back(), "1000");
}

TEST_F(MainWindowControls, ShowsEightEventsAtOnce) {
    auto* const lines = m_window->Events().findChild<MessagePane*>();
    EXPECT_GE(lines->viewport()->height(), 8 * lines->fontMetrics().lineSpacing());
}

// ---- names

/// The letter after the &; a null character without one.
QChar Mnemonic(const QString& text) {
    const QKeySequence keys = QKeySequence::mnemonic(text);
    return keys.isEmpty() ? QChar() : QChar(keys[0].key());
}

TEST_F(MainWindowControls, MarkNoLetterTwiceAmongTheMenuBarAndThePanes) {
    // Also the panes behind other tabs: for Qt they are visible, and their letters compete.
    for (const bool running : {false, true}) {
        if (running) Find<QPushButton>("animationStart").click();
        std::map<QChar, QString> owners;
        const auto add = [&](const QString& text) {
            const QChar letter = Mnemonic(text);
            if (letter.isNull()) return;
            const auto [other, isNew] = owners.try_emplace(letter, text);
            EXPECT_TRUE(isNew) << text.toStdString() << " and " << other->second.toStdString();
        };
        for (const QAction* const menu : m_window->menuBar()->actions()) add(menu->text());
        EXPECT_EQ(owners.size(), 6u);
        for (const auto* const button : m_window->findChildren<QAbstractButton*>()) add(button->text());
        for (const auto* const label : m_window->findChildren<QLabel*>()) {
            if (label->buddy() != nullptr) add(label->text());
        }
        EXPECT_GT(owners.size(), 10u) << "some letters belong to panes";
    }
}

TEST_F(MainWindowControls, NameEveryButtonThatShowsAColourOnly) {
    WriteXdt(m_folder / "a.xdt", 2, 2);
    Import({m_folder / "a.xdt"});
    EXPECT_EQ(m_window->findChildren<ColorButton*>().size(), 13);
    for (const auto* const button : m_window->findChildren<ColorButton*>()) {
        EXPECT_FALSE(button->accessibleName().isEmpty()) << button->objectName().toStdString();
        EXPECT_FALSE(button->toolTip().isEmpty()) << button->objectName().toStdString();
    }
}

TEST_F(MainWindowControls, ExplainAnglesAndAxesInTheirToolTips) {
    EXPECT_TRUE(Find<QSlider>("arrowAngle").toolTip().contains("counterclockwise"));
    EXPECT_TRUE(Find<QSpinBox>("arrowAngleNumber").toolTip().contains("counterclockwise"));
    EXPECT_TRUE(Find<QCheckBox>("axes").toolTip().contains("double click"));
}

TEST(DecorationPanel, WithoutAViewerDoesNothing) {
    DecorationPanel panel;
    for (auto* const box : panel.findChildren<QCheckBox*>()) box->setChecked(true);
    for (auto* const button : panel.findChildren<ColorButton*>()) emit button->ColorChosen(1);
    panel.findChild<QSlider*>("arrowAngle")->setValue(20);
    EXPECT_FALSE(panel.isEnabled());
}

TEST(BackgroundDialog, LabelsItsColoursByTheirPlaces) {
    BackgroundDialog dialog({1, 2, 3, 4});
    dialog.show();
    const auto labels = [&] {
        QStringList texts;
        for (const auto* const label : dialog.findChildren<QLabel*>()) {
            if (label->isVisible()) texts.push_back(label->text());
        }
        return texts;
    };
    const auto names = [&] {
        QStringList texts;
        for (const auto* const button : dialog.findChildren<ColorButton*>()) {
            if (button->isVisible()) texts.push_back(button->accessibleName());
        }
        return texts;
    };
    const QStringList four{"Top left", "Top right", "Bottom left", "Bottom right"}, two{"Top", "Bottom"};
    EXPECT_EQ(labels(), four);
    EXPECT_EQ(names(), four);
    dialog.findChild<QCheckBox*>()->click();
    EXPECT_EQ(labels(), two);
    EXPECT_EQ(names(), two);
    dialog.findChild<QCheckBox*>()->click();
    EXPECT_EQ(labels(), four);
}

// ---- shortcuts

TEST_F(MainWindowControls, RunsShortcutsWithModifiersThatTheViewerReports) {
    emit m_window->findChild<ViewerWidget*>()->KeyPressed('4', Qt::ControlModifier);
    EXPECT_TRUE(WaitUntil([&] { return Methods().GetDrawMode() == 4; }));
}

}  // namespace
