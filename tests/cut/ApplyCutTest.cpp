// Cuts of one object and of lists of objects.
#include "cut/ApplyCut.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <string>
#include <thread>
#include <vector>

using ACAD::CutMask;

// ---- the memory of this program: allocations of some sizes are refused, threads are counted

struct Refused : std::bad_alloc {
    explicit Refused(std::size_t refusedSize) : size(refusedSize) {}
    std::size_t size;
};

namespace {

std::array<std::atomic<std::size_t>, 2> g_refusedSizes;
std::atomic<std::size_t> g_allocatingThreads;

void* Allocate(std::size_t size) {
    [[maybe_unused]] thread_local const std::size_t number = ++g_allocatingThreads;
    for (const auto& refused : g_refusedSizes)
        if (size != 0 && refused == size) throw Refused(size);
    void* const memory = std::malloc(std::max<std::size_t>(1, size));
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}

}  // namespace

// Not inlined: the compiler would report a pair of new and free().
[[gnu::noinline]] void* operator new(std::size_t size) { return Allocate(size); }
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

namespace {

/// Allocations of these sizes throw while it exists.
class RefusedSizes {
public:
    explicit RefusedSizes(std::array<std::size_t, 2> sizes) {
        for (std::size_t i = 0; i < sizes.size(); ++i) g_refusedSizes[i] = sizes[i];
    }
    ~RefusedSizes() {
        for (auto& size : g_refusedSizes) size = 0;
    }
    RefusedSizes(const RefusedSizes&) = delete;
    RefusedSizes& operator=(const RefusedSizes&) = delete;
};

/// Threads that have ever allocated memory.
std::size_t AllocatingThreads() { return g_allocatingThreads; }

constexpr int kSize = 100;  // of the window, pixels
constexpr std::array<double, 16> kIdentity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

/// The columns of the window that the mask holds; without a camera -1 to 1 is the window.
std::shared_ptr<CutMask> ColumnMask(std::uint32_t kind, int first, int last) {
    auto mask = std::make_shared<CutMask>();
    mask->m_nKind = kind;
    mask->m_dModelView = mask->m_dProjection = kIdentity;
    mask->m_nViewport = {0, 0, kSize, kSize};
    mask->m_vBits.m_uCount = kSize * kSize;
    mask->m_vBits.m_vWords.resize((kSize * kSize + 31) / 32);
    if (first > last) return mask;
    mask->m_rcBounds = {first, 0, last, kSize - 1};
    for (int y = 0; y < kSize; ++y) {
        for (int x = first; x <= last; ++x) {
            const auto bit = static_cast<std::size_t>(y * kSize + x);
            mask->m_vBits.m_vWords[bit / 32] |= 1u << (bit % 32);
        }
    }
    return mask;
}

/// Points (x, y) in -1 to 1, connected to triangles, at a height; vertex i * side + j is in column j.
std::shared_ptr<Mesh> Grid(int side, float z = 0.0f) {
    std::vector<Vertex> vertices;
    std::vector<Triangle> triangles;
    vertices.reserve(static_cast<std::size_t>(side * side));
    triangles.reserve(static_cast<std::size_t>(2 * side * side));
    for (int i = 0; i < side; ++i) {
        for (int j = 0; j < side; ++j) {
            Vertex& vertex = vertices.emplace_back();
            vertex.x = (static_cast<float>(j) + 0.5f) / static_cast<float>(side) * 2 - 1;
            vertex.y = (static_cast<float>(i) + 0.5f) / static_cast<float>(side) * 1.9f - 0.95f;
            vertex.z = z;
            if (i + 1 == side || j + 1 == side) continue;
            const int at = i * side + j;
            triangles.push_back({{at, at + 1, at + side}});
            triangles.push_back({{at + 1, at + side + 1, at + side}});
        }
    }
    return std::make_shared<Mesh>(std::move(vertices), std::move(triangles), L"grid", false);
}

/// Both grids, the second farther from the camera, as one object.
std::shared_ptr<Mesh> TwoSheets() {
    const auto front = Grid(10, -0.5f), back = Grid(10, 0.5f);
    std::vector<Vertex> vertices = front->m_vVertices;
    std::vector<Triangle> triangles = front->m_vTriangles;
    vertices.insert(vertices.end(), back->m_vVertices.begin(), back->m_vVertices.end());
    for (Triangle triangle : back->m_vTriangles) {
        for (std::int32_t& corner : triangle.v) corner += 100;
        triangles.push_back(triangle);
    }
    return std::make_shared<Mesh>(std::move(vertices), std::move(triangles), L"sheets", false);
}

using Meshes = std::vector<std::shared_ptr<Mesh>>;

TEST(CutMesh, LeavesOutTheTrianglesThatUseARemovedVertex) {
    const auto mesh = Grid(10);
    const auto mask = ColumnMask(ACAD::CutKindInside, 0, 29);  // three columns of vertices
    const auto cut = CutMesh(mesh, mask);
    ASSERT_NE(cut, mesh);
    EXPECT_EQ(cut->GetVertexCount(), 70u);
    EXPECT_EQ(cut->GetTriangleCount(), 2u * 9 * 6);
    EXPECT_EQ(mesh->GetVertexCount(), 100u) << "the object itself is as before";
    EXPECT_TRUE(mesh->m_vpCutMasks.empty());
    for (const Vertex& vertex : cut->m_vVertices) EXPECT_GT(vertex.x, -0.4f);
}

TEST(CutMesh, WritesTheMaskBehindTheOlderOnes) {
    const auto mesh = Grid(10);
    const auto first = ColumnMask(ACAD::CutKindInside, 0, 9), second = ColumnMask(ACAD::CutKindInside, 90, 99);
    const auto cut = CutMesh(mesh, first);
    const auto again = CutMesh(cut, second);
    ASSERT_EQ(cut->m_vpCutMasks.size(), 1u);
    ASSERT_EQ(again->m_vpCutMasks.size(), 2u);
    EXPECT_EQ(again->m_vpCutMasks[0], first);
    EXPECT_EQ(again->m_vpCutMasks[1], second);
}

TEST(CutMesh, ReturnsAHiddenObjectItself) {
    const auto mesh = Grid(10);
    mesh->m_iVisible = 0;
    EXPECT_EQ(CutMesh(mesh, ColumnMask(ACAD::CutKindInside, 0, 99)), mesh);
    EXPECT_TRUE(mesh->m_vpCutMasks.empty());
    mesh->m_iVisible = -3;
    EXPECT_NE(CutMesh(mesh, ColumnMask(ACAD::CutKindInside, 0, 99)), mesh) << "any number but 0 is visible";
}

TEST(CutMesh, ReturnsAnObjectThatLosesNothingItself) {
    const auto mesh = Grid(10);
    mesh->m_vpCutMasks.push_back(ColumnMask(ACAD::CutKindInside, 0, 1));
    EXPECT_EQ(CutMesh(mesh, ColumnMask(ACAD::CutKindInside, 0, 3)), mesh) << "no vertex is in these columns";
    EXPECT_EQ(CutMesh(mesh, ColumnMask(ACAD::CutKindInside, 1, 0)), mesh);
    EXPECT_EQ(CutMesh(mesh, ColumnMask(ACAD::CutKindOutside, 0, 99)), mesh);
    EXPECT_EQ(mesh->m_vpCutMasks.size(), 1u);
}

TEST(CutMesh, AVertexWithoutATriangleVanishesAtTheFirstCutOfItsObject) {
    const auto mesh = Grid(10);
    mesh->m_vVertices.push_back({0.9f, 0.9f, 0.0f});  // not in the mask
    EXPECT_EQ(CutMesh(mesh, ColumnMask(ACAD::CutKindInside, 0, 9))->GetVertexCount(), 90u);
    EXPECT_EQ(CutMesh(mesh, ColumnMask(ACAD::CutKindInside, 0, 3)), mesh) << "not hit, so it is not cut";
}

TEST(CutMesh, PointsWithoutTrianglesAllVanishAtTheFirstCutThatTouchesThem) {
    const auto mesh = Grid(10);
    mesh->m_vTriangles.clear();
    const auto cut = CutMesh(mesh, ColumnMask(ACAD::CutKindInside, 0, 9));
    EXPECT_NE(cut, mesh);
    EXPECT_EQ(cut->GetVertexCount(), 0u);
    EXPECT_EQ(cut->m_vpCutMasks.size(), 1u);
}

TEST(CutMesh, OfAnObjectWithoutVerticesReturnsItItself) {
    const auto mesh = std::make_shared<Mesh>(L"empty", false);
    EXPECT_EQ(CutMesh(mesh, ColumnMask(ACAD::CutKindOutside, 1, 0)), mesh);
}

TEST(CutMesh, WithoutSetPixelsRemovesEveryVertexThatIsOutside) {
    const auto mesh = Grid(10);
    const auto cut = CutMesh(mesh, ColumnMask(ACAD::CutKindOutside, 1, 0));
    EXPECT_EQ(cut->GetVertexCount(), 0u);
    EXPECT_EQ(cut->GetTriangleCount(), 0u);
}

TEST(CutMesh, OfTheVisibleKeepsTheFarSideOfTheObject) {
    const auto mesh = TwoSheets();
    const auto all = CutMesh(mesh, ColumnMask(ACAD::CutKindInside, 0, 49));
    EXPECT_EQ(all->GetVertexCount(), 100u);
    auto mask = ColumnMask(ACAD::CutKindVisibleInside, 0, 49);
    mask->m_vDepth.assign(kSize * kSize, 0.25f);  // the window depth of the sheet in front
    const auto visible = CutMesh(mesh, mask);
    EXPECT_EQ(visible->GetVertexCount(), 150u);
    for (const Vertex& vertex : visible->m_vVertices) EXPECT_TRUE(vertex.z > 0 || vertex.x > 0);
}

TEST(CutMesh, DoesNotKeepThePlaneThatTheFileHas) {
    const auto mesh = Grid(10);
    mesh->m_optCutView = {{0, 0, 1, 0}};
    EXPECT_FALSE(CutMesh(mesh, ColumnMask(ACAD::CutKindInside, 0, 9))->m_optCutView.has_value());
}

TEST(CutMesh, VerticesThatAreNotNumbersAreOutside) {
    const auto mesh = Grid(10);
    mesh->m_vVertices[0].x = std::numeric_limits<float>::quiet_NaN();
    mesh->m_vVertices[1].y = std::numeric_limits<float>::infinity();
    EXPECT_EQ(CutMesh(mesh, ColumnMask(ACAD::CutKindInside, 0, 3)), mesh);
    const auto cut = CutMesh(mesh, ColumnMask(ACAD::CutKindOutside, 0, 99));
    ASSERT_NE(cut, mesh);
    EXPECT_EQ(cut->GetTriangleCount(), 162u - 3) << "three triangles use the second vertex, one of them the first, too";
}

TEST(ApplyCutMask, ReturnsTheObjectsInTheirOrderAndTheUntouchedOnesThemselves) {
    Meshes meshes;
    for (int i = 0; i < 40; ++i) {
        meshes.push_back(Grid(4 + i % 7));
        meshes.back()->m_sName = std::to_wstring(i);
        if (i % 3 == 0) meshes.back()->m_iVisible = 0;
        if (i % 3 == 1)
            for (Vertex& vertex : meshes.back()->m_vVertices) vertex.x += 9;  // beside the window
    }
    const Meshes before = meshes;
    const auto mask = ColumnMask(ACAD::CutKindInside, 0, 49);
    const Meshes result = ApplyCutMask(meshes, mask);
    EXPECT_EQ(meshes, before);
    ASSERT_EQ(result.size(), 40u);
    for (std::size_t i = 0; i < 40; ++i) {
        EXPECT_EQ(result[i]->m_sName, std::to_wstring(i));
        EXPECT_EQ(result[i] == meshes[i], i % 3 != 2) << i;
        EXPECT_EQ(result[i]->m_vpCutMasks.size(), i % 3 == 2 ? 1u : 0u) << i;
        const auto alone = CutMesh(meshes[i], mask);
        ASSERT_EQ(alone->m_vVertices.size(), result[i]->m_vVertices.size());
        EXPECT_EQ(std::memcmp(alone->m_vVertices.data(), result[i]->m_vVertices.data(),
                              alone->m_vVertices.size() * sizeof(Vertex)),
                  0);
    }
    EXPECT_EQ(mask.use_count(), 1 + 13) << "one for each object that was cut";
}

TEST(ApplyCutMask, ReturnsNoListWhenNothingHasChanged) {
    EXPECT_TRUE(ApplyCutMask(Meshes{}, ColumnMask(ACAD::CutKindOutside, 1, 0)).empty());
    const Meshes meshes = {Grid(5), Grid(6), std::make_shared<Mesh>(L"empty", false)};
    EXPECT_TRUE(ApplyCutMask(meshes, ColumnMask(ACAD::CutKindInside, 1, 0)).empty());
    EXPECT_TRUE(ApplyCutMask(meshes, ColumnMask(ACAD::CutKindOutside, 0, 99)).empty());
}

TEST(ApplyCutMask, KeepsObjectsThatLoseEverythingInTheList) {
    const Meshes result = ApplyCutMask(Meshes{Grid(5), Grid(6)}, ColumnMask(ACAD::CutKindOutside, 1, 0));
    ASSERT_EQ(result.size(), 2u);
    EXPECT_EQ(result[0]->GetVertexCount(), 0u);
    EXPECT_EQ(result[1]->GetVertexCount(), 0u);
}

TEST(ApplyCutMask, ThrowsWhatTheFirstObjectThrewAfterAllOthersAreDone) {
    Meshes meshes;
    for (int i = 0; i < 20; ++i) meshes.push_back(Grid(40));
    // One bit per vertex: the marks of these two objects have sizes that no other allocation has.
    meshes[7]->m_vVertices.resize(32 * 7777);
    meshes[13]->m_vVertices.resize(32 * 3333);
    const auto mask = ColumnMask(ACAD::CutKindInside, 0, 49);
    const RefusedSizes refuse({4 * 7777, 4 * 3333});
    std::size_t size = 0;
    try {
        (void)ApplyCutMask(meshes, mask);
    } catch (const Refused& refused) {
        size = refused.size;
    }
    EXPECT_EQ(size, 4u * 7777);
    EXPECT_EQ(mask.use_count(), 1) << "nothing of the result is left";
}

TEST(ApplyCutMask, WorksOnThreadsThatAreAtMostTheCores) {
    Meshes meshes;
    for (int i = 0; i < 1000; ++i) meshes.push_back(Grid(6));
    const auto before = AllocatingThreads();
    const Meshes result = ApplyCutMask(meshes, ColumnMask(ACAD::CutKindInside, 0, 49));
    ASSERT_EQ(result.size(), 1000u);
    EXPECT_LE(AllocatingThreads() - before, std::max(1u, std::thread::hardware_concurrency()));
}

TEST(ApplyCutMask, CutsTwentyObjectsAtOnceWithEveryKind) {
    Meshes meshes;
    for (int i = 0; i < 20; ++i) meshes.push_back(i % 2 == 0 ? Grid(60) : TwoSheets());
    for (const std::uint32_t kind : {ACAD::CutKindInside, ACAD::CutKindOutside, ACAD::CutKindVisibleInside}) {
        auto mask = ColumnMask(kind, 0, 49);
        if (kind == ACAD::CutKindVisibleInside) mask->m_vDepth.assign(kSize * kSize, 0.25f);
        const Meshes result = ApplyCutMask(meshes, mask);
        ASSERT_EQ(result.size(), meshes.size());
        // The two sheets are at depths 0.25 and 0.75, the grids at 0.5, behind what the window showed.
        const bool isVisible = kind == ACAD::CutKindVisibleInside;
        for (std::size_t i = 0; i < result.size(); ++i) {
            const std::size_t expected = i % 2 == 0 ? (isVisible ? 3600u : 1800u) : (isVisible ? 150u : 100u);
            EXPECT_EQ(result[i]->GetVertexCount(), expected) << kind << ", " << i;
        }
    }
}

}  // namespace
