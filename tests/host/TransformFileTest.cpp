// Files of transforms: what they keep, what is refused, and which entry belongs to which object.
#include "TransformFile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <bit>
#include <cmath>
#include <filesystem>
#include <limits>
#include <numbers>
#include <optional>
#include <ostream>
#include <random>
#include <stdexcept>

#include "host/CommaLocale.h"
#include "host/MeshFiles.h"
#include "host/UnprivilegedUser.h"
#include "support/ScratchFolder.h"

namespace {

constexpr Matrix4 kIdentity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
/// A quarter turn about Z, and a translation.
constexpr Matrix4 kTurned = {0, -1, 0, 10, 1, 0, 0, -20.5f, 0, 0, 1, 0.125f, 0, 0, 0, 1};
const std::string kTurnedText = "[0, -1, 0, 10, 1, 0, 0, -20.5, 0, 0, 1, 0.125, 0, 0, 0, 1]";

/// A file of one entry with this value of "transform".
std::string OneScan(const std::string& transform) {
    return R"({"version": 1, "scans": [{"file": "a.pcm", "transform": )" + transform + "}]}";
}

std::string ReasonOf(const std::string& text) {
    try {
        return "accepted with " + std::to_string(ParseTransforms(text).size()) + " transforms";
    } catch (const std::runtime_error& error) {
        return error.what();
    }
}

std::string TextOf(const std::string& path) {
    const std::vector<std::byte> bytes = ReadBytes(path);
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// A rotation from a random unit quaternion, in double, and a translation of up to 1000.
Matrix4 RandomMotion(std::mt19937& random) {
    std::normal_distribution<double> normal;
    double q[4], length = 0;
    for (double& value : q) value = normal(random);
    for (const double value : q) length += value * value;
    for (double& value : q) value /= std::sqrt(length);
    const auto [w, x, y, z] = q;
    const double rows[12] = {1 - 2 * (y * y + z * z), 2 * (x * y - w * z),     2 * (x * z + w * y),
                             normal(random) * 300,    2 * (x * y + w * z),     1 - 2 * (x * x + z * z),
                             2 * (y * z - w * x),     normal(random) * 300,    2 * (x * z - w * y),
                             2 * (y * z + w * x),     1 - 2 * (x * x + y * y), normal(random) * 300};
    Matrix4 matrix = kIdentity;
    for (std::size_t i = 0; i < 12; ++i) matrix[i] = static_cast<float>(rows[i]);
    return matrix;
}

class TransformFile : public testing::Test {
protected:
    void Write(const std::vector<StoredTransform>& transforms) const {
        std::string reason;
        EXPECT_TRUE(WriteTransformFile(m_path, transforms, &reason)) << reason;
        EXPECT_EQ(reason, "");
    }
    [[nodiscard]] std::vector<StoredTransform> Read() const {
        std::vector<StoredTransform> transforms;
        std::string reason;
        EXPECT_TRUE(ReadTransformFile(m_path, &transforms, &reason)) << reason;
        EXPECT_EQ(reason, "");
        return transforms;
    }
    [[nodiscard]] std::string ReadRefusalOf(const std::string& path) const {
        std::vector<StoredTransform> transforms = {{"kept", kTurned}};
        std::string reason;
        EXPECT_FALSE(ReadTransformFile(path, &transforms, &reason));
        EXPECT_EQ(transforms, (std::vector<StoredTransform>{{"kept", kTurned}})) << "a refused file changes nothing";
        return reason;
    }
    [[nodiscard]] std::string WriteRefusalOf(const std::vector<StoredTransform>& transforms) const {
        std::string reason;
        EXPECT_FALSE(WriteTransformFile(m_path, transforms, &reason));
        return reason;
    }
    ScratchFolder m_folder;
    const std::string m_path = m_folder / "poses.json";
};

// ---- what is kept

TEST_F(TransformFile, IsAListOfNamesAndRows) {
    Write({{m_folder / "a.pcm", kTurned}, {m_folder / "sub/b.pcm", kIdentity}});
    EXPECT_EQ(TextOf(m_path), "{\"version\": 1, \"scans\": [\n  {\"file\": \"a.pcm\", \"transform\": " + kTurnedText +
                                  "},\n  {\"file\": \"sub/b.pcm\", \"transform\": [1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, "
                                  "0, 0, 0, 1]}\n]}\n");
    EXPECT_EQ(Read(), (std::vector<StoredTransform>{{"a.pcm", kTurned}, {"sub/b.pcm", kIdentity}}));
}

TEST_F(TransformFile, MayBeEmpty) {
    Write({});
    EXPECT_TRUE(Read().empty());
}

TEST_F(TransformFile, KeepsEveryBitOfAThousandRigidMotions) {
    std::mt19937 random(13);
    std::vector<StoredTransform> written;
    for (int i = 0; i < 1000; ++i) written.push_back({m_folder / std::to_string(i), RandomMotion(random)});
    written[0].matrix[3] = std::numeric_limits<float>::denorm_min();
    written[0].matrix[7] = -kMaxTranslation;
    written[0].matrix[11] = 0.1f;
    Write(written);
    const std::vector<StoredTransform> read = Read();
    ASSERT_EQ(read.size(), written.size());
    for (std::size_t i = 0; i < read.size(); ++i)
        for (std::size_t k = 0; k < 16; ++k)
            ASSERT_EQ(std::bit_cast<std::uint32_t>(read[i].matrix[k]),
                      std::bit_cast<std::uint32_t>(written[i].matrix[k]))
                << i << ", " << k;
}

TEST_F(TransformFile, KeepsEveryNameInRelationToItsFolder) {
    const std::vector<std::string> names = {"a b.pcm",          "\xC3\xA4.pcm",    "\xF0\x9F\x98\x80.pcm",
                                            "\xFF\xE4\x80.pcm", "q\"\\\n\x7F.pcm", "../other/c.pcm"};
    std::vector<StoredTransform> written;
    for (const std::string& name : names) written.push_back({m_folder / name, kTurned});
    Write(written);
    const std::vector<StoredTransform> read = Read();
    ASSERT_EQ(read.size(), names.size());
    for (std::size_t i = 0; i < names.size(); ++i) {
        EXPECT_EQ(read[i].file, names[i]);
        EXPECT_EQ(StoredPath(m_path, read[i].file), std::filesystem::path(m_folder / names[i]).lexically_normal());
    }
}

TEST_F(TransformFile, CountsPathsFromTheCurrentFolder) {
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::create_directory(m_folder / "sub");
    std::filesystem::current_path(m_folder.Path());
    std::string reason;
    EXPECT_TRUE(WriteTransformFile("sub/poses.json", {{"a.pcm", kTurned}, {"./sub/b.pcm", kTurned}}, &reason))
        << reason;
    std::vector<StoredTransform> read;
    EXPECT_TRUE(ReadTransformFile("sub/poses.json", &read, &reason)) << reason;
    EXPECT_EQ(StoredPath("sub/poses.json", "../a.pcm"), std::filesystem::current_path() / "a.pcm");
    EXPECT_EQ(StoredPath("poses.json", "a.pcm"), std::filesystem::current_path() / "a.pcm");
    std::filesystem::current_path(before);
    EXPECT_EQ(read, (std::vector<StoredTransform>{{"../a.pcm", kTurned}, {"b.pcm", kTurned}}));
}

TEST_F(TransformFile, IsTheSameInAnyLocale) {
    const CommaLocale locale;
    if (!locale.IsSet()) GTEST_SKIP() << "this machine cannot make a locale";
    Write({{m_folder / "a.pcm", kTurned}});
    EXPECT_NE(TextOf(m_path).find(kTurnedText), std::string::npos);
    EXPECT_EQ(Read().front().matrix, kTurned);
}

// ---- what is accepted of other writers

TEST_F(TransformFile, NeedsNoVersionAndIgnoresOtherKeys) {
    const std::vector<StoredTransform> one = {{"a.pcm", kTurned}};
    EXPECT_EQ(ParseTransforms(R"({"scans": [{"file": "a.pcm", "transform": )" + kTurnedText + "}]}"), one);
    EXPECT_EQ(ParseTransforms(R"({"unit": "millimetre", "version": 1.0, "seed": 1, "scans": [{"measured": 7, "file":
                                  "a.pcm", "transform": )" +
                              kTurnedText + R"(, "x": {}}], "more": [[]]})"),
              one);
}

TEST_F(TransformFile, AcceptsRotationsWithRoundedDigitsUpToTheTolerance) {
    // A turn by 30 degrees about Z with the cosine changed by d: the length of the first two columns changes, and the
    // square of it by 2 cos d.
    const auto turn = [](double d) {
        const double c = std::sqrt(3.0) / 2 + d;
        const std::string a = std::to_string(c * 1e9) + "e-9";
        return OneScan("[" + a + ", -0.5, 0, 0, 0.5, " + a + ", 0, 0, 0, 0, 1, 0, 0, 0, 0, 1]");
    };
    EXPECT_EQ(ReasonOf(turn(0)), "accepted with 1 transforms");
    EXPECT_EQ(ReasonOf(turn(5e-6)), "accepted with 1 transforms") << "the square is off by 8.7e-6";
    const std::string refusal =
        "entry 1: key \"transform\": not a rotation: the columns must have the length 1 and be "
        "perpendicular";
    EXPECT_EQ(ReasonOf(turn(6.5e-6)), refusal) << "by 1.1e-5";
    EXPECT_EQ(ReasonOf(turn(-6.5e-6)), refusal);
    // The last row likewise; what is read is exactly 0 0 0 1.
    EXPECT_EQ(ParseTransforms(OneScan("[1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 1e-6, 0, 0.999999]")).front().matrix,
              kIdentity);
}

// ---- what is refused

struct Refused {
    const char* name;
    std::string text;
    const char* reason;
};
void PrintTo(const Refused& row, std::ostream* out) { *out << row.name; }

const Refused kRefused[] = {
    {"Nothing", "", "line 1: illegal value"},
    {"NoJson", "{\n\"scans\": [\n1 2]}", "line 3: missing value separator"},
    {"TextThatIsNotUtf8", "{\"scans\": [{\"file\": \"\xFF\"}]}", "line 1: invalid UTF8 string"},
    {"Array", "[]", "not a file of transforms"},
    {"NoScans", R"({"version": 1})", "key \"scans\": is missing"},
    {"ScansAreNoArray", R"({"scans": {}})", "key \"scans\": not an array"},
    {"OtherVersion", R"({"version": 2, "scans": []})", "key \"version\": an unknown version"},
    {"VersionAsText", R"({"version": "1", "scans": []})", "key \"version\": not a number"},
    {"EntryIsNoObject", R"({"scans": [7]})", "entry 1: not an object"},
    {"NoFile", R"({"scans": [{"transform": []}]})", "entry 1: key \"file\": is missing"},
    {"FileIsANumber", R"({"scans": [{"file": 7}]})", "entry 1: key \"file\": not a text"},
    {"FileIsEmpty", R"({"scans": [{"file": ""}]})", "entry 1: key \"file\": the file name is empty"},
    {"FileWithAZero", R"({"scans": [{"file": "a\u0000b"}]})", "entry 1: key \"file\": the file name has a zero byte"},
    {"LongFileName", R"({"scans": [{"file": ")" + std::string(4097, 'x') + "\"}]}",
     "entry 1: key \"file\": the file name is too long"},
    {"NoTransform", R"({"scans": [{"file": "a"}]})", "entry 1: key \"transform\": is missing"},
    {"SecondEntry", R"({"scans": [{"file": "a", "transform": )" + kTurnedText + R"(}, {"file": "b"}]})",
     "entry 2: key \"transform\": is missing"},
    {"TransformIsNoArray", OneScan("7"), "entry 1: key \"transform\": not an array"},
    {"FifteenNumbers", OneScan("[1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0]"),
     "entry 1: key \"transform\": not 16 numbers"},
    {"SeventeenNumbers", OneScan("[1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 1]"),
     "entry 1: key \"transform\": not 16 numbers"},
    {"ANull", OneScan("[1, 0, 0, null, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1]"),
     "entry 1: key \"transform\": not a number"},
    {"AboveTheRangeOfFloats", OneScan("[1, 0, 0, 1e39, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1]"),
     "entry 1: key \"transform\": the number is out of range"},
    {"FarAway", OneScan("[1, 0, 0, 0, 0, 1, 0, -1.001e9, 0, 0, 1, 0, 0, 0, 0, 1]"),
     "entry 1: key \"transform\": the translation is too large"},
    {"Scaled", OneScan("[2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 1]"),
     "entry 1: key \"transform\": not a rotation: the columns must have the length 1 and be perpendicular"},
    {"Sheared", OneScan("[1, 0.0001, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1]"),
     "entry 1: key \"transform\": not a rotation: the columns must have the length 1 and be perpendicular"},
    {"AllZero", OneScan("[0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1]"),
     "entry 1: key \"transform\": not a rotation: the columns must have the length 1 and be perpendicular"},
    {"LargestFloats", OneScan("[3e38, 3e38, 3e38, 0, 3e38, 3e38, 3e38, 0, 3e38, 3e38, 3e38, 0, 0, 0, 0, 1]"),
     "entry 1: key \"transform\": not a rotation: the columns must have the length 1 and be perpendicular"},
    {"Mirrored", OneScan("[-1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1]"),
     "entry 1: key \"transform\": a reflection, not a rotation"},
    {"ByColumns", OneScan("[0, 1, 0, 0, -1, 0, 0, 0, 0, 0, 1, 0, 10, -20.5, 0.125, 1]"),
     "entry 1: key \"transform\": the last row is not 0 0 0 1"},
    {"LastNumberIsZero", OneScan("[1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0]"),
     "entry 1: key \"transform\": the last row is not 0 0 0 1"},
};
class TransformFileRefuses : public testing::TestWithParam<Refused> {};

