// Fifteen pictures of what drivers differ in, compared with those of llvmpipe. ctest runs this program once per
// driver: first on llvmpipe with KV_PICTURES_WRITE=1, which writes the references into the folder $KV_PICTURES, then on
// the others. $KV_DRIVER is what GL_RENDERER must name. A wrong picture and its wrong pixels are written beside the
// reference.
#include <cmath>
#include <filesystem>
#include <iostream>
#include <string_view>

#include "render/FrameWitness.h"
#include "render/SceneFixture.h"
#include "support/PictureDifference.h"

using KV_ScenePane::Picture;
namespace difference = picture_difference;
using namespace lighting;

namespace {

// ---- files

std::string Environment(const char* name) {
    const char* const text = std::getenv(name);
    return text == nullptr ? "" : text;
}

bool WritesReferences() { return Environment("KV_PICTURES_WRITE") == "1"; }

void WritePpm(const std::string& file, const Picture& picture) {
    std::ofstream out(file, std::ios::binary);
    out << "P6\n" << picture.width << " " << picture.height << "\n255\n";
    for (const std::uint32_t p : picture.pixels)
        out.put(static_cast<char>(p >> 16)).put(static_cast<char>(p >> 8)).put(static_cast<char>(p));
    if (!out.flush()) throw std::runtime_error("cannot write " + file);
}

/// Of WritePpm(); without pixels when there is no such file.
Picture ReadPpm(const std::string& file) {
    std::ifstream in(file, std::ios::binary);
    std::string type;
    Picture picture;
    int largest = 0;
    in >> type >> picture.width >> picture.height >> largest;
    in.get();
    if (!in) return {};
    for (int i = 0; i < picture.width * picture.height; ++i) {
        std::array<char, 3> rgb{};
        in.read(rgb.data(), rgb.size());
        std::uint32_t pixel = 0xFF;
        for (const char c : rgb) pixel = pixel << 8 | static_cast<std::uint8_t>(c);
        picture.pixels.push_back(pixel);
    }
    return in ? picture : Picture{};
}

// ---- meshes

/// Heights over the square from -1 to 1: a hill with a dent, so that it casts shadows and has steep and flat parts.
double Height(double x, double y) {
    return 0.9 * std::exp(-3 * (x * x + y * y)) - 0.5 * std::exp(-30 * (x * x + y * y));
}

Vec3 NormalAt(double x, double y) {
    constexpr double kDelta = 1e-4;
    const Vec3 n{(Height(x - kDelta, y) - Height(x + kDelta, y)) / (2 * kDelta),
                 (Height(x, y - kDelta) - Height(x, y + kDelta)) / (2 * kDelta), 1};
    return Unit(n);
}

constexpr int kCells = 12;  // along a side of a hill

/// A hill around a point, two units wide times a scale; vertex colours run from red to blue and green.
std::shared_ptr<Mesh> Hill(const Vec3& at, double scale, bool hasColors) {
    std::vector<Vertex> vertices;
    std::vector<Triangle> triangles;
    for (int j = 0; j <= kCells; ++j)
        for (int i = 0; i <= kCells; ++i) {
            const double x = 2.0 * i / kCells - 1, y = 2.0 * j / kCells - 1;
            const auto red = static_cast<std::uint32_t>(255 * i / kCells),
                       green = static_cast<std::uint32_t>(255 * j / kCells);
            const Vec3 position{at[0] + scale * x, at[1] + scale * y, at[2] + scale * Height(x, y)};
            vertices.push_back(MakeVertex(position, NormalAt(x, y), red << 16 | green << 8 | (255 - red)));
        }
    const auto index = [](int i, int j) { return j * (kCells + 1) + i; };
    for (int j = 0; j < kCells; ++j)
        for (int i = 0; i < kCells; ++i) {
            triangles.push_back({{index(i, j), index(i + 1, j), index(i + 1, j + 1)}});
            triangles.push_back({{index(i, j), index(i + 1, j + 1), index(i, j + 1)}});
        }
    return std::make_shared<Mesh>(std::move(vertices), std::move(triangles), std::wstring(), hasColors);
}

/// The hill over the picture of a coloured checkerboard of 8 x 8 fields.
void AddTexture(Mesh& mesh) {
    std::vector<std::uint8_t> rgba;
    for (int y = 0; y < 8; ++y)
        for (int x = 0; x < 8; ++x)
            for (const int channel : {(x + y) % 2 == 0 ? 240 : 60, 30 * x, 30 * y, 255})
                rgba.push_back(static_cast<std::uint8_t>(channel));
    for (const Triangle& triangle : mesh.m_vTriangles)
        for (const std::int32_t vertex : triangle.v)
            mesh.m_vTexCoords.push_back({static_cast<float>(vertex % (kCells + 1)) / kCells,
                                         static_cast<float>(vertex / (kCells + 1)) / kCells});
    CreateTexture(mesh, 8, 8, rgba.data(), {});
}

// ---- scenes

class DriverPictures : public SceneTest {
protected:
    explicit DriverPictures(WindowKind kind = WindowKind::OffScreen, int width = 320, int height = 240)
        : SceneTest(kind, width, height) {
        EXPECT_TRUE(pane->MakeContextCurrent());
        const std::string renderer(reinterpret_cast<const char*>(glGetString(GL_RENDERER)));
        EXPECT_TRUE(renderer.starts_with(Environment("KV_DRIVER"))) << "the driver is " << renderer;
        pane->SetBackgroundColors(static_cast<std::int32_t>(HostColor(90, 110, 140)),
                                  static_cast<std::int32_t>(HostColor(20, 20, 30)));
        LookFromTheSide();
    }

