// Files of points by their extension: dispatch, round trips, what is not a regular file, cancelling, other threads.
#include "io/PointFile.h"

#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <charconv>
#include <chrono>
#include <filesystem>
#include <random>
#include <thread>

#include "KV_ScenePane/PointFiles.h"
#include "host/CommaLocale.h"
#include "io/PointSample.h"
#include "support/ScratchFolder.h"

using KV_ScenePane::PointCloud;
using KV_ScenePane::ReadPointFile;
using testing::ElementsAre;

namespace {

void WriteText(const std::string& path, const std::string& text) { std::ofstream(path, std::ios::binary) << text; }

/// A file in a scratch folder.
class PointFile : public testing::Test {
protected:
    std::string Write(const std::string& name, const std::string& bytes) {
        WriteText(m_folder / name, bytes);
        return m_folder / name;
    }
    /// Reads into a cloud with a mark that a failure must leave.
    bool Read(const std::string& path, const std::function<bool(double)>& progress = {}) {
        m_cloud = {{7, 7, 7}, {0.5f, 0.5f, 0.5f}};
        m_reason.clear();
        const bool read = ReadPointFile(path, &m_cloud, &m_reason, progress);
        EXPECT_EQ(read, m_reason.empty());
        EXPECT_EQ(m_reason.find('\n'), std::string::npos);
        if (!read) {
            EXPECT_THAT(m_cloud.xyz, ElementsAre(7, 7, 7));
            EXPECT_THAT(m_cloud.colors, ElementsAre(0.5f, 0.5f, 0.5f));
        }
        return read;
    }
    /// The reason of a refusal.
    std::string Refusal(const std::string& path) { return Read(path) ? "accepted" : m_reason; }

