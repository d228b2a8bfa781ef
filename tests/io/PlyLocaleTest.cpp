// Ply files under a locale with a decimal comma and groups of digits: bytes and numbers must not change.
#include <gtest/gtest.h>

#include <fstream>
#include <locale>

#include "KV_ScenePane/PathText.h"
#include "host/CommaLocale.h"
#include "io/PlyMesh.h"
#include "io/PlyMeshWriter.h"
#include "io/PlySample.h"

namespace {

using namespace ply_sample;

class GroupedComma : public std::numpunct<char> {
    [[nodiscard]] char do_decimal_point() const override { return ','; }
    [[nodiscard]] char do_thousands_sep() const override { return '.'; }
    [[nodiscard]] std::string do_grouping() const override { return "\3"; }
};

/// Sets the global locale of C++, which is that of new streams.
class GlobalLocale {
public:
    GlobalLocale() : m_before(std::locale::global(std::locale(std::locale(), new GroupedComma))) {}
    ~GlobalLocale() { std::locale::global(m_before); }
    GlobalLocale(const GlobalLocale&) = delete;
    GlobalLocale& operator=(const GlobalLocale&) = delete;

private:
    std::locale m_before;
};

std::string Written() {
    const auto file = PlyMeshWriter(1234567, 0).Assemble();
    return {reinterpret_cast<const char*>(file.bytes.get()), 200};
}

}  // namespace

TEST(PlyFiles, DoNotDependOnTheProcessLocale) {
    const ScratchFolder folder;
    std::string zeros;
    for (int i = 0; i < 3000; ++i) zeros += "0 ";
    std::ofstream(folder / "a.ply", std::ios::binary)
        << kText + Vertices(1001) + Faces(1) + kEnd + "1.5 -2.25e-1 3 " + zeros + "3 0 1000 1";
    const std::string before = Written();
    const CommaLocale comma;
    if (!comma.IsSet()) GTEST_SKIP() << "the system cannot make locales";
    const GlobalLocale global;
    const PlyMeshData mesh = ReadPlyMesh(KV_ScenePane::WidePath(folder / "a.ply"));
    ASSERT_EQ(mesh.GetVertexCount(), 1001u);
    EXPECT_EQ(mesh.GetVertex(0).x, 1.5f);
    EXPECT_EQ(mesh.GetVertex(0).y, -0.225f);
    EXPECT_EQ(mesh.GetTriangle(0).v[1], 1000);
    EXPECT_EQ(Written(), before);
    EXPECT_NE(before.find("element vertex 1234567\n"), std::string::npos);
}
