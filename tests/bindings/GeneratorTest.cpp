// The command line of generate-bindings, on a copy of the files that it reads and writes.
#include "generator/Generator.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace bindings {
namespace {

namespace fs = std::filesystem;

struct Outcome {
    int status;
    std::string output, errors;
};

Outcome RunWith(const std::vector<std::string>& arguments) {
    const std::vector<std::string_view> views(arguments.begin(), arguments.end());
    std::ostringstream output, errors;
    const int status = Run(views, output, errors);
    return {status, output.str(), errors.str()};
}

std::string Contents(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(stream), {});
}

void WriteContents(const fs::path& file, const std::string& text) { std::ofstream(file, std::ios::binary) << text; }

/// A source tree with the headers and the checked-in files.
class GenerateBindings : public testing::Test {
protected:
    void SetUp() override {
        m_root = fs::path(testing::TempDir()) /
                 ("generate_bindings_" + std::string(testing::UnitTest::GetInstance()->current_test_info()->name()));
        fs::remove_all(m_root);
        fs::create_directories(m_root / "docs");
        fs::create_directories(m_root / "include");
        fs::copy(KV_SOURCE_DIR "/include/KV_ScenePane", m_root / "include/KV_ScenePane", fs::copy_options::recursive);
        fs::copy(KV_SOURCE_DIR "/docs/automation.md", m_root / "docs");
    }
    void TearDown() override { fs::remove_all(m_root); }

    [[nodiscard]] Outcome Check() const { return RunWith({"--source", m_root.string(), "--check"}); }

    fs::path m_root;
};

TEST_F(GenerateBindings, CheckAcceptsCurrentFilesAndChangesNothing) {
    const auto before = fs::last_write_time(m_root / "docs/automation.md");
    const Outcome outcome = Check();
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_EQ(outcome.output + outcome.errors, "");
    EXPECT_EQ(fs::last_write_time(m_root / "docs/automation.md"), before);
}

TEST_F(GenerateBindings, CheckNamesAFileInWhichOneByteIsDifferent) {
    ASSERT_EQ(CheckedInFiles().size(), 2u);
    for (const CheckedInFile& file : CheckedInFiles()) {
        const std::string current = Contents(m_root / file.path);
        ASSERT_GT(current.size(), 1000u);
        std::string changed = current;
        changed[changed.size() / 2] ^= 1;
        for (const std::string& text : {changed, current + "\n", current.substr(1), std::string()}) {
            WriteContents(m_root / file.path, text);
            const Outcome outcome = Check();
            EXPECT_EQ(outcome.status, 1) << file.path;
            EXPECT_EQ(outcome.errors, file.path + ": not current; run generate-bindings --source . --write\n");
            EXPECT_EQ(Contents(m_root / file.path), text) << "a check writes nothing";
        }
        WriteContents(m_root / file.path, current);
    }
}

TEST_F(GenerateBindings, CheckNamesEveryFileThatIsMissing) {
    for (const CheckedInFile& file : CheckedInFiles()) fs::remove(m_root / file.path);
    const Outcome outcome = Check();
    EXPECT_EQ(outcome.status, 1);
    for (const CheckedInFile& file : CheckedInFiles())
        EXPECT_NE(outcome.errors.find(file.path + ": not current"), std::string::npos) << outcome.errors;
}

TEST_F(GenerateBindings, ATextThatChangesInTheHeaderMakesTheReferenceOld) {
    const fs::path header = m_root / "include/KV_ScenePane/_DKV_ScenePane.h";
    std::string text = Contents(header);
    const std::string sentence = "/// Number of needles.";
    ASSERT_NE(text.find(sentence), std::string::npos);
    WriteContents(header, text.replace(text.find(sentence), sentence.size(), "/// Number of all needles."));
    const Outcome outcome = Check();
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, "docs/automation.md: not current; run generate-bindings --source . --write\n");
}

TEST_F(GenerateBindings, WriteMakesWhatCheckAcceptsAndLeavesCurrentFilesAlone) {
    for (const CheckedInFile& file : CheckedInFiles()) fs::remove(m_root / file.path);
    Outcome outcome = RunWith({"--source", m_root.string(), "--write"});
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    for (const CheckedInFile& file : CheckedInFiles()) {
        EXPECT_EQ(Contents(m_root / file.path), Contents(fs::path(KV_SOURCE_DIR) / file.path));
        EXPECT_NE(outcome.output.find("wrote " + (m_root / file.path).string() + "\n"), std::string::npos);
    }
    EXPECT_EQ(Check().status, 0);
    outcome = RunWith({"--source", m_root.string(), "--write"});
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.output, "");
}

TEST_F(GenerateBindings, PythonFilesAreWrittenOnlyWhenTheyAreNotCurrent) {
    const fs::path folder = m_root / "new/python";
    const Outcome first = RunWith({"--source", m_root.string(), "--python", folder.string()});
    EXPECT_EQ(first.status, 0) << first.errors;
    ASSERT_FALSE(fs::is_empty(folder));
    EXPECT_NE(first.output, "");
    const Outcome second = RunWith({"--source", m_root.string(), "--python", folder.string()});
    EXPECT_EQ(second.status, 0);
    EXPECT_EQ(second.output, "");
}

TEST_F(GenerateBindings, AHeaderThatIsNotUnderstoodIsAFailureThatWritesNothing) {
    const fs::path header = m_root / "include/KV_ScenePane/_DKV_ScenePaneEvents.h";
    WriteContents(header, "// empty\n");
    fs::remove(m_root / "docs/automation.md");
    const Outcome outcome = RunWith({"--source", m_root.string(), "--write", "--python", (m_root / "python").string()});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors,
              "include/KV_ScenePane/_DKV_ScenePaneEvents.h:1: there is no \"class _DKV_ScenePaneEvents {\"\n");
    EXPECT_FALSE(fs::exists(m_root / "docs/automation.md"));
    EXPECT_FALSE(fs::exists(m_root / "python"));
}

TEST_F(GenerateBindings, AFileThatCannotBeWrittenIsAFailure) {
    fs::remove(m_root / "docs/automation.md");
    fs::create_directory(m_root / "docs/automation.md");
    const Outcome outcome = RunWith({"--source", m_root.string(), "--write"});
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.errors, (m_root / "docs/automation.md").string() + ": cannot be written\n");
}

TEST(GenerateBindingsCommandLine, RefusesWhatItDoesNotKnow) {
    const std::vector<std::string> wrong[] = {{},
                                              {"--check"},
                                              {"--source", KV_SOURCE_DIR},
                                              {"--source", KV_SOURCE_DIR, "--chek"},
                                              {"--check", "--source"},
                                              {"--source", KV_SOURCE_DIR, "--python"}};
    for (const std::vector<std::string>& arguments : wrong) {
        const Outcome outcome = RunWith(arguments);
        EXPECT_EQ(outcome.status, 2);
        EXPECT_TRUE(outcome.errors.starts_with("usage: generate-bindings")) << outcome.errors;
    }
    const Outcome help = RunWith({"--help"});
    EXPECT_EQ(help.status, 0);
    EXPECT_TRUE(help.output.starts_with("usage: generate-bindings"));
}

}  // namespace
}  // namespace bindings
