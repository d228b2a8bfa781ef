#include "OutputGuard.h"

#include <gtest/gtest.h>
#include <pty.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>

#include "host/MeshFiles.h"
#include "host/ParsedCommandLine.h"

namespace {

/// In a folder with the files a.stl, other.stl, p.txt, t.json, s.png and list.png, which names a.stl; hard.png and
/// soft.png are links to a.stl.
class OutputGuardTest : public testing::Test {
protected:
    void SetUp() override {
        for (const char* const name : {"a.stl", "other.stl", "p.txt", "t.json", "s.png"})
            WriteText(m_folder / name, "x");
        WriteText(m_folder / "list.png", (m_folder / "a.stl") + "\n");
        ASSERT_EQ(link((m_folder / "a.stl").c_str(), (m_folder / "hard.png").c_str()), 0);
        ASSERT_EQ(symlink("a.stl", (m_folder / "soft.png").c_str()), 0);
    }
    /// @param arguments  names of files follow a "%"
    [[nodiscard]] std::string Refusal(std::vector<std::string> arguments) const {
        for (std::string& argument : arguments)
            if (const std::size_t at = argument.find("%"); at != std::string::npos)
                argument.replace(at, 1, m_folder.Path().string() + '/');
        return OutputRefusal(Parsed(arguments));
    }
    [[nodiscard]] std::string AlsoRead(const std::string& name) const {
        return (m_folder / name) + ": this file is also read: write another one";
    }
    const ScratchFolder m_folder;
};

TEST_F(OutputGuardTest, RefusesAPictureThatIsAnInputByAnyOfItsNames) {
    EXPECT_EQ(Refusal({"--screenshot", "%hard.png", "%a.stl"}), AlsoRead("hard.png"));
    EXPECT_EQ(Refusal({"--capture", "%soft.png", "%other.stl", "%a.stl"}), AlsoRead("soft.png"));
    EXPECT_EQ(Refusal({"--screenshot", "%new.png", "--points", "%new.png"}), AlsoRead("new.png"))
        << "the same name, of a file that is not there";
    for (const std::string option : {"--points", "--lines", "--needles", "--transforms"})
        EXPECT_EQ(Refusal({"--screenshot", "%s.png", "%a.stl", option, "%s.png"}), AlsoRead("s.png")) << option;
}

TEST_F(OutputGuardTest, RefusesInputsOfFoldersAndLists) {
    EXPECT_EQ(Refusal({"--screenshot", "%hard.png", "%."}), AlsoRead("hard.png"));
    EXPECT_EQ(Refusal({"--screenshot", "%hard.png", "@%list.png"}), AlsoRead("hard.png"));
    EXPECT_EQ(Refusal({"--screenshot", "%list.png", "@%list.png"}), AlsoRead("list.png"));
}

TEST_F(OutputGuardTest, RefusesConversionsAndExportsOntoTheirInput) {
    EXPECT_EQ(Refusal({"--convert", "%a.stl", "%a.stl"}), AlsoRead("a.stl"));
    EXPECT_EQ(Refusal({"--convert", "%./a.stl", "%a.stl"}), AlsoRead("a.stl"));
    EXPECT_EQ(Refusal({"--export=%a.stl", "--cut=inside:0,0;1,1", "%a.stl"}), AlsoRead("a.stl"));
    EXPECT_EQ(Refusal({"--convert", "%a.stl", "%other.stl"}), "");
}

TEST_F(OutputGuardTest, RefusesTransformsOntoAFileThatIsRead) {
    ASSERT_EQ(link((m_folder / "a.stl").c_str(), (m_folder / "a.json").c_str()), 0);
    const std::vector<std::string> align = {"--align", "%p.txt", "--moving", "%a.stl", "--fixed", "%other.stl"};
    const auto with = [&](std::vector<std::string> more) {
        more.insert(more.begin(), align.begin(), align.end());
        return Refusal(more);
    };
    EXPECT_EQ(with({"--save-transforms", "%a.json"}), AlsoRead("a.json"));
    EXPECT_EQ(with({"--save-transforms", "%new.json"}), "");
    EXPECT_EQ(with({"--transforms", "%t.json", "--save-transforms", "%t.json"}), "") << "entries are kept";
}

TEST_F(OutputGuardTest, RefusesAPictureThatIsAnImageOfAMesh) {
    WriteText(m_folder / "a.obj", "mtllib a.mtl\n");
    WriteText(m_folder / "a.mtl", "newmtl a\nmap_Kd s.png\n");
    EXPECT_EQ(Refusal({"--screenshot", "%s.png", "%a.stl", "%a.obj"}), AlsoRead("s.png"));
    EXPECT_EQ(Refusal({"--capture", "%s.png", "%."}), AlsoRead("s.png"));
    EXPECT_EQ(Refusal({"--screenshot", "%new.png", "%a.obj"}), "");
}

TEST_F(OutputGuardTest, RefusesEachPictureOfSeveralViews) {
    ASSERT_EQ(link((m_folder / "a.stl").c_str(), (m_folder / "o-left.png").c_str()), 0);
    EXPECT_EQ(Refusal({"--screenshot", "%o-{view}.png", "--views", "front,left", "%a.stl"}), AlsoRead("o-left.png"));
    EXPECT_EQ(Refusal({"--screenshot", "%o-{view}.png", "--views", "front,right", "%a.stl"}), "");
}

TEST_F(OutputGuardTest, AllowsOtherFilesAndRunsThatWriteNothing) {
    EXPECT_EQ(Refusal({"--screenshot", "%s.png", "%a.stl"}), "") << "an older picture is replaced";
    EXPECT_EQ(Refusal({"--info", "%a.stl"}), "");
    EXPECT_EQ(Refusal({"%a.stl", "%a.stl"}), "");
}

TEST_F(OutputGuardTest, RefusesToPrintAPictureToATerminal) {
    int outer = -1, inner = -1;
    if (openpty(&outer, &inner, nullptr, nullptr, nullptr) != 0) GTEST_SKIP() << "this machine gives no terminal";
    std::fflush(stdout);
    const int saved = dup(STDOUT_FILENO);
    dup2(inner, STDOUT_FILENO);
    const std::string onTerminal = Refusal({"--screenshot", "-", "%a.stl"});
    std::fflush(stdout);
    dup2(saved, STDOUT_FILENO);
    for (const int file : {outer, inner, saved}) close(file);
    EXPECT_EQ(onTerminal, "standard output is a terminal: write the picture into a file");
}

TEST(PicturePaths, HaveTheNamesOfTheirViews) {
    EXPECT_EQ(PicturePaths(Parsed({"--screenshot=o.png", "a.ply"})), std::vector<std::string>{"o.png"});
    EXPECT_EQ(PicturePaths(Parsed({"--screenshot={view}/{view}.png", "--views=top,bottom-y-up", "a.ply"})),
              (std::vector<std::string>{"top/top.png", "bottom-y-up/bottom-y-up.png"}));
}

}  // namespace
