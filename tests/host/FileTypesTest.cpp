#include "FileTypes.h"

#include <gtest/gtest.h>

#include <set>

namespace {

/// The extension of the row that a path finds; empty without one.
std::string TypeOf(std::string_view path) {
    const FileType* const type = FindFileType(path);
    return type == nullptr ? "" : std::string(type->extension);
}

TEST(FindFileType, UsesTheTextAfterTheLastPointInAnyCase) {
    EXPECT_EQ(TypeOf("a.pcm"), "pcm");
    EXPECT_EQ(TypeOf("a.PaX"), "pax");
    EXPECT_EQ(TypeOf("a.pcm.XDT"), "xdt");
    EXPECT_EQ(TypeOf("x/a.b.Hps"), "hps");
    EXPECT_EQ(TypeOf("a.pcm.bak"), "");
    EXPECT_EQ(TypeOf("a.pcm/b"), "");
    EXPECT_EQ(TypeOf("a."), "");
}

TEST(FindFileType, WithoutAPointUsesTheWholeName) {
    EXPECT_EQ(TypeOf("pax"), "pax");
    EXPECT_EQ(TypeOf("apax"), "");
}

TEST(FileTypes, AreScansAndMeshesInTheOrderOfTheHelp) {
    EXPECT_EQ(ExtensionList(IsImported, "and"),
              "pcm, pax, xdt, ply, stl, hps, ois, msh, obj, off, gltf, glb, 3mf, dae and others");
    EXPECT_EQ(ExtensionList(IsImportedScan, "and"), "pcm, pax and xdt");
    EXPECT_EQ(ExtensionList(IsImportedMesh, "and"),
              "ply, stl, hps, ois, msh, obj, off, gltf, glb, 3mf, dae and others");
    EXPECT_EQ(ExtensionList(IsExported, "or"), "ply, stl or hps");
}

TEST(FileTypes, OfPointsAreNoObjects) {
    EXPECT_EQ(ExtensionList(IsPoints, "and"), "xyz, xyzrgb, txt, asc, csv and pcd");
    for (const FileType& type : kFileTypes) {
        if (!IsPoints(type)) continue;
        EXPECT_FALSE(type.canImport || type.canExport) << type.extension;
    }
}

TEST(FileTypes, HaveOneRowPerExtensionInLowerCase) {
    std::set<std::string_view> extensions;
    for (const FileType& type : kFileTypes) {
        EXPECT_TRUE(extensions.insert(type.extension).second) << type.extension;
        EXPECT_EQ(FindFileType("A." + std::string(type.extension)), &type);
        EXPECT_TRUE(type.canImport || type.canExport || IsPoints(type))
            << type.extension << " would be a row without use";
    }
}

TEST(ExtensionList, OfOneOrNoneHasNoConjunction) {
    EXPECT_EQ(ExtensionList([](const FileType& type) { return type.extension == "pcm"; }, "and"), "pcm");
    EXPECT_EQ(ExtensionList([](const FileType&) { return false; }, "and"), "");
}

TEST(ExtensionPatterns, AreSeparatedBySpaces) {
    EXPECT_EQ(ExtensionPatterns(IsImportedScan), "*.pcm *.pax *.xdt");
    EXPECT_EQ(ExtensionPatterns(IsExported), "*.ply *.stl *.hps");
}

}  // namespace
