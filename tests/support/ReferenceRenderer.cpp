// Casts the samples of each pixel, shades them, and masks the pixels whose samples differ.
#include "support/ReferenceRenderer.h"

namespace reference {
namespace {

/// Distance of the outer samples from the centre of a pixel along x and y: several times the grid of 1/256 pixel to
/// which drivers round the corners of triangles.
constexpr double kAside = 1.0 / 64.0;
/// On an edge between two triangles softpipe may leave a pixel out, so that what is behind them shows.
constexpr double kCrack = 1.0 / 512.0;
/// A pixel is compared when its samples differ by at most this, of 255.
constexpr double kSteady = 0.5;
/// Depths nearer to each other than this may be confused by a depth buffer of 24 bits.
constexpr double kDepthRounding = 2e-6;

}  // namespace

Vec Texture::At(double u, double v) const {
    const double x = u * width - 0.5, y = v * height - 0.5;
    const double left = std::floor(x), low = std::floor(y), right = x - left, up = y - low;
    const auto texel = [this](double column, double row) {
        const auto wrapped = [](double i, int size) {
            return static_cast<std::size_t>((static_cast<int>(i) % size + size) % size);
        };
        return texels[wrapped(row, height) * static_cast<std::size_t>(width) + wrapped(column, width)];
    };
    return (1.0 - up) * ((1.0 - right) * texel(left, low) + right * texel(left + 1.0, low)) +
           up * ((1.0 - right) * texel(left, low + 1.0) + right * texel(left + 1.0, low + 1.0));
}

Renderer::Renderer(const Scene& scene, int step) : m_scene(scene), m_crack(kCrack / step) {
    const double middle = (0.5 * step - (step > 1 ? 0.5 : 0.0)) / step, aside = kAside / step;
    m_samples = {{{middle, middle},
                  {middle - aside, middle - aside},
                  {middle + aside, middle - aside},
                  {middle - aside, middle + aside},
                  {middle + aside, middle + aside}}};
    for (const Object& object : scene.objects) m_stages.push_back(RunVertexStage(object));
}

Renderer::VertexStage Renderer::RunVertexStage(const Object& object) const {
    const Lighting& lighting = m_scene.lighting;
    const View camera = CameraView(m_scene.camera), light = ShadowView(m_scene.camera, lighting);
    const Window square = WindowOf(m_scene.camera, 1, 1);
    VertexStage stage;
    for (std::size_t i = 0; i < object.positions.size(); ++i) {
        const Vec normal = camera.Turned(object.normals[i]);
        stage.front.push_back(FixedFunctionFront(lighting, normal, object.colors[i], object.tint));
        stage.back.push_back(FixedFunctionBack(lighting, normal, object.tint));
        const Vec position = camera.At(object.positions[i]);
        stage.varyings.push_back({position, Unit(normal), Unit(lighting.lamp - position), object.colors[i],
                                  square.At(light.At(object.positions[i]))});
    }
    return stage;
}

void Renderer::CastRays() {
    if (!m_hits[0].empty()) return;
    const int width = m_scene.camera.width, height = m_scene.camera.height;
    m_triangles = ProjectTriangles(m_scene, CameraView(m_scene.camera), WindowOf(m_scene.camera, width, height));
    if (m_scene.clip)
        for (WindowTriangle& triangle : m_triangles) {
            const Object& object = m_scene.objects[static_cast<std::size_t>(triangle.object)];
            const auto& corners = object.triangles[static_cast<std::size_t>(triangle.index)];
            const auto distance = [&](std::size_t i) {
                return m_scene.clip->DistanceOf(object.positions[static_cast<std::size_t>(corners[i])]);
            };
            triangle.kept = Vec{distance(0), distance(1), distance(2)};
        }
    for (std::size_t s = 0; s < m_samples.size(); ++s)
        m_hits[s] = CastAll(m_triangles, width, height, m_samples[s][0], m_samples[s][1]);
}

const ShadowMap& Renderer::Map() {
    if (!m_map) m_map.emplace(m_scene);
    return *m_map;
}

Vec Renderer::BackgroundAt(double x, double y) const {
    const double right = x / m_scene.camera.width, up = y / m_scene.camera.height;
    const Background& b = m_scene.background;
    return 255.0 * (up * ((1.0 - right) * b.topLeft + right * b.topRight) +
                    (1.0 - up) * ((1.0 - right) * b.bottomLeft + right * b.bottomRight));
}

std::optional<Vec> Renderer::TexelAt(const WindowTriangle& triangle, const Vec& shares) const {
    const Object& object = m_scene.objects[static_cast<std::size_t>(triangle.object)];
    if (object.texture.texels.empty()) return {};
    const auto first = 3 * static_cast<std::size_t>(triangle.index);
    const Vec at = shares.x * object.texCoords[first] + shares.y * object.texCoords[first + 1] +
                   shares.z * object.texCoords[first + 2];
    return object.texture.At(at.x, at.y);
}

bool Renderer::IsMinified(const WindowTriangle& triangle, double x, double y) const {
    const Object& object = m_scene.objects[static_cast<std::size_t>(triangle.object)];
    if (object.texture.texels.empty()) return false;
    const auto first = 3 * static_cast<std::size_t>(triangle.index);
    const Vec here = SharesAt(triangle, x, y);
    const Vec size{1.0 * object.texture.width, 1.0 * object.texture.height, 0.0};
    const auto step = [&](double dx, double dy) {
        const Vec change = SharesAt(triangle, x + dx, y + dy) - here;
        return size * (change.x * object.texCoords[first] + change.y * object.texCoords[first + 1] +
                       change.z * object.texCoords[first + 2]);
    };
    const Vec right = step(1.0, 0.0), up = step(0.0, 1.0);
    return std::max(Dot(right, right), Dot(up, up)) > 0.25;
}

Vec Renderer::ShadeFixedFunction(const WindowTriangle& triangle, const Vec& shares, bool flat) const {
    const VertexStage& stage = m_stages[static_cast<std::size_t>(triangle.object)];
    const std::vector<Vec>& colors = triangle.front ? stage.front : stage.back;
    const Object& object = m_scene.objects[static_cast<std::size_t>(triangle.object)];
    const auto& corners = object.triangles[static_cast<std::size_t>(triangle.index)];
    const auto color = [&](int corner) {
        return colors[static_cast<std::size_t>(corners[static_cast<std::size_t>(corner)])];
    };
    if (flat) return color(m_scene.lighting.provoking);
    return shares.x * color(0) + shares.y * color(1) + shares.z * color(2);
}

Renderer::Sample Renderer::Shade(const Hit& hit, double x, double y, Shading shading) {
    if (hit.triangle < 0) return {BackgroundAt(x, y)};
    const WindowTriangle& triangle = m_triangles[static_cast<std::size_t>(hit.triangle)];
    const Vec shares = SharesAt(triangle, x, y);
    const auto texel = TexelAt(triangle, shares);
    const bool minified = IsMinified(triangle, x, y);
    if (shading == Shading::Flat || shading == Shading::Gouraud) {
        const Vec lit = ShadeFixedFunction(triangle, shares, shading == Shading::Flat);
        return {255.0 * (texel ? *texel * lit : lit), minified};
    }

    const auto object = static_cast<std::size_t>(triangle.object);
    const auto& corners = m_scene.objects[object].triangles[static_cast<std::size_t>(triangle.index)];
    const auto varying = [&](std::size_t i) -> const Varyings& {
        return m_stages[object].varyings[static_cast<std::size_t>(corners[i])];
    };
    Varyings at = Mixed(varying(0), varying(1), varying(2), shares);
    const Vec& tint = m_scene.objects[object].tint;
    if (shading == Shading::PerPixel) {
        at.color = texel.value_or(at.color);  // the program of shadows has no texture
        return {255.0 * PerPixel(m_scene.lighting, at, tint, triangle.front), minified && triangle.front};
    }

    const auto answer = Map().Ask(at.shadow, m_scene.lighting.shadowBias);
    const bool dark = answer == ShadowMap::Answer::InShadow;
    return {255.0 * Shadowed(m_scene.lighting, at, tint, triangle.front, dark),
            triangle.front && answer == ShadowMap::Answer::Undecided};
}

Picture Renderer::NewPicture() const {
    const Camera& camera = m_scene.camera;
    const std::size_t size = static_cast<std::size_t>(camera.width) * static_cast<std::size_t>(camera.height);
    return {camera.width, camera.height, std::vector<Vec>(size), std::vector<int>(size, -1), std::vector<char>(size)};
}

Picture Renderer::Draw(Shading shading) {
    CastRays();
    Picture picture = NewPicture();
    for (int row = 0; row < picture.height; ++row)
        for (int column = 0; column < picture.width; ++column) {
            const auto cell = static_cast<std::size_t>(row * picture.width + column);
            const auto pixel = static_cast<std::size_t>((picture.height - 1 - row) * picture.width + column);
            const Hit& hit = m_hits[0][cell];
            const Sample center = Shade(hit, column + m_samples[0][0], row + m_samples[0][1], shading);
            bool masked = center.undecided || hit.next - hit.depth < kDepthRounding;
            if (hit.triangle >= 0) {
                const WindowTriangle& triangle = m_triangles[static_cast<std::size_t>(hit.triangle)];
                masked =
                    masked || DistanceFromEdges(triangle, column + m_samples[0][0], row + m_samples[0][1]) < m_crack;
                picture.objects[pixel] = triangle.object;
            }
            for (std::size_t s = 1; s < m_samples.size() && !masked; ++s) {
                const Sample other = Shade(m_hits[s][cell], column + m_samples[s][0], row + m_samples[s][1], shading);
                masked = other.undecided || Largest(other.color - center.color) > kSteady;
            }
            picture.colors[pixel] = center.color;
            picture.masked[pixel] = masked ? 1 : 0;
        }
    return picture;
}

void Renderer::MaskEdges(Picture* picture) {
    CastRays();
    for (const double dx : {0.0, 0.5, 1.0})
        for (const double dy : {0.0, 0.5, 1.0}) {
            const std::vector<Hit> hits = CastAll(m_triangles, picture->width, picture->height, dx, dy);
            for (std::size_t cell = 0; cell < hits.size(); ++cell) {
                const auto width = static_cast<std::size_t>(picture->width);
                const std::size_t row = static_cast<std::size_t>(picture->height) - 1 - cell / width;
                if (hits[cell].triangle != m_hits[0][cell].triangle) picture->masked[row * width + cell % width] = 1;
            }
        }
}

Picture Renderer::DrawBackground() const {
    Picture picture = NewPicture();
    for (int row = 0; row < picture.height; ++row)
        for (int column = 0; column < picture.width; ++column)
            picture.colors[static_cast<std::size_t>(row * picture.width + column)] =
                BackgroundAt(column + 0.5, picture.height - row - 0.5);
    return picture;
}

Picture Renderer::DrawShadowMap() {
    const ShadowMap& map = Map();
    Picture picture = NewPicture();
    for (int row = 0; row < picture.height; ++row)
        for (int column = 0; column < picture.width; ++column) {
            const Vec place{(column + 0.5) / picture.width, 1.0 - (row + 0.5) / picture.height, 0.0};
            const auto pixel = static_cast<std::size_t>(row * picture.width + column);
            const double grey = 255.0 * map.DepthAt(place);
            picture.colors[pixel] = {grey, grey, grey};
            for (int aside = 0; aside < 9; ++aside)
                if (std::abs(255.0 * map.DepthAt(place, aside % 3 - 1, aside / 3 - 1) - grey) > kSteady)
                    picture.masked[pixel] = 1;
            if (grey < 255.0) picture.objects[pixel] = 0;
        }
    return picture;
}

}  // namespace reference
