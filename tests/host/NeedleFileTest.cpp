// Needle files: what they keep, what is refused, and how their needles come into a viewer.
#include "NeedleFile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <filesystem>
#include <limits>
#include <random>

#include "KV_ScenePane/ScenePane.h"
#include "host/CommaLocale.h"
#include "host/UnprivilegedUser.h"
#include "support/ScratchFolder.h"

namespace {

/// A file with one entry of these keys and values.
std::string OneNeedle(const std::string& keys) {
    return "{\"format\": \"scenepane needles\", \"version\": 1, \"needles\": [{" + keys + "}]}";
}

const std::string kId = "\"id\": 1, ", kPin = "\"pin\": [1, 2, 3], ", kHead = "\"head\": [4, 5, 6]";
const std::string kWhole = kId + kPin + kHead;

std::string ReasonOf(const std::string& text) {
    try {
        return "accepted with " + std::to_string(ParseNeedles(text).size()) + " needles";
    } catch (const std::runtime_error& error) {
        return error.what();
    }
}

void WriteText(const std::string& path, const std::string& text) {
    std::ofstream file(path, std::ios::binary);
    file << text;
    if (!file.flush()) throw std::runtime_error("cannot write " + path);
}

std::string TextOf(const std::string& path) {
    const std::vector<std::byte> bytes = ReadBytes(path);
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

NeedleMark Mark(std::int32_t id, float x = 0) { return {.id = id, .pin = {x, 0, 0}, .head = {x, 0, 10}, .look = {}}; }

class NeedleFile : public testing::Test {
protected:
    [[nodiscard]] std::vector<NeedleMark> WrittenAndRead(const std::vector<NeedleMark>& marks) const {
        std::string reason;
        EXPECT_TRUE(WriteNeedleFile(m_path, marks, &reason)) << reason;
        std::vector<NeedleMark> read;
        EXPECT_TRUE(ReadNeedleFile(m_path, &read, &reason)) << reason;
        EXPECT_EQ(reason, "");
        return read;
    }
    ScratchFolder m_folder;
    const std::string m_path = m_folder / "needles.json";
};

// ---- what is kept

/// The bits of all floats of a needle that a file keeps.
std::vector<std::uint32_t> Bits(const NeedleMark& mark) {
    std::vector<std::uint32_t> bits;
    for (const auto& position : {mark.pin, mark.head})
        for (const float value : position) bits.push_back(std::bit_cast<std::uint32_t>(value));
    for (const float value : {mark.look.headRadius, mark.look.pinSize, mark.look.hitPointRadius})
        bits.push_back(std::bit_cast<std::uint32_t>(value));
    return bits;
}

TEST_F(NeedleFile, KeepsIdsOrderSizesAndColours) {
    NeedleMark a{.id = 7, .pin = {1, 2, 3}, .head = {-4, 5.5f, 0.1f}, .look = {}};
    a.look = {.length = NeedleLook{}.length,
              .headRadius = 2,
              .headColor = 0x123456,
              .pinSize = 0.5f,
              .pinColor = 0xFFFFFF,
              .hitPointRadius = -1,
              .hitPointColor = 0xFF,
              .headSelectionColor = 0x00FF00};
    const std::vector<NeedleMark> marks{a, Mark(-2147483647 - 1), Mark(2147483647), Mark(0), Mark(-1)};
    EXPECT_EQ(WrittenAndRead(marks), marks);
    EXPECT_EQ(WrittenAndRead({}), std::vector<NeedleMark>{});
}

TEST_F(NeedleFile, KeepsEveryBitOfItsNumbersExceptTheSignOfAZero) {
    using Limits = std::numeric_limits<float>;
    // 7.038531e-26 is the shortest text of its float, but not of any double that rounds to it.
    std::vector<float> values{0.0f,          0.1f,        -1e-45f, Limits::min(), Limits::max(), Limits::lowest(),
                              7.038531e-26f, 16777216.0f, 1 / 3.0f};
    std::mt19937 random(1);
    while (values.size() < 30'000) {
        const auto value = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
        if (std::isfinite(value) && value != 0) values.push_back(value);
    }
    std::vector<NeedleMark> marks;
    for (std::size_t i = 0; i + 9 <= values.size(); i += 9) {
        NeedleMark mark = Mark(static_cast<std::int32_t>(i));
        std::copy_n(&values[i], 3, mark.pin.begin());
        std::copy_n(&values[i + 3], 3, mark.head.begin());
        mark.look.headRadius = std::abs(values[i + 6]);
        mark.look.pinSize = std::abs(values[i + 7]);
        mark.look.hitPointRadius = values[i + 8];
        marks.push_back(mark);
    }
    const std::vector<NeedleMark> read = WrittenAndRead(marks);
    ASSERT_EQ(read.size(), marks.size());
    for (std::size_t i = 0; i < marks.size(); ++i) ASSERT_EQ(Bits(read[i]), Bits(marks[i])) << i;
}

TEST_F(NeedleFile, IsTheSameUnderADecimalComma) {
    const std::vector<NeedleMark> marks{Mark(1, 1.5f)};
    (void)WrittenAndRead(marks);
    const std::string text = TextOf(m_path);
    const CommaLocale comma;
    if (!comma.IsSet()) GTEST_SKIP() << "this machine cannot make a locale with a decimal comma";
    EXPECT_EQ(WrittenAndRead(marks), marks);
    EXPECT_EQ(TextOf(m_path), text);
}

TEST_F(NeedleFile, HasOneLineForEachNeedle) {
    (void)WrittenAndRead({Mark(1), Mark(2, -0.5f)});
    const std::string look =
        ", \"headRadius\": 1, \"headColor\": \"#FF0000\", \"pinSize\": 0.33000001311302185, \"pinColor\": \"#505050\", "
        "\"hitPointRadius\": 0.25, \"hitPointColor\": \"#0000FF\", \"headSelectionColor\": \"#000000\"}";
    EXPECT_EQ(TextOf(m_path),
              "{\"format\": \"scenepane needles\", \"version\": 1, \"needles\": [\n"
              "  {\"id\": 1, \"pin\": [0, 0, 0], \"head\": [0, 0, 10]" +
                  look + ",\n" + "  {\"id\": 2, \"pin\": [-0.5, 0, 0], \"head\": [-0.5, 0, 10]" + look + "\n]}\n");
}

// ---- what is accepted

TEST(ParseNeedles, GivesNeedlesWithoutSizesAndColoursThoseOfANewViewer) {
    const std::vector<NeedleMark> marks = ParseNeedles(OneNeedle(kWhole));
    ASSERT_EQ(marks.size(), 1u);
    EXPECT_EQ(marks[0], (NeedleMark{.id = 1, .pin = {1, 2, 3}, .head = {4, 5, 6}, .look = {}}));
}

TEST(ParseNeedles, ReadsKeysInAnyOrderAndIgnoresUnknownOnes) {
    const std::vector<NeedleMark> marks = ParseNeedles(
        "\xEF\xBB\xBF {\"needles\":[{\"note\":{\"a\":[1,{\"b\":null}],\"c\":\"\\u00e4\\\"\"},\"head\":[4,5,6],"
        "\"p\\u0069n\":[1,2.0,3e0],\"id\":1.0,\"ok\":true}],\"by\":[],\"version\":1.0,\"format\":\"scenepane "
        "needles\",\"off\":false}\r\n");
    ASSERT_EQ(marks.size(), 1u);
    EXPECT_EQ(marks[0], (NeedleMark{.id = 1, .pin = {1, 2, 3}, .head = {4, 5, 6}, .look = {}}));
}

TEST(ParseNeedles, AcceptsColoursInEitherCase) {
    const auto marks = ParseNeedles(OneNeedle(kWhole + ", \"headColor\": \"#aBcDeF\""));
    EXPECT_EQ(marks.at(0).look.headColor, 0xEFCDAB);
}

TEST(ParseNeedles, AcceptsAsManyNeedlesAsAFileMayHave) {
    const auto file = [](std::size_t count) {
        std::string text = "{\"format\": \"scenepane needles\", \"version\": 1, \"needles\": [";
        for (std::size_t i = 0; i < count; ++i)
            text.append(i == 0 ? "{" : ",{")
                .append("\"id\": ")
                .append(std::to_string(i))
                .append(", " + kPin + kHead + "}");
        return text + "]}";
    };
    EXPECT_EQ(ParseNeedles(file(10'000)).size(), 10'000u);
    EXPECT_EQ(ReasonOf(file(10'001)), "there are too many needles");
}

TEST(ParseNeedles, LimitsTheNestingOfUnknownValues) {
    const auto nested = [](std::size_t depth) {
        return OneNeedle(kWhole + ", \"x\": " + std::string(depth, '[') + std::string(depth, ']'));
    };
    EXPECT_EQ(ReasonOf(nested(1000)), "accepted with 1 needles");
    EXPECT_EQ(ReasonOf(nested(1'000'000)), "line 1: too deeply nested document");
}

TEST(ParseNeedles, ReadsTheLastValueOfAKeyThatOccursTwice) {
    const auto marks = ParseNeedles(OneNeedle("\"id\": \"x\", \"pin\": [7, 8, 9], " + kWhole));
    EXPECT_EQ(marks.at(0), (NeedleMark{.id = 1, .pin = {1, 2, 3}, .head = {4, 5, 6}, .look = {}}));
}

TEST(ParseNeedles, ReadsANegativeZeroAsZero) {
    const auto marks = ParseNeedles(OneNeedle(kId + "\"pin\": [-0, -0.0, 0], " + kHead));
    EXPECT_EQ(Bits(marks.at(0))[0], 0u);
    EXPECT_EQ(Bits(marks.at(0))[1], 0u);
}

// ---- what is refused

struct BadNeedles {
    const char* name;
    std::string text, reason;
};
void PrintTo(const BadNeedles& row, std::ostream* out) { *out << row.name; }

const std::string kFirst = "entry 1: key ";

const BadNeedles kBadNeedles[] = {
    {"Empty", "", "line 1: illegal value"},
    {"AnArray", "[]", "not a file of needles"},
    {"Binary", std::string("\0\x01\x02", 3), "line 1: illegal value"},
    {"NoFormat", "{\"version\": 1, \"needles\": []}", "key \"format\": is missing"},
    {"OtherFormat", "{\"format\": \"lines\", \"needles\": 1}", "key \"format\": not a file of needles"},
    {"FormatOfAnotherType", "{\"format\": 3}", "key \"format\": not a text"},
    {"NoVersion", "{\"format\": \"scenepane needles\", \"needles\": []}", "key \"version\": is missing"},
    {"OtherVersion", "{\"format\": \"scenepane needles\", \"version\": 2}", "key \"version\": an unknown version"},
    {"NoNeedles", "{\"format\": \"scenepane needles\", \"version\": 1}", "key \"needles\": is missing"},
    {"NeedlesOfAnotherType", "{\"format\": \"scenepane needles\", \"version\": 1, \"needles\": {}}",
     "key \"needles\": not an array"},
    {"AnEntryOfAnotherType", "{\"format\": \"scenepane needles\", \"version\": 1, \"needles\": [1]}",
     "entry 1: not an object"},
    {"NoId", OneNeedle(kPin + kHead), kFirst + "\"id\": is missing"},
    {"NoPin", OneNeedle(kId + kHead), kFirst + "\"pin\": is missing"},
    {"NoHead", OneNeedle(kId + "\"pin\": [1, 2, 3]"), kFirst + "\"head\": is missing"},
    {"IdOfAnotherType", OneNeedle("\"id\": \"1\", " + kPin + kHead), kFirst + "\"id\": not a number"},
    {"IdNotWhole", OneNeedle("\"id\": 1.5, " + kPin + kHead), kFirst + "\"id\": not a whole number of 32 bits"},
    {"IdTooLarge", OneNeedle("\"id\": 2147483648, " + kPin + kHead), kFirst + "\"id\": not a whole number of 32 bits"},
    {"IdTooSmall", OneNeedle("\"id\": -2147483649, " + kPin + kHead), kFirst + "\"id\": not a whole number of 32 bits"},
    {"TwoNumbers", OneNeedle(kId + "\"pin\": [1, 2]"), kFirst + "\"pin\": not 3 numbers"},
    {"FourNumbers", OneNeedle(kId + "\"pin\": [1, 2, 3, 4]"), kFirst + "\"pin\": not 3 numbers"},
    {"PinOfAnotherType", OneNeedle(kId + "\"pin\": 1"), kFirst + "\"pin\": not an array"},
    {"PinWithAText", OneNeedle(kId + "\"pin\": [1, \"2\", 3]"), kFirst + "\"pin\": not a number"},
    {"PinWithNull", OneNeedle(kId + "\"pin\": [1, null, 3]"), kFirst + "\"pin\": not a number"},
    {"PinWithNan", OneNeedle(kId + "\"pin\": [NaN, 1, 3]"), "line 1: illegal number"},
    {"PinWithInfinity", OneNeedle(kId + "\"pin\": [1, -Infinity, 3]"), "line 1: illegal number"},
    {"BeyondDouble", OneNeedle(kId + "\"pin\": [1, 2, 1e400]"), "line 1: illegal number"},
    {"BeyondFloat", OneNeedle(kId + kPin + "\"head\": [-3.5e38, 2, 1]"),
     kFirst + "\"head\": the number is out of range"},
    {"SizeBeyondFloat", OneNeedle(kWhole + ", \"headRadius\": 1e39"),
     kFirst + "\"headRadius\": the number is out of range"},
    {"NegativeHead", OneNeedle(kWhole + ", \"headRadius\": -0.5"), kFirst + "\"headRadius\": the size is negative"},
    {"NegativePin", OneNeedle(kWhole + ", \"pinSize\": -1"), kFirst + "\"pinSize\": the size is negative"},
    {"NegativeMark", OneNeedle(kWhole + ", \"hitPointRadius\": -1"), "accepted with 1 needles"},
    {"SizeOfAnotherType", OneNeedle(kWhole + ", \"pinSize\": true"), kFirst + "\"pinSize\": not a number"},
    {"ColourOfAnotherType", OneNeedle(kWhole + ", \"pinColor\": 255"), kFirst + "\"pinColor\": not a text"},
    {"ColourTooShort", OneNeedle(kWhole + ", \"pinColor\": \"#FFF\""),
     kFirst + "\"pinColor\": not a colour like \"#00FF00\""},
    {"ColourWithASign", OneNeedle(kWhole + ", \"pinColor\": \"#-12345\""),
     kFirst + "\"pinColor\": not a colour like \"#00FF00\""},
    {"ColourWithALetter", OneNeedle(kWhole + ", \"pinColor\": \"#12345G\""),
     kFirst + "\"pinColor\": not a colour like \"#00FF00\""},
    {"LeadingZero", OneNeedle("\"id\": 01, " + kPin + kHead), "line 1: unterminated object"},
    {"LeadingPlus", OneNeedle("\"id\": +1, " + kPin + kHead), "line 1: illegal number"},
    {"NoExponent", OneNeedle(kId + "\"pin\": [1e, 2, 3]"), "line 1: illegal number"},
    {"TooSmallForADouble", OneNeedle(kId + "\"pin\": [1e-400, 2, 3]"), "line 1: illegal number"},
    {"Hexadecimal", OneNeedle("\"id\": 0x10, " + kPin + kHead), "line 1: unterminated object"},
    {"TwoIds",
     "{\"format\": \"scenepane needles\",\n\"version\": 1, \"needles\": [{" + kWhole + "},\n{" + kWhole + "}]}",
     "two needles have the id 1"},
    {"FaultInTheSecondEntry", OneNeedle(kWhole + "},\n{" + kId + "\"pin\": []"), "entry 2: key \"pin\": not 3 numbers"},
    {"CutBeforeANumber", OneNeedle(kId + "\"pin\": [1, ").substr(0, 79), "line 1: unterminated array"},
    {"TextAfterTheEnd", OneNeedle(kWhole) + "x", "line 1: garbage at the end of the document"},
    {"CommaAtTheEnd", "{\"format\": \"scenepane needles\",}", "line 1: object is missing after a comma"},
    {"FaultInAnotherLine", "{\"format\":\n\"scenepane needles\",\r\n\"version\": x}", "line 3: illegal number"},
    {"NotUtf8", "{\"a\": \"\xFF\"}", "line 1: invalid UTF8 string"},
    {"EscapeCutShort", "{\"\\u12", "line 1: invalid escape sequence"},
};
class ParseNeedlesRejects : public testing::TestWithParam<BadNeedles> {};

TEST_P(ParseNeedlesRejects, AndSaysWhere) { EXPECT_EQ(ReasonOf(GetParam().text), GetParam().reason); }
INSTANTIATE_TEST_SUITE_P(Needles, ParseNeedlesRejects, testing::ValuesIn(kBadNeedles),
                         [](const auto& row) { return row.param.name; });

TEST(ParseNeedles, RejectsAFileThatIsCutAnywhereInOneLine) {
    const std::string whole = OneNeedle(kWhole + ", \"headColor\": \"#123456\", \"x\": [{\"y\": -1.5e-3}, true]");
    ASSERT_EQ(ReasonOf(whole), "accepted with 1 needles");
    for (std::size_t size = 0; size < whole.size(); ++size) {
        const std::string reason = ReasonOf(whole.substr(0, size));
        EXPECT_TRUE(reason.starts_with("line 1: ")) << size << ": " << reason;
        EXPECT_EQ(reason.find('\n'), std::string::npos) << size;
    }
}

TEST_F(NeedleFile, WithDamagedBytesIsReadOrRefusedInOneLine) {
    (void)WrittenAndRead({Mark(1, 0.25f), Mark(2, -1e-5f)});
    const std::string whole = TextOf(m_path);
    std::mt19937 random(7);
    int refused = 0;
    for (int i = 0; i < 20'000; ++i) {
        std::string text = whole;
        for (auto changes = 1 + random() % 3; changes > 0; --changes)
            text[random() % text.size()] = static_cast<char>(random());
        try {
            for (const NeedleMark& mark : ParseNeedles(text))
                for (const float value : mark.pin) ASSERT_TRUE(std::isfinite(value)) << text;
        } catch (const std::runtime_error& error) {
            ++refused;
            const std::string reason = error.what();
            const bool hasPlace = std::ranges::any_of(std::array{"line ", "key \"", "entry ", "two needles "},
                                                      [&](const char* place) { return reason.starts_with(place); });
            ASSERT_TRUE(hasPlace && reason.find('\n') == std::string::npos) << reason << '\n' << text;
        }
    }
    EXPECT_GT(refused, 5'000);
    EXPECT_LT(refused, 20'000) << "a changed digit is another number";
}

TEST_F(NeedleFile, RefusesFilesThatAreNoneAndChangesNothing) {
    const std::string large = m_folder / "large.json", pipe = m_folder / "pipe.json", full = m_folder / "full.json";
    WriteText(large, "");
    std::filesystem::resize_file(large, kMaxNeedleFileSize + 1);
    WriteText(full, "");
    std::filesystem::resize_file(full, kMaxNeedleFileSize);
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const std::pair<std::string, std::string> kFiles[] = {
        {m_folder / "none.json", "cannot be opened: No such file or directory"},
        {m_folder / "", "is not a regular file"},
        {pipe, "is not a regular file"},
        {large, "the file is too large for a file of needles"},
        {full, "line 1: illegal value"},  // read, and refused for its content
    };
    for (const auto& [path, expected] : kFiles) {
        std::vector<NeedleMark> marks{Mark(5)};
        std::string reason;
        EXPECT_FALSE(ReadNeedleFile(path, &marks, &reason)) << path;
        EXPECT_EQ(reason, expected) << path;
        EXPECT_EQ(marks, std::vector{Mark(5)}) << path;
    }
}

// ---- what cannot be written

TEST_F(NeedleFile, KeepsTheOldFileWhenANumberIsNotFinite) {
    (void)WrittenAndRead({Mark(1)});
    const std::string old = TextOf(m_path);
    for (const float value : {NAN, INFINITY, -INFINITY}) {
        std::string reason;
        EXPECT_FALSE(WriteNeedleFile(m_path, {Mark(1), Mark(12, value)}, &reason));
        EXPECT_EQ(reason, "needle 12: a number is not finite");
        EXPECT_EQ(TextOf(m_path), old);
    }
    EXPECT_EQ(m_folder.FileCount(), 1u) << "no temporary file is left";
}

TEST_F(NeedleFile, RefusesToWriteANegativeSizeThatItWouldNotRead) {
    NeedleMark mark = Mark(12);
    mark.look.pinSize = -0.5f;
    std::string reason;
    EXPECT_FALSE(WriteNeedleFile(m_path, {mark}, &reason));
    EXPECT_EQ(reason, "needle 12: the size is negative");
}

TEST_F(NeedleFile, IsNotWrittenWithMoreNeedlesThanCanBeRead) {
    std::string reason;
    EXPECT_FALSE(WriteNeedleFile(m_path, std::vector<NeedleMark>(kMaxNeedlesInFile + 1), &reason));
    EXPECT_EQ(reason, "there are too many needles");
    EXPECT_EQ(m_folder.FileCount(), 0u);
}

TEST_F(NeedleFile, SaysWhyItCannotBeWritten) {
    const auto reasonOf = [](const std::string& path) {
        std::string reason;
        EXPECT_FALSE(WriteNeedleFile(path, {Mark(1)}, &reason)) << path;
        return reason;
    };
    EXPECT_EQ(reasonOf(m_folder / "none/a.json"), "No such file or directory");
    EXPECT_EQ(reasonOf(m_folder.Path().string()), "Is a directory");
    WriteText(m_path, "old");
    std::filesystem::permissions(m_path, static_cast<std::filesystem::perms>(0444));
    std::filesystem::permissions(m_folder.Path(), std::filesystem::perms::all);
    const UnprivilegedUser user;
    if (!user.HasEffect()) GTEST_SKIP() << "permissions do not apply to this user";
    EXPECT_EQ(reasonOf(m_path), "Permission denied");
    EXPECT_EQ(TextOf(m_path), "old");
}

// ---- into a viewer

class PlaceNeedlesTest : public testing::Test, public KV_ScenePane::_DKV_ScenePaneEvents {
protected:
    void SetUp() override {
        KV_ScenePane::WindowRequest request;
        request.gpu = KV_ScenePane::WindowRequest::kSoftware;
        request.width = request.height = 200;
        std::string reason;
        m_pane = KV_ScenePane::CreateScenePane(request, &reason);
        ASSERT_NE(m_pane, nullptr) << reason;
        m_pane->Connect(this);
    }
    void TearDown() override {
        if (m_pane) m_pane->Connect(nullptr);
    }
    void NeedleCreated(std::int32_t id) override { m_created.push_back(id); }
    void NeedleDeleted(std::int32_t id) override { m_deleted.push_back(id); }
    [[nodiscard]] KV_ScenePane::_DKV_ScenePane& Methods() const { return m_pane->Methods(); }
    [[nodiscard]] std::vector<std::int32_t> Place(const std::vector<NeedleMark>& marks, std::int32_t* limit) const {
        return PlaceNeedles(Methods(), marks, {}, limit);
    }
    [[nodiscard]] static std::vector<NeedleMark> Marks(std::int32_t first, std::int32_t last) {
        std::vector<NeedleMark> marks;
        for (std::int32_t id = first; id <= last; ++id) marks.push_back(Mark(id, static_cast<float>(id)));
        return marks;
    }
    /// The colour in the middle of a frame, 0xRRGGBB.
    [[nodiscard]] std::uint32_t MiddlePixel() const {
        KV_ScenePane::Picture picture;
        if (!m_pane->CapturePicture(&picture)) throw std::runtime_error("the viewer draws no frame");
        return picture.pixels.at(100 * 200 + 100) & 0xFFFFFF;
    }
    std::unique_ptr<KV_ScenePane::ScenePane> m_pane;
    std::vector<std::int32_t> m_created, m_deleted;
};

TEST_F(PlaceNeedlesTest, RaisesTheLimitToWhatIsNeeded) {
    std::int32_t limit = kStartNeedleLimit;
    EXPECT_TRUE(Place(Marks(1, 8), &limit).empty());
    EXPECT_EQ(limit, 8);
    EXPECT_EQ(Place(Marks(6, 12), &limit), (std::vector<std::int32_t>{6, 7, 8}));
    EXPECT_EQ(limit, 12) << "those in use need no room";
    EXPECT_EQ(Methods().GetNumberOfNeedles(), 12);
    EXPECT_EQ(m_created, (std::vector<std::int32_t>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
    EXPECT_EQ(Methods().CreateNeedle(99, 0, 0, 0, 1, 1, 1), KV_ScenePane::kVariantFalse) << "the viewer has that limit";
}

TEST_F(PlaceNeedlesTest, NeverLowersTheLimit) {
    std::int32_t limit = 20;
    Methods().SetMaxNumberOfNeedles(limit);
    EXPECT_TRUE(Place(Marks(1, 12), &limit).empty());
    EXPECT_TRUE(Place(Marks(13, 14), &limit).empty());
    EXPECT_EQ(limit, 20);
    EXPECT_TRUE(Place(Marks(15, 20), &limit).empty());
    EXPECT_EQ(Methods().GetNumberOfNeedles(), 20);
    EXPECT_TRUE(m_deleted.empty());
}

TEST_F(PlaceNeedlesTest, LeavesNeedlesOfTheSameIdAlone) {
    std::int32_t limit = kStartNeedleLimit;
    (void)Methods().CreateNeedle(2, 100, 100, 100, 200, 200, 200);
    EXPECT_EQ(Place(Marks(1, 3), &limit), std::vector<std::int32_t>{2});
    float p[6]{};
    ASSERT_NE(Methods().GetNeedle(2, p, p + 1, p + 2, p + 3, p + 4, p + 5), 0);
    EXPECT_EQ(p[0], 100);
    EXPECT_EQ(p[5], 200);
    ASSERT_NE(Methods().GetNeedle(3, p, p + 1, p + 2, p + 3, p + 4, p + 5), 0);
    EXPECT_EQ(p[0], 3);
    EXPECT_EQ(p[5], 10);
}

TEST_F(PlaceNeedlesTest, GivesEachNeedleItsLookAndLaterOnesThePresentLook) {
    // Seen from +Z; 1000 units span the window. A head of that radius covers its middle.
    Methods().SetNeedleDrawingMode(KV_ScenePane::kVariantTrue);
    const auto head = [](std::int32_t id, float z, std::int32_t color) {
        NeedleMark mark{.id = id, .pin = {0, 0, z - 200}, .head = {0, 0, z}, .look = {}};
        mark.look.headRadius = 100;
        mark.look.headColor = color;
        return mark;
    };
    const auto isMostly = [](std::uint32_t pixel, int shift) {  // of one channel; heads shine a little
        const std::uint32_t channel = (pixel >> shift) & 0xFF, others = pixel & ~(0xFFu << shift);
        return channel > 0xC0 && (others & 0xC0C0C0) == 0;
    };
    std::int32_t limit = kStartNeedleLimit;
    NeedleLook present;
    present.headRadius = 100;
    present.headColor = 0xFF0000;
    (void)PlaceNeedles(Methods(), {head(1, 0, 0x0000FF), head(2, 150, 0x00FF00)}, present, &limit);
    EXPECT_TRUE(isMostly(MiddlePixel(), 8)) << std::hex << MiddlePixel();
    (void)Methods().DeleteNeedle(2);
    EXPECT_TRUE(isMostly(MiddlePixel(), 16)) << std::hex << MiddlePixel();
    (void)Methods().CreateNeedle(3, 0, 0, 0, 0, 0, 150);
    EXPECT_TRUE(isMostly(MiddlePixel(), 0)) << std::hex << MiddlePixel();
}

}  // namespace