    /// Turned about all axes, so that no edge runs along rows or columns of pixels.
    void LookFromTheSide() {
        const double a = 0.4, b = 0.5;
        const auto f = [](double value) { return static_cast<float>(value); };
        pane->m_fAxisX = {f(std::cos(a)), f(std::sin(a)), 0};
        pane->m_fAxisY = {f(-std::sin(a) * std::cos(b)), f(std::cos(a) * std::cos(b)), f(std::sin(b))};
        pane->m_fAxisZ = {f(std::sin(a) * std::sin(b)), f(-std::cos(a) * std::sin(b)), f(std::cos(b))};
        pane->SetupViewMatrices();
    }

    /// Three hills: with vertex colours, with a texture, and one whose vertex colours blend with its colour; one plain
    /// square below them.
    void AddMeshes() {
        ASSERT_TRUE(pane->MakeContextCurrent());
        const auto colored = Hill({-2.6, -1.2, 0}, 1.7, true), textured = Hill({2.4, -1.0, 0.2}, 1.7, false),
                   blended = Hill({0, 2.2, 0.1}, 1.7, true);
        AddTexture(*textured);
        blended->m_fColor[0] = 1, blended->m_fColor[1] = 0.6f, blended->m_fColor[2] = 0.1f;
        blended->m_bBlendObjectColor = 1;
        for (const auto& mesh : {colored, textured, blended}) pane->m_vpMeshes.push_back(mesh);
        Add({.center = {0, 0, -0.8}, .half = 4.5}, {0.7, 0.75, 0.8});
    }

