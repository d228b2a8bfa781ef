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

}  // namespace