TEST_P(TransformFileRefuses, AndNamesThePlace) { EXPECT_EQ(ReasonOf(GetParam().text), GetParam().reason); }
INSTANTIATE_TEST_SUITE_P(TransformFile, TransformFileRefuses, testing::ValuesIn(kRefused),
                         [](const auto& row) { return row.param.name; });

TEST_F(TransformFile, HasALimitOfEntries) {
    const auto file = [](std::size_t count) {
        std::string text = "{\"scans\": [";
        for (std::size_t i = 0; i < count; ++i)
            text.append(i == 0 ? "" : ",").append(R"({"file":"a","transform":[1,0,0,0,0,1,0,0,0,0,1,0,0,0,0,1]})");
        return text + "]}";
    };
    EXPECT_EQ(ReasonOf(file(kMaxTransformsInFile)), "accepted with 10000 transforms");
    EXPECT_EQ(ReasonOf(file(kMaxTransformsInFile + 1)), "there are too many transforms");
    EXPECT_EQ(WriteRefusalOf(std::vector<StoredTransform>(kMaxTransformsInFile + 1, {"a", kTurned})),
              "there are too many transforms");
}

TEST_F(TransformFile, IsReadFromRegularFilesOfALimitedSizeOnly) {
    EXPECT_EQ(ReadRefusalOf(m_path), "cannot be opened: No such file or directory");
    EXPECT_EQ(ReadRefusalOf(m_folder / ""), "is not a regular file");
    WriteText(m_path, "{");
    std::filesystem::resize_file(m_path, kMaxTransformFileSize + 1);
    EXPECT_EQ(ReadRefusalOf(m_path), "the file is too large for a file of transforms");
    std::filesystem::resize_file(m_path, kMaxTransformFileSize);
    EXPECT_EQ(ReadRefusalOf(m_path), "line 1: unterminated object");
}

