// Pictures with shadows, and the view of the shadow map, against the reference. Within one texel of the border of a
// shadow either answer is allowed.
#include "render/ReferencePictureScene.h"

namespace {

using namespace reference_picture;
using reference::Picture;
using reference::Renderer;
using reference::Shading;

/// Compared pixels whose colour a shadow changes.
int PixelsInShadow(const reference::Scene& scene, const Picture& withShadows) {
    reference::Scene lit = scene;
    lit.lighting.shadowBias = 2.0;
    const Picture without = Renderer(lit).Draw(Shading::Shadowed);
    int count = 0;
    for (std::size_t i = 0; i < without.colors.size(); ++i)
        count += withShadows.masked[i] == 0 && Largest(without.colors[i] - withShadows.colors[i]) > 2.0 ? 1 : 0;
    return count;
}

class ReferenceShadows : public testing::TestWithParam<Case> {
protected:
    TwoRenderers both{Gallery(), GetParam().size, GetParam().view};
    const std::string name = NameOf(GetParam());
};

TEST_P(ReferenceShadows, FallOnTheObjects) {
    both.SetShadows({0.1, 0.05, 0.3});
    Renderer renderer(both.scene);
    const Picture expected = renderer.Draw(Shading::Shadowed);
    const Demand demand = DemandFor(GetParam().size);
    // The program interpolates in the flat mode, too.
    ExpectSamePicture(expected, both.Draw(KV_ScenePane::DrawModeFlat), demand, name + "_shadow_flat");
    ExpectSamePicture(expected, both.Draw(KV_ScenePane::DrawModeGouraud), demand, name + "_shadow_gouraud");
    EXPECT_GE(PixelsInShadow(both.scene, expected), 0.005 * static_cast<double>(expected.colors.size()));
}

TEST_P(ReferenceShadows, AreComputedFromTheMapThatModeSevenShows) {
    ExpectSamePicture(Renderer(both.scene).DrawShadowMap(), both.Draw(KV_ScenePane::DrawModeShadowMap), {0.02, 0.13},
                      name + "_map");
}

INSTANTIATE_TEST_SUITE_P(Gallery, ReferenceShadows, testing::ValuesIn(MainCases()),
                         [](const auto& row) { return NameOf(row.param); });

TEST(ReferencePictures, HaveBlackShadowsAndAHighlightWithReflection) {
    TwoRenderers both(Gallery(), {640, 480}, Turned());
    both.Methods().SetShadowMode(1);  // the colour of shadows is black at first
    both.SetReflection(0.7F, 0.5F);
    Renderer renderer(both.scene);
    ExpectSamePicture(renderer.Draw(Shading::Shadowed), both.Draw(KV_ScenePane::DrawModeGouraud), {}, "BlackShadows");
}

}  // namespace
