// Shapes, the gallery, and the viewer that draws them.
#include "render/ReferencePictureScene.h"

#include <algorithm>
#include <cstdio>
#include <numbers>

#include "support/TestFolder.h"

namespace reference_picture {
namespace {

constexpr double kTurn = 2.0 * std::numbers::pi;

std::uint32_t ColorWord(Paint paint, double a, double b) {
    const auto byte = [](double part) { return static_cast<std::uint32_t>(std::clamp(part, 0.0, 255.0)); };
    const std::uint32_t r = byte(140.0 + 80.0 * std::sin(a)), g = byte(120.0 + 80.0 * std::cos(b));
    if (paint == Paint::Grey) return r << 16 | r << 8 | r;
    return r << 16 | g << 8 | byte(110.0 + 60.0 * std::sin(a + b));
}

KV_ScenePane::Vertex MakeVertex(const Vec& position, const Vec& normal, std::uint32_t color) {
    const auto f = [](double value) { return static_cast<float>(value); };
    return {f(position.x), f(position.y), f(position.z), f(normal.x), f(normal.y), f(normal.z), color, 0};
}

/// A ball from its south pole to the given share of the way to the north pole, the poles along an axis near z.
HostObject BallUpTo(const Shape& shape, int slices, int stacks, double share) {
    HostObject object;
    object.color = shape.color;
    object.mesh = KV_ScenePane::MeshBuffers(shape.paint != Paint::None);
    const Vec axis = reference::Unit({0.35, 0.2, 1.0}), side = reference::Unit(Cross(axis, {0.0, 1.0, 0.0}));
    const Vec across = Cross(axis, side);
    const auto add = [&](double polar, double around) {
        const Vec n = std::sin(polar) * (std::cos(around) * side + std::sin(around) * across) - std::cos(polar) * axis;
        const double radius = shape.radius * (1.0 + 0.04 * std::sin(3.0 * around) * std::sin(2.0 * polar));
        object.mesh.m_vVertices.push_back(
            MakeVertex(shape.center + radius * n, n, ColorWord(shape.paint, 2.0 * around, 3.0 * polar)));
    };
    const bool closed = share == 1.0;
    const int rings = closed ? stacks - 1 : stacks;
    add(0.0, 0.0);
    for (int ring = 1; ring <= rings; ++ring)
        for (int slice = 0; slice < slices; ++slice) add(share * 0.5 * kTurn * ring / stacks, kTurn * slice / slices);
    if (closed) add(0.5 * kTurn, 0.0);
    const int last = 1 + rings * slices;
    auto& triangles = object.mesh.m_vTriangles;
    for (int slice = 0; slice < slices; ++slice) {
        const int next = (slice + 1) % slices;
        triangles.push_back({{0, 1 + next, 1 + slice}});
        for (int ring = 0; ring + 1 < rings; ++ring) {
            const int low = 1 + ring * slices, high = low + slices;
            triangles.push_back({{low + slice, low + next, high + next}});
            triangles.push_back({{low + slice, high + next, high + slice}});
        }
        if (closed) triangles.push_back({{last - slices + slice, last - slices + next, last}});
    }
    return object;
}

Vec HostColor(std::uint32_t color) {
    return {(color & 0xFF) / 255.0, (color >> 8 & 0xFF) / 255.0, (color >> 16 & 0xFF) / 255.0};
}

/// A channel of a blended vertex: 15 % of its own colour and 85 % of the object's.
double Blended(double own, double ofObject) {
    constexpr float kOwn = 0.15F, kObject = 1.0F - kOwn;
    return std::floor((own * kOwn + kObject * ofObject) * 255.0) / 255.0;
}

/// Flat boxes get some thickness.
void Thicken(double* low, double* high) {
    if (*high - *low >= 0.0001) return;
    *low -= 0.01;
    *high += 0.01;
}

/// Prints after all tests how close the pictures were.
class Summary : public testing::Environment {
public:
    void Add(const reference::Comparison& c) {
        ++m_pictures;
        m_pixels += c.compared;
        m_masked += c.masked;
        m_largest = std::max(m_largest, c.largest);
        m_largestExact = std::max(m_largestExact, c.largestExact);
    }
    void TearDown() override {
        if (m_pictures == 0) return;
        std::printf(
            "%d pictures, %lld pixels compared, %lld masked; largest difference %d steps, %.3f before rounding\n",
            m_pictures, m_pixels, m_masked, m_largest, m_largestExact);
    }

private:
    int m_pictures = 0, m_largest = 0;
    long long m_pixels = 0, m_masked = 0;
    double m_largestExact = 0.0;
};
Summary& g_summary = *static_cast<Summary*>(testing::AddGlobalTestEnvironment(new Summary));

}  // namespace

HostObject Ball(const Shape& shape, int slices, int stacks) { return BallUpTo(shape, slices, stacks, 1.0); }

HostObject Bowl(const Shape& shape, int slices, int stacks) { return BallUpTo(shape, slices, stacks, 0.62); }

HostObject Plate(const Shape& shape, int cells) {
    HostObject object;
    object.color = shape.color;
    object.mesh = KV_ScenePane::MeshBuffers(shape.paint != Paint::None);
    const Vec normal = reference::Unit({0.1, -0.05, 1.0});
    for (int row = 0; row <= cells; ++row)
        for (int column = 0; column <= cells; ++column) {
            const double x = 2.0 * column / cells - 1.0, y = 2.0 * row / cells - 1.0;
            const Vec place = shape.center + shape.radius * Vec{x, y, -0.1 * x + 0.05 * y};
            object.mesh.m_vVertices.push_back(MakeVertex(place, normal, ColorWord(shape.paint, 3.0 * x, 4.0 * y)));
        }
    for (int row = 0; row < cells; ++row)
        for (int column = 0; column < cells; ++column) {
            const int a = row * (cells + 1) + column, b = a + cells + 1;
            object.mesh.m_vTriangles.push_back({{a, a + 1, b + 1}});
            object.mesh.m_vTriangles.push_back({{a, b + 1, b}});
        }
    return object;
}

std::vector<HostObject> Gallery() {
    std::vector<HostObject> objects;
    objects.push_back(Ball({{-3.4, 2.3, 0.0}, 1.6, Paint::Colored, 0x2060F0}));
    objects.push_back(Ball({{0.1, 2.4, 1.0}, 1.5, Paint::None, 0x4090E0}));
    objects.push_back(Ball({{3.5, 2.2, -0.5}, 1.7, Paint::Grey, 0x60E0F0}));
    objects.push_back(Ball({{-3.2, -2.2, 0.8}, 1.5, Paint::Colored, 0xC06030}));
    objects.back().blend = true;
    objects.push_back(Bowl({{0.0, -2.0, 0.5}, 1.7, Paint::Colored, 0xFFFFFF}));
    objects.push_back(Ball({{0.0, 0.0, 0.0}, 6.0, Paint::None, 0x0000FF}));
    objects.back().visible = false;
    objects.push_back(Ball({{3.0, -2.4, 0.0}, 1.4, Paint::Colored, 0xFFFFFF}));
    objects.push_back(Ball({{3.9, -1.5, 0.6}, 1.1, Paint::Grey, 0xFF80C0}));
    objects.push_back(Plate({{0.0, 0.0, -3.0}, 6.0, Paint::Colored, 0xFFFFFF}));
    return objects;
}

reference::Object ToReference(const HostObject& host) {
    reference::Object object;
    const Vec objectColor = HostColor(host.color);
    bool grey = true;
    object.boxMin = {1e30, 1e30, 1e30};
    object.boxMax = {-1e30, -1e30, -1e30};
    for (const KV_ScenePane::Vertex& v : host.mesh.GetVertices()) {
        const Vec place{static_cast<double>(v.x), static_cast<double>(v.y), static_cast<double>(v.z)};
        object.positions.push_back(place);
        object.normals.push_back({static_cast<double>(v.nx), static_cast<double>(v.ny), static_cast<double>(v.nz)});
        object.boxMin = {std::min(object.boxMin.x, place.x), std::min(object.boxMin.y, place.y),
                         std::min(object.boxMin.z, place.z)};
        object.boxMax = {std::max(object.boxMax.x, place.x), std::max(object.boxMax.y, place.y),
                         std::max(object.boxMax.z, place.z)};
        Vec color = (1.0 / 255.0) * reference::ColorOf(v.color);
        grey = grey && color.x == color.y && color.y == color.z;
        if (host.blend)
            color = {Blended(color.x, objectColor.x), Blended(color.y, objectColor.y), Blended(color.z, objectColor.z)};
        object.colors.push_back(host.mesh.HasColors() ? color : Vec{1.0, 1.0, 1.0});
    }
    Thicken(&object.boxMin.x, &object.boxMax.x);
    Thicken(&object.boxMin.y, &object.boxMax.y);
    Thicken(&object.boxMin.z, &object.boxMax.z);
    for (const KV_ScenePane::Triangle& t : host.mesh.GetTriangles())
        object.triangles.push_back({t.v[0], t.v[1], t.v[2]});
    if (!host.mesh.HasColors() || (grey && !host.blend)) object.tint = objectColor;
    object.visible = host.visible;
    return object;
}

Bounds VisibleBounds(const reference::Scene& scene) {
    Vec low{1e30, 1e30, 1e30}, high{-1e30, -1e30, -1e30};
    for (const reference::Object& object : scene.objects) {
        if (!object.visible) continue;
        low = {std::min(low.x, object.boxMin.x), std::min(low.y, object.boxMin.y), std::min(low.z, object.boxMin.z)};
        high = {std::max(high.x, object.boxMax.x), std::max(high.y, object.boxMax.y),
                std::max(high.z, object.boxMax.z)};
    }
    return {low, high};
}

std::vector<PictureSize> Sizes() { return {{333, 777}, {640, 480}, {300, 300}, {257, 129}, {37, 23}}; }

Demand DemandFor(const PictureSize& size) {
    if (size.width * size.height < 1000) return {0.25, 0.04};
    return {};
}

PictureView FromTheFront() { return {.name = "FromTheFront", .canned = KV_ScenePane::ViewFromPlusZYUp}; }

PictureView Oblique() { return {.name = "Oblique", .canned = KV_ScenePane::ViewObliqueZUp}; }

PictureView Turned() {
    const Vec back = reference::Unit({0.3, -0.4, 0.9});
    const Vec right = reference::Unit(Cross({0.2, 1.0, 0.1}, back));
    return {"Turned", -1, right, Cross(back, right), {0.7, -0.5, 0.4}, 1.6F};
}

std::string NameOf(const Case& picture) {
    return std::string(picture.view.name) + "_" + std::to_string(picture.size.width) + "x" +
           std::to_string(picture.size.height);
}

void PrintTo(const Case& picture, std::ostream* out) { *out << NameOf(picture); }

std::vector<Case> AllCases() {
    std::vector<Case> cases;
    for (const PictureSize& size : Sizes())
        for (const PictureView& view : {FromTheFront(), Oblique(), Turned()}) cases.push_back({size, view});
    return cases;
}

std::vector<Case> MainCases() {
    std::vector<Case> cases = CasesOf(Turned());
    cases.push_back({Sizes().front(), FromTheFront()});
    cases.push_back({Sizes().front(), Oblique()});
    return cases;
}

std::vector<Case> CasesOf(const PictureView& view) {
    std::vector<Case> cases;
    for (const PictureSize& size : Sizes()) cases.push_back({size, view});
    return cases;
}

TwoRenderers::TwoRenderers(const std::vector<HostObject>& objects, const PictureSize& size, const PictureView& view,
                           KV_ScenePane::WindowRequest request) {
    TestFolder();
    request.width = size.width;
    request.height = size.height;
    std::string reason;
    m_pane = KV_ScenePane::CreateScenePane(request, &reason);
    if (m_pane == nullptr) throw std::runtime_error("no viewer: " + reason);
    for (std::size_t i = 0; i < objects.size(); ++i) {
        const auto index = static_cast<std::int16_t>(i);
        Methods().ImportMeshedMeasurement(&objects[i].mesh, L"", static_cast<std::int32_t>(objects[i].color));
        Methods().SetBlendObjectColors(index, objects[i].blend ? 1 : 0);
        Methods().SetObjectVisibility(index, objects[i].visible ? 1 : 0);
        scene.objects.push_back(ToReference(objects[i]));
    }
    scene.camera.width = size.width;
    scene.camera.height = size.height;
    SetBackground({0x805040, 0x805040, 0x201008, 0x201008});
    SetView(view);
}

void TwoRenderers::FitReference() {
    const auto [low, high] = VisibleBounds(scene);
    scene.camera.center = 0.5 * (low + high);
    scene.camera.sceneSize = std::sqrt(Dot(high - low, high - low));
}

void TwoRenderers::SetView(const PictureView& view) {
    Methods().CenterView();
    FitReference();
    const double s = std::sqrt(2.0) * 0.5;
    if (view.canned >= 0) {
        Methods().SetViewMode(static_cast<std::int16_t>(view.canned));
        if (view.canned == KV_ScenePane::ViewObliqueZUp) {
            scene.camera.right = {-s, s, 0.0};
            scene.camera.up = {-0.5, -0.5, s};
        }
        return;
    }
    const auto f = [](double value) { return static_cast<float>(value); };
    const Vec center = scene.camera.center + view.fromFit;
    ASSERT_EQ(Methods().SetViewParams(f(view.right.x), f(view.right.y), f(view.right.z), f(view.up.x), f(view.up.y),
                                      f(view.up.z), f(center.x), f(center.y), f(center.z), view.magnification, 0),
              KV_ScenePane::kVariantTrue);
    scene.camera.right = view.right;
    scene.camera.up = view.up;
    scene.camera.center = center;
    scene.camera.zoom = 1.0 / static_cast<double>(view.magnification);
}

void TwoRenderers::SetShadows(const Vec& color) {
    const auto f = [](double value) { return static_cast<float>(value); };
    Methods().SetShadowMode(1);
    Methods().SetShadowColor(f(color.x), f(color.y), f(color.z));
    scene.lighting.shadowColor = color;
}

void TwoRenderers::SetReflection(float brightness, float shining) {
    Methods().SetReflection(brightness, shining);
    scene.lighting.reflection = static_cast<double>(brightness);
    scene.lighting.shininess = 1.0 - std::trunc((1.0 - static_cast<double>(shining)) * -127.0);
}

void TwoRenderers::SetBackground(const std::array<std::uint32_t, 4>& corners) {
    const auto word = [&](std::size_t i) { return static_cast<std::int32_t>(corners[i]); };
    Methods().SetBackgroundColorsFourCorners(word(0), word(1), word(2), word(3));
    scene.background = {HostColor(corners[0]), HostColor(corners[1]), HostColor(corners[2]), HostColor(corners[3])};
}

std::vector<std::uint32_t> TwoRenderers::Draw(KV_ScenePane::DrawMode mode) {
    Methods().SetDrawMode(mode);
    KV_ScenePane::Picture picture;
    EXPECT_TRUE(m_pane->CapturePicture(&picture));
    EXPECT_EQ(picture.width, scene.camera.width);
    EXPECT_EQ(picture.height, scene.camera.height);
    return picture.pixels;
}

void ExpectSamePicture(const reference::Picture& expected, const std::vector<std::uint32_t>& drawn,
                       const Demand& demand, const std::string& name) {
    ASSERT_EQ(drawn.size(), expected.colors.size());
    const reference::Comparison c = Compare(expected, drawn);
    const double pixels = static_cast<double>(drawn.size());
    const auto background = c.comparedOf.find(-1);
    const int objects = c.compared - (background == c.comparedOf.end() ? 0 : background->second);
    EXPECT_EQ(c.wrong, 0) << name << ": " << c.firstWrong;
    EXPECT_LE(c.masked / pixels, demand.largestMask) << name;
    EXPECT_GE(objects / pixels, demand.smallestObjects) << name;
    g_summary.Add(c);
    if (c.wrong == 0) return;
    WriteBeside("/tmp/" + name + ".ppm", expected, drawn);
    std::printf("Drawn, expected and difference are in /tmp/%s.ppm\n", name.c_str());
}

}  // namespace reference_picture
