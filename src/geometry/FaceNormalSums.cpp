// Four faces at a time. With several threads each has a part of the vertices, to which it adds all their faces in their
// order. Where neighbouring triangles use distant vertices, the normals of all faces are computed before, each thread
// with a part of the triangles.
#include "geometry/FaceNormalSums.h"

#include <algorithm>
#include <cstdint>
#include <span>

#include "base/HugePages.h"
#include "base/ParallelTasks.h"
#include "geometry/FaceNormal.h"

namespace {

constexpr std::size_t kFour = 4;
/// Per thread, below which its start costs more than it saves.
constexpr std::size_t kMinTriangles = 25'000, kMinVertices = 100'000;
/// Triangles between the prefetch of their vertices and their use; see ForEachTriangle().
constexpr std::size_t kAhead = 24;

/// The positions of one corner of four triangles.
KV_LANES Vec3x4 CornersOf(const Triangle* triangles, int corner, const Vertex* vertices) {
    Float4 rows[kFour];
    for (std::size_t i = 0; i < kFour; ++i)
        rows[i] = LoadLanes<Float4>(&vertices[static_cast<std::size_t>(triangles[i].v[corner])].x);
    Transpose(rows[0], rows[1], rows[2], rows[3]);
    return {rows[0], rows[1], rows[2]};
}

/// Computes the unit normals of the triangles from @p first, a multiple of four, to before @p last.
/// @param keep  called as keep(index, normal and 1) in the order of the triangles
template <typename Keep>
void ForEachFaceNormal(const std::vector<Triangle>& triangles, const std::vector<Vertex>& vertices, std::size_t first,
                       std::size_t last, const Keep& keep) {
    std::size_t i = first;
    for (; i + kFour <= last; i += kFour) {
        const Triangle* const four = &triangles[i];
        if (i + kAhead + kFour <= triangles.size())
            for (std::size_t ahead = 0; ahead < kFour; ++ahead)
                for (const auto corner : four[kAhead + ahead].v)
                    __builtin_prefetch(&vertices[static_cast<std::size_t>(corner)]);
        const Vec3x4 p0 = CornersOf(four, 0, vertices.data()), p1 = CornersOf(four, 1, vertices.data());
        const Vec3x4 normals = Normalized(Cross(p1 - p0, CornersOf(four, 2, vertices.data()) - p0));
        Float4 rows[kFour] = {normals.x, normals.y, normals.z, SplatFloat4(1.0f)};
        Transpose(rows[0], rows[1], rows[2], rows[3]);
        for (std::size_t row = 0; row < kFour; ++row) keep(i + row, rows[row]);
    }
    // The last ones one by one.
    for (; i < last; ++i) {
        const Float3 normal = FaceNormalOf(triangles[i], vertices);
        keep(i, Float4{normal[0], normal[1], normal[2], 1.0f});
    }
}

/// Lowest and highest vertex of a block of triangles.
struct VertexRange {
    std::size_t low = SIZE_MAX, high = 0;