// ---- writing

TEST_F(TransformFile, IsNotWrittenBeyondTheLimitOfItsSize) {
    const std::string name = m_folder / std::string(4000, 'x');
    EXPECT_EQ(WriteRefusalOf(std::vector<StoredTransform>(2100, {name, kTurned})), "the file would be too large");
    Write(std::vector<StoredTransform>(2000, {name, kTurned}));
    EXPECT_EQ(Read().size(), 2000u);
}

TEST_F(TransformFile, IsNotWrittenWithATransformThatWouldNotBeReadAgain) {
    Write({{m_folder / "a.pcm", kTurned}});
    const std::string before = TextOf(m_path);
    const std::string b = m_folder / "b.pcm";
    Matrix4 bad = kTurned;
    bad[3] = std::numeric_limits<float>::infinity();
    EXPECT_EQ(WriteRefusalOf({{m_folder / "a.pcm", kTurned}, {b, bad}}), b + ": a number is not finite");
    bad = kTurned;
    bad[0] = 0.5f;
    EXPECT_EQ(WriteRefusalOf({{b, bad}}),
              b + ": not a rotation: the columns must have the length 1 and be perpendicular");
    EXPECT_EQ(WriteRefusalOf({{"", kTurned}}), ": the file name is empty");
    EXPECT_EQ(TextOf(m_path), before) << "a failed write changed the file";
    EXPECT_EQ(m_folder.FileCount(), 1u);
}

