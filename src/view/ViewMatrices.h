// The matrices and the viewport of the camera as OpenGL returns them.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>

#include "view/ViewFrame.h"

/// Queries of OpenGL wait for a driver that works on a thread of its own, so each value is read once after it changed.
/// The matrices are never computed here: they have the bits that OpenGL has.
///
/// Operations that return a value may read it: the context of the control must be current, and the matrices of the
/// camera on top of their stacks.
class ViewMatrices {
public:
    using Matrix = std::array<double, 16>;  ///< column-major
    using FloatMatrix = std::array<float, 16>;
    using Rectangle = std::array<std::int32_t, 4>;  ///< x, y, width, height in pixels
    /// All that OpenGL makes the matrices of a view from.
    using Inputs = std::array<double, 15>;
    /// @param frame  as it is passed to gluLookAt(); its wz decides on the shadow camera
    [[nodiscard]] static Inputs InputsOf(const OrthoExtents& extents, const Float3& eye, const ViewFrame& frame);

    /// Called after OpenGL has made its matrices from @p inputs. From the same inputs it makes the same matrices, to
    /// the bit, so those of the last few views are kept: a frame with axes has two views.
    void SetInputs(const Inputs& inputs);
    /// Called after the viewport was set.
    void ForgetViewport() { m_hasViewport = false; }
    /// Called when the context is gone.
    void Forget() { *this = {}; }

    [[nodiscard]] const Matrix& ModelView();
    [[nodiscard]] const Matrix& Projection();
    [[nodiscard]] const Rectangle& Viewport();
    [[nodiscard]] const FloatMatrix& ProjectionAsFloats();
    /// The shadow camera is on top of the modelview stack instead of the camera.
    [[nodiscard]] const FloatMatrix& ShadowModelView();

private:
    struct View {
        Inputs inputs{};
        bool isKnown = false;  ///< inputs are set. False before the first SetInputs(): nothing is kept then
        bool hasCamera = false, hasFloats = false, hasShadow = false;  ///< which of the following were read
        Matrix modelView{}, projection{};
        FloatMatrix projectionAsFloats{}, shadowModelView{};
        std::uint64_t lastUse = 0;
    };
    void ReadCamera();

    // The live view, that of the axes, and the one that a drag makes next.
    std::array<View, 3> m_views;
    std::size_t m_iLive = 0;
    std::uint64_t m_useCount = 0;
    Rectangle m_viewport{};
    bool m_hasViewport = false;
};
