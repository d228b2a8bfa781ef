// The same pictures in an X11 window, in a multisampled one, and after changes of the size and of the scene.
#include "render/ReferencePictureScene.h"
#include "support/ReferenceMarks.h"
#include "support/XvfbServer.h"

namespace {

using namespace reference_picture;
using reference::Picture;
using reference::Renderer;
using reference::Shading;

void ExpectAllShadings(TwoRenderers& both, const std::string& name) {
    Renderer renderer(both.scene);
    ExpectSamePicture(renderer.Draw(Shading::Flat), both.Draw(KV_ScenePane::DrawModeFlat), {}, name + "_flat");
    ExpectSamePicture(renderer.Draw(Shading::Gouraud), both.Draw(KV_ScenePane::DrawModeGouraud), {}, name + "_gouraud");
    ExpectSamePicture(renderer.Draw(Shading::PerPixel), both.Draw(KV_ScenePane::DrawModePerPixel), {},
                      name + "_perpixel");
    both.SetShadows({0.1, 0.05, 0.3});
    ExpectSamePicture(renderer.Draw(Shading::Shadowed), both.Draw(KV_ScenePane::DrawModeGouraud), {}, name + "_shadow");
    both.Methods().SetShadowMode(0);
}

TEST(ReferenceWindows, ShowTheSameInX11) {
    XvfbServer::Shared();
    KV_ScenePane::WindowRequest request;
    request.kind = KV_ScenePane::WindowRequest::Kind::TopLevel;
    for (const PictureSize& size : {PictureSize{333, 777}, PictureSize{640, 480}}) {
        TwoRenderers both(Gallery(), size, Turned(), request);
        ExpectAllShadings(both, std::string("X11_").append(std::to_string(size.width)));
    }
}

TEST(ReferenceWindows, ShowTheSameAfterAResize) {
    TwoRenderers both(Gallery(), {640, 480}, Turned());
    (void)both.Draw(KV_ScenePane::DrawModeGouraud);
    for (const PictureSize& size : {PictureSize{333, 777}, PictureSize{800, 301}, PictureSize{640, 480}}) {
        both.Methods().SetSize(static_cast<std::int16_t>(size.width), static_cast<std::int16_t>(size.height));
        both.scene.camera.width = size.width;
        both.scene.camera.height = size.height;
        ExpectAllShadings(both, std::string("Resized_").append(std::to_string(size.width)));
    }
}

TEST(ReferenceWindows, ShowWhatChangesInTheScene) {
    std::vector<HostObject> objects = Gallery();
    TwoRenderers both(objects, {400, 300}, Turned());
    (void)both.Draw(KV_ScenePane::DrawModeGouraud);
    // A hidden object, another colour, a mix of colours that ends, one object less.
    both.Methods().SetObjectVisibility(4, 0);
    objects[4].visible = false;
    both.Methods().SetObjectColor(1, 0x20C0F0);
    objects[1].color = 0x20C0F0;
    both.Methods().SetObjectColor(0, 0x20C0F0);
    both.Methods().SetBlendObjectColors(0, 1);
    objects[0].color = 0x20C0F0;
    objects[0].blend = true;
    both.Methods().SetBlendObjectColors(3, 0);
    objects[3].blend = false;
    both.Methods().DeleteObject(7);
    objects.erase(objects.begin() + 7);
    both.scene.objects.clear();
    for (const HostObject& object : objects) both.scene.objects.push_back(ToReference(object));
    ExpectAllShadings(both, "Changed");
}

TEST(ReferenceWindows, ShowTheSameAwayFromEdgesWithSamples) {
    KV_ScenePane::WindowRequest request;
    request.samples = 4;
    const std::vector<HostObject> objects = {Ball({{-2.0, 0.0, 0.5}, 2.5, Paint::Colored}, 10, 6),
                                             Bowl({{2.5, 0.5, 0.0}, 2.5, Paint::Colored}, 10, 5),
                                             Plate({{0.0, 0.0, -3.0}, 6.0, Paint::Grey, 0x60E0F0}, 3)};
    TwoRenderers both(objects, {640, 480}, Turned(), request);
    Renderer renderer(both.scene);
    const auto expect = [&](Shading shading, KV_ScenePane::DrawMode mode, const std::string& name) {
        Picture expected = renderer.Draw(shading);
        renderer.MaskEdges(&expected);
        ExpectSamePicture(expected, both.Draw(mode), {}, "Samples_" + name);
    };
    expect(Shading::Flat, KV_ScenePane::DrawModeFlat, "flat");
    expect(Shading::Gouraud, KV_ScenePane::DrawModeGouraud, "gouraud");
    expect(Shading::PerPixel, KV_ScenePane::DrawModePerPixel, "perpixel");
    both.SetShadows({0.1, 0.05, 0.3});
    expect(Shading::Shadowed, KV_ScenePane::DrawModeGouraud, "shadow");
}

/// Whether the frame of this mode is the expected one. Each drawing is compared with one that is computed once.
class FrameCheck {
public:
    explicit FrameCheck(TwoRenderers& both) : m_both(both), m_renderer(both.scene) {
        for (const auto shading : {Shading::Flat, Shading::Gouraud, Shading::PerPixel, Shading::Shadowed})
            m_solid.push_back(m_renderer.Draw(shading));
        m_background = m_renderer.DrawBackground();
    }
    void Expect(KV_ScenePane::DrawMode mode, bool shadows) {
        m_both.Methods().SetShadowMode(shadows ? 1 : 0);
        const auto drawn = m_both.Draw(mode);
        const std::string name = "mode " + std::to_string(mode) + (shadows ? " with shadows" : "");
        switch (mode) {
            case KV_ScenePane::DrawModePoints:
                return ExpectMarks(WithoutColors(PointMarks(m_both.scene, 2.0)), drawn, name);
            case KV_ScenePane::DrawModeWireframe:
                return ExpectMarks(WithoutColors(EdgeMarks(m_both.scene)), drawn, name);
            case KV_ScenePane::DrawModeBoundingBoxes:
                return ExpectMarks(WithoutColors(BoxMarks(m_both.scene)), drawn, name);
            case KV_ScenePane::DrawModeShadowMap:
                return ExpectSolid(m_renderer.DrawShadowMap(), drawn, name);
            case KV_ScenePane::DrawModeNothing:
                return ExpectSolid(m_background, drawn, name);
            default:
                break;
        }
        const bool nothing = shadows && mode == KV_ScenePane::DrawModePerPixel;
        const std::size_t shading = mode == KV_ScenePane::DrawModeFlat      ? 0
                                    : mode == KV_ScenePane::DrawModeGouraud ? 1
                                                                            : 2;
        ExpectSolid(nothing ? m_background : m_solid[shadows ? 3 : shading], drawn, name);
    }

private:
    static void ExpectSolid(const Picture& expected, const std::vector<std::uint32_t>& drawn, const std::string& name) {
        const auto c = Compare(expected, drawn);
        EXPECT_EQ(c.wrong, 0) << name << ": " << c.firstWrong;
    }
    void ExpectMarks(const std::vector<reference::Mark>& marks, const std::vector<std::uint32_t>& drawn,
                     const std::string& name) {
        const auto c = CompareMarks(marks, m_background, drawn);
        EXPECT_EQ(c.missing + c.foreign, 0) << name << ": " << c.first;
    }