TEST_F(TransformFile, SaysWhyItCannotBeWritten) {
    std::string reason;
    EXPECT_FALSE(WriteTransformFile(m_folder / "none/poses.json", {}, &reason));
    EXPECT_NE(reason, "");
    const UnprivilegedUser user;
    if (!user.HasEffect()) GTEST_SKIP() << "root may write everywhere";
    ASSERT_FALSE(WriteTransformFile("/proc/poses.json", {}, &reason));
}

// ---- matching

/// Per object the entry, or -1.
std::vector<int> Matched(const std::vector<std::string>& entryFiles, const std::vector<std::string>& objectFiles,
                         std::vector<std::string>* lines = nullptr) {
    std::vector<StoredTransform> entries;
    for (const std::string& file : entryFiles) entries.push_back({file, kIdentity});
    const TransformMatch match = MatchTransforms("/data/poses.json", entries, objectFiles);
    std::vector<int> matched;
    for (const auto& entry : match.entryOfObject) matched.push_back(entry ? static_cast<int>(*entry) : -1);
    const bool hasAny = matched != std::vector<int>(matched.size(), -1);
    EXPECT_EQ(match.HasAny(), hasAny);
    if (lines != nullptr) *lines = UnmatchedLines(match, entries, objectFiles);
    return matched;
}

