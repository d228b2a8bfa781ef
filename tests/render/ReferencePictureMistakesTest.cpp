// The comparison with the reference can fail: one wrong number in the reference makes it find differences.
#include "render/ReferencePictureScene.h"
#include "support/ReferenceMarks.h"

namespace {

using namespace reference_picture;
using reference::Mark;
using reference::Renderer;
using reference::Scene;
using reference::Shading;

struct Mistake {
    const char* name;
    Shading shading;
    void (*make)(Scene& scene);
};
void PrintTo(const Mistake& mistake, std::ostream* out) { *out << mistake.name; }

const Mistake kMistakes[] = {
    {"LightFromAbove", Shading::Gouraud, [](Scene& s) { s.lighting.direction.y *= -1.0; }},
    {"LightAtTheViewer", Shading::Flat,
     [](Scene& s) {
         s.lighting.direction = {0.0, 0.0, 1.0};
     }},
    {"NoTint", Shading::Gouraud,
     [](Scene& s) {
         s.objects[1].tint = {1.0, 1.0, 1.0};
     }},
    {"NoTintOfGrey", Shading::PerPixel,
     [](Scene& s) {
         s.objects[2].tint = {1.0, 1.0, 1.0};
     }},
    {"OtherModelAmbient", Shading::Gouraud,
     [](Scene& s) {
         s.lighting.modelAmbient = {0.2, 0.2, 0.2};
     }},
    {"OtherFrontAmbient", Shading::Gouraud,
     [](Scene& s) {
         s.lighting.frontAmbient = {0.2, 0.2, 0.2};
     }},
    {"GreyBackAmbient", Shading::Flat,
     [](Scene& s) {
         s.lighting.backAmbient = {0.1, 0.1, 0.1};
     }},
    {"OtherBackDiffuse", Shading::Gouraud,
     [](Scene& s) {
         s.lighting.backDiffuse = {0.2, 0.2, 0.2};
     }},
    {"Reflection", Shading::Gouraud, [](Scene& s) { s.lighting.reflection = 0.1; }},
    {"FirstCornerProvokes", Shading::Flat, [](Scene& s) { s.lighting.provoking = 0; }},
    {"OtherNormals", Shading::Gouraud, [](Scene& s) { s.objects[0].normals = s.objects[0].positions; }},
    {"LampBelow", Shading::PerPixel, [](Scene& s) { s.lighting.lamp.y = -5.0; }},
    {"LampAtTheEye", Shading::PerPixel, [](Scene& s) { s.lighting.lamp.y = 0.0; }},
    {"WiderHighlight", Shading::PerPixel, [](Scene& s) { s.lighting.highlight = 64.0; }},
    {"OtherPerPixelDiffuse", Shading::PerPixel, [](Scene& s) { s.lighting.perPixelDiffuse = 0.69; }},
    {"OtherShadowDiffuse", Shading::Shadowed, [](Scene& s) { s.lighting.shadowDiffuse = 0.7; }},
    {"OtherShadowColor", Shading::Shadowed, [](Scene& s) { s.lighting.shadowColor.z += 0.02; }},
    {"NoShadows", Shading::Shadowed, [](Scene& s) { s.lighting.shadowBias = 2.0; }},
    {"LargerShadowBias", Shading::Shadowed, [](Scene& s) { s.lighting.shadowBias = 0.02; }},
    {"ShadowsToTheOtherSide", Shading::Shadowed, [](Scene& s) { s.lighting.shadowTilt *= -1.0; }},
    {"ShadowsOneDegreeAside", Shading::Shadowed, [](Scene& s) { s.lighting.shadowTilt += 1.0; }},
    {"HiddenObjectShown", Shading::Gouraud, [](Scene& s) { s.objects[kHidden].visible = true; }},
    {"ObjectHidden", Shading::Gouraud, [](Scene& s) { s.objects[4].visible = false; }},
    {"OtherBlend", Shading::Gouraud, [](Scene& s) { s.objects[3].colors = s.objects[0].colors; }},
    {"TurnedTriangles", Shading::Gouraud,
     [](Scene& s) {
         for (auto& corners : s.objects[kPlate].triangles) std::swap(corners[0], corners[1]);
     }},
    {"OtherZoom", Shading::Gouraud, [](Scene& s) { s.camera.zoom *= 1.005; }},
    {"OneHundredthAside", Shading::Gouraud, [](Scene& s) { s.camera.center.x += 0.01; }},
    {"ObjectNearer", Shading::Gouraud,
     [](Scene& s) {
         for (auto& position : s.objects[7].positions) position = position + 0.3 * s.camera.ToViewer();
     }},
    {"SwappedBackground", Shading::Gouraud, [](Scene& s) { std::swap(s.background.topLeft, s.background.bottomLeft); }},
};

KV_ScenePane::DrawMode ModeOf(Shading shading) {
    if (shading == Shading::Flat) return KV_ScenePane::DrawModeFlat;
    return shading == Shading::PerPixel ? KV_ScenePane::DrawModePerPixel : KV_ScenePane::DrawModeGouraud;
}

class ReferenceMistakes : public testing::TestWithParam<Mistake> {};

TEST_P(ReferenceMistakes, AreFound) {
    TwoRenderers both(Gallery(), {300, 300}, Turned());
    if (GetParam().shading == Shading::Shadowed) both.SetShadows({0.1, 0.05, 0.3});
    const auto drawn = both.Draw(ModeOf(GetParam().shading));
    const auto right = Compare(Renderer(both.scene).Draw(GetParam().shading), drawn);
    EXPECT_EQ(right.wrong, 0) << right.firstWrong;
    GetParam().make(both.scene);
    const auto wrong = Compare(Renderer(both.scene).Draw(GetParam().shading), drawn);
    EXPECT_GE(wrong.wrong, 100);
    EXPECT_FALSE(wrong.firstWrong.empty());
}

INSTANTIATE_TEST_SUITE_P(Gallery, ReferenceMistakes, testing::ValuesIn(kMistakes),
                         [](const auto& row) { return row.param.name; });

class ReferenceMarkMistakes : public testing::Test {
protected:
    [[nodiscard]] reference::MarkComparison Compared(const std::vector<Mark>& marks) {
        return CompareMarks(marks, Renderer(both.scene).DrawBackground(), drawn);
    }
    TwoRenderers both{Gallery(), {300, 300}, Turned()};
    std::vector<std::uint32_t> drawn;
};

TEST_F(ReferenceMarkMistakes, OfPointsAreFound) {
    both.Methods().SetPointCloudRenderPointSize(5.0F);
    drawn = both.Draw(KV_ScenePane::DrawModePoints);
    EXPECT_GE(Compared(PointMarks(both.scene, 9.0)).uncovered, 1000);
    EXPECT_GE(Compared(PointMarks(both.scene, 1.0)).foreign, 1000);
    std::vector<Mark> marks = PointMarks(both.scene, 5.0);
    for (Mark& mark : marks) mark.from.z = mark.to.z = 1.0 - mark.from.z;
    EXPECT_GE(Compared(marks).foreign, 100) << "the order of depth";
    both.scene.objects[1].tint = {1.0, 1.0, 1.0};
    EXPECT_GE(Compared(PointMarks(both.scene, 5.0)).foreign, 100);
    both.scene.objects[kHidden].visible = true;
    EXPECT_GE(Compared(PointMarks(both.scene, 5.0)).missing, 100);
}

TEST_F(ReferenceMarkMistakes, OfEdgesAreFound) {
    drawn = both.Draw(KV_ScenePane::DrawModeWireframe);
    both.scene.lighting.provoking = 1;
    EXPECT_GE(Compared(EdgeMarks(both.scene)).foreign, 100);
    both.scene.lighting.provoking = 2;
    both.scene.objects[kPlate].visible = false;
    EXPECT_GE(Compared(EdgeMarks(both.scene)).foreign, 100);
    both.scene.objects[kPlate].visible = true;
    both.scene.camera.zoom *= 1.05;
    EXPECT_GE(Compared(EdgeMarks(both.scene)).missing, 10);
}

TEST_F(ReferenceMarkMistakes, OfBoxesAreFound) {
    drawn = both.Draw(KV_ScenePane::DrawModeBoundingBoxes);
    both.scene.objects[4].boxMax.x += 0.2;
    EXPECT_GE(Compared(BoxMarks(both.scene)).missing, 2);
    EXPECT_GE(Compared(BoxMarks(both.scene)).foreign, 50);
}

}  // namespace
