// Scenes that a viewer and the reference renderer both draw, made from the same arrays through the public methods of
// the viewer.
#pragma once
#include <gtest/gtest.h>

#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "KV_ScenePane/Modes.h"
#include "KV_ScenePane/ScenePane.h"
#include "support/ReferenceCompare.h"
#include "support/ReferenceRenderer.h"

namespace reference_picture {

using reference::Vec;

/// An object as a host imports it.
struct HostObject {
    KV_ScenePane::MeshBuffers mesh{false};
    std::uint32_t color = 0xFFFFFF;  ///< 0x00BBGGRR
    bool blend = false;
    bool visible = true;
};

/// How the vertices of a shape are coloured.
enum class Paint { None, Colored, Grey };

struct Shape {
    Vec center;
    double radius = 1.0;
    Paint paint = Paint::None;
    std::uint32_t color = 0xFFFFFF;  ///< of the object, 0x00BBGGRR
};

/// A closed ball with a wavy surface; front faces outside.
[[nodiscard]] HostObject Ball(const Shape& shape, int slices = 24, int stacks = 14);
/// The lower part of a ball with its opening turned to the viewer of the +Z view: its inside shows back faces.
[[nodiscard]] HostObject Bowl(const Shape& shape, int slices = 24, int stacks = 9);
/// A slightly sloped plate of cells x cells squares, front to +z.
[[nodiscard]] HostObject Plate(const Shape& shape, int cells = 6);

/// Vertex colours, an object colour, grey with a tint, blended colours, back faces, two objects that pass through each
/// other, a hidden one that would cover all, and a plate that receives shadows.
[[nodiscard]] std::vector<HostObject> Gallery();
inline constexpr int kHidden = 5, kPlate = 8, kGalleryObjects = 9;

/// What a mesh of these arrays is to the renderer.
[[nodiscard]] reference::Object ToReference(const HostObject& object);

struct Bounds {
    Vec low, high;
};
/// Around the visible objects.
[[nodiscard]] Bounds VisibleBounds(const reference::Scene& scene);

struct PictureSize {
    int width = 0, height = 0;
};
[[nodiscard]] std::vector<PictureSize> Sizes();

/// A view that the test sets.
struct PictureView {
    const char* name = "";
    int canned = -1;  ///< the mode of SetViewMode(), or -1 for SetViewParams() with the rest
    Vec right{1.0, 0.0, 0.0}, up{0.0, 1.0, 0.0};
    Vec fromFit{};  ///< the centre, relative to that of the fit
    float magnification = 1.0F;
};
[[nodiscard]] PictureView FromTheFront();
[[nodiscard]] PictureView Oblique();
[[nodiscard]] PictureView Turned();

/// One picture of a parameterised test.
struct Case {
    PictureSize size;
    PictureView view;
};
[[nodiscard]] std::string NameOf(const Case& picture);
void PrintTo(const Case& picture, std::ostream* out);
/// All sizes in all three views; all sizes in the turned view with one size in the others; all sizes in one view.
[[nodiscard]] std::vector<Case> AllCases();
[[nodiscard]] std::vector<Case> MainCases();
[[nodiscard]] std::vector<Case> CasesOf(const PictureView& view);

/// An off-screen viewer with a scene, and the same scene for the reference.
class TwoRenderers {
public:
    /// @param request  of the window; its size is replaced
    TwoRenderers(const std::vector<HostObject>& objects, const PictureSize& size, const PictureView& view,
                 KV_ScenePane::WindowRequest request = {});

    void SetShadows(const Vec& color);
    void SetReflection(float brightness, float shining);
    void SetBackground(
        const std::array<std::uint32_t, 4>& corners);  ///< 0x00BBGGRR: top left, right, bottom left, right

    /// The viewer's frame.
    [[nodiscard]] std::vector<std::uint32_t> Draw(KV_ScenePane::DrawMode mode);
    [[nodiscard]] KV_ScenePane::_DKV_ScenePane& Methods() { return m_pane->Methods(); }

    /// Fits the view to the objects of both scenes before it is set.
    void SetView(const PictureView& view);

    reference::Scene scene;

private:
    void FitReference();

    std::unique_ptr<KV_ScenePane::ScenePane> m_pane;
};

/// What must hold for a picture as a whole, as shares of all pixels.
struct Demand {
    double largestMask = 0.05;
    double smallestObjects = 0.13;  ///< pixels of objects that are compared
};
/// Of a solid picture of that size. In a tiny picture the colours are steep, so that more pixels depend on the
/// rounding.
[[nodiscard]] Demand DemandFor(const PictureSize& size);

/// Expects equal pictures within one step of 255 beside the mask. A difference is written to /tmp.
void ExpectSamePicture(const reference::Picture& expected, const std::vector<std::uint32_t>& drawn,
                       const Demand& demand, const std::string& name);

}  // namespace reference_picture
