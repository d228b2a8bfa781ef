// Files that are dragged with the pointer from a window of another process.
#include "host/OperatorFixture.h"

namespace {

const testing::Environment* const g_qt = testing::AddGlobalTestEnvironment(new QtForTexts);

class DropFromOutside : public OnDesktops {
protected:
    /// Drags these files from the window of another program to a point, and waits until they were dropped there.
    void DropAt(const std::vector<std::string>& files, ScreenPoint to) {
        std::vector<std::string> arguments{KV_DRAG_SOURCE};
        arguments.insert(arguments.end(), files.begin(), files.end());
        m_source = m_operator->StartOther(arguments);
        const ScreenPoint from = m_operator->WaitForWindow("drag source").client.Middle();
        Screen().MoveTo(from);
        Screen().Press();
        const auto waitFor = [&](const char* state) {
            m_operator->WaitFor(std::string("the state of the drag: ") + state,
                                [&] { return Screen().FindWindow(state).has_value(); });
        };
        Screen().MoveTo({from.x + 20, from.y});  // the drag begins at a distance
        waitFor("dragging");
        Screen().MoveTo({from.x + 21, from.y});
        waitFor("moved");
        Screen().MoveTo(to);
        waitFor("accepted");
        Screen().Release();
        waitFor("dropped");
    }
    std::unique_ptr<ChildProcess> m_source;  // it still sends the files after the drop
};

TEST_P(DropFromOutside, OnTheViewerOpensTheFiles) {
    m_operator->Start();
    DropAt({Scan("first.pcm"), Scan("second.pcm", 5)}, m_operator->InViewer(0.5, 0.5));
    m_operator->WaitForText("first.pcm");
    m_operator->WaitForText("second.pcm");
    m_operator->WaitFor("the scans in the viewer", [&] { return m_operator->ObjectPixels() > 1000; });
}

TEST_P(DropFromOutside, OnTheListOfObjectsOpensTheFile) {
    m_operator->Start({Scan("there.pcm")});
    (void)m_operator->WaitForText("there.pcm");
    (void)m_operator->WaitForStillPicture();  // the layout of the window, too
    const ScreenPoint row = m_operator->WaitForText("there.pcm").Middle();
    DropAt({Scan("new.pcm", 5)}, row);
    m_operator->WaitForText("new.pcm");
}

TEST_P(DropFromOutside, OfAFolderOpensTheFilesInIt) {
    std::filesystem::create_directory(File("scans"));
    WritePcm(File("scans/one.pcm"), 60, 60);
    WritePcm(File("scans/two.pcm"), 60, 60);
    m_operator->Start();
    DropAt({File("scans")}, m_operator->InViewer(0.5, 0.5));
    m_operator->WaitForText("one.pcm");
    m_operator->WaitForText("two.pcm");
}

TEST_P(DropFromOutside, SoonAfterTheStartAddsTheFilesAfterTheOthers) {
    std::vector<std::string> many;
    for (int i = 0; i < 3; ++i) {
        many.push_back(File("many" + std::to_string(i) + ".pcm"));
        WritePcm(many.back(), 600, 600, static_cast<float>(i));
    }
    m_operator->Start(many);
    DropAt({Scan("late.pcm", 20)}, m_operator->InViewer(0.5, 0.9));
    m_operator->WaitForText("late.pcm");
    const ScreenArea last = m_operator->WaitForText("many2.pcm");
    EXPECT_GT(m_operator->WaitForText("late.pcm").y, last.y);
}

TEST_P(DropFromOutside, DuringAnAlignmentWaitsForItsEnd) {
    m_operator->Start({Scan("back.pcm"), Scan("front.pcm", 10)});
    (void)m_operator->WaitForText("front.pcm");
    (void)m_operator->WaitForStillPicture();
    CheckMayMove("front.pcm");
    m_operator->Choose({"Tools", "Align", "Align by hand"});
    (void)m_operator->WaitForText("Align by hand: the left button", TextMatch::Part);
    DropAt({Scan("late.pcm", 20)}, m_operator->InViewer(0.5, 0.5));
    (void)m_operator->WaitForStillPicture();  // an import would have ended
    EXPECT_FALSE(m_operator->Shows("late.pcm"));
    // The other program has the keyboard: a click on the title returns it.
    const ScreenArea frame = m_operator->MainWindow().frame;
    Screen().Click({frame.x + frame.width / 2, frame.y + 8 * m_operator->Scale()});
    (void)m_operator->WaitForWindow("scenepane");
    Screen().Key("Escape");
    m_operator->WaitForText("late.pcm");
}

INSTANTIATE_TEST_SUITE_P(Desktops, DropFromOutside, testing::ValuesIn(kDesktops), NameOfDesktop);

}  // namespace