TEST(TransformMatching, IsByThePathFromTheFolderOfTheFile) {
    EXPECT_EQ(
        Matched({"a.pcm", "sub/a.pcm", "/other/a.pcm"}, {"/other/a.pcm", "/data/./sub/../a.pcm", "/data/sub/a.pcm"}),
        (std::vector{2, 0, 1}));
    EXPECT_EQ(Matched({"../up/a.pcm", "/data/b.pcm"}, {"/data/b.pcm", "/up/a.pcm"}), (std::vector{1, 0}));
}

TEST(TransformMatching, IsByTheNameAloneWhereNoPathAgrees) {
    EXPECT_EQ(Matched({"a.pcm", "b.pcm"}, {"/moved/b.pcm", "/moved/a.pcm"}), (std::vector{1, 0}));
    EXPECT_EQ(Matched({"a.pcm"}, {"/x/a.pcm", "/y/a.pcm"}), (std::vector{-1, -1})) << "which of the two";
    EXPECT_EQ(Matched({"x/a.pcm", "y/a.pcm"}, {"/moved/a.pcm"}), (std::vector{-1})) << "which of the two";
    EXPECT_EQ(Matched({"a.pcm"}, {"/moved/A.pcm"}), (std::vector{-1})) << "case counts";
}

TEST(TransformMatching, ByTheNameDoesNotTouchWhatHasItsPath) {
    // One object at the path of the entry, one of the same name elsewhere.
    EXPECT_EQ(Matched({"a.pcm"}, {"/x/a.pcm", "/data/a.pcm"}), (std::vector{-1, 0}));
    // Two entries of one file, of which one is left over: it does not go to another file.
    EXPECT_EQ(Matched({"a.pcm", "a.pcm"}, {"/x/a.pcm", "/data/a.pcm"}), (std::vector{-1, 0}));
    // The paths of one entry decide; what is left has a unique name.
    EXPECT_EQ(Matched({"a.pcm", "x/a.pcm"}, {"/data/a.pcm", "/moved/a.pcm"}), (std::vector{0, 1}));
}

