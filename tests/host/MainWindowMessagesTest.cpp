// What the window says about files, in message pane and status bar.
#include <gtest/gtest.h>

#include <QStatusBar>
#include <cmath>

#include "ImportStatus.h"
#include "MessageTable.h"
#include "host/MainWindowFixture.h"
#include "host/MeshFiles.h"

namespace {

/// A square of 100 mm, and a triangle of which a corner has two coordinates that are not finite.
std::vector<StlTriangle> OddSquare() {
    return {{{{0, 0, 0}, {100, 0, 0}, {100, 100, 0}}},
            {{{0, 0, 0}, {100, 100, 0}, {0, 100, 0}}},
            {{{0, 0, 0}, {100, 0, 0}, {NAN, INFINITY, 0}}}};
}

constexpr const char* kTwo =
    ": 2 coordinates are not finite: triangles may be missing there: export the file again from its source";

class MainWindowMessages : public MainWindowFixture {
protected:
    void SetUp() override { Show(); }
    [[nodiscard]] std::string Status() const { return m_window->statusBar()->currentMessage().toStdString(); }
    [[nodiscard]] bool IsVisible(int index) const { return !m_window->Objects().IsHidden(index); }
};

TEST_F(MainWindowMessages, NameTheFileAndTheNumberOfCoordinatesThatAreNotFinite) {
    WriteStl(m_folder / "odd.stl", OddSquare());
    Import({m_folder / "odd.stl"});
    EXPECT_EQ(Messages(), (m_folder / "odd.stl") + kTwo);
    EXPECT_EQ(Status(), std::string("1 of 1 files opened; odd.stl") + kTwo);
    EXPECT_TRUE(IsVisible(0));
    Methods().SetViewMode(4);
    Methods().CenterView();
    EXPECT_NE(MiddlePixel(), kBackground) << "the square fills the view";
    const auto frame = DrawFrame();
    EXPECT_EQ(frame.pixels.front() & 0xFFFFFF, kBackground) << "nothing is drawn beside it";
}

TEST_F(MainWindowMessages, HaveOneLinePerFileAndTheStatusBarOneForAll) {
    std::vector<std::string> files;
    std::string lines;
    for (const char* const name : {"c.stl", "a.stl", "b.stl"}) {
        files.push_back(m_folder / name);
        WriteStl(files.back(), OddSquare());
        lines += (lines.empty() ? "" : "\n") + files.back() + kTwo;
    }
    Import(files);
    EXPECT_EQ(Messages(), lines);
    EXPECT_EQ(Status(), std::string("3 of 3 files opened; 3 file(s)") + kTwo);
}

TEST_F(MainWindowMessages, SayWhatIsMissingOfAFileThatWasCutOff) {
    const std::string file = m_folder / "cut.stl";
    WriteStl(file);
    std::vector<std::byte> bytes = ReadBytes(file);
    bytes.resize(bytes.size() - 60);
    WriteBytes(file, bytes);
    Import({file});
    const std::string text =
        ": 2 of 4 triangles are in the file, the rest was cut off: copy or export it again from its source";
    EXPECT_EQ(Messages(), file + text);
    EXPECT_EQ(Status(), "1 of 1 files opened; cut.stl" + text);
    EXPECT_TRUE(IsVisible(0));
}

TEST_F(MainWindowMessages, SayThatAnObjectWithoutFinitePointsIsNotShown) {
    WriteStl(m_folder / "none.stl", {{{{NAN, 0, 0}, {NAN, 1, 0}, {INFINITY, 1, 1}}}});
    WriteStl(m_folder / "odd.stl", OddSquare());
    Import({m_folder / "none.stl", m_folder / "odd.stl"});
    EXPECT_NE(Messages().find((m_folder / "none.stl") + ": " + kNoFiniteCoordinate), std::string::npos) << Messages();
    EXPECT_FALSE(IsVisible(0));
    EXPECT_TRUE(IsVisible(1)) << "the other one";
    EXPECT_NE(MiddlePixel(), kBackground) << "which the view is fitted to";
    EXPECT_NE(Status().find("messages about 2 file(s)"), std::string::npos) << Status();
    Import({m_folder / "none.stl"});
    EXPECT_EQ(Status(), std::string("none.stl: ") + kNoFiniteCoordinate) << "nothing of the import is shown";
}

TEST_F(MainWindowMessages, GiveTheLimitThatLeavesNoTriangleOfAScan) {
    const std::string file = m_folder / "far.pcm";
    WritePcm(file, 21, 21);  // 1 mm apart
    ImportSettings settings;
    settings.skip = 7;
    m_window->SetImportSettings(settings);
    Import({file});
    EXPECT_EQ(Messages(), file +
                              ": nothing added: no triangle is left: with skip 7 neighbouring points are more than "
                              "6.5 mm apart: import with skip 1");
}

struct Status {
    const char* name;
    std::vector<ImportResult> results;
    const char* line;
};
void PrintTo(const Status& row, std::ostream* out) { *out << row.name; }

constexpr auto kAdded = ImportResult::State::Added;
constexpr auto kFailed = ImportResult::State::Failed;

const Status kStatus[] = {
    {"NoMessages", {{kAdded, ""}, {kFailed, "bad"}, {ImportResult::State::NotStarted, ""}}, "1 of 3 files opened"},
    {"OneMessage", {{kAdded, ""}, {kAdded, "odd"}}, "2 of 2 files opened; 1.stl: odd"},
    {"TheSameMessages", {{kAdded, "odd"}, {kAdded, "odd"}, {kFailed, "odd"}}, "2 of 3 files opened; 2 file(s): odd"},
    {"OtherMessages", {{kAdded, "odd"}, {kAdded, "even"}}, "2 of 2 files opened; messages about 2 file(s)"},
};
class StatusOfAnImport : public testing::TestWithParam<Status> {};

TEST_P(StatusOfAnImport, CountsFilesAndSumsMessagesUp) {
    const std::string files[] = {"/d/0.stl", "/d/1.stl", "/d/2.stl"};
    const auto& results = GetParam().results;
    EXPECT_EQ(ImportStatus({files, results.size()}, results).toStdString(), GetParam().line);
}
INSTANTIATE_TEST_SUITE_P(ImportStatus, StatusOfAnImport, testing::ValuesIn(kStatus),
                         [](const auto& row) { return row.param.name; });

}  // namespace