    TwoRenderers& m_both;
    Renderer m_renderer;
    std::vector<Picture> m_solid;
    Picture m_background;
};

TEST(ReferenceWindows, ShowNothingOfTheModeBefore) {
    TwoRenderers both(Gallery(), {257, 129}, Turned());
    both.SetShadows({0.1, 0.05, 0.3});
    FrameCheck check(both);
    // Every mode after every mode, and twice.
    for (int before = KV_ScenePane::DrawModePoints; before <= KV_ScenePane::DrawModeShadowMap; ++before)
        for (int after = KV_ScenePane::DrawModePoints; after <= KV_ScenePane::DrawModeShadowMap; ++after) {
            SCOPED_TRACE(testing::Message() << "after mode " << before);
            check.Expect(static_cast<KV_ScenePane::DrawMode>(before), (before + after) % 3 == 0);
            check.Expect(static_cast<KV_ScenePane::DrawMode>(after), (before + after) % 2 == 0);
        }
}

constexpr int kShotSide = 2048, kStep = 8;

/// One pixel of each square of a screenshot.
std::vector<std::uint32_t> ThinnedShot(KV_ScenePane::_DKV_ScenePane& methods) {
    std::vector<std::uint32_t> shot(std::size_t{kShotSide} * kShotSide), thinned;
    methods.CaptureScreenShot(shot.data());
    for (std::size_t row = kStep / 2; row < kShotSide; row += kStep)
        for (std::size_t column = kStep / 2 - 1; column < kShotSide; column += kStep)
            thinned.push_back(shot[row * kShotSide + column]);
    return thinned;
}

TEST(ReferenceWindows, AreAsBeforeAfterAScreenshot) {
    TwoRenderers both(Gallery(), {640, 480}, Turned());
    both.SetBackground({0x805040, 0x305040, 0x201008, 0x20F008});
    const auto shot = ThinnedShot(both.Methods());
    ExpectAllShadings(both, "AfterScreenshot");

    // The picture has the view's direction and zoom and shows the box of the scene with a margin of two units.
    const auto [low, high] = VisibleBounds(both.scene);
    const Vec size = high - low + Vec{4.0, 4.0, 4.0};
    both.scene.camera.center = 0.5 * (low + high);
    both.scene.camera.sceneSize = std::sqrt(Dot(size, size));
    both.scene.camera.width = both.scene.camera.height = kShotSide / kStep;
    const Picture expected = Renderer(both.scene, kStep).Draw(Shading::Gouraud);
    ExpectSamePicture(expected, shot, {}, "Screenshot");
}

}  // namespace
