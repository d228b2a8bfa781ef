// The place of the log file, its records, and what happens when it cannot be opened.
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
#include <limits>
#include <locale>
#include <regex>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace {

namespace fs = std::filesystem;

// The log is opened once per process, so each test writes in a child process with a temporary folder of its own.
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

    // Runs @p write in a child process whose temporary folder is m_folder, and returns the content of the log.
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

TEST_F(LogFile, HasOneLinePerRecordWithTimeAndLevel) {
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

std::int64_t Milliseconds() {
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

// The child itself notes the times around its two records.
TEST_F(LogFile, HasTheMillisecondsSinceTheFirstRecord) {
    const std::string log = Written([] {
        const std::int64_t before = Milliseconds();
        Log(LogLevel::Info) << "a" << std::endl;
        const std::int64_t after = Milliseconds();
        while (Milliseconds() < after + 3) {
        }  // so that the number cannot be 0 again
        const std::int64_t earliest = Milliseconds() - after;
        std::ostream& record = Log(LogLevel::Info);
        record << earliest << " " << Milliseconds() - before << std::endl;
    });
    std::smatch found;
    ASSERT_TRUE(
        std::regex_match(log, found, std::regex(R"(\[.{8}\.000\] <INFO>: a\n\[.{8}\.(\d+)\] <INFO>: (\d+) (\d+)\n)")))
        << log;
    const int number = std::stoi(found[1]), earliest = std::stoi(found[2]), latest = std::stoi(found[3]);
    EXPECT_GE(earliest, 3);
    EXPECT_LE(((number - earliest) % 1000 + 1000) % 1000, latest - earliest) << log;
}

TEST_F(LogFile, HasTwoHeadersInOneLineWithoutALineEnd) {
    const std::string log = Written([] {
        Log(LogLevel::Error) << "first. ";
        Log(LogLevel::Error) << "second" << std::endl;
    });
    EXPECT_TRUE(std::regex_match(log, std::regex(R"(\[[^\]]*\] <ERROR>: first\. \[[^\]]*\] <ERROR>: second\n)")))
        << log;
}

TEST_F(LogFile, IsAppendedToByTheNextProcess) {
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

TEST_F(LogFile, IgnoresWritesWhenTheFileCannotBeOpened) {
    fs::create_directory(m_folder / "viewer.log");  // a folder of that name: not even root can open it
    EXPECT_EXIT(
        {
            setenv("TMPDIR", m_folder.c_str(), 1);
            Log(LogLevel::Error) << "not written" << std::endl;
            Log(LogLevel::Info) << "nor this" << std::endl;
            std::exit(0);
        },
        testing::ExitedWithCode(0), "^$");
    EXPECT_TRUE(fs::is_empty(m_folder / "viewer.log"));
}

TEST_F(LogFile, WritesNumbersIndependentOfTheLocale) {
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

// ---- several threads

/// Lines without the time.
std::vector<std::string> LinesWithoutTime(const std::string& log) {
    std::vector<std::string> lines;
    std::istringstream text(std::regex_replace(log, std::regex(R"(\[\d\d:\d\d:\d\d\.\d{3}\] )"), ""));
    for (std::string line; std::getline(text, line);) lines.push_back(line);
    return lines;
}

TEST_F(LogFile, NeverMixesThePiecesOfTwoThreads) {
    constexpr int kThreads = 4, kRecords = 300;
    const std::string log = Written([] {
        std::vector<std::thread> threads;
        for (int thread = 0; thread < kThreads; ++thread)
            threads.emplace_back([thread] {
                for (int i = 0; i < kRecords; ++i) {
                    std::ostream& record = Log(LogLevel::Info) << "thread " << thread;
                    std::this_thread::yield();  // in the middle of the record
                    record << " record " << i << " of " << kRecords << std::endl;
                }
            });
        for (std::thread& thread : threads) thread.join();
    });
    std::vector<int> next(kThreads);
    std::size_t lines = 0;
    for (const std::string& line : LinesWithoutTime(log)) {
        std::smatch found;
        ASSERT_TRUE(std::regex_match(line, found, std::regex(R"(<INFO>: thread (\d) record (\d+) of 300)"))) << line;
        EXPECT_EQ(std::stoi(found[2]), next.at(static_cast<std::size_t>(std::stoi(found[1])))++);
        ++lines;
    }
    EXPECT_EQ(lines, std::size_t{kThreads * kRecords});
}

TEST_F(LogFile, ALineWithoutItsEndBlocksNobodyAndStaysWhole) {
    const std::string log = Written([] {
        Log(LogLevel::Error) << "first. ";
        std::thread([] { Log(LogLevel::Info) << "other thread" << std::endl; }).join();
        Log(LogLevel::Error) << "second" << std::endl;
    });
    EXPECT_EQ(LinesWithoutTime(log),
              (std::vector<std::string>{"<INFO>: other thread", "<ERROR>: first. <ERROR>: second"}));
}

TEST_F(LogFile, AFlushedPieceWithoutALineEndIsOnDiskAndNoOtherThreadContinuesItsLine) {
    EXPECT_EXIT(
        {
            setenv("TMPDIR", m_folder.c_str(), 1);
            Log(LogLevel::Error) << "first. " << std::flush;
            std::thread([] { Log(LogLevel::Info) << "other thread" << std::endl; }).join();
            Log(LogLevel::Error) << "second. " << std::flush;
            Log(LogLevel::Error) << "third" << std::flush;
            _exit(3);  // no destructor runs
        },
        testing::ExitedWithCode(3), "");
    std::ifstream file(m_folder / "viewer.log");
    EXPECT_EQ(
        LinesWithoutTime({std::istreambuf_iterator<char>(file), {}}),
        (std::vector<std::string>{"<ERROR>: first. ", "<INFO>: other thread", "<ERROR>: second. <ERROR>: third"}));
}

TEST_F(LogFile, ARecordWithoutAnEndIsWrittenWhenItsThreadEnds) {
    const std::string log = Written([] {
        std::thread([] { Log(LogLevel::Info) << "no end"; }).join();
        std::thread([] { Log(LogLevel::Info) << "next thread" << std::endl; }).join();
    });
    EXPECT_EQ(LinesWithoutTime(log), (std::vector<std::string>{"<INFO>: no end", "<INFO>: next thread"}));
}

// ---- the time of a record

struct TimeRow {
    const char* name;
    const char* zone;
    std::time_t time;
    std::int64_t milliseconds;
    const char* text;
};
void PrintTo(const TimeRow& row, std::ostream* out) { *out << row.name; }

// 86'399 is the last second of a day.
const TimeRow kTimes[] = {
    {"FirstRecord", "UTC0", 0, 0, "00:00:00.000"},
    {"LastOfTheThousand", "UTC0", 86'399, 999, "23:59:59.999"},
    {"StartsAgainFromZero", "UTC0", 86'399, 1000, "23:59:59.000"},
    {"IsNotTheFractionOfTheSecond", "UTC0", 86'399, 1'500, "23:59:59.500"},
    {"AfterDays", "UTC0", 3'661, 5'000'000'042, "01:01:01.042"},
    {"IsLocalTime", "XYZ-5:30", 3'661, 7, "06:31:01.007"},
    {"YearBeyondTheCalendar", "UTC0", std::numeric_limits<std::time_t>::max(), 0, "Error in NowTime()"},
};

class LogTimeTest : public testing::TestWithParam<TimeRow> {
protected:
    LogTimeTest() { SetZone(GetParam().zone); }
    ~LogTimeTest() override { SetZone(nullptr); }

private:
    static void SetZone(const char* zone) {
        zone == nullptr ? unsetenv("TZ") : setenv("TZ", zone, 1);
        tzset();
    }
};

TEST_P(LogTimeTest, IsLocalTimeAndMillisecondsModulo1000) {
    EXPECT_EQ(LogTime(GetParam().time, GetParam().milliseconds), GetParam().text);
}
INSTANTIATE_TEST_SUITE_P(All, LogTimeTest, testing::ValuesIn(kTimes), [](const auto& row) { return row.param.name; });

}  // namespace
