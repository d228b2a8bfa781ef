// The about box: its texts, its keys, and its end with the window that it belongs to.
#include "AboutDialog.h"

#include <gtest/gtest.h>

#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <cstdlib>
#include <memory>

#include "host/ModalDialogs.h"
#include "host/QtUnderXvfb.h"

namespace {

/// Shows the dialog until @p answer has closed it. @return whether it was shown
bool ShowAndAnswer(const KV_ScenePane::AboutText& text, QWidget* parent, std::function<void(QMessageBox&)> answer) {
    const DialogAnswer<QMessageBox> answerer(std::move(answer));
    ShowAboutDialog(text, parent);
    return answerer.WasShown();
}

TEST(AboutDialog, ShowsTitleLineIconAndOneButton) {
    QWidget parent;
    EXPECT_TRUE(ShowAndAnswer({"About it", "It, Version 1"}, &parent, [](QMessageBox& box) {
        EXPECT_EQ(box.windowTitle(), "About it");
        EXPECT_EQ(box.text(), "It, Version 1");
        EXPECT_EQ(box.iconPixmap().deviceIndependentSize(), QSizeF(48, 48));
        EXPECT_EQ(qAlpha(box.iconPixmap().toImage().pixel(24, 24)), 255) << "the icon is empty";
        ASSERT_EQ(box.buttons().size(), 1);
        EXPECT_EQ(box.buttons().constFirst()->text(), "OK");
        EXPECT_TRUE(box.isModal());
        box.buttons().constFirst()->click();
    }));
}

TEST(AboutDialog, ShowsItsLineAsPlainText) {
    QWidget parent;
    EXPECT_TRUE(ShowAndAnswer({"t", "<b>1 < 2</b>"}, &parent, [](QMessageBox& box) {
        EXPECT_EQ(box.findChild<QLabel*>("qt_msgbox_label")->textFormat(), Qt::PlainText);
        box.reject();
    }));
}

/// Keys of the X server.
class AboutDialogKeys : public testing::TestWithParam<const char*> {};

TEST_P(AboutDialogKeys, CloseIt) {
    QWidget parent;
    parent.show();
    EXPECT_TRUE(ShowAndAnswer({"t", "line"}, &parent, [](QMessageBox& box) {
        ASSERT_TRUE(WaitUntil([&] { return box.isActiveWindow(); }));
        EXPECT_EQ(std::system((std::string("xdotool key ") + GetParam()).c_str()), 0);
        if (!WaitUntil([&] { return !box.isVisible(); })) box.reject(), ADD_FAILURE() << "the key closes nothing";
    }));
}

INSTANTIATE_TEST_SUITE_P(Keys, AboutDialogKeys, testing::Values("Escape", "Return", "KP_Enter", "space"));

TEST(AboutDialog, EndsWithTheWindowThatItBelongsTo) {
    auto parent = std::make_unique<QWidget>();
    EXPECT_TRUE(ShowAndAnswer({"t", "line"}, parent.get(), [&](QMessageBox&) { parent.reset(); }));
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

}  // namespace
