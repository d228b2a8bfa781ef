#include "NamedFiles.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>

#include "support/ScratchFolder.h"

namespace {

TEST(NamedFiles, AreFoundBesideTheMeshWhateverFolderTheirNamesHave) {
    const ScratchFolder folder;
    std::ofstream(folder / "a.png") << "image";
    ASSERT_EQ(mkdir((folder / "textures").c_str(), 0700), 0);
    std::ofstream(folder / "textures/b.png") << "other";
    const NamedFiles files(folder / "mesh.obj");
    for (const char* const name :
         {"a.png", "./a.png", "none/a.png", "C:\\work\\a.png", "/home/somebody/a.png", "..\\a.png"})
        EXPECT_EQ(files.Load(name), (std::vector<std::uint8_t>{'i', 'm', 'a', 'g', 'e'})) << name;
    EXPECT_EQ(files.Load("textures\\b.png").size(), 5u);
    EXPECT_EQ(files.Find(folder / "textures/b.png"), folder / "textures/b.png") << "as the library joins names";
    EXPECT_TRUE(files.Load("none.png").empty());
    EXPECT_TRUE(files.Load("").empty());
}

TEST(NamedFiles, AreRegularFilesAndNeverThoseOfAnAbsolutePath) {
    const ScratchFolder folder, other;
    std::ofstream(other / "a.mtl") << "any";
    ASSERT_EQ(mkfifo((folder / "pipe").c_str(), 0600), 0);
    const NamedFiles files(folder / "mesh.obj");
    EXPECT_EQ(files.Find(other / "a.mtl"), "");
    EXPECT_EQ(files.Find("pipe"), "");
    EXPECT_EQ(files.Find("/dev/zero"), "");
    EXPECT_EQ(files.Find(folder / "mesh.obj"), folder / "mesh.obj") << "the mesh file itself";
}

TEST(NamedFiles, AreNeverFoundOutsideOfTheFolderOfTheMesh) {
    const ScratchFolder folder;
    std::ofstream(folder / "secret") << "any";
    std::ofstream(folder / "sub2") << "any";
    std::filesystem::create_directories(folder / "sub/in");
    std::ofstream(folder / "sub/a.png") << "image";
    const NamedFiles files(folder / "sub/mesh.obj");
    for (const char* const name : {"../secret", "in/../../secret", "./../secret", "%2e%2e/secret", "..%2Fsecret",
                                   "..\\secret", "..%5csecret", "in/../../sub2", "..", ".", "in"})
        EXPECT_EQ(files.Find(name), "") << name;
    EXPECT_EQ(files.Find(folder / "sub/../secret"), "") << "as the library joins names";
    for (const char* const name : {"in/../a.png", "in/./..//a.png", "../a.png", "../sub/a.png", "in%2f..%2fa.png"})
        EXPECT_EQ(files.Find(name), folder / "sub/a.png") << name;
    const std::string beside = folder.Path().parent_path().string();
    EXPECT_EQ(files.Find("../../" + folder.Path().filename().string() + "/secret"), "") << beside;
}

TEST(NamedFiles, AreFoundThroughSymbolicLinks) {
    const ScratchFolder folder, other;
    std::ofstream(other / "a.png") << "image";
    std::filesystem::create_symlink(other / "a.png", folder / "b.png");
    EXPECT_EQ(NamedFiles(folder / "mesh.obj").Load("b.png").size(), 5u);
}

TEST(NamedFiles, AreFoundByTheirPercentCodesWhereNoFileHasTheNameAsWritten) {
    const ScratchFolder folder;
    for (const char* const name : {"my mesh.bin", "b.bin", "50%.bin", "a%20b.bin", "a b.bin", "\xC3\xA4.bin"})
        std::ofstream(folder / name) << name;
    const NamedFiles files(folder / "mesh.gltf");
    EXPECT_EQ(files.Find("my%20mesh.bin"), folder / "my mesh.bin");
    EXPECT_EQ(files.Find("%62.bin"), folder / "b.bin");
    EXPECT_EQ(files.Find("%C3%a4.bin"), folder / "\xC3\xA4.bin");
    EXPECT_EQ(files.Find("50%.bin"), folder / "50%.bin");
    EXPECT_EQ(files.Find("50%25.bin"), folder / "50%.bin");
    EXPECT_EQ(files.Find("a%20b.bin"), folder / "a%20b.bin") << "as written first";
    EXPECT_EQ(files.Find("b.bin%00.png"), "");
    EXPECT_EQ(files.Find("%2562.bin"), "") << "decoded once";
    EXPECT_EQ(files.Find("b.bin%"), "");
}

}  // namespace
