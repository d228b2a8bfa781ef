// Files that are damaged, cut short or malicious: refused with the code of the damaged part, or harmless.
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>
#include <xxhash.h>

#include <functional>

#include "HpsSample.h"
#include "KV_Components/HpsLayout.h"

namespace {

using namespace HpsSample;
using Hps::ByteVector;

enum Code { kNone, kNotFound, kUnreadable, kInvalidFile, kVertices, kFacets, kUv, kTexture };

class HpsDamage : public testing::Test {
protected:
    HpsDamage() { EXPECT_EQ(Component::LiveCount(), 0); }
    ~HpsDamage() override { EXPECT_EQ(Component::LiveCount(), 0); }

    std::int32_t CodeOf(const ByteVector& file) const {
        WriteBytes(m_folder / "damaged.hps", file);
        return OpenError(MakeReader().get(), m_folder / "damaged.hps");
    }
    const ScratchFolder m_folder;
};

template <class T>
void Put(ByteVector& bytes, std::size_t at, T value) {
    ASSERT_LE(at + sizeof value, bytes.size());
    std::memcpy(&bytes[at], &value, sizeof value);
}

template <class T>
T Get(const ByteVector& bytes, std::size_t at) {
    T value{};
    std::memcpy(&value, &bytes.at(at), sizeof value);
    return value;
}

/// Corrects the checksum of header and table after a change to them.
void RepairTableChecksum(ByteVector& file) {
    const std::size_t end = Hps::kHeaderSize + Get<std::uint32_t>(file, 12) * Hps::kEntrySize;
    if (end + 8 <= file.size()) Put(file, end, XXH3_64bits(file.data(), end));
}

TEST_F(HpsDamage, OpenReportsWhyAPathIsNotAReadableFile) {
    const ObjectPointer reader = MakeReader();
    EXPECT_EQ(OpenError(reader.get(), m_folder / "missing.hps"), kNotFound);
    EXPECT_EQ(OpenError(reader.get(), ""), kNotFound);
    WriteBytes(m_folder / "file", ByteVector(5));
    EXPECT_EQ(OpenError(reader.get(), m_folder / "file/mesh.hps"), kNotFound) << "a file is not a folder";
    EXPECT_EQ(OpenError(reader.get(), m_folder.Path().string()), kUnreadable) << "a folder";
    ASSERT_EQ(::mkfifo((m_folder / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(OpenError(reader.get(), m_folder / "pipe"), kUnreadable) << "must not wait";
    EXPECT_EQ(OpenError(reader.get(), m_folder / std::string(300, 'n')), kUnreadable)
        << "the name is too long for the file system";
    EXPECT_EQ(OpenError(reader.get(), "/dev/null"), kUnreadable);
    ASSERT_EQ(::symlink("loop", (m_folder / "loop").c_str()), 0);
    EXPECT_EQ(OpenError(reader.get(), m_folder / "loop"), kUnreadable);
}

TEST_F(HpsDamage, OpenReportsAFileWithoutReadPermissionAsUnreadable) {
    WriteBytes(m_folder / "secret.hps", Parts(Tetrahedron()).File());
    ASSERT_EQ(::chmod((m_folder / "secret.hps").c_str(), 0), 0);
    const std::int32_t expected = ::access((m_folder / "secret.hps").c_str(), R_OK) == 0 ? kNone : kUnreadable;
    EXPECT_EQ(OpenError(MakeReader().get(), m_folder / "secret.hps"), expected);
}

TEST_F(HpsDamage, LargeFilesInOtherFormatsAreRefusedBeforeMemoryIsAllocated) {
    WriteBytes(m_folder / "huge.hps", {});
    if (::truncate((m_folder / "huge.hps").c_str(), off_t{1} << 42) != 0) GTEST_SKIP() << "no files of 4 TiB here";
    EXPECT_EQ(OpenError(MakeReader().get(), m_folder / "huge.hps"), kInvalidFile);
}

TEST_F(HpsDamage, BytesAfterTheAnnouncedLengthAreNotReadHoweverManyTheyAre) {
    WriteBytes(m_folder / "long.hps", Parts(Tetrahedron()).File());
    ASSERT_EQ(::truncate((m_folder / "long.hps").c_str(), off_t{1} << 34), 0);
    EXPECT_EQ(OpenError(MakeReader().get(), m_folder / "long.hps"), 0);
}

struct DamageCase {
    const char* name;
    std::function<ByteVector()> make;
    Code code;
};
void PrintTo(const DamageCase& row, std::ostream* out) { *out << row.name; }

ByteVector Changed(const std::function<void(Parts&)>& change) {
    Parts parts(TexturedTetrahedron());
    change(parts);
    return parts.File();
}

ByteVector ChangedFile(const std::function<void(ByteVector&)>& change) {
    ByteVector file = Parts(TexturedTetrahedron()).File();
    change(file);
    return file;
}

std::size_t EntryOf(const ByteVector& file, std::uint32_t id) {
    std::size_t at = Hps::kHeaderSize;
    while (Get<std::uint32_t>(file, at) != id) at += Hps::kEntrySize;
    return at;
}

/// One bit of a section flipped.
ByteVector Flipped(std::uint32_t id) {
    return ChangedFile([id](ByteVector& file) {
        std::size_t at = Hps::kHeaderSize + Get<std::uint32_t>(file, 12) * Hps::kEntrySize + Hps::kChecksumSize;
        for (std::size_t entry = Hps::kHeaderSize; Get<std::uint32_t>(file, entry) != id; entry += Hps::kEntrySize)
            at += Get<std::uint64_t>(file, entry + 8);
        file[at] ^= std::byte{1};
    });
}

ByteVector WithEntry(std::uint32_t section, std::size_t offset, std::uint32_t value) {
    return ChangedFile([=](ByteVector& file) {
        Put(file, EntryOf(file, section) + offset, value);
        RepairTableChecksum(file);
    });
}

ByteVector WithHeader(std::size_t offset, std::uint32_t value) {
    return ChangedFile([=](ByteVector& file) {
        Put(file, offset, value);
        RepairTableChecksum(file);
    });
}

/// The first triangle refers to an edge, although there is no triangle before it.
ByteVector WithTheFirstTriangleOnAnEdge() {
    return Changed([](Parts& parts) {
        parts.triangleCount = 1;
        parts.facets.clear();
        const std::byte codeOfTheYoungestEdge{0};
        Hps::AppendBlock(parts.facets, {&codeOfTheYoungestEdge, 1}, Hps::Redundancy::kMatches);
        Hps::NumberWriter(4).Append(parts.facets);
    });
}

/// The tetrahedron with one index changed after its positions were packed.
ByteVector WithIndex(std::size_t at, std::int32_t value) {
    return Changed([=](Parts& parts) {
        SampleMesh mesh = Tetrahedron();
        mesh.indices.at(at) = value;
        Hps::RawArray<Hps::Introduction> introductions;
        parts.facets = Hps::EncodeFacets(mesh.indices, 4, introductions);
    });
}

const DamageCase kDamages[] = {
    {"EmptyFile", [] { return ByteVector(); }, kInvalidFile},
    {"OtherMagic", [] { return ChangedFile([](ByteVector& file) { file[1] = std::byte{'X'}; }); }, kInvalidFile},
    {"NewerVersion", [] { return WithHeader(8, 2); }, kInvalidFile},
    {"TooManySections", [] { return WithHeader(12, 65); }, kInvalidFile},
    {"NoSections", [] { return WithHeader(12, 0); }, kInvalidFile},
    {"GreatestNumberOfSections", [] { return WithHeader(12, 0xFFFFFFFF); }, kInvalidFile},
    {"OtherLength", [] { return WithHeader(16, 4); }, kInvalidFile},
    {"HeaderWithAWrongChecksum", [] { return ChangedFile([](ByteVector& file) { file[24] ^= std::byte{1}; }); },
     kInvalidFile},
    {"NegativeVertices", [] { return WithHeader(24, 0x80000000); }, kInvalidFile},
    {"NegativeTriangles", [] { return WithHeader(28, 0x80000000); }, kInvalidFile},
    {"VerticesOutOfProportion", [] { return WithHeader(24, 0x7FFFFFFF); }, kInvalidFile},
    {"TrianglesOutOfProportion", [] { return WithHeader(28, 0x7FFFFFFF); }, kInvalidFile},
    {"OneVertexMore", [] { return WithHeader(24, 5); }, kVertices},
    {"OneVertexLess", [] { return WithHeader(24, 3); }, kFacets},
    {"OneTriangleMore", [] { return WithHeader(28, 5); }, kFacets},
    {"OneTriangleLess", [] { return WithHeader(28, 3); }, kFacets},
    {"SectionTwice", [] { return WithEntry(Hps::kUvSection, 0, Hps::kFacetSection); }, kInvalidFile},
    {"NoVertices", [] { return WithEntry(Hps::kPositionSection, 0, Hps::SectionId("ABCD")); }, kInvalidFile},
    {"UnknownSectionThatIsNeeded",
     [] {
         return ChangedFile([](ByteVector& file) {
             Put(file, EntryOf(file, Hps::kSourceSection), Hps::SectionId("ABCD"));
             Put(file, EntryOf(file, Hps::SectionId("ABCD")) + 4, Hps::kNeeded);
             RepairTableChecksum(file);
         });
     },
     kInvalidFile},
    {"UnknownSectionThatIsNot", [] { return WithEntry(Hps::kSourceSection, 0, Hps::SectionId("ABCD")); }, kNone},
    {"SectionLongerThanTheFile", [] { return WithEntry(Hps::kTextureSection, 8, 0x7FFFFFFF); }, kInvalidFile},
    {"SectionShorterThanTheRest", [] { return WithEntry(Hps::kTextureSection, 8, 4); }, kTexture},
    {"FlippedSource", [] { return Flipped(Hps::kSourceSection); }, kInvalidFile},
    {"FlippedVertices", [] { return Flipped(Hps::kPositionSection); }, kVertices},
    {"FlippedFacets", [] { return Flipped(Hps::kFacetSection); }, kFacets},
    {"FlippedUv", [] { return Flipped(Hps::kUvSection); }, kUv},
    {"FlippedTexture", [] { return Flipped(Hps::kTextureSection); }, kTexture},
    {"ImpossibleGain", [] { return Changed([](Parts& p) { Put<std::uint32_t>(p.positions, 0, 33); }); }, kVertices},
    {"VerticesCutShort", [] { return Changed([](Parts& p) { p.positions.pop_back(); }); }, kVertices},
    {"VerticesWithMore", [] { return Changed([](Parts& p) { p.positions.push_back({}); }); }, kVertices},
    {"VerticesOfAnotherLength",
     [] { return Changed([](Parts& p) { Put<std::uint64_t>(p.positions, 4, ~std::uint64_t{0}); }); }, kVertices},
    {"FacetsCutShort", [] { return Changed([](Parts& p) { p.facets.pop_back(); }); }, kFacets},
    {"FacetsWithMore", [] { return Changed([](Parts& p) { p.facets.push_back({}); }); }, kFacets},
    {"FacetsWithAnUnknownCode", [] { return Changed([](Parts& p) { p.facets[16] = std::byte{241}; }); }, kFacets},
    {"FacetsWithAnEdgeThatDoesNotExist", [] { return Changed([](Parts& p) { p.facets[16] = std::byte{0}; }); },
     kFacets},
    {"FirstTriangleOnAnEdge", [] { return WithTheFirstTriangleOnAnEdge(); }, kFacets},
    {"IndexAboveTheVertices", [] { return WithIndex(4, 4); }, kFacets},
    {"IndexBelowTheVertices", [] { return WithIndex(11, -1); }, kFacets},
    {"UvCutShort", [] { return Changed([](Parts& p) { p.uv.resize(7); }); }, kUv},
    {"UvOutOfProportion", [] { return Changed([](Parts& p) { Put<std::uint32_t>(p.uv, 4, 1u << 30); }); }, kUv},
    {"UvOfNegativeCount", [] { return Changed([](Parts& p) { Put<std::uint32_t>(p.uv, 0, 1u << 31); }); }, kUv},
    {"UnknownOrientation", [] { return Changed([](Parts& p) { p.orientation = 4; }); }, kTexture},
    {"TextureThatIsNotAPicture", [] { return Changed([](Parts& p) { p.texture.assign(9, {}); }); }, kTexture},
    {"TextureCutShort", [] { return Changed([](Parts& p) { p.texture.resize(40); }); }, kTexture},
    {"Unchanged", [] { return Changed([](Parts&) {}); }, kNone},
};

class HpsDamages : public HpsDamage, public testing::WithParamInterface<DamageCase> {};

TEST_P(HpsDamages, AreReportedByTheCodeOfTheDamagedPart) { EXPECT_EQ(CodeOf(GetParam().make()), GetParam().code); }

INSTANTIATE_TEST_SUITE_P(Files, HpsDamages, testing::ValuesIn(kDamages),
                         [](const auto& row) { return row.param.name; });

TEST_F(HpsDamage, EachKnownOrientationOfATextureIsReturned) {
    for (std::uint32_t orientation = 0; orientation <= 3; ++orientation) {
        WriteBytes(m_folder / "mesh.hps", Changed([=](Parts& parts) { parts.orientation = orientation; }));
        const ObjectPointer reader = MakeReader();
        ASSERT_EQ(OpenError(reader.get(), m_folder / "mesh.hps"), kNone);
        std::int32_t told = -1;
        EXPECT_EQ(hps_reader::kImageOrientation(reader.get(), &told), kSucceeded);
        EXPECT_EQ(told, static_cast<std::int32_t>(orientation));
    }
}

TEST_F(HpsDamage, AFailedOpenReturnsNoMesh) {
    Parts parts(TexturedTetrahedron());
    parts.texture.resize(40);
    WriteBytes(m_folder / "mesh.hps", parts.File());
    const ObjectPointer reader = MakeReader();
    ASSERT_EQ(OpenError(reader.get(), m_folder / "mesh.hps"), kTexture);
    Object* found = nullptr;
    EXPECT_EQ(hps_reader::kMesh(reader.get(), &found), kFailed) << "a mesh without its texture";
    EXPECT_EQ(found, nullptr);
}

TEST_F(HpsDamage, TrianglesWithAWrongIndexCanStillBeRead) {
    WriteBytes(m_folder / "mesh.hps", WithIndex(7, 4));
    const ObjectPointer reader = MakeReader();
    ASSERT_EQ(OpenError(reader.get(), m_folder / "mesh.hps"), kFacets);
    Object* found = nullptr;
    ASSERT_EQ(hps_reader::kMesh(reader.get(), &found), kSucceeded);
    const ObjectPointer mesh(found);
    SampleMesh expected = Tetrahedron();
    expected.indices[7] = 4;
    EXPECT_EQ(ContentOf(mesh.get())->indices, expected.indices);
    Object* access = nullptr;
    ASSERT_EQ(hps_mesh::kReadableVertexData(mesh.get(), &access), kSucceeded);
    const ObjectPointer data(access);
    float normals[12];
    EXPECT_EQ(hps_vertex_data::kReadAttribute(data.get(), 'N', 0, 4, normals, sizeof normals), kFailed);
    const ObjectPointer compressor = MakeCompressor(), writer = MakeWriter();
    ASSERT_EQ(hps_compressor::kBind(compressor.get(), mesh.get()), kFailed) << "it cannot be packed";
}

TEST_F(HpsDamage, AFileCutAtAnyByteIsRefused) {
    const ByteVector file = Parts(TexturedTetrahedron()).File();
    for (std::size_t length = 0; length < file.size(); ++length)
        ASSERT_EQ(CodeOf({file.begin(), file.begin() + static_cast<std::ptrdiff_t>(length)}), kInvalidFile) << length;
}

TEST_F(HpsDamage, EveryFlippedBitIsDetected) {
    const ByteVector file = Parts(TexturedTetrahedron()).File();
    for (std::size_t bit = 0; bit < 8 * file.size(); ++bit) {
        ByteVector flipped = file;
        flipped[bit / 8] ^= std::byte{1} << (bit % 8);
        ASSERT_GT(CodeOf(flipped), kNone) << "byte " << bit / 8 << ", bit " << bit % 8;
    }
}

/// Calls every operation that reads from a file, so that the sanitizers can detect an access out of bounds.
void ReadEverything(Object* reader) {
    Object* found = nullptr;
    if (hps_reader::kMesh(reader, &found) == kSucceeded) {
        const ObjectPointer mesh(found);
        ASSERT_TRUE(ContentOf(found));
        Object* access = nullptr;
        ASSERT_EQ(hps_mesh::kReadableVertexData(found, &access), kSucceeded);
        const ObjectPointer data(access);
        std::vector<float> normals(ContentOf(found)->positions.size());
        (void)hps_vertex_data::kReadAttribute(access, 'N', 0, static_cast<std::int32_t>(normals.size() / 3),
                                              normals.data(), BytesOf(normals));
    }
    std::int32_t size = 0, vertices = 0, pairs = 0;
    if (hps_reader::kUvBlockSize(reader, &size) != kSucceeded) return;
    std::vector<std::byte> block(static_cast<std::size_t>(size));
    ASSERT_EQ(hps_reader::kUvBlock(reader, block.data(), block.size()), kSucceeded);
    const ObjectPointer decoder = MakeDecoder();
    ASSERT_EQ(hps_uv_decoder::kMeasure(decoder.get(), block.data(), block.size(), &vertices, &pairs, nullptr),
              kSucceeded);
    std::vector<std::uint8_t> lengths(static_cast<std::size_t>(vertices));
    std::vector<float> values(2 * static_cast<std::size_t>(pairs));
    if (hps_uv_decoder::kDecode(decoder.get(), block.data(), block.size(), lengths.data(), lengths.size(),
                                values.data(), BytesOf(values)) != kSucceeded)
        return;
    std::size_t sum = 0;
    for (const std::uint8_t length : lengths) sum += length;
    EXPECT_EQ(2 * sum, values.size());
}

TEST_F(HpsDamage, EveryFlippedBitWithRepairedChecksumsIsRefusedOrHarmless) {
    const Parts whole(TexturedTetrahedron());
    int refused = 0, read = 0;
    const auto tryFlips = [&](ByteVector Parts::*section) {
        for (std::size_t bit = 0; bit < 8 * (whole.*section).size(); ++bit) {
            Parts parts = whole;
            (parts.*section)[bit / 8] ^= std::byte{1} << (bit % 8);
            WriteBytes(m_folder / "flipped.hps", parts.File());
            const ObjectPointer reader = MakeReader();
            const std::int32_t code = OpenError(reader.get(), m_folder / "flipped.hps");
            ASSERT_GE(code, 0);
            ++(code == kNone ? read : refused);
            ReadEverything(reader.get());
        }
    };
    tryFlips(&Parts::facets);
    tryFlips(&Parts::positions);
    tryFlips(&Parts::uv);
    EXPECT_GT(refused, 100);
    EXPECT_GT(read, 100) << "some changes only give another valid mesh";
}

TEST_F(HpsDamage, NoBlockMakesTheReaderAllocateOutOfProportion) {
    // A few bytes that announce four billion equal codes.
    Parts parts(Tetrahedron());
    Put<std::uint64_t>(parts.facets, 0, std::uint64_t{1} << 32);
    EXPECT_EQ(CodeOf(parts.File()), kFacets);
}

TEST_F(HpsDamage, AMeshThatCompressesTooWellIsPadded) {
    SampleMesh mesh;
    mesh.positions.resize(3 * 100'000);
    mesh.indices.resize(3 * 200'000);
    ASSERT_EQ(Save(mesh, m_folder / "mesh.hps"), kSucceeded);
    EXPECT_GE(ReadBytes(m_folder / "mesh.hps").size(), 12u * 300'000 / 64);
    EXPECT_LT(ReadBytes(m_folder / "mesh.hps").size(), 12u * 300'000 / 60);
    EXPECT_EQ(OpenError(MakeReader().get(), m_folder / "mesh.hps"), kNone);
}

}  // namespace
