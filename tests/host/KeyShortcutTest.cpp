#include "KeyShortcut.h"

#include <gtest/gtest.h>

#include <QAction>

#include "host/QtUnderXvfb.h"

namespace {

/// Actions with one shortcut each.
struct Actions {
    QAction* Add(const QKeySequence& shortcut) {
        auto* const action = new QAction(&owner);
        action->setShortcut(shortcut);
        list.push_back(action);
        return action;
    }
    QObject owner;
    QList<QAction*> list;
};

TEST(KeyOfCode, KnowsTheKeysThatShortcutsUse) {
    EXPECT_EQ(KeyOfCode('0'), Qt::Key_0);
    EXPECT_EQ(KeyOfCode('9'), Qt::Key_9);
    EXPECT_EQ(KeyOfCode('A'), Qt::Key_A);
    EXPECT_EQ(KeyOfCode('Z'), Qt::Key_Z);
    EXPECT_EQ(KeyOfCode(8), Qt::Key_Backspace);
    EXPECT_EQ(KeyOfCode(9), Qt::Key_Tab);
    EXPECT_EQ(KeyOfCode(13), Qt::Key_Return);
    EXPECT_EQ(KeyOfCode(27), Qt::Key_Escape);
    EXPECT_EQ(KeyOfCode(32), Qt::Key_Space);
    EXPECT_EQ(KeyOfCode(33), Qt::Key_PageUp);
    EXPECT_EQ(KeyOfCode(36), Qt::Key_Home);
    EXPECT_EQ(KeyOfCode(37), Qt::Key_Left);
    EXPECT_EQ(KeyOfCode(40), Qt::Key_Down);
    EXPECT_EQ(KeyOfCode(46), Qt::Key_Delete);
    EXPECT_EQ(KeyOfCode(96), Qt::Key_0) << "of the number pad";
    EXPECT_EQ(KeyOfCode(105), Qt::Key_9);
    EXPECT_EQ(KeyOfCode(112), Qt::Key_F1);
    EXPECT_EQ(KeyOfCode(123), Qt::Key_F12);
    EXPECT_EQ(KeyOfCode(135), Qt::Key_F24);
}

TEST(KeyOfCode, IsUnknownForModifiersAndOtherCodes) {
    for (const int code : {-1, 0, 16, 17, 18, '0' - 1, '9' + 1, 'A' - 1, 'Z' + 1, 95, 110, 136, 255, 1 << 20})
        EXPECT_EQ(KeyOfCode(code), Qt::Key_unknown) << code;
}

TEST(HeldModifiers, CountUntilAllPendingInputIsHandled) {
    HeldModifiers held;
    EXPECT_EQ(held.With(Qt::NoModifier), Qt::NoModifier);
    EXPECT_FALSE(held.AreRemembered());
    held.Press(17);
    held.Press('S');
    EXPECT_EQ(held.With(Qt::NoModifier), Qt::ControlModifier) << "released before the query";
    EXPECT_EQ(held.With(Qt::ShiftModifier), Qt::ControlModifier | Qt::ShiftModifier);
    held.Settle(Qt::ControlModifier);
    EXPECT_EQ(held.With(Qt::NoModifier), Qt::ControlModifier) << "still held";
    held.Settle(Qt::NoModifier);
    EXPECT_FALSE(held.AreRemembered());
    EXPECT_EQ(held.With(Qt::NoModifier), Qt::NoModifier);
    held.Press(16);
    held.Press(18);
    EXPECT_EQ(held.With(Qt::NoModifier), Qt::ShiftModifier | Qt::AltModifier);
}

TEST(ActionOfKey, FindsTheActionWithExactlyTheseModifiers) {
    Actions actions;
    QAction* const plain = actions.Add(QKeySequence(Qt::Key_S));
    QAction* const ctrl = actions.Add(QKeySequence(Qt::CTRL | Qt::Key_S));
    QAction* const both = actions.Add(QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S));
    EXPECT_EQ(ActionOfKey(actions.list, 'S', Qt::NoModifier), plain);
    EXPECT_EQ(ActionOfKey(actions.list, 'S', Qt::ControlModifier), ctrl);
    EXPECT_EQ(ActionOfKey(actions.list, 'S', Qt::ControlModifier | Qt::ShiftModifier), both);
    EXPECT_EQ(ActionOfKey(actions.list, 'S', Qt::AltModifier), nullptr);
    EXPECT_EQ(ActionOfKey(actions.list, 'S', Qt::ShiftModifier), nullptr);
    EXPECT_EQ(ActionOfKey(actions.list, 'T', Qt::NoModifier), nullptr);
    EXPECT_EQ(ActionOfKey(actions.list, 'S', Qt::KeypadModifier), plain) << "a digit of the number pad is the same key";
}

TEST(ActionOfKey, FindsTheShortcutsOfAStandardKey) {
    Actions actions;
    QAction* const open = actions.Add(QKeySequence::Open);
    EXPECT_EQ(ActionOfKey(actions.list, 'O', Qt::ControlModifier), open);
    open->setShortcuts({QKeySequence(Qt::Key_F5), QKeySequence(Qt::CTRL | Qt::Key_R)});
    EXPECT_EQ(ActionOfKey(actions.list, 'R', Qt::ControlModifier), open) << "the second one";
}

TEST(ActionOfKey, IgnoresDisabledActionsAndThoseOfOneWidget) {
    Actions actions;
    QAction* const disabled = actions.Add(QKeySequence(Qt::Key_L));
    disabled->setEnabled(false);
    EXPECT_EQ(ActionOfKey(actions.list, 'L', Qt::NoModifier), nullptr);
    QAction* const ofAList = actions.Add(QKeySequence(Qt::Key_Delete));
    ofAList->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    EXPECT_EQ(ActionOfKey(actions.list, 46, Qt::NoModifier), nullptr) << "the list does not have the keyboard";
    QAction* const without = actions.Add({});
    EXPECT_FALSE(without->shortcuts().contains(QKeySequence()));
    EXPECT_EQ(ActionOfKey(actions.list, 17, Qt::ControlModifier), nullptr) << "a modifier alone";
}

TEST(MenuOfKey, FindsTheMenuOfTheMarkedLetterWithAlt) {
    Actions actions;
    QAction* const file = actions.Add({});
    file->setText("&File");
    QAction* const render = actions.Add({});
    render->setText("R&ender");
    EXPECT_EQ(MenuOfKey(actions.list, 'F', Qt::AltModifier), file);
    EXPECT_EQ(MenuOfKey(actions.list, 'E', Qt::AltModifier), render);
    EXPECT_EQ(MenuOfKey(actions.list, 'F', Qt::NoModifier), nullptr);
    EXPECT_EQ(MenuOfKey(actions.list, 'F', Qt::AltModifier | Qt::ControlModifier), nullptr);
    EXPECT_EQ(MenuOfKey(actions.list, 'R', Qt::AltModifier), nullptr);
}

}  // namespace
