// A mesh that is saved and read is the same to the bit, and in the same order.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cfenv>
#include <cmath>
#include <functional>
#include <limits>
#include <random>

#include "HpsSample.h"
#include "KV_Components/HpsFacets.h"

namespace {

using namespace HpsSample;

/// A regular grid of points, two triangles per cell.
SampleMesh Grid(std::int32_t width, std::int32_t height) {
    SampleMesh mesh;
    std::mt19937 random(1);
    std::normal_distribution<float> noise(0.0f, 0.003f);
    for (std::int32_t y = 0; y < height; ++y)
        for (std::int32_t x = 0; x < width; ++x) {
            const float fx = static_cast<float>(x), fy = static_cast<float>(y);
            mesh.positions.insert(mesh.positions.end(), {fx * 0.1f, fy * 0.1f, std::sin(fx * 0.1f) + noise(random)});
            if (x == 0 || y == 0) continue;
            const std::int32_t i = y * width + x;
            mesh.indices.insert(mesh.indices.end(), {i - width - 1, i - 1, i - width, i - width, i - 1, i});
        }
    return mesh;
}

SampleMesh RandomMesh(std::uint32_t seed, std::int32_t vertexCount, std::int32_t triangleCount) {
    SampleMesh mesh;
    std::mt19937 random(seed);
    for (std::int32_t i = 0; i < 3 * vertexCount; ++i)
        mesh.positions.push_back(std::bit_cast<float>(static_cast<std::uint32_t>(random())));
    std::uniform_int_distribution<std::int32_t> index(0, vertexCount - 1);
    for (std::int32_t i = 0; i < 3 * triangleCount; ++i) mesh.indices.push_back(index(random));
    return mesh;
}

SampleMesh Shuffled(SampleMesh mesh) {
    std::mt19937 random(7);
    std::vector<std::int32_t> place(static_cast<std::size_t>(mesh.VertexCount()));
    for (std::size_t i = 0; i < place.size(); ++i) place[i] = static_cast<std::int32_t>(i);
    std::shuffle(place.begin(), place.end(), random);
    const SampleMesh old = mesh;
    for (std::size_t i = 0; i < place.size(); ++i)
        std::copy_n(&old.positions[3 * i], 3, &mesh.positions[3 * static_cast<std::size_t>(place[i])]);
    for (std::int32_t& index : mesh.indices) index = place[static_cast<std::size_t>(index)];
    for (std::size_t i = mesh.indices.size() / 3 - 1; i > 0; --i) {
        const std::size_t other = random() % (i + 1);
        std::swap_ranges(&mesh.indices[3 * i], &mesh.indices[3 * i] + 3, &mesh.indices[3 * other]);
        std::rotate(&mesh.indices[3 * i], &mesh.indices[3 * i] + random() % 3, &mesh.indices[3 * i] + 3);
    }
    return mesh;
}

SampleMesh Turned(SampleMesh mesh) {
    for (std::size_t i = 0; i + 2 < mesh.indices.size(); i += 3) {
        std::rotate(&mesh.indices[i], &mesh.indices[i] + (i / 3) % 3, &mesh.indices[i] + 3);
        if (i % 5 == 0) std::swap(mesh.indices[i], mesh.indices[i + 1]);
    }
    return mesh;
}

SampleMesh OddFloats() {
    constexpr float kInf = std::numeric_limits<float>::infinity(), kMax = std::numeric_limits<float>::max();
    SampleMesh mesh = Grid(6, 6);
    const float odd[] = {0.0f,
                         -0.0f,
                         kInf,
                         -kInf,
                         kMax,
                         -kMax,
                         std::numeric_limits<float>::denorm_min(),
                         -1e-40f,
                         std::bit_cast<float>(0x7FC00001u),
                         std::bit_cast<float>(0xFF812345u),
                         std::bit_cast<float>(0x7F800001u),
                         std::bit_cast<float>(0xFFFFFFFFu)};
    for (std::size_t i = 0; i < mesh.positions.size(); i += 2) mesh.positions[i] = odd[i / 2 % std::size(odd)];
    return mesh;
}

SampleMesh Fan(std::int32_t count) {
    SampleMesh mesh = {{0, 0, 1}, {}, {}, {}, "", ""};
    for (std::int32_t i = 0; i < count; ++i) {
        const double angle = 6.283185307 * i / count;
        mesh.positions.insert(mesh.positions.end(),
                              {static_cast<float>(std::cos(angle)), static_cast<float>(std::sin(angle)), 0.0f});
        mesh.indices.insert(mesh.indices.end(), {0, 1 + i, 1 + (i + 1) % count});
    }
    return mesh;
}

struct MeshCase {
    const char* name;
    std::function<SampleMesh()> make;
};
void PrintTo(const MeshCase& row, std::ostream* out) { *out << row.name; }

const MeshCase kMeshes[] = {
    {"Empty", [] { return SampleMesh(); }},
    {"OneVertex",
     [] {
         return SampleMesh{{1.5f, -0.0f, 3}, {}, {}, {}, "", ""};
     }},
    {"OneTriangle",
     [] {
         return SampleMesh{{0, 0, 0, 1, 0, 0, 0, 1, 0}, {2, 0, 1}, {}, {}, "", ""};
     }},
    {"Tetrahedron", [] { return Tetrahedron(); }},
    {"Grid", [] { return Grid(40, 30); }},
    {"ShuffledGrid", [] { return Shuffled(Grid(40, 30)); }},
    {"TurnedAndFlippedCorners", [] { return Turned(Grid(40, 30)); }},
    {"Fan", [] { return Fan(400); }},
    {"RandomBits", [] { return RandomMesh(1, 50, 200); }},
    {"RandomBitsMoreVerticesThanUsed", [] { return RandomMesh(2, 5000, 300); }},
    {"RandomFewVertices", [] { return RandomMesh(3, 3, 100); }},
    {"OddFloats", [] { return OddFloats(); }},
    {"DegenerateTriangles",
     [] {
         return SampleMesh{{1, 2, 3, 4, 5, 6}, {0, 0, 0, 1, 1, 0, 0, 1, 0, 1, 1, 1, 0, 0, 1}, {}, {}, "", ""};
     }},
    {"DegenerateTrianglesFirst",
     [] {
         SampleMesh mesh = Grid(5, 5);
         const std::int32_t first[] = {0, 0, 7, 7, 0, 0, 0, 0, 0};
         mesh.indices.insert(mesh.indices.begin(), std::begin(first), std::end(first));
         return mesh;
     }},
    {"DuplicateVertices",
     [] {
         SampleMesh mesh = Grid(10, 10);
         std::fill(mesh.positions.begin(), mesh.positions.end(), 7.0f);
         return mesh;
     }},
    {"TinyTriangles",
     [] {
         SampleMesh mesh = Grid(10, 10);
         for (float& value : mesh.positions) value *= 1e-5f;
         return mesh;
     }},
    {"SameTriangleOverAndOver",
     [] {
         SampleMesh mesh = Tetrahedron();
         for (int i = 0; i < 500; ++i) mesh.indices.insert(mesh.indices.end(), {3, 1, 2});
         return mesh;
     }},
};

class HpsRoundTrip : public testing::TestWithParam<MeshCase> {};

TEST_P(HpsRoundTrip, KeepsEveryBitAndTheOrder) {
    const ScratchFolder folder;
    const std::string path = folder / "mesh.hps";
    const SampleMesh mesh = GetParam().make();
    ASSERT_EQ(Save(mesh, path), kSucceeded);

    const ObjectPointer reader = MakeReader();
    ASSERT_EQ(OpenError(reader.get(), path), 0);
    Object* found = nullptr;
    ASSERT_EQ(hps_reader::kMesh(reader.get(), &found), kSucceeded);
    const ObjectPointer read(found);
    EXPECT_EQ(hps_reader::kClose(reader.get()), kSucceeded);
    const std::optional<SampleMesh> content = ContentOf(read.get());
    ASSERT_TRUE(content);
    EXPECT_TRUE(SameBits(content->positions, mesh.positions));
    EXPECT_EQ(content->indices, mesh.indices);
}

TEST_P(HpsRoundTrip, PredictsEachVertexFromEarlierVertices) {
    const SampleMesh mesh = GetParam().make();
    const auto vertexCount = static_cast<std::uint32_t>(mesh.VertexCount());
    Hps::RawArray<Hps::Introduction> written;
    const Hps::ByteVector bytes = Hps::EncodeFacets(mesh.indices, vertexCount, written);
    const Hps::Facets read = Hps::DecodeFacets(bytes, vertexCount, static_cast<std::uint32_t>(mesh.TriangleCount()));
    for (const auto& introductions : {written.Span(), read.introductions.Span()}) {
        ASSERT_EQ(introductions.size(), vertexCount);
        std::vector<bool> isKnown(vertexCount + 1);
        isKnown[vertexCount] = true;  // the origin
        for (const Hps::Introduction& one : introductions) {
            ASSERT_FALSE(isKnown.at(one.vertex));
            ASSERT_TRUE(isKnown.at(one.a) && isKnown.at(one.b) && isKnown.at(one.c)) << "vertex " << one.vertex;
            isKnown[one.vertex] = true;
        }
    }
}

TEST_P(HpsRoundTrip, GivesTheSameFileForTheSameMesh) {
    const ScratchFolder folder;
    const std::string first = folder / "first.hps", second = folder / "second.hps";
    ASSERT_EQ(Save(GetParam().make(), first), kSucceeded);
    ASSERT_EQ(Save(GetParam().make(), second), kSucceeded);
    ASSERT_FALSE(ReadBytes(first).empty());
    EXPECT_EQ(ReadBytes(first), ReadBytes(second));
}

TEST_P(HpsRoundTrip, DoesNotDependOnTheRoundingModeOfTheHost) {
    const ScratchFolder folder;
    const SampleMesh mesh = GetParam().make();
    ASSERT_EQ(Save(mesh, folder / "usual.hps"), kSucceeded);
    std::fenv_t before;
    ASSERT_EQ(std::fegetenv(&before), 0);
    std::fesetround(FE_UPWARD);
    const std::int32_t status = Save(mesh, folder / "upward.hps");
    const bool isKept = std::fegetround() == FE_UPWARD;
    std::fesetenv(&before);
    ASSERT_EQ(status, kSucceeded);
    EXPECT_TRUE(isKept);
    EXPECT_EQ(ReadBytes(folder / "upward.hps"), ReadBytes(folder / "usual.hps"));
}

/// The definition of the normals, as a scalar loop.
std::vector<float> PlainNormals(const SampleMesh& mesh) {
    std::vector<float> normals(mesh.positions.size());
    const auto normalize = [](float* v) {
        const float length = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
        if (length > 0.0f)
            for (int k = 0; k < 3; ++k) v[k] /= length;
    };
    for (std::size_t i = 0; i < mesh.indices.size(); i += 3) {
        const float* p[3];
        for (std::size_t k = 0; k < 3; ++k) p[k] = &mesh.positions[3 * static_cast<std::size_t>(mesh.indices[i + k])];
        float a[3], b[3];
        for (int k = 0; k < 3; ++k) a[k] = p[1][k] - p[0][k], b[k] = p[2][k] - p[0][k];
        float c[3] = {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
        normalize(c);
        for (std::size_t k = 0; k < 9; ++k)
            normals[3 * static_cast<std::size_t>(mesh.indices[i + k / 3]) + k % 3] += c[k % 3];
    }
    for (std::size_t i = 0; i < normals.size(); i += 3) normalize(&normals[i]);
    return normals;
}

TEST_P(HpsRoundTrip, HasTheNormalsOfTheDefinitionToTheBit) {
    const SampleMesh mesh = GetParam().make();
    const ObjectPointer object = MakeMesh(mesh, true);
    Object* access = nullptr;
    ASSERT_EQ(hps_mesh::kReadableVertexData(object.get(), &access), kSucceeded);
    const ObjectPointer data(access);
    std::vector<float> normals(mesh.positions.size(), 9.0f);
    ASSERT_EQ(hps_vertex_data::kReadAttribute(access, 'N', 0, mesh.VertexCount(), normals.data(), BytesOf(normals)),
              kSucceeded);
    const std::vector<float> expected = PlainNormals(mesh);
    for (std::size_t i = 0; i < normals.size(); ++i) {
        if (std::isnan(expected[i])) {
            ASSERT_TRUE(std::isnan(normals[i])) << i;
        } else {
            ASSERT_EQ(std::bit_cast<std::uint32_t>(normals[i]), std::bit_cast<std::uint32_t>(expected[i])) << i;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Meshes, HpsRoundTrip, testing::ValuesIn(kMeshes),
                         [](const auto& row) { return row.param.name; });

}  // namespace
