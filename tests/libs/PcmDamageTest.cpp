// Files that are not whole pcm files of a known version are refused before memory for the grid is allocated.
#include <gmock/gmock.h>
#include <sys/resource.h>

#include <functional>

#include "MSRDLL/PcmFile.h"
#include "libs/PcmSample.h"

using namespace MsrStorage;

namespace {

bool IsRefused(const std::vector<std::byte>& bytes) {
    try {
        (void)ReadPcm(bytes);
        return false;
    } catch (const PcmError&) {
        return true;
    }
}

}  // namespace

TEST(PcmDamage, EveryFlippedBitIsDetected) {
    const auto good = WritePcm(SmallSample().View());
    ASSERT_FALSE(IsRefused(good));
    for (std::size_t i = 0; i < good.size(); ++i) {
        for (int bit = 0; bit < 8; ++bit) {
            auto bad = good;
            bad[i] ^= static_cast<std::byte>(1 << bit);
            EXPECT_TRUE(IsRefused(bad)) << "byte " << i << ", bit " << bit;
        }
    }
}

TEST(PcmDamage, AFileCutAtAnyByteIsRefused) {
    const auto good = WritePcm(SmallSample().View());
    for (std::size_t size = 0; size < good.size(); ++size) {
        EXPECT_TRUE(IsRefused({good.begin(), good.begin() + static_cast<std::ptrdiff_t>(size)})) << size;
    }
}

TEST(PcmDamage, BytesAfterTheLastSectionAreRefused) {
    auto bytes = WritePcm(SmallSample().View());
    bytes.push_back(std::byte{0});
    EXPECT_TRUE(IsRefused(bytes));
}

namespace {

using Sections = std::vector<RawSection>;

Sections Good() {
    return {{"TRAF", 0, 1, std::string(64, '\0')},
            {"COVR", 0, 1, Packed(std::uint8_t{0b01})},
            {"XYZ ", 2, 1, std::string(24, '\0')},
            {"CONF", 0, 1, std::string(8, '\0')},
            {"CLAS", 1, 1, std::string(1, '\0')}};
}

Sections With(std::size_t index, const RawSection& section) {
    Sections sections = Good();
    sections.at(index) = section;
    return sections;
}

Sections Without(std::size_t index) {
    Sections sections = Good();
    sections.erase(sections.begin() + static_cast<std::ptrdiff_t>(index));
    return sections;
}

Sections And(const RawSection& section) {
    Sections sections = Good();
    sections.push_back(section);
    return sections;
}

/// Sections that are valid for grids of any size: all dense or constant.
Sections Constant() {
    return {{"TRAF", 0, 1, std::string(64, '\0')},
            {"XYZ ", 1, 1, std::string(12, '\0')},
            {"CONF", 1, 1, std::string(4, '\0')},
            {"CLAS", 1, 1, std::string(1, '\0')}};
}

/// A file with one defect and correct checksums.
struct BadPcm {
    const char* name;
    RawHead head;
    Sections sections;
    const char* reason;
};
void PrintTo(const BadPcm& row, std::ostream* out) { *out << row.name; }

const BadPcm kBadPcms[] = {
    {"OtherFormat", {.magic = "solid fi"}, Good(), "not a pcm file"},
    {"LineEndsConverted", {.magic = "KVPCM\n\x1A\x01"}, Good(), "not a pcm file"},
    {"NewerVersion", {.version = 2}, Good(), "of a version that is not known here"},
    {"VersionZero", {.version = 0}, Good(), "of a version that is not known here"},
    {"NoSections", {}, {}, "impossible number of sections"},
    {"MoreSectionsThanAllowed", {}, Sections(65, {"note", 0, 0, ""}), "impossible number of sections"},
    {"MoreSectionsAnnouncedThanPresent", {.addedToCount = 50}, Good(), "header is cut short"},
    {"CountThatWrapsWhenMultiplied", {.addedToCount = 0x0AAAAAAA}, Good(), "impossible number of sections"},
    {"WidthZero", {.width = 0}, Good(), "impossible grid size"},
    {"HeightZero", {.height = 0}, Good(), "impossible grid size"},
    {"WidthOver", {.width = 32768}, Good(), "impossible grid size"},
    {"HeightOver", {.height = 32768}, Good(), "impossible grid size"},
    {"HeightNegative", {.height = 0xFFFFFFFF}, Good(), "impossible grid size"},
    {"SizeOfTheFileTooLarge", {.addedToSize = 1}, Good(), "file has another length than it should"},
    {"NoPoints", {}, Without(2), "a needed section is missing"},
    {"NoConfidence", {}, Without(3), "a needed section is missing"},
    {"NoClassification", {}, Without(4), "a needed section is missing"},
    {"NoTrafo", {}, Without(0), "a needed section is missing"},
    {"SparseWithoutCoverage", {}, Without(1), "a needed section is missing"},
    {"CoverageTooShort", {}, With(1, {"COVR", 0, 1, ""}), "coverage has a wrong length"},
    {"CoverageTooLong", {}, With(1, {"COVR", 0, 1, Packed(std::uint16_t{1})}), "coverage has a wrong length"},
    {"CoverageEncoded", {}, With(1, {"COVR", 1, 1, Packed(std::uint8_t{1})}), "coverage has a wrong length"},
    {"CoverageAfterTheLastPixel", {}, With(1, {"COVR", 0, 1, Packed(std::uint8_t{0b101})}), "coverage of no pixel"},
    {"FewerValuesThanCovered", {}, With(1, {"COVR", 0, 1, Packed(std::uint8_t{0b11})}), "a section has a wrong length"},
    {"MoreValuesThanCovered", {}, With(1, {"COVR", 0, 1, Packed(std::uint8_t{0})}), "a section has a wrong length"},
    {"DenseTooShort", {}, With(3, {"CONF", 0, 1, std::string(7, '\0')}), "a section has a wrong length"},
    {"DenseEmpty", {}, With(3, {"CONF", 0, 1, ""}), "a section has a wrong length"},
    {"ConstantTooLong", {}, With(4, {"CLAS", 1, 1, std::string(2, '\0')}), "a section has a wrong length"},
    {"UnknownEncoding", {}, With(4, {"CLAS", 3, 1, std::string(1, '\0')}), "a section has a wrong length"},
    {"UnknownEncodingOfNothing", {}, With(4, {"CLAS", 3, 1, ""}), "a section has a wrong length"},
    {"ColorsTooShort", {}, And({"COLR", 0, 0, std::string(7, '\0')}), "a section has a wrong length"},
    {"TrafoTooShort", {}, With(0, {"TRAF", 0, 1, std::string(60, '\0')}), "a section has a wrong length"},
    {"TrafoEncoded", {}, With(0, {"TRAF", 1, 1, std::string(64, '\0')}), "a section has a wrong length"},
    {"SectionTwice", {}, And({"CONF", 1, 1, std::string(4, '\0')}), "a section stands twice"},
    {"UnknownFlag",
     {},
     With(4, {"CLAS", 1, 3, std::string(1, '\0')}),
     "a section has flags that this version does not know"},
    {"UnknownNeededSection", {}, And({"next", 0, 1, ""}), "needs a section that this version does not know"},
    {"HugeGridOfOneValue", {.width = 32767, .height = 32767}, Constant(), "grid is out of proportion to the file"},
};
class PcmRefuses : public testing::TestWithParam<BadPcm> {};

}  // namespace

