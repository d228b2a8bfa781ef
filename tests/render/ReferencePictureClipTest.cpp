// Pictures that a clip plane cuts, against the reference: which pixels it cuts away, and that the lighting of the
// others is that of the whole triangles.
#include "render/ReferencePictureScene.h"

namespace {

using namespace reference_picture;
using reference::HalfSpace;
using reference::Renderer;
using reference::Shading;

/// A cut leaves less of the objects; of a tiny picture most of the rest is beside its edge.
Demand DemandOfCut(const PictureSize& size) { return size.width < 100 ? Demand{0.25, 0.02} : Demand{0.05, 0.05}; }

class ReferenceClip : public testing::TestWithParam<Case> {
protected:
    ReferenceClip() { both.Methods().SetClipPlaneEnabled(0); }

    /// Through the middle of the scene, in both renderers, without the picture of the plane itself.
    void Clip(const Vec& normal) {
        const Bounds bounds = VisibleBounds(both.scene);
        const auto rounded = [](const Vec& v) {  // the host's numbers are floats
            const auto f = [](double x) { return static_cast<double>(static_cast<float>(x)); };
            return Vec{f(v.x), f(v.y), f(v.z)};
        };
        const HalfSpace half{rounded(0.5 * (bounds.low + bounds.high)), rounded(normal)};
        both.scene.clip = half;
        const auto f = [](double x) { return static_cast<float>(x); };
        both.Methods().SetClipPlane(f(half.point.x), f(half.point.y), f(half.point.z), f(normal.x), f(normal.y),
                                    f(normal.z));
    }

    TwoRenderers both{Gallery(), GetParam().size, GetParam().view};
    const std::string name = NameOf(GetParam());
    const Demand demand = DemandOfCut(GetParam().size);
};

TEST_P(ReferenceClip, CutsTheLitModes) {
    for (const Vec& normal : {Vec{1.0, 0.4, 0.3}, Vec{-0.5, 1.0, -0.7}, Vec{0.0, 0.0, 1.0}, Vec{0.0, 0.0, -1.0}}) {
        Clip(normal);
        Renderer renderer(both.scene);
        ExpectSamePicture(renderer.Draw(Shading::Flat), both.Draw(KV_ScenePane::DrawModeFlat), demand,
                          name + "_clip_flat");
        ExpectSamePicture(renderer.Draw(Shading::Gouraud), both.Draw(KV_ScenePane::DrawModeGouraud), demand,
                          name + "_clip_gouraud");
        ExpectSamePicture(renderer.Draw(Shading::PerPixel), both.Draw(KV_ScenePane::DrawModePerPixel), demand,
                          name + "_clip_perpixel");
    }
}

// What is cut away casts its shadow nevertheless.
TEST_P(ReferenceClip, CutsBelowTheShadowsOfTheWholeScene) {
    both.SetShadows({0.1, 0.05, 0.3});
    for (const Vec& normal : {Vec{1.0, 0.4, 0.3}, Vec{0.0, 0.0, 1.0}, Vec{0.0, 0.0, -1.0}}) {
        Clip(normal);
        Renderer renderer(both.scene);
        ExpectSamePicture(renderer.Draw(Shading::Shadowed), both.Draw(KV_ScenePane::DrawModeGouraud), demand,
                          name + "_clip_shadow");
    }
}

TEST_P(ReferenceClip, IsFoundWrongAPixelAside) {
    Clip({1.0, 0.4, 0.3});
    const auto drawn = both.Draw(KV_ScenePane::DrawModeGouraud);
    const double pixel = 2.0 * both.scene.camera.HalfWidth() / both.scene.camera.width;
    both.scene.clip->point = both.scene.clip->point + (2.0 * pixel) * Unit(both.scene.clip->normal);
    EXPECT_GT(Compare(Renderer(both.scene).Draw(Shading::Gouraud), drawn).wrong, GetParam().size.height / 4);
}

INSTANTIATE_TEST_SUITE_P(Gallery, ReferenceClip, testing::ValuesIn(MainCases()),
                         [](const auto& row) { return NameOf(row.param); });

}  // namespace
