// The log file's place, its records and what happens without a place to write.
#include "log/Log.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <locale>
#include <regex>
#include <string>
#include <thread>

namespace {

namespace fs = std::filesystem;

// The log is made once per process, so each test writes in a child process with a temporary folder of its own.
class LogFile : public testing::Test {
protected:
    void SetUp() override {
        char name[] = "/tmp/kv-log-XXXXXX";
        ASSERT_NE(mkdtemp(name), nullptr);
        m_folder = name;
    }
    void TearDown() override {
        fs::permissions(m_folder, fs::perms::owner_all);
        fs::remove_all(m_folder);
    }

    // Runs @p write in a child whose temporary folder is m_folder, and returns what the log then holds.
    std::string Written(const std::function<void()>& write) {
        EXPECT_EXIT(
            {
                setenv("TMPDIR", m_folder.c_str(), 1);
                write();
                std::exit(0);
            },
            testing::ExitedWithCode(0), "");
        std::ifstream file(m_folder / "viewer.log");
        return {std::istreambuf_iterator<char>(file), {}};
    }

    fs::path m_folder;
};

int NumberBehindTheTime(const std::string& log, std::size_t record) {
    const std::regex header(R"(\[\d\d:\d\d:\d\d\.(\d\d\d)\])");
    auto found = std::sregex_iterator(log.begin(), log.end(), header);
    std::advance(found, static_cast<std::ptrdiff_t>(record));
    return std::stoi((*found)[1]);
}

TEST_F(LogFile, HoldsOneLineARecordWithTimeAndLevel) {
    const std::string log = Written([] {
        Log(LogLevel::Error) << "one" << std::endl;
        Log(LogLevel::Warning) << "two" << std::endl;
        Log(LogLevel::Info) << "three " << 3 << std::endl;
        Log(LogLevel::Debug) << "four" << std::endl;
    });
    EXPECT_TRUE(std::regex_match(log, std::regex(R"(\[\d\d:\d\d:\d\d\.000\] <ERROR>: one\n)"
                                                 R"(\[\d\d:\d\d:\d\d\.\d{3}\] <WARNING>: two\n)"
                                                 R"(\[\d\d:\d\d:\d\d\.\d{3}\] <INFO>: three 3\n)"
                                                 R"(\[\d\d:\d\d:\d\d\.\d{3}\] <DEBUG>: four\n)")))
        << log;
}

TEST_F(LogFile, CountsTheNumberFromTheFirstRecordModulo1000) {
    const std::string log = Written([] {
        Log(LogLevel::Info) << "a" << std::endl;
        std::this_thread::sleep_for(std::chrono::milliseconds(1500));
        Log(LogLevel::Info) << "b" << std::endl;
    });
    EXPECT_EQ(NumberBehindTheTime(log, 0), 0);
    EXPECT_NEAR(NumberBehindTheTime(log, 1), 500, 90);
}

TEST_F(LogFile, GetsTwoHeadersInOneLineWhenTheLineFeedIsLeftOut) {
    const std::string log = Written([] {
        Log(LogLevel::Error) << "first. ";
        Log(LogLevel::Error) << "second" << std::endl;
    });
    EXPECT_TRUE(std::regex_match(log, std::regex(R"(\[[^\]]*\] <ERROR>: first\. \[[^\]]*\] <ERROR>: second\n)")))
        << log;
}

TEST_F(LogFile, KeepsWhatFormerRunsWrote) {
    Written([] { Log(LogLevel::Info) << "former run" << std::endl; });
    const std::string log = Written([] { Log(LogLevel::Info) << "this run" << std::endl; });
    EXPECT_LT(log.find("former run"), log.find("this run"));
    EXPECT_NE(log.find("this run"), std::string::npos);
}

TEST_F(LogFile, IsOnDiskBeforeTheProcessEnds) {
    EXPECT_EXIT(
        {
            setenv("TMPDIR", m_folder.c_str(), 1);
            Log(LogLevel::Error) << "last words" << std::endl;
            _exit(3);  // no destructor runs
        },
        testing::ExitedWithCode(3), "");
    std::ifstream file(m_folder / "viewer.log");
    const std::string log(std::istreambuf_iterator<char>(file), {});
    EXPECT_NE(log.find("last words\n"), std::string::npos);
}

TEST_F(LogFile, FallsAwaySilentlyWithoutAPlaceToWrite) {
    fs::create_directory(m_folder / "viewer.log");  // a folder in the file's place stops root, too
    EXPECT_EXIT(
        {
            setenv("TMPDIR", m_folder.c_str(), 1);
            Log(LogLevel::Error) << "nobody hears" << std::endl;
            Log(LogLevel::Info) << "this" << std::endl;
            std::exit(0);
        },
        testing::ExitedWithCode(0), "^$");
    EXPECT_TRUE(fs::is_empty(m_folder / "viewer.log"));
}

TEST_F(LogFile, WritesNumbersTheSameUnderALocaleOfTheHost) {
    const std::string log = Written([] {
        struct Grouping : std::numpunct<char> {
            char do_decimal_point() const override { return ','; }
            char do_thousands_sep() const override { return '.'; }
            std::string do_grouping() const override { return "\3"; }
        };
        std::locale::global(std::locale(std::locale::classic(), new Grouping));
        Log(LogLevel::Info) << 12345 << " " << 1.5 << std::endl;
    });
    EXPECT_NE(log.find(">: 12345 1.5\n"), std::string::npos) << log;
}

}  // namespace
