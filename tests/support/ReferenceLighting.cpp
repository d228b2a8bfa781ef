// The lighting formulas in double precision.
#include "support/ReferenceLighting.h"

#include <algorithm>

namespace reference {
namespace {

constexpr Vec kGrey{0.3, 0.3, 0.3};  // of back faces in the programs
constexpr double kAmbient = 0.1, kSpecular = 0.5;

/// The three numbers of a fragment stage.
struct Terms {
    double front = 0.0, back = 0.0, specular = 0.0;
};

Terms TermsOf(const Lighting& lighting, const Varyings& at) {
    const Vec mirrored = Unit(2.0 * Dot(at.normal, at.light) * at.normal - at.light);
    const double nDotR = std::max(Dot(Unit(-at.position), mirrored), 0.0);
    return {std::max(Dot(at.light, at.normal), 0.0), std::max(-Dot(at.light, at.normal), 0.0),
            nDotR == 0.0 ? 0.0 : std::pow(nDotR, lighting.highlight)};
}

}  // namespace

Vec Clamped(const Vec& color) {
    return {std::clamp(color.x, 0.0, 1.0), std::clamp(color.y, 0.0, 1.0), std::clamp(color.z, 0.0, 1.0)};
}

Vec FixedFunctionFront(const Lighting& lighting, const Vec& normal, const Vec& color, const Vec& tint) {
    const Vec light = Unit(lighting.direction);
    const double nDotL = std::max(Dot(normal, light), 0.0);
    Vec sum = lighting.modelAmbient * lighting.frontAmbient + nDotL * (tint * color);
    if (nDotL > 0.0 && lighting.reflection > 0.0) {
        // The viewer is at infinity: the halfway vector does not depend on the vertex.
        const Vec halfway = Unit(light + Vec{0.0, 0.0, 1.0});
        const double glow = lighting.reflection * std::pow(std::max(Dot(normal, halfway), 0.0), lighting.shininess);
        sum = sum + Vec{glow, glow, glow};
    }
    return Clamped(sum);
}

Vec FixedFunctionBack(const Lighting& lighting, const Vec& normal, const Vec& tint) {
    const double nDotL = std::max(Dot(-normal, Unit(lighting.direction)), 0.0);
    return Clamped(lighting.modelAmbient * lighting.backAmbient + nDotL * (tint * lighting.backDiffuse));
}

Varyings Mixed(const Varyings& a, const Varyings& b, const Varyings& c, const Vec& shares) {
    const auto mix = [&](const Vec& p, const Vec& q, const Vec& r) {
        return shares.x * p + shares.y * q + shares.z * r;
    };
    return {mix(a.position, b.position, c.position), mix(a.normal, b.normal, c.normal), mix(a.light, b.light, c.light),
            mix(a.color, b.color, c.color), mix(a.shadow, b.shadow, c.shadow)};
}

Vec PerPixel(const Lighting& lighting, const Varyings& at, const Vec& tint, bool front) {
    const Terms terms = TermsOf(lighting, at);
    const double diffuse = lighting.perPixelDiffuse;
    if (!front) return Clamped((kAmbient + terms.back * diffuse) * kGrey);
    const double glow = kSpecular * terms.specular;
    return Clamped((kAmbient + terms.front * diffuse) * (at.color * tint) + Vec{glow, glow, glow});
}

Vec Shadowed(const Lighting& lighting, const Varyings& at, const Vec& tint, bool front, bool inShadow) {
    const Terms terms = TermsOf(lighting, at);
    const double diffuse = lighting.shadowDiffuse;
    if (!front) return Clamped((kAmbient + terms.back * diffuse) * kGrey);
    const Vec color = at.color * tint;
    const double glow = lighting.reflection * terms.specular * kSpecular;
    const Vec base = inShadow ? lighting.shadowColor : kAmbient * color;
    const double share = inShadow ? 0.5 : 1.0;
    return Clamped(base + (terms.front * diffuse * share) * color + Vec{glow, glow, glow});
}

}  // namespace reference
