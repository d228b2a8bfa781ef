#include "NamedFilesCheck.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "host/MeshFiles.h"

namespace {

/// In a folder with the file t.png.
class NamedFilesCheck : public testing::Test {
protected:
    void SetUp() override { WriteText(m_folder / "t.png", "x"); }
    std::string Write(const std::string& name, const std::string& text) const {
        std::filesystem::create_directories((m_folder.Path() / name).parent_path());
        WriteText(m_folder / name, text);
        return m_folder / name;
    }
    [[nodiscard]] bool IsNamed(const std::string& mesh, const std::string& file = "t.png") const {
        return IsNamedByAny({mesh}, m_folder / file);
    }
    const ScratchFolder m_folder;
};

TEST_F(NamedFilesCheck, FindsNamesInMaterialsBesideAnObjFileAndThoseThatItNames) {
    const std::string obj = Write("a.obj", "mtllib a.mtl\nv 0 0 0\n");
    EXPECT_FALSE(IsNamed(obj));
    Write("other.mtl", "map_Kd u.png\n");
    EXPECT_FALSE(IsNamed(obj));
    Write("a.mtl", "map_Kd -s 1 1 1 C:\\images\\T.PNG\n");
    EXPECT_TRUE(IsNamed(obj)) << "the path of another machine, in other letters";
    Write("b/sub/b.mtl", "map_Kd t.png\n");
    Write("b/t.png", "x");
    EXPECT_TRUE(IsNamed(Write("b/b.obj", "mtllib sub\\b.mtl\r\nv 0 0 0\n"), "b/t.png"));
}

TEST_F(NamedFilesCheck, FindsNamesInTextsAndInsideBinaryFiles) {
    EXPECT_TRUE(IsNamed(Write("a.gltf", R"({"images": [{"uri": "t.png"}]})")));
    EXPECT_TRUE(IsNamed(Write("b.gltf", R"({"images": [{"uri": "%74.p%6Eg"}]})")));
    EXPECT_FALSE(IsNamed(Write("c.gltf", R"({"images": [{"uri": "u.png"}]})")));
    EXPECT_TRUE(IsNamed(Write("a.dae", "<init_from>images/t.png</init_from>")));
    EXPECT_TRUE(IsNamed(Write("a.glb", std::string("gl\0TF", 5) + "\"t.png\"")));
    Write("a b%.png", "x");
    EXPECT_TRUE(IsNamed(Write("d.gltf", R"("a%20b%25.png")"), "a b%.png"));
    EXPECT_TRUE(IsNamed(Write("e.gltf", R"("a b%.png")"), "a b%.png"));
}

TEST_F(NamedFilesCheck, FindsANameAcrossBlocksOfAFile) {
    for (const std::size_t before : {std::size_t{1} << 20, (std::size_t{1} << 20) - 3, (std::size_t{1} << 20) - 14})
        EXPECT_TRUE(IsNamed(Write("a.dae", std::string(before, ' ') + "%74%2e%70%6e%67"))) << before;
}

TEST_F(NamedFilesCheck, SearchesOnlyTheHeaderOfPlyFiles) {
    EXPECT_TRUE(IsNamed(Write("a.ply", "ply\ncomment TextureFile t.png\nend_header\n")));
    EXPECT_FALSE(IsNamed(Write("b.ply", "ply\nend_header\nt.png")));
}

TEST_F(NamedFilesCheck, DoesNotSearchFormatsWithoutOtherFiles) {
    for (const char* const name : {"a.stl", "a.pcm", "a.hps", "a.xyz", "a.unknown"})
        EXPECT_FALSE(IsNamed(Write(name, "t.png"))) << name;
}

TEST_F(NamedFilesCheck, FindsFilesOfOtherFoldersByTheirPathOnly) {
    const std::string up = Write("in/up.dae", "../out/t.png"), here = Write("in/here.dae", "t.png");
    Write("out/t.png", "x");
    Write("in/images/t.png", "x");
    EXPECT_TRUE(IsNamed(up, "out/t.png"));
    EXPECT_FALSE(IsNamed(here, "out/t.png")) << "a picture with the name of an image, elsewhere";
    EXPECT_TRUE(IsNamed(here, "in/images/t.png")) << "below the mesh";
}

TEST_F(NamedFilesCheck, FollowsLinks) {
    const std::string mesh = Write("in/a.dae", "t.png");
    Write("in/t.png", "x");
    std::filesystem::create_symlink("in/t.png", m_folder.Path() / "link.png");
    std::filesystem::create_directory_symlink("in", m_folder.Path() / "again");
    EXPECT_TRUE(IsNamed(mesh, "link.png"));
    EXPECT_TRUE(IsNamed(mesh, "again/t.png"));
    EXPECT_TRUE(IsNamed(m_folder / "again/a.dae", "in/t.png"));
}

TEST_F(NamedFilesCheck, NeedsAFileThatExists) {
    const std::string mesh = Write("a.dae", "u.png t.png none.png");
    std::filesystem::create_directory(m_folder.Path() / "u.png");
    EXPECT_FALSE(IsNamed(mesh, "u.png")) << "a folder";
    EXPECT_FALSE(IsNamed(mesh, "none.png"));
    EXPECT_FALSE(IsNamed(m_folder / "none.obj"));
    EXPECT_TRUE(IsNamedByAny({m_folder / "none.obj", m_folder / "t.png", mesh}, m_folder / "t.png"));
}

}  // namespace