TEST_P(PcmRefuses, WithTheReasonOfTheBrokenRule) {
    try {
        (void)ReadPcm(Assemble(GetParam().head, GetParam().sections));
        FAIL() << "the file was accepted";
    } catch (const PcmError& error) {
        EXPECT_STREQ(error.what(), GetParam().reason);
    }
}
INSTANTIATE_TEST_SUITE_P(Structure, PcmRefuses, testing::ValuesIn(kBadPcms),
                         [](const auto& row) { return row.param.name; });

TEST(PcmDamage, TheSectionsThatTheDamagedFilesAreMadeOfAreValid) {
    EXPECT_FALSE(IsRefused(Assemble({}, Good())));
    EXPECT_FALSE(IsRefused(Assemble({.width = 8, .height = 8}, Constant())));
}

TEST(PcmDamage, ASectionLongerThanTheFileIsRefusedWhenTheSumOfSizesWraps) {
    auto bytes = Assemble({}, Good());
    // The sum of these sizes of the first two sections wraps to the former sum.
    const std::uint64_t sizes[] = {std::uint64_t{64} + 0x8000000000000000, std::uint64_t{1} + 0x8000000000000000};
    for (std::size_t i = 0; i < 2; ++i) std::memcpy(&bytes[32 + 24 * i + 8], &sizes[i], 8);
    const std::uint64_t checksum = XXH3_64bits(bytes.data(), 32 + 24 * 5);
    std::memcpy(&bytes[32 + 24 * 5], &checksum, 8);
    EXPECT_THAT([&] { (void)ReadPcm(bytes); },
                testing::ThrowsMessage<PcmError>(testing::StrEq("a section is longer than the file")));
}

// The limit is 64 times the size of the file, plus a remainder of up to 63 bytes; a pixel has 17 bytes.
TEST(PcmDamage, AGridIsRefusedJustAboveItsProportionToTheFile) {
    const std::uint64_t fileSize = Assemble({}, Constant()).size();
    ASSERT_EQ(fileSize, 32u + 4 * 24 + 8 + 64 + 12 + 4 + 1);
    const auto last = static_cast<std::uint32_t>((fileSize * 64 + 63) / 17);
    EXPECT_FALSE(IsRefused(Assemble({.width = last, .height = 1}, Constant())));
    EXPECT_TRUE(IsRefused(Assemble({.width = last + 1, .height = 1}, Constant())));
}

TEST(PcmDamage, ATinyFileThatAnnouncesTheLargestGridAllocatesNoMemory) {
    rusage before{}, after{};
    getrusage(RUSAGE_SELF, &before);
    EXPECT_TRUE(IsRefused(Assemble({.width = 32767, .height = 32767}, Constant())));
    getrusage(RUSAGE_SELF, &after);
    EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 16 * 1024) << "KiB";
}
