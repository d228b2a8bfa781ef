// Dimming by thirds, and whose colour comes back.
#include "align/DimmedColors.h"

#include <gtest/gtest.h>

namespace {

std::shared_ptr<Mesh> MakeObject(std::uint32_t color) {
    auto mesh = std::make_shared<Mesh>(std::wstring(), false);
    mesh->SetColorRef(color);
    mesh->m_bBuffersDirty = mesh->m_bTrianglesDirty = false;
    return mesh;
}

TEST(DimmedColors, DivideEachChannelByThreeWithoutRounding) {
    const std::pair<std::uint32_t, std::uint32_t> rows[] = {
        {0xFFFFFF, 0x555555}, {0x000000, 0x000000}, {0x020103, 0x000001}, {0xFE8005, 0x542A01}};
    for (const auto& [color, dimmed] : rows) {
        SCOPED_TRACE(testing::Message() << std::hex << color);
        const auto mesh = MakeObject(color);
        DimmedColors colors;
        colors.Dim(mesh);
        EXPECT_EQ(mesh->GetColorRef(), dimmed);
        colors.Restore();
        EXPECT_EQ(mesh->GetColorRef(), color);
    }
}

TEST(DimmedColors, AreUploadedAtBothChanges) {
    const auto mesh = MakeObject(0x336699);
    DimmedColors colors;
    colors.Dim(mesh);
    EXPECT_TRUE(mesh->m_bBuffersDirty);
    mesh->m_bBuffersDirty = false;
    colors.Restore();
    EXPECT_TRUE(mesh->m_bBuffersDirty);
    EXPECT_FALSE(mesh->m_bTrianglesDirty) << "indices have no colour, and are most of the bytes";
}

TEST(DimmedColors, DimAnObjectOnce) {
    const auto mesh = MakeObject(0x906030);
    DimmedColors colors;
    colors.Dim(mesh);
    colors.Dim(mesh);
    EXPECT_EQ(mesh->GetColorRef(), 0x302010u);
    colors.Restore();
    EXPECT_EQ(mesh->GetColorRef(), 0x906030u);
}

TEST(DimmedColors, ReplaceAColorThatTheHostHasSetMeanwhile) {
    const auto mesh = MakeObject(0x906030);
    DimmedColors colors;
    colors.Dim(mesh);
    mesh->SetColorRef(0x0000FF);
    colors.Restore();
    EXPECT_EQ(mesh->GetColorRef(), 0x906030u);
}

TEST(DimmedColors, SkipObjectsThatAreGoneAndShiftNoColorToAnother) {
    std::vector<std::shared_ptr<Mesh>> meshes = {MakeObject(0x030000), MakeObject(0x000300), MakeObject(0x000003)};
    DimmedColors colors;
    for (const auto& mesh : meshes) colors.Dim(mesh);
    meshes.erase(meshes.begin());
    meshes.push_back(MakeObject(0x123456));
    colors.Restore();
    EXPECT_EQ(meshes[0]->GetColorRef(), 0x000300u);
    EXPECT_EQ(meshes[1]->GetColorRef(), 0x000003u);
    EXPECT_EQ(meshes[2]->GetColorRef(), 0x123456u) << "it was never dimmed";
}

TEST(DimmedColors, AreForgottenAfterTheyAreRestored) {
    const auto mesh = MakeObject(0x906030);
    DimmedColors colors;
    colors.Dim(mesh);
    colors.Restore();
    mesh->SetColorRef(0x0000FF);
    colors.Restore();
    EXPECT_EQ(mesh->GetColorRef(), 0x0000FFu);
}

TEST(DimmedColors, OfACopyAreThoseOfItsOriginal) {
    const auto dimmed = MakeObject(0x906030), bright = MakeObject(0x604020);
    DimmedColors colors;
    colors.Dim(dimmed);
    const auto copy = MakeObject(dimmed->GetColorRef()), other = MakeObject(bright->GetColorRef());
    colors.AddCopy(*dimmed, copy);
    colors.AddCopy(*bright, other);
    const auto copyOfCopy = MakeObject(copy->GetColorRef());
    colors.AddCopy(*copy, copyOfCopy);
    colors.Restore();
    for (const auto& mesh : {dimmed, copy, copyOfCopy}) EXPECT_EQ(mesh->GetColorRef(), 0x906030u);
    EXPECT_FALSE(other->m_bBuffersDirty);
    EXPECT_EQ(other->GetColorRef(), 0x604020u);
}

TEST(DimmedColors, OfTwoAlignmentsComeBackNewestFirst) {
    const auto mesh = MakeObject(0x906030);
    DimmedColors older, newer;
    older.Dim(mesh);
    newer.Dim(mesh);
    EXPECT_EQ(mesh->GetColorRef(), 0x100A05u);
    newer.Restore();
    EXPECT_EQ(mesh->GetColorRef(), 0x302010u);
    older.Restore();
    EXPECT_EQ(mesh->GetColorRef(), 0x906030u);
}

}  // namespace
