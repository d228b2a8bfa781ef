// Saving a screenshot: the file, the dialog for its name, and the messages about it. Exhausted memory, also for
// needles.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAction>
#include <QDockWidget>
#include <QFileDialog>
#include <QFileInfo>
#include <QImage>
#include <QLineEdit>
#include <QMessageBox>
#include <fstream>

#include "NeedleFile.h"
#include "host/MainWindowFixture.h"
#include "host/ModalDialogs.h"
#include "host/RefusedMemory.h"

namespace {

class MainWindowScreenShot : public MainWindowFixture {
protected:
    void SetUp() override { Show(); }
    /// Types a name into the dialog that the menu opens, and accepts. @return the dialog's title
    QString SaveAs(const std::string& path) const {
        QString title;
        const DialogAnswer<QFileDialog> answer([&](QFileDialog& dialog) {
            title = dialog.windowTitle();
            dialog.findChild<QLineEdit*>("fileNameEdit")->setText(QString::fromStdString(path));
            static_cast<QDialog&>(dialog).accept();
            if (dialog.isVisible()) dialog.reject();  // the file was not to be overwritten
        });
        Trigger("Save screenshot of the whole scene (2048 x 2048)...");
        EXPECT_TRUE(answer.WasShown());
        return title;
    }
};

TEST_F(MainWindowScreenShot, HasAFixedSizeWhateverTheSizeOfTheWindow) {
    const std::string path = m_folder / "shot.png";
    EXPECT_TRUE(m_window->SaveScreenShot(path));
    const QImage image(QString::fromStdString(path));
    ASSERT_EQ(image.size(), QSize(2048, 2048));
    EXPECT_EQ(image.pixel(0, 0) & 0xFFFFFF, kBackground);
}

TEST_F(MainWindowScreenShot, AddsAMessage) {
    const std::string path = m_folder / "shot.png";
    EXPECT_TRUE(m_window->SaveScreenShot(path));
    EXPECT_EQ(Messages(), path + ": screenshot of 2048 x 2048 pixels");
}

TEST_F(MainWindowScreenShot, AddsAMessageAlsoForANameWithAPercentSign) {
    const std::string path = m_folder / "%2%3.png";
    EXPECT_TRUE(m_window->SaveScreenShot(path));
    EXPECT_EQ(Messages(), path + ": screenshot of 2048 x 2048 pixels");
}

TEST_F(MainWindowScreenShot, ReportsAFileThatCannotBeWritten) {
    EXPECT_FALSE(m_window->SaveScreenShot(m_folder / "no/shot.png"));
    EXPECT_NE(Messages().find("no/shot.png: not written: the file could not be replaced: No such file or directory"),
              std::string::npos)
        << Messages();
    EXPECT_TRUE(Find<QDockWidget>("messages").isVisible());
}

#ifndef __SANITIZE_ADDRESS__
TEST_F(MainWindowScreenShot, ReportsExhaustedMemory) {
    const std::string path = m_folder / "shot.png";
    bool saved = true;
    g_refusedBytes = 2048 * 2048;
    EXPECT_NO_THROW(saved = m_window->SaveScreenShot(path));
    g_refusedBytes = SIZE_MAX;
    EXPECT_FALSE(saved);
    EXPECT_EQ(Messages(), path + ": not written: there is not enough memory: close other programs or remove objects");
    EXPECT_TRUE(m_window->SaveScreenShot(path)) << "the next one works as usual";
}

TEST_F(MainWindowScreenShot, IsNotTheOnlyFileThatReportsExhaustedMemory) {
    const std::string path = m_folder / "a.json";
    bool done = true;
    ASSERT_TRUE(m_window->SaveNeedles(path));
    std::ofstream(path, std::ios::app) << std::string(200'000, ' ');
    g_refusedBytes = 100'000;
    EXPECT_NO_THROW(done = m_window->LoadNeedles(path));
    g_refusedBytes = SIZE_MAX;
    EXPECT_FALSE(done);
    EXPECT_NE(Messages().find("a.json: no needles added: there is not enough memory"), std::string::npos) << Messages();
    constexpr int kNeedles = 500;
    Methods().SetMaxNumberOfNeedles(kNeedles);
    for (int id = 1; id <= kNeedles; ++id) Methods().CreateNeedle(id, 0, 0, 0, 0, 0, 1);
    g_refusedBytes = sizeof(NeedleMark) * kNeedles;  // their list
    done = true;
    EXPECT_NO_THROW(done = m_window->SaveNeedles(path));
    g_refusedBytes = SIZE_MAX;
    EXPECT_FALSE(done);
    EXPECT_NE(Messages().find("a.json: not written: there is not enough memory"), std::string::npos) << Messages();
}
#endif

TEST_F(MainWindowScreenShot, AddsTheSuffixToANameWithoutOne) {
    (void)SaveAs(m_folder / "shot");
    EXPECT_FALSE(QFileInfo::exists(QString::fromStdString(m_folder / "shot")));
    EXPECT_EQ(QImage(QString::fromStdString(m_folder / "shot.png")).size(), QSize(2048, 2048));
}

TEST_F(MainWindowScreenShot, AsksBeforeItOverwritesTheFileOfTheFullName) {
    const std::string path = m_folder / "shot.png";
    std::ofstream(path) << "old";
    const DialogAnswer<QMessageBox> question([](QMessageBox& box) { box.button(QMessageBox::No)->click(); });
    (void)SaveAs(m_folder / "shot");
    EXPECT_TRUE(question.WasShown());
    EXPECT_EQ(QFileInfo(QString::fromStdString(path)).size(), 3);
    EXPECT_EQ(Messages(), "");
}

TEST_F(MainWindowScreenShot, ExplainsInItsTipWhatThePictureShows) {
    EXPECT_EQ(SaveAs(m_folder / "shot"), "Save screenshot");
    const QString tip = MenuAction("Save screenshot of the whole scene (2048 x 2048)...").statusTip();
    for (const char* const word : {"whole scene", "2048 x 2048", "shaded", "without axes, cross, arrow and logo"})
        EXPECT_TRUE(tip.contains(word)) << tip.toStdString();
}

}  // namespace
