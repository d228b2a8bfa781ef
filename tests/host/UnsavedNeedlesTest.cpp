// Closing the window while there are needles that no file has.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QCheckBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>

#include "NeedlePanel.h"
#include "host/MainWindowFixture.h"
#include "host/ModalDialogs.h"

namespace {

using KV_ScenePane::MouseInput;

/// Answers the question about needles that are not saved.
class UnsavedNeedles : public MainWindowFixture {
protected:
    void SetUp() override {
        Show();
        WritePcm(m_folder / "flat.pcm", 60, 60);
        Import({m_folder / "flat.pcm"});
        m_window->ShowView(KV_ScenePane::ViewFromMinusZYUp);
    }
    void AddNeedles(int last) const {
        for (int id = 1; id <= last; ++id) ASSERT_NE(Methods().CreateNeedle(id, 0, 0, 0, 0, 0, 10), 0) << id;
    }
    void Send(MouseInput::Kind kind, int x, int y) const {
        const std::uint32_t flags = kind == MouseInput::Kind::LeftUp ? 0 : KV_ScenePane::kMouseLeft;
        m_window->Pane()->SendMouse({.kind = kind, .flags = flags, .x = x, .y = y});
    }
    void WriteNeedles(const std::vector<NeedleMark>& marks) const {
        std::string reason;
        ASSERT_TRUE(WriteNeedleFile(m_folder / "a.json", marks, &reason)) << reason;
    }
    /// @return whether the window was closed
    [[nodiscard]] bool CloseAfter(QMessageBox::StandardButton answer) {
        const DialogAnswer<QMessageBox> dialog([=](QMessageBox& box) {
            EXPECT_TRUE(box.text().contains("not saved")) << box.text().toStdString();
            box.button(answer)->click();
        });
        const bool closed = m_window->close();
        EXPECT_TRUE(dialog.WasShown());
        return closed;
    }
    /// The window is closed without a question. One that is asked is cancelled.
    [[nodiscard]] bool CloseAtOnce() {
        const DialogAnswer<QMessageBox> dialog([](QMessageBox& box) { box.button(QMessageBox::Cancel)->click(); });
        return m_window->close() && !dialog.WasShown();
    }
};

TEST_F(UnsavedNeedles, KeepTheWindowOpenUntilTheUserDiscardsThem) {
    AddNeedles(2);
    EXPECT_FALSE(CloseAfter(QMessageBox::Cancel));
    EXPECT_TRUE(m_window->isVisible());
    EXPECT_EQ(Methods().GetNumberOfNeedles(), 2);
    EXPECT_TRUE(CloseAfter(QMessageBox::Discard));
    EXPECT_FALSE(m_window->isVisible());
}

TEST_F(UnsavedNeedles, AreAskedAboutByQuitToo) {
    AddNeedles(1);
    const DialogAnswer<QMessageBox> dialog([](QMessageBox& box) { box.button(QMessageBox::Cancel)->click(); });
    Trigger("Quit");
    EXPECT_TRUE(dialog.WasShown());
    EXPECT_TRUE(m_window->isVisible());
}

TEST_F(UnsavedNeedles, AreSavedOnRequest) {
    AddNeedles(2);
    {
        const DialogAnswer<QFileDialog> cancel([](QFileDialog& dialog) { dialog.reject(); });
        EXPECT_FALSE(CloseAfter(QMessageBox::Save)) << "no file was chosen";
    }
    const DialogAnswer<QFileDialog> save([&](QFileDialog& dialog) {
        dialog.findChild<QLineEdit*>("fileNameEdit")->setText(QString::fromStdString(m_folder / "a.json"));
        static_cast<QDialog&>(dialog).accept();
    });
    EXPECT_TRUE(CloseAfter(QMessageBox::Save));
    std::vector<NeedleMark> read;
    std::string reason;
    EXPECT_TRUE(ReadNeedleFile(m_folder / "a.json", &read, &reason)) << reason;
    EXPECT_EQ(read.size(), 2u);
}

TEST_F(UnsavedNeedles, AreNoneAfterASaveUntilOneMoves) {
    Find<QCheckBox>("needleCreate").click();
    const KV_ScenePane::Picture frame = DrawFrame();
    const int x = frame.width / 2, y = frame.height / 2;
    using Kind = MouseInput::Kind;
    for (const Kind kind : {Kind::LeftDown, Kind::LeftUp, Kind::DoubleClick, Kind::LeftUp}) Send(kind, x, y);
    ASSERT_TRUE(m_window->SaveNeedles(m_folder / "a.json"));
    EXPECT_FALSE(m_window->Needles().HaveUnsaved());
    (void)DrawFrame();  // in which the head is seen
    Send(Kind::LeftDown, x, y);
    Send(Kind::Move, x + 20, y);
    Send(Kind::LeftUp, x + 20, y);
    EXPECT_TRUE(m_window->Needles().HaveUnsaved());
    ASSERT_TRUE(m_window->SaveNeedles(m_folder / "a.json"));
    EXPECT_TRUE(CloseAtOnce());
}

TEST_F(UnsavedNeedles, AreNoneAfterALoadUntilOneIsDeleted) {
    WriteNeedles(
        {{.id = 1, .pin = {}, .head = {0, 0, 1}, .look = {}}, {.id = 2, .pin = {}, .head = {0, 0, 1}, .look = {}}});
    ASSERT_TRUE(m_window->LoadNeedles(m_folder / "a.json"));
    EXPECT_FALSE(m_window->Needles().HaveUnsaved());
    (void)Methods().DeleteNeedle(1);
    EXPECT_TRUE(m_window->Needles().HaveUnsaved());
    (void)Methods().DeleteNeedle(2);
    EXPECT_TRUE(CloseAtOnce()) << "there is nothing to save";
}

TEST_F(UnsavedNeedles, StayUnsavedWhenOthersAreLoaded) {
    WriteNeedles({{.id = 2, .pin = {}, .head = {0, 0, 1}, .look = {}}});
    AddNeedles(1);
    ASSERT_TRUE(m_window->LoadNeedles(m_folder / "a.json"));
    EXPECT_FALSE(CloseAfter(QMessageBox::Cancel));
}

}  // namespace