TEST(TransformMatching, GivesEqualFilesTheirEntriesInOrder) {
    EXPECT_EQ(Matched({"a.pcm", "b.pcm", "./a.pcm"}, {"/data/a.pcm", "/data/a.pcm", "/data/b.pcm"}),
              (std::vector{0, 2, 1}));
    EXPECT_EQ(Matched({"a.pcm"}, {"/data/a.pcm", "/data/a.pcm"}), (std::vector{0, -1}));
    EXPECT_EQ(Matched({"a.pcm", "a.pcm"}, {"/moved/a.pcm", "/moved/a.pcm"}), (std::vector{0, 1})) << "by name, too";
}

TEST(TransformMatching, LeavesObjectsWithoutAFileAlone) {
    EXPECT_EQ(Matched({"a.pcm", "."}, {"", "/data/a.pcm", ""}), (std::vector{-1, 0, -1}));
    EXPECT_EQ(Matched({}, {"/data/a.pcm"}), (std::vector{-1}));
    EXPECT_EQ(Matched({"a.pcm"}, {}), std::vector<int>{});
}

TEST(TransformMatching, ReportsWhatIsLeftInOneLineEach) {
    std::vector<std::string> lines;
    (void)Matched({"a.pcm"}, {"/data/a.pcm"}, &lines);
    EXPECT_EQ(lines, std::vector<std::string>{});
    (void)Matched({"a.pcm", "b.pcm"}, {"/data/a.pcm", "/data/c.pcm"}, &lines);
    EXPECT_EQ(lines, (std::vector<std::string>{"transforms that belong to no open file: b.pcm",
                                               "no transform for /data/c.pcm"}));
    (void)Matched({"1", "2", "3", "4", "5"}, {"x", "y", "z"}, &lines);
    EXPECT_EQ(lines, (std::vector<std::string>{"transforms that belong to no open file: 1, 2, 3 and 2 more",
                                               "no transform for x, y, z"}));
}

TEST(TransformMatching, NamesObjectsWithoutATransformInOneLine) {
    const auto line = [](const std::vector<std::string>& entries, const std::vector<std::string>& files) {
        std::vector<StoredTransform> stored;
        stored.reserve(entries.size());
        for (const std::string& entry : entries) stored.push_back({entry, kIdentity});
        return MissingTransformsLine(MatchTransforms("/data/t.json", stored, files), stored, files);
    };
    EXPECT_EQ(line({"a.pcm", "b.pcm"}, {"/data/a.pcm"}), "") << "an entry for another file is normal";
    EXPECT_EQ(line({"a.pcm"}, {"/data/a.pcm", "/data/c.pcm"}), "no transform for /data/c.pcm");
    EXPECT_EQ(line({"a.pcm", "d.pcm"}, {"/data/a.pcm", "/data/c.pcm"}),
              "no transform for /data/c.pcm; not used: d.pcm");
}

}  // namespace
