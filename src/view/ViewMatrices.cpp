// Reads matrices and viewport from OpenGL.
#include "view/ViewMatrices.h"

#include <GL/glew.h>

#include <algorithm>
#include <bit>

namespace {

/// For comparisons that distinguish zeros by their sign and find a NaN equal to itself.
template <std::size_t N>
std::array<std::uint64_t, N> BitsOf(const std::array<double, N>& values) {
    return std::bit_cast<std::array<std::uint64_t, N>>(values);
}

ViewMatrices::Matrix Read(GLenum name) {
    ViewMatrices::Matrix matrix{};
    glGetDoublev(name, matrix.data());
    return matrix;
}

ViewMatrices::FloatMatrix ReadFloats(GLenum name) {
    ViewMatrices::FloatMatrix matrix{};
    glGetFloatv(name, matrix.data());
    return matrix;
}

ViewMatrices::Rectangle ReadViewport() {
    ViewMatrices::Rectangle viewport{};
    glGetIntegerv(GL_VIEWPORT, viewport.data());
    return viewport;
}

}  // namespace

ViewMatrices::Inputs ViewMatrices::InputsOf(const OrthoExtents& extents, const Float3& eye, const ViewFrame& frame) {
    Inputs inputs{extents.halfWidth, extents.halfHeight, extents.depth};
    auto* next = inputs.begin() + 3;
    for (const Float3& vector : {eye, frame.center, frame.wy, frame.wz}) next = std::ranges::copy(vector, next).out;
    return inputs;
}

void ViewMatrices::SetInputs(const Inputs& inputs) {
    const auto isOfInputs = [&](const View& view) { return view.isKnown && BitsOf(view.inputs) == BitsOf(inputs); };
    auto* view = std::ranges::find_if(m_views, isOfInputs);
    if (view == m_views.end()) {
        view = std::ranges::min_element(m_views, {}, &View::lastUse);
        *view = {};
        view->inputs = inputs;
        view->isKnown = true;
    }
    view->lastUse = ++m_useCount;
    m_iLive = static_cast<std::size_t>(view - m_views.begin());
}

void ViewMatrices::ReadCamera() {
    View& view = m_views[m_iLive];
    if (!view.hasCamera) {
        view.modelView = Read(GL_MODELVIEW_MATRIX);
        view.projection = Read(GL_PROJECTION_MATRIX);
        view.hasCamera = view.isKnown;
    }
}

const ViewMatrices::Matrix& ViewMatrices::ModelView() {
    ReadCamera();
    return m_views[m_iLive].modelView;
}

const ViewMatrices::Matrix& ViewMatrices::Projection() {
    ReadCamera();
    return m_views[m_iLive].projection;
}

const ViewMatrices::Rectangle& ViewMatrices::Viewport() {
    if (!m_hasViewport) m_viewport = ReadViewport();
    m_hasViewport = true;
    return m_viewport;
}

const ViewMatrices::FloatMatrix& ViewMatrices::ProjectionAsFloats() {
    View& view = m_views[m_iLive];
    if (!view.hasFloats) view.projectionAsFloats = ReadFloats(GL_PROJECTION_MATRIX);
    view.hasFloats = view.isKnown;
    return view.projectionAsFloats;
}

const ViewMatrices::FloatMatrix& ViewMatrices::ShadowModelView() {
    View& view = m_views[m_iLive];
    if (!view.hasShadow) view.shadowModelView = ReadFloats(GL_MODELVIEW_MATRIX);
    view.hasShadow = view.isKnown;
    return view.shadowModelView;
}