    /// Draws a frame and compares it.
    /// @param edges  the largest part of the picture that may lie in the mask
    void Check(const std::string& name, double edges) {
        Frame();
        Check(name, edges, picture);
    }
    void Check(const std::string& name, double edges, const Picture& drawn) {
        const std::string file = (std::filesystem::path(Environment("KV_PICTURES")) / name).string();
        if (WritesReferences()) {
            // A blank reference would hold nothing to compare: something must be drawn, and the mask must leave most.
            const double share = difference::ShareOf(difference::EdgeMask(drawn));
            std::cout << name << ": " << 100 * share << " % of the picture are beside edges\n";
            EXPECT_GT(share, 0.01);
            EXPECT_LT(share, edges);
            WritePpm(file + ".ppm", drawn);
            return;
        }
        const Picture reference = ReadPpm(file + ".ppm");
        ASSERT_FALSE(reference.pixels.empty()) << "there is no reference " << file << ".ppm";
        EXPECT_LT(difference::ShareOf(difference::EdgeMask(reference)), edges);
        const difference::Difference found = difference::Compare(reference, drawn);
        std::cout << name << ": " << found << "\n";
        EXPECT_TRUE(found.IsAllowed()) << found;
        if (found.IsAllowed()) return;
        const std::string wrong = file + "." + Environment("KV_DRIVER");
        WritePpm(wrong + ".ppm", drawn);
        Picture where = drawn;
        for (std::size_t i = 0; i < where.pixels.size(); ++i)
            where.pixels[i] = found.isWrong[i] != 0 ? 0xFFFF0000 : 0xFF000000;
        WritePpm(wrong + ".wrong.ppm", where);
        std::cout << "see " << wrong << ".ppm and .wrong.ppm\n";
    }
};

TEST_F(DriverPictures, Points) {
    AddMeshes();
    pane->m_fPointCloudSize = 3;
    ASSERT_TRUE(pane->MakeContextCurrent());
    pane->m_mapFreePoints[1] = MakePoint(1, {-3, 3, 2}, {0, 1, 0});
    pane->m_mapFreePoints[2] = MakePoint(2, {3.5, 2.5, 2}, {1, 0.2, 0.2});
    pane->m_mapFreePoints[2].alpha = 0.5f;
    pane->m_nDrawMode = KV_ScenePane::DrawModePoints;
    Check("Points", 0.2);
}

TEST_F(DriverPictures, Wireframe) {
    AddMeshes();
    pane->m_nDrawMode = KV_ScenePane::DrawModeWireframe;
    Check("Wireframe", 0.35);
}

TEST_F(DriverPictures, Flat) {
    AddMeshes();
    pane->m_nDrawMode = KV_ScenePane::DrawModeFlat;
    Check("Flat", 0.3);
}

TEST_F(DriverPictures, GouraudWithSamples) {
    ASSERT_TRUE(pane->MakeContextCurrent());
    pane->RecreateOpenglContext(3, 3, Get(GL_MAX_SAMPLES) >= 4 ? 4 : 0);
    Frame();  // adopts the size of the window
    Look(camera.width, camera.height);
    LookFromTheSide();
    AddMeshes();
    Check("GouraudWithSamples", 0.35);
}

TEST_F(DriverPictures, PerPixel) {
    AddMeshes();
    pane->m_nDrawMode = KV_ScenePane::DrawModePerPixel;
    Check("PerPixel", 0.35);
}

// The programs are cut by GL_CLIP_PLANE0 (docs/decisions/clip-plane-per-pixel.md). The plane itself with a picked
// sphere: translucent over the hills, with axis and circle.
TEST_F(DriverPictures, PerPixelAndClipPlane) {
    AddMeshes();
    pane->m_nDrawMode = KV_ScenePane::DrawModePerPixel;
    pane->SetClipPlaneColor(static_cast<std::int32_t>(HostColor(220, 160, 60)),
                            static_cast<std::int32_t>(HostColor(40, 200, 220)),
                            static_cast<std::int32_t>(HostColor(200, 230, 120)));
    pane->m_clipPlane.SetRadiusFromExtent(3.2);
    pane->m_clipPlane.OnPicked(1);
    pane->m_bClipPlaneActive = pane->m_bClipPlaneVisible = 1;
    pane->SetClipPlane(-0.4f, 0.3f, -0.35f, 0.25f, -0.2f, 0.9f);
    Check("PerPixelAndClipPlane", 0.35);
}

/// In a window, of odd size.
class DriverPicturesInAWindow : public DriverPictures {
protected:
    DriverPicturesInAWindow() : DriverPictures(WindowKind::TopLevel, 333, 277) {}
};

TEST_F(DriverPicturesInAWindow, ShadowsAndClipPlane) {
    AddMeshes();
    pane->m_bShadowEnabled = 1;
    pane->m_fShadowColor = {0.1f, 0, 0.3f};
    pane->m_clipPlane.SetCenter({-3, 0, 0});
    pane->m_clipPlane.SetNormal({1, 0.3f, 0});
    pane->m_bClipPlaneActive = 1;
    Check("ShadowsAndClipPlane", 0.3);
}

// The comparison sees the fault that it was made for: the shadow program shades front faces as back faces.
TEST_F(DriverPictures, WithGreyFrontFacesAreFound) {
    AddMeshes();
    pane->m_bShadowEnabled = 1;
    Frame();
    const Picture right = picture;
    for (const auto& mesh : pane->m_vpMeshes) {
        for (Triangle& triangle : mesh->m_vTriangles) std::swap(triangle.v[1], triangle.v[2]);
        for (std::size_t i = 0; i + 2 < mesh->m_vTexCoords.size(); i += 3)
            std::swap(mesh->m_vTexCoords[i + 1], mesh->m_vTexCoords[i + 2]);
        mesh->MarkBuffersDirty();
    }
    Frame();
    const difference::Difference found = difference::Compare(right, picture);
    EXPECT_FALSE(found.IsAllowed()) << found;
    EXPECT_GT(found.wrong, 5000) << found;
}

TEST_F(DriverPictures, BoxesTextAndOverlays) {
    AddMeshes();
    pane->m_nDrawMode = KV_ScenePane::DrawModeBoundingBoxes;
    // Opaque at one side and half transparent at the other, at whole pixels and between them.
    std::vector<std::uint8_t> image;
    for (int i = 0; i < 40 * 30; ++i)
        for (const int channel : {i % 40 < 20 ? 255 : 0, 128, i < 600 ? 0 : 255, i % 40 < 20 ? 255 : 128})
            image.push_back(static_cast<std::uint8_t>(channel));
    pane->AddOverlayData(image.data(), 40, 30, 0, 1, 0, -1, 7, -9);
    pane->AddOverlayData(image.data(), 40, 30, 1, 1, -1, -1, -10.5f, -8.5f);
    FrameWitness witness(*pane);
    witness.inside = [&] {
        glPushAttrib(GL_CURRENT_BIT);
        for (int font = 0; font < 3; ++font) {
            glColor3f(1, 1, font == 1 ? 0.0f : 1.0f);
            glWindowPos2i(10 + 35 * font, 150);
            pane->m_textDraw.PrintText(u"gA8", font);
        }
        glPopAttrib();
    };
    Check("BoxesTextAndOverlays", 0.2);
}

TEST_F(DriverPicturesInAWindow, Decorations) {
    AddMeshes();
    // So alike that the background between them is no edge for the comparison.
    const auto color = [](std::uint32_t r, std::uint32_t g, std::uint32_t b) {
        return static_cast<std::int32_t>(HostColor(r, g, b));
    };
    pane->SetBackgroundColorsFourCorners(color(150, 80, 80), color(80, 150, 80), color(80, 80, 150),
                                         color(150, 150, 80));
    pane->m_nShowAxes = 1;
    pane->m_nShowArrow = 1;
    pane->m_nArrowAngle = 30;
    pane->m_nPickMode = KV_ScenePane::PickModeCross;
    Check("Decorations", 0.35);
}

// Balls, lines, and needles with their numbers, partly behind the hills.
TEST_F(DriverPicturesInAWindow, Markers) {
    AddMeshes();
    const auto color = [](std::uint32_t r, std::uint32_t g, std::uint32_t b) {
        return static_cast<std::int32_t>(HostColor(r, g, b));
    };
    pane->SetPickMode(KV_ScenePane::PickModePoints);
    pane->m_bPickPointValid = 1;
    pane->SetPickRadius(0.35f);
    pane->AddPickPointSphere(-3, 2, 1, color(220, 40, 40));
    pane->AddPickPointSphere(3.5f, 2.5f, -0.8f, color(40, 200, 60));  // half below the square
    pane->SetLine3DDrawingMode(-1);
    const float line[] = {-4, -3, 1.2f, -1, 0.5f, 1.2f, 1, -0.5f, 0.3f, 4, 3, 1};
    pane->CreateLine3D(1, 4, line);
    pane->SetNeedleDrawingMode(-1);
    pane->SetNeedleRenderParameters(2, 0.3f, color(230, 200, 30), 0.12f, color(80, 80, 80), 0.15f, color(40, 40, 220),
                                    color(30, 220, 220));
    pane->CreateNeedle(4, 2.4f, -1.0f, 0.9f, 3.0f, -2.5f, 2.2f);
    pane->CreateNeedle(27, -2.6f, -1.2f, 0.7f, -3.4f, -2.6f, 2.0f);
    pane->SelectNeedle(27);
    Check("Markers", 0.35);
}

// Points of both sides of an alignment, with needles and numbers.
TEST_F(DriverPictures, PickedPoints) {
    AddMeshes();
    pane->ResetVariableObjects();
    pane->AddVariableObject(0);
    pane->AlignPickPoints();
    const auto pick = [&](float x, float y, float z) {
        std::int32_t windowX = 0, windowY = 0;
        ASSERT_TRUE(pane->ProjectPoint(x, y, z, &windowX, &windowY));
        using Kind = KV_ScenePane::MouseInput::Kind;
        pane->SendMouse({Kind::LeftDown, KV_ScenePane::kMouseLeft, windowX, windowY, 0});
        pane->SendMouse({Kind::LeftUp, 0, windowX, windowY, 0});
    };
    for (const auto& [x, y] : {std::pair{-2.2f, -1.4f}, {-3.4f, -0.8f}, {-2.5f, 0.1f}}) pick(x, y, 0.3f);
    pane->SendKey({true, KV_ScenePane::kKeySpace});
    pick(2.1f, -1.3f, 0.5f);
    pick(0.2f, 2.6f, 0.4f);
    const auto picks = pane->GetAlignmentPicks();
    ASSERT_EQ(picks.moving.size(), 3u);
    ASSERT_EQ(picks.fixed.size(), 2u);
    Check("PickedPoints", 0.35);
}

// Both tints over hills and square, lines over everything, and the background around them as it was.
TEST_F(DriverPictures, FreehandLasso) {
    AddMeshes();
    pane->m_vpMeshes.back()->m_iVisible = 0;  // the square leaves no background
    pane->SetLassoCuttingColors(static_cast<std::int32_t>(HostColor(230, 40, 40)), 0.6f,
                                static_cast<std::int32_t>(HostColor(40, 80, 230)), 0.3f);
    pane->StartSegmentation(KV_ScenePane::FreehandInside);
    const auto send = [&](KV_ScenePane::MouseInput::Kind kind, std::uint32_t flags, int x, int y) {
        pane->SendMouse({kind, flags, x, y, 0});
    };
    using Kind = KV_ScenePane::MouseInput::Kind;
    send(Kind::LeftDown, KV_ScenePane::kMouseLeft, 250, 110);
    for (int i = 1; i <= 80; ++i)
        send(Kind::Move, KV_ScenePane::kMouseLeft, 160 + static_cast<int>(90 * std::cos(0.06 * i)),
             110 + static_cast<int>(70 * std::sin(0.06 * i)));
    send(Kind::LeftUp, 0, 160, 60);
    send(Kind::Move, 0, 200, 20);  // the rubber band
    Check("FreehandLasso", 0.35);
}

TEST_F(DriverPicturesInAWindow, PolygonLasso) {
    AddMeshes();
    pane->StartSegmentation(KV_ScenePane::PolygonInside);
    using Kind = KV_ScenePane::MouseInput::Kind;
    for (const auto& [x, y] : {std::pair{30, 40}, {290, 60}, {250, 240}, {140, 100}})
        pane->SendMouse({Kind::LeftDown, KV_ScenePane::kMouseLeft, x, y, 0});
    pane->SendMouse({Kind::Move, 0, 60, 230, 0});
    Check("PolygonLasso", 0.35);
}

TEST_F(DriverPictures, ShadowMap) {
    AddMeshes();
    pane->m_nDrawMode = KV_ScenePane::DrawModeShadowMap;
    Check("ShadowMap", 0.1);
}

/// Means of 8 x 8 pixels.
Picture Reduced(const std::vector<std::uint32_t>& shot, int side) {
    constexpr int kBlock = 8;
    Picture picture{side / kBlock, side / kBlock, {}};
    for (int y = 0; y < picture.height; ++y)
        for (int x = 0; x < picture.width; ++x) {
            std::uint32_t pixel = 0xFF;
            for (const int shift : {16, 8, 0}) {
                std::uint32_t sum = 0;
                for (int i = 0; i < kBlock * kBlock; ++i) {
                    const int at = (y * kBlock + i / kBlock) * side + x * kBlock + i % kBlock;
                    sum += shot.at(static_cast<std::size_t>(at)) >> shift & 0xFF;
                }
                pixel = pixel << 8 | (sum + kBlock * kBlock / 2) / (kBlock * kBlock);
            }
            picture.pixels.push_back(pixel);
        }
    return picture;
}

TEST_F(DriverPictures, Screenshot) {
    AddMeshes();
    std::int32_t width = 0, height = 0;
    pane->GetScreenShotResolution(&width, &height);
    ASSERT_EQ(width, height);
    std::vector<std::uint32_t> shot(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    pane->CaptureScreenShot(shot.data());
    Check("Screenshot", 0.15, Reduced(shot, width));
}

}  // namespace
