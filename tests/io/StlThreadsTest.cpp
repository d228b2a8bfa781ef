// Stl files that are read on several threads: the mesh is that of one thread to the bit.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <span>
#include <string>
#include <vector>

#include "geometry/Vector3.h"
#include "io/StlMesh.h"

namespace {

constexpr std::size_t kHead = 84, kRecord = 50;

/// A file with enough triangles for four threads, each of three positions of @p positions.
/// @param step  positions between neighbouring triangles; 0 chooses them at random
std::vector<std::byte> MakeFile(const std::vector<Float3>& positions, std::uint32_t count, std::size_t step) {
    std::vector<std::byte> file(kHead + kRecord * count);
    std::memcpy(&file[80], &count, sizeof count);
    std::mt19937 random(1);
    for (std::size_t i = 0; i < count; ++i)
        for (std::size_t corner = 0; corner < 3; ++corner) {
            const std::size_t position = step == 0 ? random() : i * step + random() % 4;
            std::memcpy(&file[kHead + kRecord * i + 12 + 12 * corner], &positions[position % positions.size()], 12);
        }
    return file;
}

std::vector<Float3> RandomPositions(std::size_t count) {
    std::mt19937 random(2);
    std::uniform_real_distribution<float> coordinate(-100, 100);
    std::vector<Float3> positions(count);
    for (Float3& p : positions) p = {coordinate(random), coordinate(random), coordinate(random)};
    return positions;
}

/// Zeros of both signs, infinities and numbers that are none.
std::vector<Float3> OddPositions() {
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    const float odd[] = {0.0f, -0.0f, 1.0f, 1e-42f, -1e-42f, kInfinity, -kInfinity, NAN};
    std::vector<Float3> positions;
    for (const float x : odd)
        for (const float y : odd)
            for (const float z : odd) positions.push_back({x, y, z});
    return positions;
}

struct StlCase {
    const char* name;
    std::vector<Float3> (*positions)();
    std::size_t step;
    std::size_t missing;  ///< bytes at the end of the file
};
void PrintTo(const StlCase& row, std::ostream* out) { *out << row.name; }

const StlCase kFiles[] = {
    {"Surface", [] { return RandomPositions(50'000); }, 1, 0},
    {"ShuffledSurface", [] { return RandomPositions(50'000); }, 0, 0},
    {"FewPositions", [] { return RandomPositions(3); }, 0, 0},
    {"AlmostNoRepeats", [] { return RandomPositions(400'000); }, 3, 0},
    {"OddCoordinates", &OddPositions, 0, 0},
    {"OneByteMissing", [] { return RandomPositions(50'000); }, 1, 1},
    {"OneRecordMissing", [] { return RandomPositions(50'000); }, 1, kRecord},
    {"CutInTheSecondCorner", [] { return RandomPositions(50'000); }, 1, 20'000 * kRecord + 20},
    {"OddCoordinatesCut", &OddPositions, 0, 40'001 * kRecord + 3},
};
constexpr std::uint32_t kTriangles = 110'003;

template <typename T>
bool SameBytes(const std::vector<T>& a, const std::vector<T>& b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(T)) == 0;
}

void ExpectSame(const FileMesh& mesh, const FileMesh& expected) {
    EXPECT_TRUE(SameBytes(mesh.m_vVertices, expected.m_vVertices));
    EXPECT_TRUE(SameBytes(mesh.m_vTriangles, expected.m_vTriangles));
    EXPECT_EQ(mesh.m_uNotFinite, expected.m_uNotFinite);
    EXPECT_EQ(mesh.m_triangleShare.m_uPresent, expected.m_triangleShare.m_uPresent);
    EXPECT_EQ(mesh.m_triangleShare.m_uAnnounced, expected.m_triangleShare.m_uAnnounced);
}

class StlOnThreads : public testing::TestWithParam<StlCase> {};

TEST_P(StlOnThreads, GivesTheMeshOfOneThread) {
    std::vector<std::byte> file = MakeFile(GetParam().positions(), kTriangles, GetParam().step);
    file.resize(file.size() - GetParam().missing);
    const FileMesh expected = ReadStl(file, 1);
    ASSERT_EQ(expected.m_vTriangles.size(), kTriangles);
    for (const unsigned threads : {2u, 3u, 7u}) {
        SCOPED_TRACE(threads);
        ExpectSame(ReadStl(file, threads), expected);
    }
}
INSTANTIATE_TEST_SUITE_P(Stl, StlOnThreads, testing::ValuesIn(kFiles),
                         [](const auto& row) { return std::string(row.param.name); });

/// A file that another process shortens after it was opened.
class ShortenedInput final : public ByteInput {
public:
    ShortenedInput(std::span<const std::byte> bytes, std::uint64_t size) : m_input(bytes), m_uSize(size) {}
    [[nodiscard]] std::uint64_t Size() const override { return m_uSize; }
    std::size_t ReadAt(std::uint64_t offset, void* to, std::size_t size) const override {
        return m_input.ReadAt(offset, to, size);
    }

private:
    MemoryInput m_input;
    std::uint64_t m_uSize;
};

TEST(StlOnThreads, FillsUpAFileThatIsShortenedMeanwhileAsOneThreadDoes) {
    const std::vector<std::byte> file = MakeFile(RandomPositions(50'000), kTriangles, 1);
    for (const std::size_t left : {file.size() - 1, file.size() - 30'000 * kRecord, kHead + 10 * kRecord}) {
        const auto read = [&](unsigned threads) {
            ShortenedInput input({file.data(), left}, file.size());
            return ReadStl(input, threads);
        };
        const FileMesh expected = read(1);
        ASSERT_EQ(expected.m_vTriangles.size(), kTriangles);
        for (const unsigned threads : {2u, 7u}) {
            SCOPED_TRACE(threads);
            ExpectSame(read(threads), expected);
        }
    }
}

/// A file whose end cannot be read.
class FailingInput final : public ByteInput {
public:
    explicit FailingInput(std::span<const std::byte> bytes) : m_input(bytes), m_uSize(bytes.size()) {}
    [[nodiscard]] std::uint64_t Size() const override { return m_uSize; }
    std::size_t ReadAt(std::uint64_t offset, void* to, std::size_t size) const override {
        if (offset + size > m_uSize - 100) throw FileReadError("cannot be read: Input/output error");
        return m_input.ReadAt(offset, to, size);
    }

private:
    MemoryInput m_input;
    std::uint64_t m_uSize;
};

TEST(StlOnThreads, PassesOnTheErrorOfAnyThread) {
    const std::vector<std::byte> file = MakeFile(RandomPositions(50'000), kTriangles, 1);
    for (const unsigned threads : {1u, 2u, 7u}) {
        FailingInput input(file);
        try {
            (void)ReadStl(input, threads);
            FAIL() << "nothing was thrown";
        } catch (const FileReadError& error) {
            EXPECT_STREQ(error.what(), "cannot be read: Input/output error");
        }
    }
}

}  // namespace
