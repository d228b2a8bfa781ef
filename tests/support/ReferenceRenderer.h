// An orthographic software renderer in double precision: whole pictures of a scene, with a mask of the pixels that the
// rounding of a driver may decide. The formulas are in ReferenceLighting, points and lines in ReferenceMarks.
#pragma once
#include <optional>

#include "support/ReferenceLighting.h"
#include "support/ReferenceVisibility.h"

namespace reference {

enum class Shading { Flat, Gouraud, PerPixel, Shadowed };

/// Draws one scene at one camera. What is seen where is computed once for all kinds of shading.
class Renderer {
public:
    /// @param scene  must outlive the renderer
    /// @param step   1, or an even number: the scene's pixels are then squares of step x step pixels of a larger
    /// picture,
    ///               of which the one to the left of and below the middle is computed
    explicit Renderer(const Scene& scene, int step = 1);

    /// The background and the visible objects.
    [[nodiscard]] Picture Draw(Shading shading);
    /// The background alone.
    [[nodiscard]] Picture DrawBackground() const;
    /// The shadow map as grey levels over the whole window.
    [[nodiscard]] Picture DrawShadowMap();

    /// Masks the pixels in which more than one triangle is seen: their samples mix in a multisampled window.
    void MaskEdges(Picture* picture);

    [[nodiscard]] const ShadowMap& Map();

private:
    /// What the vertex stage computes for the vertices of one object.
    struct VertexStage {
        std::vector<Vec> front, back;  ///< fixed function
        std::vector<Varyings> varyings;
    };
    struct Sample {
        Vec color;
        bool undecided = false;
    };

    void CastRays();
    [[nodiscard]] VertexStage RunVertexStage(const Object& object) const;
    [[nodiscard]] Vec BackgroundAt(double x, double y) const;
    [[nodiscard]] Sample Shade(const Hit& hit, double x, double y, Shading shading);
    [[nodiscard]] std::optional<Vec> TexelAt(const WindowTriangle& triangle, const Vec& shares) const;
    /// Whether more than half a texel falls on a pixel: the choice of the mipmap level is the driver's.
    [[nodiscard]] bool IsMinified(const WindowTriangle& triangle, double x, double y) const;
    [[nodiscard]] Vec ShadeFixedFunction(const WindowTriangle& triangle, const Vec& shares, bool flat) const;
    [[nodiscard]] Picture NewPicture() const;

    const Scene& m_scene;
    std::array<std::array<double, 2>, 5> m_samples{};  ///< places in a pixel
    double m_crack;
    std::vector<VertexStage> m_stages;
    std::vector<WindowTriangle> m_triangles;
    std::array<std::vector<Hit>, 5> m_hits;  ///< one per sample
    std::optional<ShadowMap> m_map;
};

}  // namespace reference
