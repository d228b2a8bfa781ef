// What ends or limits picks in the host's window: other modes, needles, mouse schemes, removals, and little space.
#include <gtest/gtest.h>

#include <QCheckBox>
#include <QLabel>
#include <QMessageBox>
#include <QStatusBar>
#include <functional>

#include "host/ModalDialogs.h"
#include "host/PicksFixture.h"

namespace {

using KV_ScenePane::MouseInput;

class MainWindowPickChanges : public PicksFixture {};

TEST_F(MainWindowPickChanges, AreLostOnlyOnceTheUserAgrees) {
    PlacePoints();
    DoubleClick(OnA());
    DoubleClick(OnB());
    const auto change = [&](QMessageBox::StandardButton answer, const std::function<void()>& act) {
        const DialogAnswer<QMessageBox> dialog([=](QMessageBox& box) {
            EXPECT_TRUE(box.text().contains("all 2 points")) << box.text().toStdString();
            EXPECT_EQ(box.defaultButton(), box.button(QMessageBox::No));
            box.button(answer)->click();
        });
        act();
        EXPECT_TRUE(dialog.WasShown());
    };
    auto& placing = Find<QCheckBox>("placePoints");
    const std::vector<std::function<void()>> changes = {[&] { Trigger("Off"); }, [&] { placing.click(); },
                                                        [&] { Find<QCheckBox>("cross").click(); },
                                                        [&] { Find<QCheckBox>("needleCreate").click(); }};
    for (const auto& act : changes) {
        change(QMessageBox::No, act);
        EXPECT_EQ(Points().size(), 2u);
        EXPECT_EQ(Methods().GetPickMode(), KV_ScenePane::PickModePoints);
        EXPECT_TRUE(placing.isChecked());
        EXPECT_TRUE(MenuAction("Points on objects").isChecked());
        EXPECT_FALSE(Find<QCheckBox>("cross").isChecked());
        EXPECT_FALSE(Find<QCheckBox>("needleCreate").isChecked());
        EXPECT_EQ(Methods().GetNeedlePickingMode(), KV_ScenePane::kVariantFalse);
    }
    change(QMessageBox::Yes, changes[0]);
    EXPECT_TRUE(Points().empty());
    EXPECT_EQ(Methods().GetPickMode(), KV_ScenePane::PickModeOff);
}

TEST_F(MainWindowPickChanges, ArePickedOncePerDoubleClickInTheDelayedScheme) {
    auto& placing = Find<QCheckBox>("placePoints");
    EXPECT_EQ(placing.text(), "A &double click places a point");
    Trigger("Delayed: right turns, both move, left picks");
    EXPECT_EQ(placing.text(), "A &click places a point");
    PlacePoints();
    const QPoint onA = OnA(), onB = OnB();
    const auto reported = [&] { return QString::fromStdString(Events()).count("SelectObjCoords("); };
    // The press is delayed: the pick of the double click may come before it.
    DoubleClick(onA);
    ASSERT_TRUE(WaitUntil([&] { return reported() == 2; })) << "the viewer picks for the press and the double click";
    EXPECT_EQ(Points().size(), 1u);
    EXPECT_EQ(Find<QLabel>("distance").text(), "");
    // And after it.
    using Kind = MouseInput::Kind;
    const auto send = [&](Kind kind, std::uint32_t flags) {
        m_window->Pane()->SendMouse({.kind = kind, .flags = flags, .x = onB.x(), .y = onB.y()});
    };
    send(Kind::LeftDown, KV_ScenePane::kMouseLeft);
    send(Kind::LeftUp, 0);
    ASSERT_TRUE(WaitUntil([&] { return reported() == 3; }));
    const std::string distance = Find<QLabel>("distance").text().toStdString();
    EXPECT_NE(distance, "");
    send(Kind::DoubleClick, KV_ScenePane::kMouseLeft);
    send(Kind::LeftUp, 0);
    ASSERT_EQ(reported(), 4);
    EXPECT_EQ(Points().size(), 2u);
    EXPECT_EQ(Find<QLabel>("distance").text().toStdString(), distance);
    send(Kind::LeftDown, KV_ScenePane::kMouseLeft);
    send(Kind::LeftUp, 0);
    EXPECT_TRUE(WaitUntil([&] { return Points().size() == 3; })) << "another click at the same place";
}

TEST_F(MainWindowPickChanges, LeaveTheStatusBarWhenTheyAreClearedOrTheModeChanges) {
    const auto pickTwice = [&](const char* mode) {
        Trigger(mode);
        DoubleClick(OnA());
        DoubleClick(OnB());
        ASSERT_NE(LastPick(), "") << mode;
        ASSERT_TRUE(MenuAction("Copy distance of the last two picks").isEnabled());
    };
    const auto expectNothing = [&] {
        EXPECT_EQ(LastPick(), "");
        EXPECT_EQ(Find<QLabel>("distance").text(), "");
        EXPECT_FALSE(Button("copyDistance").isEnabled());
        EXPECT_FALSE(MenuAction("Copy distance of the last two picks").isEnabled());
    };
    pickTwice("Points on objects");
    Button("clearPoints").click();
    expectNothing();
    for (const char* const next : {"Centre cross", "Off"}) {
        pickTwice("Points on objects");
        const DialogAnswer<QMessageBox> yes([](QMessageBox& box) { box.button(QMessageBox::Yes)->click(); });
        Trigger(next);
        EXPECT_TRUE(yes.WasShown()) << "two points would be lost";
        expectNothing();
    }
}

TEST_F(MainWindowPickChanges, LeaveHalfOfANarrowStatusBarToTheMessage) {
    Trigger("Points on objects");
    DoubleClick(PixelOf(20, 20));
    DoubleClick(PixelOf(21.3f, 22.7f));
    m_window->resize(500, 700);
    ASSERT_TRUE(WaitUntil([&] { return m_window->width() < 1000; }));
    const auto& label = Find<QLabel>("lastPick");
    ASSERT_TRUE(WaitUntil([&] { return label.width() > 50 && label.width() <= m_window->width() / 2; }));
    EXPECT_LE(label.fontMetrics().horizontalAdvance(label.text()), label.width()) << label.text().toStdString();
    EXPECT_TRUE(label.toolTip().contains("distance")) << "the whole text";
    EXPECT_TRUE(label.toolTip().endsWith(label.text().mid(1))) << "the numbers are at the end";
    m_window->resize(1400, 700);
    EXPECT_TRUE(WaitUntil([&] { return label.text() == label.toolTip(); })) << label.text().toStdString();
}

TEST_F(MainWindowPickChanges, AndNeedlesAreNotMadeByTheSameClick) {
    auto& creation = Find<QCheckBox>("needleCreate");
    Trigger("Points on objects");
    creation.click();
    EXPECT_EQ(Methods().GetPickMode(), KV_ScenePane::PickModeOff);
    EXPECT_TRUE(MenuAction("Off").isChecked());
    EXPECT_FALSE(Find<QCheckBox>("placePoints").isChecked());
    EXPECT_NE(Methods().GetNeedlePickingMode(), KV_ScenePane::kVariantFalse);
    EXPECT_TRUE(m_window->statusBar()->currentMessage().contains("creates needles now"));
    Trigger("Points on objects");
    EXPECT_FALSE(creation.isChecked());
    EXPECT_EQ(Methods().GetNeedlePickingMode(), KV_ScenePane::kVariantFalse);
    EXPECT_NE(Methods().GetNeedleDrawingMode(), KV_ScenePane::kVariantFalse) << "needles stay";
    EXPECT_TRUE(m_window->statusBar()->currentMessage().contains("picks points now"));
    Trigger("Centre cross");
    creation.click();
    EXPECT_EQ(Methods().GetPickMode(), KV_ScenePane::PickModeCross) << "it picks nothing";
}

}  // namespace
