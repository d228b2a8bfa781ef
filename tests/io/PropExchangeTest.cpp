// Stores of the persisted properties: their bytes, what is read from them, and what is refused.
#include "io/PropExchange.h"

#include <gtest/gtest.h>

#include <functional>
#include <random>
#include <string>
#include <vector>

#include "files/SectionFile.h"

namespace {

using KV_ScenePane::PropertyFormat;
using Pass = std::function<void(PropExchange&)>;

constexpr PropertyFormat kFormats[] = {PropertyFormat::Text, PropertyFormat::Binary};
constexpr PersistedProperties kStart{false, 3, false};

std::string Written(PropertyFormat format, const Pass& pass) {
    const std::unique_ptr<PropWriter> store = NewPropertyStore(format);
    pass(*store);
    return store->Store();
}

std::string Written(PropertyFormat format, PersistedProperties properties) {
    return Written(format, [&](PropExchange& exchange) { ExchangeProperties(exchange, properties); });
}

PersistedProperties Read(std::string_view store) {
    PersistedProperties properties{true, 77, true};
    ExchangeProperties(*OpenPropertyStore(store), properties);
    return properties;
}

/// Why a store is refused; empty when it is read.
std::string ReasonOf(std::string_view store) {
    try {
        (void)Read(store);
        return {};
    } catch (const PropertyStoreError& error) {
        return error.what();
    }
}

std::string TextStore(std::string_view lines) { return std::string("KV_ScenePane properties 1.0\n").append(lines); }

template <typename... Numbers>
std::string Packed(Numbers... numbers) {
    std::string bytes;
    (bytes.append(reinterpret_cast<const char*>(&numbers), sizeof numbers), ...);
    return bytes;
}

std::string WithChecksum(const std::string& bytes) {
    return bytes + Packed(FileStorage::Checksum(bytes.data(), bytes.size()));
}

/// A binary store with a correct checksum.
std::string BinaryStore(std::uint16_t major, std::uint16_t minor, const std::string& properties) {
    return WithChecksum(std::string("\x8bKVP\r\n\x1a\n").append(Packed(major, minor)).append(properties));
}

// ---- the order

class RecordingExchange final : public PropExchange {
public:
    std::vector<std::string> steps;
    void ExchangeVersion(PropVersion current) override {
        steps.push_back(std::to_string(current.major) + "." + std::to_string(current.minor));
    }
    void ExchangeBool(std::string_view name, bool& value, bool start) override {
        steps.push_back("bool " + std::string(name) + (start ? " true" : " false"));
        value = true;
    }
    void ExchangeShort(std::string_view name, std::int16_t& value, std::int16_t start) override {
        steps.push_back("short " + std::string(name) + " " + std::to_string(start));
        value = -5;
    }
    void Finish() override { steps.emplace_back("end"); }
};

TEST(PropertyExchange, HasTheVersionFirstAndThePropertiesInTheirOrder) {
    RecordingExchange exchange;
    PersistedProperties properties;
    ExchangeProperties(exchange, properties);
    const std::vector<std::string> expected{"1.0", "bool DrawMosaic false", "short DrawMode 3",
                                            "bool MoveReduced false", "end"};
    EXPECT_EQ(exchange.steps, expected);
    EXPECT_EQ(properties, (PersistedProperties{true, -5, true}));
}

TEST(PropertyExchange, WithoutAStoreGivesTheStartValues) {
    StartValueExchange exchange;
    PersistedProperties properties{true, 77, true};
    ExchangeProperties(exchange, properties);
    EXPECT_EQ(properties, kStart);
}

// ---- what is written

TEST(PropertyStores, OfTextAreOneLineForEachProperty) {
    EXPECT_EQ(Written(PropertyFormat::Text, kStart),
              "KV_ScenePane properties 1.0\nDrawMosaic=0\nDrawMode=3\nMoveReduced=0\n");
    EXPECT_EQ(Written(PropertyFormat::Text, {true, -32768, true}),
              "KV_ScenePane properties 1.0\nDrawMosaic=1\nDrawMode=-32768\nMoveReduced=1\n");
}

// The checksum was computed outside this program, with libxxhash.
TEST(PropertyStores, OfBytesHaveAMagicNumberTheVersionThePropertiesAndAChecksum) {
    const std::string expected("\x8bKVP\r\n\x1a\n\x01\0\0\0\x01\xfe\xff\0", 16);
    const std::string store = Written(PropertyFormat::Binary, {true, -2, false});
    ASSERT_EQ(store.size(), 24u);
    EXPECT_EQ(store.substr(0, 16), expected);
    std::uint64_t checksum = 0;
    std::memcpy(&checksum, store.data() + 16, sizeof checksum);
    EXPECT_EQ(checksum, 0x29252A97418DC05Fu);
}

TEST(PropertyStores, GiveEveryDrawModeBackWithAllFlags) {
    for (int mode = -32768; mode <= 32767; ++mode)
        for (const PropertyFormat format : kFormats) {
            const PersistedProperties properties{(mode & 1) != 0, static_cast<std::int16_t>(mode), (mode & 2) != 0};
            ASSERT_EQ(Read(Written(format, properties)), properties) << mode;
        }
    for (const PropertyFormat format : kFormats)
        for (const PersistedProperties& properties :
             {PersistedProperties{false, 7, false}, {true, 7, false}, {false, 7, true}, {true, 7, true}})
            EXPECT_EQ(Read(Written(format, properties)), properties);
}

// ---- what is read: text

TEST(TextStores, MayHaveOtherLineEndsBlanksAndOrder) {
    const PersistedProperties expected{true, -7, true};
    for (const char* lines :
         {"DrawMosaic=1\r\nDrawMode=-7\r\nMoveReduced=1\r\n", "MoveReduced=1\nDrawMode=-7\nDrawMosaic=1\n",
          "\n  \n\tDrawMosaic = 1 \t\n DrawMode\t= -7   \r\nMoveReduced=1  \r\n\r\n",
          "DrawMosaic=01\nDrawMode=-0007\nMoveReduced=0001\n"})
        EXPECT_EQ(Read(TextStore(lines)), expected) << lines;
    EXPECT_EQ(Read("KV_ScenePane properties 1.0 \t\r\nDrawMode=2\r\n"), (PersistedProperties{false, 2, false}));
}

TEST(TextStores, LeavePropertiesWithoutALineAtTheirStartValues) {
    EXPECT_EQ(Read(TextStore("")), kStart);
    EXPECT_EQ(Read(TextStore("DrawMosaic=1\n")), (PersistedProperties{true, 3, false}));
    EXPECT_EQ(Read(TextStore("MoveReduced=1\n")), (PersistedProperties{false, 3, true}));
}

struct BadText {
    const char* name;
    std::string store;
    const char* reason;
};
void PrintTo(const BadText& row, std::ostream* out) { *out << row.name; }

const char* const kNoStore = "There is no store of properties in this text or file";
const BadText kBadTexts[] = {
    {"Nothing", "", kNoStore},
    {"OtherText", "[properties]\nDrawMode=3\n", kNoStore},
    {"BlankBeforeTheStart", " KV_ScenePane properties 1.0\n", kNoStore},
    {"NoLineFeedAfterTheVersion", "KV_ScenePane properties 1.0",
     "The store of properties is damaged: its last line does not end with a line feed"},
    {"NoLineFeedAtTheEnd", TextStore("DrawMode=3"),
     "The store of properties is damaged: its last line does not end with a line feed"},
    {"NoVersion", "KV_ScenePane properties \n", "The store of properties is damaged: its first line has no version"},
    {"NoMinorVersion", "KV_ScenePane properties 1\n",
     "The store of properties is damaged: its first line has no version"},
    {"EmptyMinorVersion", "KV_ScenePane properties 1.\n",
     "The store of properties is damaged: its first line has no version"},
    {"TextAfterTheVersion", "KV_ScenePane properties 1.0 x\n",
     "The store of properties is damaged: its first line has no version"},
    {"NegativeVersion", "KV_ScenePane properties -1.0\n",
     "The store of properties is damaged: its first line has no version"},
    {"VersionBeyondItsType", "KV_ScenePane properties 65536.0\n",
     "The store of properties is damaged: its first line has no version"},
    {"LineWithoutEquals", TextStore("DrawMode=3\nDrawMosaic\n"),
     "The store of properties is damaged: line 3 is not NAME=VALUE"},
    {"LineWithoutName", TextStore("=3\n"), "The store of properties is damaged: line 2 is not NAME=VALUE"},
    {"NameWithABlank", TextStore("Draw Mode=3\n"), "The store of properties is damaged: line 2 is not NAME=VALUE"},
    {"NameWithAZero", TextStore(std::string("Draw\0Mode=3\n", 12)),
     "The store of properties is damaged: line 2 is not NAME=VALUE"},
    {"NameOf65Letters", TextStore(std::string(65, 'x').append("=1\n")),
     "The store of properties is damaged: line 2 is not NAME=VALUE"},
    {"PropertyTwice", TextStore("DrawMode=3\nMoveReduced=0\nDrawMode=3\n"),
     "The store of properties is damaged: line 4: another line has DrawMode"},
    {"UnknownProperty", TextStore("DrawMosaic=0\nShadows=1\n"),
     "The store of properties is damaged: line 3: there is no property Shadows"},
    {"OtherCase", TextStore("drawmode=1\n"),
     "The store of properties is damaged: line 2: there is no property drawmode"},
    {"EmptyValue", TextStore("DrawMode=\n"),
     "The store of properties is damaged: line 2: DrawMode is not a number from -32768 to 32767"},
    {"Word", TextStore("DrawMode=Points\n"),
     "The store of properties is damaged: line 2: DrawMode is not a number from -32768 to 32767"},
    {"Fraction", TextStore("DrawMode=1.5\n"),
     "The store of properties is damaged: line 2: DrawMode is not a number from -32768 to 32767"},
    {"PlusSign", TextStore("DrawMode=+1\n"),
     "The store of properties is damaged: line 2: DrawMode is not a number from -32768 to 32767"},
    {"BlankInTheNumber", TextStore("DrawMode=1 2\n"),
     "The store of properties is damaged: line 2: DrawMode is not a number from -32768 to 32767"},
    {"BelowTheRange", TextStore("DrawMode=-32769\n"),
     "The store of properties is damaged: line 2: DrawMode is not a number from -32768 to 32767"},
    {"AboveTheRange", TextStore("DrawMode=32768\n"),
     "The store of properties is damaged: line 2: DrawMode is not a number from -32768 to 32767"},
    {"BeyondAnyNumber", TextStore("DrawMode=99999999999999999999\n"),
     "The store of properties is damaged: line 2: DrawMode is not a number from -32768 to 32767"},
    {"BoolOfTwo", TextStore("\n\nMoveReduced=2\n"),
     "The store of properties is damaged: line 4: MoveReduced is not a number from 0 to 1"},
    {"BoolAsAWord", TextStore("DrawMosaic=true\n"),
     "The store of properties is damaged: line 2: DrawMosaic is not a number from 0 to 1"},
    {"BadValueInANewerMinorVersion", "KV_ScenePane properties 1.1\nDrawMode=x\n",
     "The store of properties is damaged: line 2: DrawMode is not a number from -32768 to 32767"},
    {"NoLineInANewerMinorVersion", "KV_ScenePane properties 1.1\nShadows\n",
     "The store of properties is damaged: line 2 is not NAME=VALUE"},
    {"UnknownPropertyTwice", "KV_ScenePane properties 1.1\nShadows=1\nShadows=2\n",
     "The store of properties is damaged: line 3: another line has Shadows"},
};
class TextStoreIsRefused : public testing::TestWithParam<BadText> {};

TEST_P(TextStoreIsRefused, AndSaysWhy) { EXPECT_EQ(ReasonOf(GetParam().store), GetParam().reason); }

INSTANTIATE_TEST_SUITE_P(Text, TextStoreIsRefused, testing::ValuesIn(kBadTexts),
                         [](const auto& row) { return row.param.name; });

TEST(TextStores, ThatAreCutOffAreRefusedOrHaveTheLinesBeforeTheCut) {
    const PersistedProperties all{true, -12345, true};
    const std::string whole = Written(PropertyFormat::Text, all);
    int read = 0;
    for (std::size_t size = 0; size < whole.size(); ++size) {
        const std::string cut = whole.substr(0, size);
        if (size == 0 || cut.back() != '\n') {
            EXPECT_NE(ReasonOf(cut), "") << size;
            continue;
        }
        ++read;
        const bool hasMosaic = cut.find("DrawMosaic") != std::string::npos;
        const bool hasMode = cut.find("DrawMode") != std::string::npos;
        EXPECT_EQ(Read(cut), (PersistedProperties{hasMosaic, hasMode ? std::int16_t{-12345} : std::int16_t{3}, false}));
    }
    EXPECT_EQ(read, 3);
}

TEST(TextStores, ReadNothingBeyondTheirEnd) {
    const std::string whole = TextStore("DrawMode=12\n");
    for (std::size_t size = 0; size <= whole.size(); ++size) {
        const std::vector<char> exact(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_EQ(ReasonOf({exact.data(), size}).empty(), size == 28 || size == whole.size()) << size;
    }
}

// ---- what is read: bytes

TEST(BinaryStores, AreRefusedWhenTheyAreCutOff) {
    const std::string whole = Written(PropertyFormat::Binary, {true, 12345, true});
    for (std::size_t size = 0; size < whole.size(); ++size) {
        const std::vector<char> exact(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_NE(ReasonOf({exact.data(), size}), "") << size;
    }
    EXPECT_NE(ReasonOf(whole + '\0'), "");
}

TEST(BinaryStores, AreRefusedWhenAnySingleBitIsFlipped) {
    for (const PersistedProperties& properties :
         {kStart, {true, 0, false}, {false, -1, true}, {true, 7, true}, {true, -32768, false}, {false, 32767, true}}) {
        const std::string whole = Written(PropertyFormat::Binary, properties);
        for (std::size_t bit = 0; bit < 8 * whole.size(); ++bit) {
            std::string flipped = whole;
            flipped[bit / 8] = static_cast<char>(flipped[bit / 8] ^ (1 << bit % 8));
            EXPECT_EQ(ReasonOf(flipped),
                      bit < 64 ? kNoStore : "The store of properties is damaged: its checksum is wrong")
                << bit;
        }
    }
}

TEST(BinaryStores, AreCheckedBeyondTheirChecksum) {
    const std::string zero(1, '\0'), one(1, '\1'), two(1, '\2'), mode("\3\0", 2);
    EXPECT_EQ(Read(BinaryStore(1, 0, one + mode + one)), (PersistedProperties{true, 3, true}));
    EXPECT_EQ(ReasonOf(BinaryStore(1, 0, two + mode + zero)),
              "The store of properties is damaged: DrawMosaic is neither 0 nor 1");
    EXPECT_EQ(ReasonOf(BinaryStore(1, 0, zero + mode + two)),
              "The store of properties is damaged: MoveReduced is neither 0 nor 1");
    EXPECT_EQ(ReasonOf(BinaryStore(1, 0, "")), "The store of properties is damaged: it ends before DrawMosaic");
    EXPECT_EQ(ReasonOf(BinaryStore(1, 0, zero + zero)), "The store of properties is damaged: it ends before DrawMode");
    EXPECT_EQ(ReasonOf(BinaryStore(1, 0, zero + mode)),
              "The store of properties is damaged: it ends before MoveReduced");
    EXPECT_EQ(ReasonOf(BinaryStore(1, 0, zero + mode + zero + zero)),
              "The store of properties is damaged: there is more than its version has");
    EXPECT_EQ(ReasonOf(WithChecksum("\x8bKVP\r\n\x1a\n")), "The store of properties is damaged: it is cut short");
}

// ---- versions

std::string StoreOfVersion(PropertyFormat format, std::uint16_t major, std::uint16_t minor, bool hasMore) {
    if (format == PropertyFormat::Binary)
        return BinaryStore(major, minor, std::string("\1\6\0\1", 4) + (hasMore ? "more" : ""));
    return "KV_ScenePane properties " + std::to_string(major) + "." + std::to_string(minor) +
           "\nDrawMosaic=1\nDrawMode=6\nMoveReduced=1\n" + (hasMore ? "Shadows=on the left\n" : "");
}

TEST(PropertyVersions, AreReadWhenOnlyTheMinorOneIsNewerAndRefusedWhenTheMajorOneIsAnother) {
    for (const PropertyFormat format : kFormats)
        for (const int major : {0, 1, 2, 3, 255, 256, 65535})
            for (const int minor : {0, 1, 2, 255, 256, 65535})
                for (const bool hasMore : {false, true}) {
                    const std::string store = StoreOfVersion(format, static_cast<std::uint16_t>(major),
                                                             static_cast<std::uint16_t>(minor), hasMore);
                    const std::string version = std::to_string(major) + "." + std::to_string(minor);
                    SCOPED_TRACE(version);
                    if (major == 0)
                        EXPECT_EQ(ReasonOf(store),
                                  "The store of properties is damaged: there is no version " + version);
                    else if (major > 1)
                        EXPECT_EQ(ReasonOf(store),
                                  "The properties were stored by a newer version of the viewer: their version is " +
                                      version + ", and this one reads 1.0");
                    else if (minor == 0 && hasMore)
                        EXPECT_TRUE(ReasonOf(store).starts_with("The store of properties is damaged: "));
                    else
                        EXPECT_EQ(Read(store), (PersistedProperties{true, 6, true}));
                }
}

// What a later version of this code would do: a pass with one more property.
TEST(PropertyVersions, OfOlderStoresLeaveTheLaterPropertiesAtTheirStartValues) {
    PersistedProperties properties{true, 6, true};
    std::int16_t added = 9;
    const Pass later = [&](PropExchange& exchange) {
        exchange.ExchangeVersion({1, 1});
        exchange.ExchangeBool("DrawMosaic", properties.drawMosaic, false);
        exchange.ExchangeShort("DrawMode", properties.drawMode, 3);
        exchange.ExchangeBool("MoveReduced", properties.moveReduced, false);
        exchange.ExchangeShort("Shadows", added, -4);
        exchange.Finish();
    };
    for (const PropertyFormat format : kFormats) {
        properties = {true, 6, true}, added = 9;
        const std::string older = Written(format, PersistedProperties{true, 6, true});
        const std::string current = Written(format, later);
        EXPECT_EQ(Read(current), (PersistedProperties{true, 6, true})) << "a newer minor version";
        properties = {}, added = 0;
        later(*OpenPropertyStore(older));
        EXPECT_EQ(properties, (PersistedProperties{true, 6, true}));
        EXPECT_EQ(added, -4);
        later(*OpenPropertyStore(current));
        EXPECT_EQ(added, 9);
        // Of the first property on, not in the middle of one.
        EXPECT_THROW(later(*OpenPropertyStore(BinaryStore(1, 0, std::string("\1\6", 2)))), PropertyStoreError);
    }
}

// ---- size and random bytes

TEST(PropertyStores, OfMoreThan64KiBAreRefused) {
    const std::string store = TextStore("DrawMode=5\n");
    EXPECT_EQ(Read(store + std::string(65536 - store.size(), '\n')), (PersistedProperties{false, 5, false}));
    EXPECT_EQ(ReasonOf(store + std::string(65537 - store.size(), '\n')),
              "The store of properties is larger than 64 KiB");
    EXPECT_EQ(ReasonOf(std::string(65537, '\0')), "The store of properties is larger than 64 KiB");
}

/// Bytes as a store: refused with one line, or read as properties that are the same after they were written.
/// @return whether it was read
bool RequireSound(const std::string& bytes) {
    try {
        const PersistedProperties read = Read(bytes);
        for (const PropertyFormat format : kFormats) EXPECT_EQ(Read(Written(format, read)), read);
        return true;
    } catch (const PropertyStoreError& error) {
        const std::string reason = error.what();
        EXPECT_FALSE(reason.empty());
        EXPECT_EQ(reason.find_first_of(std::string("\n\0", 2)), std::string::npos);
        return false;
    }
}

TEST(PropertyStores, OfRandomBytesAreRefusedOrRead) {
    std::mt19937 random(20261123);
    const auto below = [&](std::size_t limit) {
        return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random);
    };
    const std::string alphabet = "01239-=. \t\r\n\nDrawMosaicModeMoveReduced";
    int read = 0;
    for (int i = 0; i < 100'000; ++i) {
        std::string bytes;
        switch (i % 4) {
            case 0:  // any bytes
                for (std::size_t n = below(64); n > 0; --n) bytes += static_cast<char>(below(256));
                break;
            case 1:  // text after the version
                bytes = TextStore("");
                for (std::size_t n = below(40); n > 0; --n) bytes += alphabet[below(alphabet.size())];
                break;
            case 2:  // a few other bytes in a store
                bytes = Written(below(2) == 0 ? PropertyFormat::Text : PropertyFormat::Binary,
                                {below(2) == 0, static_cast<std::int16_t>(below(65536)), below(2) == 0});
                for (std::size_t n = below(3); n > 0; --n)
                    bytes[below(bytes.size())] = static_cast<char>(below(4) == 0 ? below(256) : '0' + below(10));
                break;
            default:  // any properties with a correct checksum
                for (std::size_t n = below(8); n > 0; --n) bytes += static_cast<char>(below(3));
                bytes = BinaryStore(1, static_cast<std::uint16_t>(below(3)), bytes);
        }
        if (RequireSound(bytes)) ++read;
    }
    EXPECT_GT(read, 1000);
    EXPECT_LT(read, 60'000);
}

}  // namespace
