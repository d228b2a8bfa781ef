// Whole pictures of the lit modes and of the background against a renderer that shares no code with the viewer.
#include "render/ReferencePictureScene.h"

namespace {

using namespace reference_picture;
using reference::Picture;
using reference::Renderer;
using reference::Shading;

class ReferencePicture : public testing::TestWithParam<Case> {};

TEST_P(ReferencePicture, OfTheLitModesIsDrawn) {
    TwoRenderers both(Gallery(), GetParam().size, GetParam().view);
    Renderer renderer(both.scene);
    const Demand demand = DemandFor(GetParam().size);
    const std::string name = NameOf(GetParam());
    ExpectSamePicture(renderer.Draw(Shading::Flat), both.Draw(KV_ScenePane::DrawModeFlat), demand, name + "_flat");
    ExpectSamePicture(renderer.Draw(Shading::Gouraud), both.Draw(KV_ScenePane::DrawModeGouraud), demand,
                      name + "_gouraud");
    ExpectSamePicture(renderer.Draw(Shading::PerPixel), both.Draw(KV_ScenePane::DrawModePerPixel), demand,
                      name + "_perpixel");
}

INSTANTIATE_TEST_SUITE_P(Gallery, ReferencePicture, testing::ValuesIn(AllCases()),
                         [](const auto& row) { return NameOf(row.param); });

TEST(ReferencePictures, HaveTheReflectionOfTheMaterial) {
    TwoRenderers both(Gallery(), {640, 480}, Turned());
    both.SetReflection(0.6F, 0.75F);
    EXPECT_EQ(both.scene.lighting.shininess, 32.0);
    Renderer renderer(both.scene);
    ExpectSamePicture(renderer.Draw(Shading::Flat), both.Draw(KV_ScenePane::DrawModeFlat), {}, "Reflection_flat");
    ExpectSamePicture(renderer.Draw(Shading::Gouraud), both.Draw(KV_ScenePane::DrawModeGouraud), {},
                      "Reflection_gouraud");
}

TEST(ReferencePictures, CompareEveryVisibleObject) {
    TwoRenderers both(Gallery(), {640, 480}, FromTheFront());
    Renderer renderer(both.scene);
    const auto comparison = Compare(renderer.Draw(Shading::Gouraud), both.Draw(KV_ScenePane::DrawModeGouraud));
    EXPECT_EQ(comparison.wrong, 0) << comparison.firstWrong;
    for (int object = 0; object < kGalleryObjects; ++object) {
        const auto found = comparison.comparedOf.find(object);
        const int pixels = found == comparison.comparedOf.end() ? 0 : found->second;
        if (object == kHidden) {
            EXPECT_EQ(pixels, 0);
        } else {
            EXPECT_GE(pixels, 1000) << object;
        }
    }
}

/// The whole picture is background.
constexpr Demand kNoObjects{0.0, 0.0};

class ReferenceBackground : public testing::TestWithParam<Case> {};

void ExpectBackground(TwoRenderers& both, const std::array<std::uint32_t, 4>& colors, const std::string& name) {
    both.SetBackground(colors);
    ExpectSamePicture(Renderer(both.scene).DrawBackground(), both.Draw(KV_ScenePane::DrawModeNothing), kNoObjects,
                      name);
}

TEST_P(ReferenceBackground, BlendsFromTopToBottom) {
    TwoRenderers both({}, GetParam().size, GetParam().view);
    ExpectBackground(both, {0x805040, 0x805040, 0x201008, 0x201008}, NameOf(GetParam()) + "_two_colors");
    ExpectBackground(both, {0xFFFFFF, 0xFFFFFF, 0x000000, 0x000000}, NameOf(GetParam()) + "_white_to_black");
    ExpectBackground(both, {0x336699, 0x336699, 0x336699, 0x336699}, NameOf(GetParam()) + "_one_color");
}

TEST_P(ReferenceBackground, BlendsBilinearlyBetweenFourCorners) {
    TwoRenderers both({}, GetParam().size, GetParam().view);
    ExpectBackground(both, {0x0000FF, 0x00FF00, 0xFF0000, 0xFFFFFF}, NameOf(GetParam()) + "_bright_corners");
    ExpectBackground(both, {0xFFFFFF, 0x000000, 0x000000, 0xFFFFFF}, NameOf(GetParam()) + "_opposite_corners");
    ExpectBackground(both, {0x102030, 0xF0E0D0, 0x80FF00, 0x0080FF}, NameOf(GetParam()) + "_four_corners");
}

INSTANTIATE_TEST_SUITE_P(Empty, ReferenceBackground, testing::ValuesIn(CasesOf(FromTheFront())),
                         [](const auto& row) { return NameOf(row.param); });

TEST(ReferencePictures, AreBackgroundOnlyInModeNothing) {
    TwoRenderers both(Gallery(), {257, 129}, Turned());
    const Picture background = Renderer(both.scene).DrawBackground();
    ExpectSamePicture(background, both.Draw(KV_ScenePane::DrawModeNothing), kNoObjects, "Nothing");
    both.SetShadows({0.0, 0.0, 0.3});
    ExpectSamePicture(background, both.Draw(KV_ScenePane::DrawModeNothing), kNoObjects, "Nothing_shadows");
    ExpectSamePicture(background, both.Draw(KV_ScenePane::DrawModePerPixel), kNoObjects, "PerPixel_shadows");
}

}  // namespace
