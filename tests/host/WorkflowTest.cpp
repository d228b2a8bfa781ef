// Whole workflows of an operator, with pointer and keys, from the start of the program to what it leaves.
#include <QImage>
#include <QString>
#include <QStringList>
#include <filesystem>

#include "host/OperatorFixture.h"

namespace {

class Workflow : public OnDesktops {
protected:
    /// Cuts a square out of the middle of the scan.
    void CutMiddle() const {
        GiveKeyboardToViewer();
        Screen().Key("i");
        (void)m_operator->WaitForText("click to add, right click to cut, Esc to cancel", TextMatch::Part);
        // Each corner is drawn before the next click.
        for (const auto& [x, y] :
             {std::pair(0.45, 0.45), std::pair(0.55, 0.45), std::pair(0.55, 0.55), std::pair(0.45, 0.55)}) {
            Screen().Click(m_operator->InViewer(x, y));
            (void)m_operator->WaitForStillPicture();
        }
        Screen().Click(m_operator->InViewer(0.5, 0.5), 3);
        m_operator->WaitFor("the hole of the cut", [&] { return Middle() == kBackground; });
    }
};

TEST_P(Workflow, FilesAreOpenedByArgumentsAndByTheDialog) {
    StartWithScan("one.pcm");
    EXPECT_TRUE(Screen().FindWindow("one.pcm")) << "the title names the file";
    Screen().Key("ctrl+o");
    m_operator->AnswerFileDialog("Open scans and meshes", Scan("more.pcm", 5));
    (void)m_operator->WaitForText("more.pcm");
}

TEST_P(Workflow, WheelAndDragsMoveTheViewAndHomeFitsIt) {
    StartWithScan();
    Screen().MoveTo(m_operator->InViewer(0.5, 0.5));
    for (int notch = 0; notch < 3; ++notch) Screen().Press(4), Screen().Release(4);
    (void)m_operator->WaitForOtherPicture(m_first);
    Screen().Key("Home");
    m_operator->WaitForPicture(m_first);
    Screen().Drag({m_operator->InViewer(0.5, 0.5), m_operator->InViewer(0.55, 0.5), m_operator->InViewer(0.6, 0.55)},
                  3);
    (void)m_operator->WaitForOtherPicture(m_first);
    Screen().Key("Home");
    m_operator->WaitForPicture(m_first);
}

TEST_P(Workflow, ACutIsTakenBackSavedAndThereWhenTheFileIsOpenedAgain) {
    StartWithScan();
    CutMiddle();
    Screen().Key("ctrl+z");
    m_operator->WaitForPicture(m_first);
    CutMiddle();
    Screen().Key("ctrl+shift+s");
    (void)m_operator->WaitForWindow("Save cuts");
    Screen().Key("Return");  // the button that is preset: Save
    m_operator->WaitForNoWindow("Save cuts");
    (void)m_operator->WaitForWindow("scenepane");  // it has the keyboard again
    Screen().Key("ctrl+q");
    EXPECT_EQ(m_operator->Program().WaitForEnd(), 0);
    m_operator->Start({File("flat.pcm")});
    (void)m_operator->WaitForText("flat.pcm");
    (void)m_operator->WaitForStillPicture();
    EXPECT_EQ(Middle(), kBackground);
    EXPECT_GT(m_operator->ObjectPixels(), 100);
}

TEST_P(Workflow, QuittingWithAnUnsavedCutAsks) {
    StartWithScan();
    CutMiddle();
    Screen().Close(m_operator->MainWindow());
    (void)m_operator->WaitForWindow("Close the window");
    Screen().Key("Escape");
    m_operator->WaitForNoWindow("Close the window");
    EXPECT_TRUE(m_operator->Program().IsRunning());
    m_operator->WaitFor("the cut as it was", [&] { return Middle() == kBackground; });
}

TEST_P(Workflow, TheClipPlaneIsSwitchedByItsKey) {
    m_operator->Start({Scan("low.pcm"), Scan("high.pcm", 20)});
    (void)m_operator->WaitForText("high.pcm");
    GiveKeyboardToViewer();
    Screen().Key("6");  // oblique: both scans are seen from the side of their fronts
    const ScreenShown both = m_operator->WaitForStillPicture();
    Screen().Key("p");
    (void)m_operator->WaitForOtherPicture(both);
    Screen().Key("p");
    m_operator->WaitForPicture(both);
}

TEST_P(Workflow, ADeletedObjectComesBackByUndo) {
    StartWithScan();
    Screen().Click(m_operator->WaitForText("flat.pcm").Middle(), 3);
    m_operator->ClickText("Delete");
    (void)m_operator->WaitForText("flat.pcm deleted");
    // In the middle of the empty view is a hint.
    m_operator->WaitFor("the empty viewer", [&] { return ColorAt(0.5, 0.2) == kBackground; });
    Screen().Key("ctrl+z");
    m_operator->WaitFor("the scan in the viewer", [&] { return ColorAt(0.5, 0.2) != kBackground; });
}

TEST_P(Workflow, ThePictureOfTheViewIsSaved) {
    StartWithScan();
    Screen().Key("ctrl+s");
    (void)m_operator->WaitForWindow("Save view as picture");
    m_operator->ClickText("Save...");
    const std::string path = File("view.png");
    // The dialog for the file has the same title, and text that is selected.
    (void)m_operator->WaitForText("Files of type:");
    m_operator->AnswerFileDialog("Save view as picture", path);
    QImage picture;
    m_operator->WaitFor("the picture", [&] { return picture.load(QString::fromStdString(path)); });
    ASSERT_EQ(picture.size(), QSize(m_first.width, m_first.height));
    int different = 0;
    for (int y = 0; y < m_first.height; ++y) {
        for (int x = 0; x < m_first.width; ++x)
            different += (picture.pixel(x, y) & 0xFFFFFF) != m_first.At(x, y) ? 1 : 0;
    }
    EXPECT_EQ(different, 0) << "pixels of the picture are not those of the view";
}

INSTANTIATE_TEST_SUITE_P(Desktops, Workflow, testing::ValuesIn(kDesktops), NameOfDesktop);

}  // namespace