    void Add(const Triangle& triangle) {
        for (const auto corner : triangle.v) {
            low = std::min(low, static_cast<std::size_t>(corner));
            high = std::max(high, static_cast<std::size_t>(corner));
        }
    }
};

constexpr std::size_t kBlock = 1024;  ///< triangles

/// The vertices of each block of triangles; the normals of all faces where most blocks have vertices of several
/// threads.
struct FaceBlocks {
    std::vector<VertexRange> ranges;
    HugePageArray<Float4> normals;  ///< none: computed where they are added
};

/// Calls visit(block, first triangle, last one + 1) for all blocks.
template <typename Visit>
void ForEachBlock(std::size_t triangles, unsigned threads, const Visit& visit) {
    constexpr std::size_t kBlocksPerTask = 16;
    const std::size_t blocks = (triangles + kBlock - 1) / kBlock;
    RunTasks((blocks + kBlocksPerTask - 1) / kBlocksPerTask, threads, [&](std::size_t task) {
        const std::size_t end = std::min(blocks, (task + 1) * kBlocksPerTask);
        for (std::size_t block = task * kBlocksPerTask; block < end; ++block)
            visit(block, block * kBlock, std::min(triangles, (block + 1) * kBlock));
    });
}

FaceBlocks MakeFaceBlocks(const std::vector<Triangle>& triangles, const std::vector<Vertex>& vertices,
                          unsigned threads) {
    FaceBlocks faces;
    faces.ranges.resize((triangles.size() + kBlock - 1) / kBlock);
    ForEachBlock(triangles.size(), threads, [&](std::size_t block, std::size_t first, std::size_t last) {
        VertexRange range;
        for (std::size_t i = first; i < last; ++i) range.Add(triangles[i]);
        faces.ranges[block] = range;
    });
    // A block with vertices of several threads would be computed by each of them.
    const std::size_t perThread = (vertices.size() + threads - 1) / threads;
    const auto isShared = [perThread](const VertexRange& range) {
        return range.low / perThread != range.high / perThread;
    };
    const auto shared = static_cast<std::size_t>(std::ranges::count_if(faces.ranges, isShared));
    if (shared < faces.ranges.size() / 8) return faces;
    faces.normals = MakeArrayInHugePages<Float4>(triangles.size());
    ForEachBlock(triangles.size(), threads, [&](std::size_t, std::size_t first, std::size_t last) {
        ForEachFaceNormal(triangles, vertices, first, last,
                          [&](std::size_t i, const Float4& normal) { faces.normals[i] = normal; });
    });
    return faces;
}

/// Adds all faces to the sums of the vertices from @p first to before @p last.
void AddFaces(const std::vector<Triangle>& triangles, const std::vector<Vertex>& vertices, const FaceBlocks& faces,
              std::size_t first, std::size_t last, FaceNormalSum* sums) {
    std::fill(sums + first, sums + last, FaceNormalSum{});
    const std::size_t count = last - first;
    // Corners at the vertices of other threads are added to a sum that nobody reads. By masks: a branch per corner,
    // which compilers make of a conditional expression, is hard to predict where neighbouring triangles use distant
    // vertices.
    FaceNormalSum other{};
    const auto sumOf = [&, otherAt = reinterpret_cast<std::uintptr_t>(&other)](std::int32_t corner) {
        const auto vertex = static_cast<std::size_t>(corner);
        const auto isOwn = std::uintptr_t{0} - static_cast<std::uintptr_t>(vertex - first < count);
        return reinterpret_cast<FaceNormalSum*>((reinterpret_cast<std::uintptr_t>(&sums[vertex]) & isOwn) |
                                                (otherAt & ~isOwn));
    };
    const auto add = [&](std::size_t i, const Float4& normal) {
        for (const auto corner : triangles[i].v) *sumOf(corner) += normal;
    };
    for (std::size_t block = 0; block < faces.ranges.size(); ++block) {
        const VertexRange& range = faces.ranges[block];
        if (range.high < first || range.low >= last) continue;
        const std::size_t begin = block * kBlock, end = std::min(triangles.size(), begin + kBlock);
        if (!faces.normals) {
            ForEachFaceNormal(triangles, vertices, begin, end, add);
            continue;
        }
        for (std::size_t i = begin; i < end; ++i) {
            for (const auto corner : triangles[std::min(i + kAhead, end - 1)].v) __builtin_prefetch(sumOf(corner), 1);
            add(i, faces.normals[i]);
        }
    }
}

}  // namespace

HugePageArray<FaceNormalSum> SumFaceNormals(const std::vector<Triangle>& triangles, const std::vector<Vertex>& vertices,
                                            unsigned threads) {
    auto sums = MakeArrayInHugePages<FaceNormalSum>(vertices.size());
    threads = ThreadsFor(triangles.size(), kMinTriangles, threads);
    if (threads > 1) {
        const FaceBlocks faces = MakeFaceBlocks(triangles, vertices, threads);
        RunTasks(threads, threads, [&](std::size_t part) {
            AddFaces(triangles, vertices, faces, vertices.size() * part / threads,
                     vertices.size() * (part + 1) / threads, sums.get());
        });
        return sums;
    }
    std::fill_n(sums.get(), vertices.size(), FaceNormalSum{});
    ForEachFaceNormal(triangles, vertices, 0, triangles.size(), [&](std::size_t i, const Float4& normal) {
        for (const auto corner : triangles[i].v) sums[static_cast<std::size_t>(corner)] += normal;
    });
    return sums;
}

void ForEachVertexRange(std::size_t vertexCount, unsigned threads,
                        const std::function<void(std::size_t first, std::size_t last)>& visit) {
    const std::size_t parts = ThreadsFor(vertexCount, kMinVertices, threads);
    RunTasks(parts, threads,
             [&](std::size_t part) { visit(vertexCount * part / parts, vertexCount * (part + 1) / parts); });
}
