// Points, wireframe and bounding boxes against the reference: nothing is missing, nothing is drawn elsewhere, and the
// colours are those of the lighting.
#include "render/ReferencePictureScene.h"
#include "support/ReferenceMarks.h"

namespace {

using namespace reference_picture;
using reference::Mark;
using reference::Renderer;

class ReferenceMarks : public testing::TestWithParam<Case> {
protected:
    /// @param smallestDrawn  share of the pixels that must not be background
    void ExpectMarks(const std::vector<Mark>& marks, KV_ScenePane::DrawMode mode, double smallestDrawn) {
        const auto drawn = both.Draw(mode);
        const auto c = CompareMarks(marks, Renderer(both.scene).DrawBackground(), drawn);
        EXPECT_EQ(c.missing, 0) << c.first;
        EXPECT_EQ(c.foreign, 0) << c.first;
        EXPECT_EQ(c.uncovered, 0) << c.first;
        EXPECT_GE(c.marks, GetParam().size.width < 100 ? 10 : 60);
        EXPECT_GE(c.drawn, smallestDrawn * static_cast<double>(drawn.size()));
    }

    TwoRenderers both{Gallery(), GetParam().size, GetParam().view};
};

TEST_P(ReferenceMarks, ArePointsOfTheirSize) {
    ExpectMarks(PointMarks(both.scene, 2.0), KV_ScenePane::DrawModePoints, 0.01);
    for (const float side : {1.0F, 5.0F}) {
        both.Methods().SetPointCloudRenderPointSize(side);
        ExpectMarks(PointMarks(both.scene, static_cast<double>(side)), KV_ScenePane::DrawModePoints, 0.005 * side);
    }
}

TEST_P(ReferenceMarks, ArePointsInShadow) {
    both.SetShadows({0.1, 0.0, 0.3});
    both.Methods().SetPointCloudRenderPointSize(5.0F);
    ExpectMarks(ShadowedPointMarks(both.scene, 5.0), KV_ScenePane::DrawModePoints, 0.03);
}

TEST_P(ReferenceMarks, AreTheEdgesOfTheTriangles) {
    ExpectMarks(EdgeMarks(both.scene), KV_ScenePane::DrawModeWireframe, 0.03);
    both.SetShadows({0.1, 0.0, 0.3});
    ExpectMarks(WithoutColors(EdgeMarks(both.scene)), KV_ScenePane::DrawModeWireframe, 0.03);
}

TEST_P(ReferenceMarks, AreTheBoundingBoxes) {
    ExpectMarks(BoxMarks(both.scene), KV_ScenePane::DrawModeBoundingBoxes, 0.003);
    both.SetShadows({0.1, 0.0, 0.3});
    ExpectMarks(WithoutColors(BoxMarks(both.scene)), KV_ScenePane::DrawModeBoundingBoxes, 0.003);
}

TEST_P(ReferenceMarks, AreTheBoxesOfTheSelectionOnly) {
    both.Methods().AddSelection(kHidden);
    both.Methods().AddSelection(4);
    for (int i = 0; i < kGalleryObjects; ++i)
        both.scene.objects[static_cast<std::size_t>(i)].visible = i == kHidden || i == 4;
    const auto boxes = BoxMarks(both.scene);
    const auto c = CompareMarks(boxes, Renderer(both.scene).DrawBackground(), both.Draw(KV_ScenePane::DrawModeNothing));
    EXPECT_EQ(c.missing + c.foreign, 0) << c.first;
    EXPECT_GE(c.marks, 8);
    both.Methods().ResetSelection();
    const auto none = CompareMarks({}, Renderer(both.scene).DrawBackground(), both.Draw(KV_ScenePane::DrawModeNothing));
    EXPECT_EQ(none.drawn, 0);
}

INSTANTIATE_TEST_SUITE_P(Gallery, ReferenceMarks, testing::ValuesIn(MainCases()),
                         [](const auto& row) { return NameOf(row.param); });

}  // namespace
