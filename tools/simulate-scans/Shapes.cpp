// The shapes. Those with smooth surfaces and the gear are triangulated here, those of blocks by Blocks.h.
#include "Shapes.h"

#include <algorithm>
#include <array>

#include "Blocks.h"
#include "Repeatable.h"

namespace simulate {
namespace {

/// A point at an angle (in turns from +x) around the z axis.
Vec3 OnCircle(double radius, double turns, double z) {
    return {static_cast<float>(radius * CosTurns(turns)), static_cast<float>(radius * SinTurns(turns)),
            static_cast<float>(z)};
}

TriangleMesh MakeSphere() {
    return StarShape(96, [](Vec3 direction) { return direction * kSphereRadius; });
}

/// A smooth bump on the unit sphere: full height at its centre, zero at the distance width and beyond.
struct Bump {
    Vec3 centre;
    float width, height;
};

/// A head: an ellipsoid with bumps.
TriangleMesh MakeBust() {
    // A head, looking along +z. Symmetric features have two entries.
    static constexpr std::array kBumps = {
        Bump{{0.00f, -0.14f, 0.99f}, 0.17f, 6.0f},                                               // tip of the nose
        Bump{{0.00f, 0.02f, 1.00f}, 0.17f, 4.0f},                                                // its bridge
        Bump{{0.08f, -0.17f, 0.98f}, 0.09f, 2.0f},                                               // nostrils
        Bump{{-0.08f, -0.17f, 0.98f}, 0.09f, 2.0f},  Bump{{0.27f, 0.10f, 0.96f}, 0.24f, -4.0f},  // eye sockets
        Bump{{-0.27f, 0.10f, 0.96f}, 0.24f, -4.0f},  Bump{{0.26f, 0.09f, 0.96f}, 0.14f, 3.0f},   // eyeballs
        Bump{{-0.26f, 0.09f, 0.96f}, 0.14f, 3.0f},   Bump{{0.26f, 0.28f, 0.92f}, 0.26f, 2.0f},   // brows
        Bump{{-0.26f, 0.28f, 0.92f}, 0.26f, 2.0f},   Bump{{0.45f, -0.12f, 0.88f}, 0.34f, 2.0f},  // cheeks
        Bump{{-0.45f, -0.12f, 0.88f}, 0.34f, 2.0f},  Bump{{0.07f, -0.33f, 0.94f}, 0.11f, 1.4f},  // lips
        Bump{{-0.07f, -0.33f, 0.94f}, 0.11f, 1.4f},  Bump{{0.00f, -0.40f, 0.92f}, 0.14f, 1.6f},
        Bump{{0.00f, -0.58f, 0.81f}, 0.34f, 4.0f},                                                // chin
        Bump{{0.99f, -0.02f, -0.05f}, 0.24f, 5.0f},                                               // ears
        Bump{{-0.99f, -0.02f, -0.05f}, 0.24f, 5.0f}, Bump{{0.99f, -0.01f, 0.03f}, 0.12f, -3.0f},  // their hollows
        Bump{{-0.99f, -0.01f, 0.03f}, 0.12f, -3.0f}, Bump{{0.00f, 0.45f, -0.89f}, 0.95f, 6.0f},   // back of the head
        Bump{{0.00f, 0.60f, 0.80f}, 0.70f, 2.0f},                                                 // forehead
        Bump{{0.00f, -0.95f, -0.30f}, 0.62f, 17.0f},                                              // neck
        Bump{{0.55f, -0.80f, -0.25f}, 0.45f, 9.0f},                                               // shoulders
        Bump{{-0.55f, -0.80f, -0.25f}, 0.45f, 9.0f},
    };
    // The radius in each direction is that of a sphere plus all bumps; the axes are scaled afterwards.
    return StarShape(96, [](Vec3 direction) {
        float radius = 34.0f;
        for (const Bump& bump : kBumps) {
            const Vec3 away = direction - bump.centre;
            const float rest = 1.0f - Dot(away, away) / (bump.width * bump.width);
            if (rest > 0) radius += bump.height * rest * rest * rest;
        }
        return Vec3{direction.x * radius * 0.84f, direction.y * radius * 1.12f + 7.0f, direction.z * radius};
    });
}

/// A ring around the z axis.
TriangleMesh MakeTorus() {
    constexpr int kAround = 256, kAcross = 128;
    constexpr double kRing = 32, kTube = 14;  // radii, millimetres
    const auto pointAt = [](int around, int across) {
        const double turns = (across % kAcross) / static_cast<double>(kAcross);
        return OnCircle(kRing + kTube * CosTurns(turns), (around % kAround) / static_cast<double>(kAround),
                        kTube * SinTurns(turns));
    };
    TriangleMesh mesh;
    for (int i = 0; i < kAround; ++i)
        for (int j = 0; j < kAcross; ++j)
            mesh.AddQuad(pointAt(i, j), pointAt(i + 1, j), pointAt(i + 1, j + 1), pointAt(i, j + 1));
    return mesh;
}

/// A spur gear with a bore along the z axis.
TriangleMesh MakeGear() {
    constexpr int kTeeth = 18, kPointsPerTooth = 4, kPoints = kTeeth * kPointsPerTooth;
    constexpr double kTip = 40, kRoot = 33, kBore = 11, kHalfThickness = 9;
    // The points of a tooth are root, root, tip, tip, at these fractions of its angle; the flanks are inclined.
    static constexpr std::array<double, kPointsPerTooth> kPhase = {0.0, 0.40, 0.53, 0.87};
    // Points of the outline, of the bore, and the quads between them: front, back, outside, inside.
    const auto rim = [](int i, double z) {
        const int point = i % kPoints, tooth = point / kPointsPerTooth, phase = point % kPointsPerTooth;
        const double turns = (tooth + kPhase[static_cast<std::size_t>(phase)]) / kTeeth;
        return OnCircle(phase < 2 ? kRoot : kTip, turns, z);
    };
    const auto bore = [](int i, double z) { return OnCircle(kBore, (i % kPoints) / static_cast<double>(kPoints), z); };
    TriangleMesh mesh;
    for (int i = 0; i < kPoints; ++i) {
        const double front = kHalfThickness, back = -kHalfThickness;
        mesh.AddQuad(bore(i, front), rim(i, front), rim(i + 1, front), bore(i + 1, front));
        mesh.AddQuad(bore(i, back), bore(i + 1, back), rim(i + 1, back), rim(i, back));
        mesh.AddQuad(rim(i, back), rim(i + 1, back), rim(i + 1, front), rim(i, front));
        mesh.AddQuad(bore(i, front), bore(i + 1, front), bore(i + 1, back), bore(i, back));
    }
    return mesh;
}

/// An angle bracket: a horizontal plate with two holes and a vertical plate with one larger hole.
TriangleMesh MakeBracket() {
    BlockGrid grid;
    grid.breaks[0] = {-36, -28, 4, 36};
    grid.breaks[1] = {-28, -20, 28};
    grid.breaks[2] = {-18, 18};
    grid.blockAt = [](int x, int y, int) {
        if (y == 0) return x == 0 ? Block{true} : Block{true, 1, 9.0f};
        return x == 0 ? Block{true, 0, 12.0f} : Block{};
    };
    return MeshOf(grid);
}

/// Rectangular columns of different depth: steps of 5 to 45 mm between adjacent columns.
TriangleMesh MakeSteps() {
    BlockGrid grid;
    grid.breaks[0] = {-40, -24, -8, 8, 24, 40};
    grid.breaks[1] = {-30, -10, 10, 30};
    grid.breaks[2] = {-25, -20, -15, -10, -5, 0, 5, 10, 15, 20, 25};
    grid.blockAt = [](int x, int y, int z) {
        static constexpr int kLayers[3][5] = {{1, 2, 3, 4, 5}, {10, 1, 8, 3, 6}, {6, 7, 8, 9, 10}};
        return Block{z < kLayers[y][x]};
    };
    return MeshOf(grid);
}

/// The shapes by name, in the order of the help text.
struct NamedShape {
    const char* name;
    TriangleMesh (*make)();
};
constexpr std::array kShapes = {NamedShape{"bust", MakeBust},   NamedShape{"bracket", MakeBracket},
                                NamedShape{"gear", MakeGear},   NamedShape{"sphere", MakeSphere},
                                NamedShape{"steps", MakeSteps}, NamedShape{"torus", MakeTorus}};

}  // namespace

TriangleMesh StarShape(int cells, const std::function<Vec3(Vec3 direction)>& pointAt) {
    // The six sides of the cube, each a grid whose corners are projected onto the unit sphere.
    TriangleMesh mesh;
    const auto n = static_cast<float>(cells);
    for (int axis = 0; axis < 3; ++axis) {
        for (const float side : {-1.0f, 1.0f}) {
            // Both sides of an edge of the cube compute the same numbers, so that their corners are equal to the bit.
            const auto corner = [&](int i, int j) {
                const float u = (2.0f * static_cast<float>(i) - n) / n, v = (2.0f * static_cast<float>(j) - n) / n;
                return pointAt(Unit(axis == 0 ? Vec3{side, u, v} : axis == 1 ? Vec3{v, side, u} : Vec3{u, v, side}));
            };
            // The orientation of the quads depends on the side of the cube.
            for (int j = 0; j < cells; ++j) {
                for (int i = 0; i < cells; ++i) {
                    const Vec3 a = corner(i, j), b = corner(i + 1, j), c = corner(i + 1, j + 1), d = corner(i, j + 1);
                    side > 0 ? mesh.AddQuad(a, b, c, d) : mesh.AddQuad(a, d, c, b);
                }
            }
        }
    }
    return mesh;
}

const std::vector<std::string>& ShapeNames() {
    static const std::vector<std::string> names = [] {
        std::vector<std::string> list;
        list.reserve(kShapes.size());
        for (const NamedShape& shape : kShapes) list.emplace_back(shape.name);
        return list;
    }();
    return names;
}

TriangleMesh MakeShape(std::string_view name) {
    for (const NamedShape& shape : kShapes)
        if (name == shape.name) return shape.make();
    return {};
}

float RadiusAroundOrigin(const TriangleMesh& mesh) {
    float radius = 0;
    for (const Vec3& corner : mesh.corners) radius = std::max(radius, Length(corner));
    return radius;
}

}  // namespace simulate