    ScratchFolder m_folder;
    PointCloud m_cloud;
    std::string m_reason;
};

const std::string kPly =
    "ply\nformat ascii 1.0\nelement vertex 1\nproperty float x\nproperty float y\nproperty float z\n"
    "end_header\n1 2 3\n";
const std::string kPcd = "FIELDS x y z\nSIZE 4 4 4\nTYPE F F F\nWIDTH 1\nDATA ascii\n1 2 3\n";

TEST_F(PointFile, ChoosesTheReaderByTheExtensionInAnyCase) {
    for (const char* name : {"a.xyz", "a.xyzrgb", "a.txt", "a.asc", "a.csv", "a.XYZ", "a.b.Csv"}) {
        ASSERT_TRUE(Read(Write(name, "1 2 3\n"))) << name << m_reason;
        EXPECT_THAT(m_cloud.xyz, ElementsAre(1, 2, 3));
        EXPECT_TRUE(m_cloud.colors.empty());
    }
    EXPECT_TRUE(Read(Write("a.ply", kPly))) << m_reason;
    EXPECT_TRUE(Read(Write("a.PCD", kPcd))) << m_reason;
    EXPECT_THAT(Refusal(Write("b.ply", kPcd)), "Magic number in PLY header not found.");
    EXPECT_THAT(Refusal(Write("b.pcd", kPly)), "line 1: \"ply\" is not a keyword of a pcd header");
    for (const char* name : {"a.pts", "xyz.", "a"})
        EXPECT_THAT(Refusal(Write(name, "1 2 3\n")), "the type is not one of xyz, xyzrgb, txt, asc, csv, pcd and ply");
}

TEST_F(PointFile, MayHaveANameThatIsNotUtf8) { EXPECT_TRUE(Read(Write("\xFF\xE4.xyz", "1 2 3\n"))) << m_reason; }

TEST_F(PointFile, NeedsNoReason) {
    PointCloud cloud;
    EXPECT_FALSE(ReadPointFile(m_folder / "none.xyz", &cloud, nullptr, {}));
}

TEST_F(PointFile, RefusesWhatIsNotARegularFileWithoutWaiting) {
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(Refusal(m_folder / "none.xyz"), "cannot be opened: No such file or directory");
    std::filesystem::create_directory(m_folder / "folder.pcd");
    EXPECT_EQ(Refusal(m_folder / "folder.pcd"), "is not a regular file");
    ASSERT_EQ(::mkfifo((m_folder / "pipe.ply").c_str(), 0600), 0);
    EXPECT_EQ(Refusal(m_folder / "pipe.ply"), "is not a regular file");
    std::filesystem::create_symlink("/dev/zero", m_folder / "device.txt");
    EXPECT_EQ(Refusal(m_folder / "device.txt"), "is not a regular file");
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
}

/// One number as it is written.
void AppendNumber(std::string& text, float value) {
    char digits[64];
    text.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
}

/// Points with colours in steps of 1/255.
PointCloud RandomCloud(std::size_t points) {
    PointCloud cloud;
    std::mt19937 random(7);
    for (std::size_t i = 0; i < 3 * points; ++i) {
        cloud.xyz.push_back(
            std::ldexp(static_cast<float>(static_cast<int>(random())), -static_cast<int>(random() % 60)));
        cloud.colors.push_back(static_cast<float>(random() % 256) / 255);
    }
    cloud.colors[0] = 1;
    return cloud;
}

std::string TextOf(const PointCloud& cloud, char separator) {
    std::string text;
    for (std::size_t i = 0; i < cloud.xyz.size(); i += 3) {
        for (std::size_t k = i; k < i + 3; ++k) AppendNumber(text, cloud.xyz[k]), text += separator;
        for (std::size_t k = i; k < i + 3; ++k)
            text += std::to_string(std::lround(cloud.colors[k] * 255)), text += k == i + 2 ? '\n' : separator;
    }
    return text;
}

/// x y z and the packed colour, record by record or field by field.
std::string PcdBytes(const PointCloud& cloud, bool byFields) {
    const std::size_t points = cloud.xyz.size() / 3;
    std::string bytes(16 * points, '\0');
    for (std::size_t i = 0; i < points; ++i) {
        std::uint32_t values[4] = {};
        std::memcpy(values, &cloud.xyz[3 * i], 12);
        for (std::size_t k = 0; k < 3; ++k)
            values[3] = values[3] << 8 | static_cast<std::uint32_t>(std::lround(cloud.colors[3 * i + k] * 255));
        for (std::size_t k = 0; k < 4; ++k)
            std::memcpy(bytes.data() + 4 * (byFields ? k * points + i : 4 * i + k), &values[k], 4);
    }
    return bytes;
}

TEST_F(PointFile, GivesBackWhatWasWrittenInEveryFormat) {
    const PointCloud cloud = RandomCloud(20'000);
    const std::string count = std::to_string(cloud.xyz.size() / 3);
    const std::string pcd = "FIELDS x y z rgb\nSIZE 4 4 4 4\nTYPE F F F U\nPOINTS " + count + "\nDATA ";
    std::string lzf;
    for (const std::string plain = PcdBytes(cloud, true); lzf.size() / 33 * 32 < plain.size();)
        lzf += '\x1F' + plain.substr(lzf.size() / 33 * 32, 32);
    const std::string plyHeader = "element vertex " + count +
                                  "\nproperty float x\nproperty float y\nproperty float z\n"
                                  "property uchar red\nproperty uchar green\nproperty uchar blue\nend_header\n";
    std::string plyRecords;
    for (std::size_t i = 0; i < cloud.xyz.size(); i += 3) {
        plyRecords += Raw(cloud.xyz[i], cloud.xyz[i + 1], cloud.xyz[i + 2]);
        for (std::size_t k = i; k < i + 3; ++k) plyRecords += static_cast<char>(std::lround(cloud.colors[k] * 255));
    }
    const std::pair<const char*, std::string> files[] = {
        {"a.xyz", TextOf(cloud, ' ')},
        {"b.txt", TextOf(cloud, '\t')},
        {"c.csv", "x,y,z,red,green,blue\n" + TextOf(cloud, ',')},
        {"d.csv", TextOf(cloud, ';')},
        {"e.pcd", pcd + "binary\n" + PcdBytes(cloud, false)},
        {"f.pcd", pcd + "binary_compressed\n" +
                      Raw(static_cast<std::uint32_t>(lzf.size()), static_cast<std::uint32_t>(lzf.size() / 33 * 32)) +
                      lzf},
        {"g.ply", "ply\nformat ascii 1.0\n" + plyHeader + TextOf(cloud, ' ')},
        {"h.ply", "ply\nformat binary_little_endian 1.0\n" + plyHeader + plyRecords},
    };
    for (const auto& [name, bytes] : files) {
        ASSERT_TRUE(Read(Write(name, bytes))) << name << ": " << m_reason;
        EXPECT_EQ(m_cloud.xyz, cloud.xyz) << name;
        EXPECT_EQ(m_cloud.colors, cloud.colors) << name;
        // the line of a header is counted as a point
        EXPECT_LE(m_cloud.xyz.capacity() + m_cloud.colors.capacity(), 6u * 20'001) << name << ": allocated more";
    }
}

TEST_F(PointFile, CanBeCancelledAtAnyReport) {
    const PointCloud cloud = RandomCloud(60'000);
    const std::string header = "FIELDS x y z rgb\nSIZE 4 4 4 4\nTYPE F F F U\nPOINTS 60000\nDATA binary\n";
    for (const std::string& path :
         {Write("a.xyz", TextOf(cloud, ' ')), Write("a.pcd", header + PcdBytes(cloud, false))}) {
        int reports = 0;
        ASSERT_TRUE(Read(path, [&](double) { return ++reports > 0; }));
        ASSERT_GT(reports, 3);
        for (int last = 1; last <= reports; ++last) {
            int calls = 0;
            EXPECT_FALSE(Read(path, [&](double) { return ++calls < last; }));
            EXPECT_EQ(calls, last);
            EXPECT_EQ(m_reason, "cancelled");
        }
    }
}

TEST_F(PointFile, ReportsRisingProgressThatEndsWithOne) {
    for (const auto& [name, bytes] : {std::pair("a.xyz", std::string("1 2 3\n")), std::pair("a.pcd", kPcd),
                                      std::pair("a.ply", kPly), std::pair("b.xyz", TextOf(RandomCloud(60'000), ' '))}) {
        std::vector<double> parts;
        ASSERT_TRUE(Read(Write(name, bytes), [&](double part) {
            parts.push_back(part);
            return true;
        }));
        EXPECT_TRUE(std::ranges::is_sorted(parts, std::less_equal<>{})) << name << ": not strictly rising";
        ASSERT_FALSE(parts.empty());
        EXPECT_EQ(parts.back(), 1);
    }
}

TEST_F(PointFile, PassesOnWhatTheProgressThrows) {
    const std::string path = Write("a.xyz", "1 2 3\n");
    PointCloud cloud{{7, 7, 7}, {}};
    std::string reason;
    EXPECT_THROW((void)ReadPointFile(path, &cloud, &reason, [](double) -> bool { throw 5; }), int);
    EXPECT_THAT(cloud.xyz, ElementsAre(7, 7, 7));
}

TEST_F(PointFile, EndsWithAReasonWhenItIsCutWhileItIsRead) {
    const std::string path = Write("a.xyz", TextOf(RandomCloud(60'000), ' '));
    EXPECT_FALSE(Read(path, [&](double) { return ::truncate(path.c_str(), 100) == 0; }));
    EXPECT_EQ(m_reason, "the file became shorter while it was read");
}

TEST_F(PointFile, IsReadOnSeveralThreadsAtOnce) {
    const PointCloud cloud = RandomCloud(5'000);
    const std::string path = Write("a.xyz", TextOf(cloud, ' '));
    std::vector<std::thread> threads;
    std::vector<int> same(4, 0);
    for (int& result : same)
        threads.emplace_back([&] {
            PointCloud read;
            std::string reason;
            result = ReadPointFile(path, &read, &reason, {}) && read.xyz == cloud.xyz && read.colors == cloud.colors;
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_THAT(same, ElementsAre(1, 1, 1, 1));
}

/// Numbers have a decimal point whatever the locale of the process is.
TEST(PointFilesInAnotherLocale, AreReadTheSame) {
    const CommaLocale locale;
    if (!locale.IsSet()) GTEST_SKIP() << "no locale with a decimal comma";
    const ScratchFolder folder;
    for (const auto& [name, text] :
         {std::pair("a.xyz", std::string("1.5 2.5 3.123456789012345678\n")),
          std::pair("a.pcd", std::string("FIELDS x y z\nSIZE 4 4 4\nTYPE F F F\nWIDTH 1\nDATA ascii\n1.5 2.5 "
                                         "3.123456789012345678\n"))}) {
        WriteText(folder / name, text);
        EXPECT_THAT(ReadPoints(folder / name, {}).xyz, ElementsAre(1.5f, 2.5f, 3.1234567f));
    }
}

}  // namespace
