// A freehand lasso: its points and its images. The textures are in cut/CutSessionDraw.cpp.
#include "cut/CutSession.h"

#include <algorithm>
#include <cassert>
#include <stdexcept>
#include <utility>

namespace {

constexpr std::uint32_t kEmpty = 0, kReached = 255;

/// A colour as a pixel of the images.
std::uint32_t PackTint(LassoTint tint) {
    const double alpha = tint.opacity * 255.0;
    const std::uint32_t a = alpha >= 255.0 ? 255u : alpha > 0.0 ? static_cast<std::uint32_t>(alpha) : 0u;
    return a << 24 | (tint.color & 0xFFFFFF);
}

/// The source pixel of every output pixel along one axis.
std::vector<std::int32_t> SourcePixels(std::int32_t size, std::int32_t outSize) {
    std::vector<std::int32_t> pixels(static_cast<std::size_t>(outSize));
    for (std::int32_t i = 0; i < outSize; ++i) {
        // Single precision decides where rows and columns of a mask lie.
        const float at = static_cast<float>(size) * static_cast<float>(i) / static_cast<float>(outSize);
        pixels[static_cast<std::size_t>(i)] = std::min(static_cast<std::int32_t>(at), size - 1);
    }
    return pixels;
}

}  // namespace

CutSession::CutSession(std::unique_ptr<CutMaskTextures> textures, LassoPixel startPixel, LassoTint line, LassoTint fill,
                       LassoTint outside, std::uint32_t program)
    : m_pTextures(std::move(textures)),
      m_nWidth(m_pTextures->m_nWidth),
      m_nHeight(m_pTextures->m_nHeight),
      m_uLineColor(PackTint(line)),
      m_uFillColor(PackTint(fill)),
      m_uOutsideColor(PackTint(outside)),
      m_uPreviewColor(m_uLineColor),
      m_uProgram(program),
      m_rcFillShown{0, 0, m_nWidth - 1, m_nHeight - 1} {
    for (const std::uint32_t color : {m_uLineColor, m_uFillColor, m_uOutsideColor, m_uPreviewColor})
        if (color == kReached) throw std::invalid_argument("Cannot use internal marker color");
    // The outside may have the colour of the lines.
    if (m_uFillColor == m_uLineColor) throw std::invalid_argument("Fill and lasso color must be different");
    assert(m_nWidth >= kMinLassoSide && m_nHeight >= kMinLassoSide);
    m_ptStart = {std::clamp(startPixel.x, 1, m_nWidth - 2), std::clamp(startPixel.y, 1, m_nHeight - 2)};
    m_ptLast = m_ptStart;
    m_rcBounds = m_rcShown = BoxOf(m_ptStart);
    const std::size_t pixels = static_cast<std::size_t>(m_nWidth) * static_cast<std::size_t>(m_nHeight);
    m_vFloodStack.reserve(pixels);
    m_vFill.reserve(pixels);
    m_vLines.resize(pixels);
    m_vComposite.resize(pixels);
}

/// The pixel of a point, unless the point is outside, on the outermost pixels or the same as the one before.
std::optional<LassoPixel> CutSession::FindNewPixel(float fx, float fy) const {
    const float x = static_cast<float>(m_nWidth) * fx, y = static_cast<float>(m_nHeight) * fy;
    const auto isInside = [](float at, std::int32_t size) { return at >= 1.0f && at < static_cast<float>(size - 1); };
    if (!isInside(x, m_nWidth) || !isInside(y, m_nHeight)) return std::nullopt;
    const LassoPixel pixel{static_cast<std::int32_t>(x), static_cast<std::int32_t>(y)};
    if (pixel == m_ptLast || (!m_vPending.empty() && pixel == m_vPending.back())) return std::nullopt;
    return pixel;
}

void CutSession::AddPoint(float fx, float fy) {
    const auto pixel = FindNewPixel(fx, fy);
    if (!pixel) return;
    m_vPending.push_back(*pixel);
    m_optLastPoint = pixel;
}

void CutSession::SetPreviewPoint(float fx, float fy) {
    const auto pixel = FindNewPixel(fx, fy);
    if (!pixel) return;
    m_optPreview = m_optLastPoint = pixel;
}

/// Draws the pending points into m_vLines, and the rubber band, or the closing edge without one, into a fresh
/// m_vComposite.
void CutSession::CommitLines() {
    const auto stride = static_cast<std::size_t>(m_nWidth);
    for (const LassoPixel point : m_vPending) {
        m_rcBounds = Union(m_rcBounds, BoxOf(point));
        DrawLine(m_ptLast, point, stride, m_vLines, m_uLineColor);
        m_ptLast = point;
    }
    m_vPending.clear();
    const Rectangle wiped = Union(m_rcBounds, m_rcShown);
    for (std::int32_t y = wiped[1]; y <= wiped[3]; ++y) {
        const std::size_t first = static_cast<std::size_t>(y) * stride + static_cast<std::size_t>(wiped[0]);
        std::copy_n(&m_vLines[first], WidthOf(wiped), &m_vComposite[first]);
    }
    m_rcShown = m_rcBounds;
    if (m_optPreview) {
        DrawLine(*m_optPreview, m_ptStart, stride, m_vComposite, m_uPreviewColor);
        DrawLine(*m_optPreview, m_ptLast, stride, m_vComposite, m_uPreviewColor);
        m_rcShown = Union(m_rcShown, BoxOf(*m_optPreview));
        m_optPreview.reset();
    } else {
        DrawLine(m_ptLast, m_ptStart, stride, m_vComposite, m_uPreviewColor);
    }
    m_bFillIsStale = true;
}

/// The tint of a pixel after the flood fill from outside the lasso.
std::uint32_t CutSession::TintOf(std::uint32_t pixel) const {
    return pixel == kEmpty ? m_uFillColor : pixel == kReached ? m_uOutsideColor : pixel;
}

/// Copies a box of m_vComposite to m_vFill and marks what is outside the lasso. The corners of the box are outside.
void CutSession::FillLasso(const Rectangle& box) {
    const std::size_t width = WidthOf(box), height = HeightOf(box);
    m_vFill.resize(width * height);
    for (std::size_t row = 0; row < height; ++row) {
        const std::size_t y = static_cast<std::size_t>(box[1]) + row;
        const std::size_t first = y * static_cast<std::size_t>(m_nWidth) + static_cast<std::size_t>(box[0]);
        std::copy_n(&m_vComposite[first], width, &m_vFill[row * width]);
    }
    FloodFill({0, 0}, static_cast<std::int32_t>(width), static_cast<std::int32_t>(height), m_vFill, m_vFloodStack,
              kEmpty, kReached);
}

// Only the box of the lasso is looked at: all beyond it is outside.
MaskBits CutSession::CreateMaskBits(std::int32_t outWidth, std::int32_t outHeight) const {
    MaskBits mask;
    if (outWidth < 1 || outHeight < 1) return mask;
    mask.m_vBits.m_uCount = static_cast<std::uint64_t>(outWidth) * static_cast<std::uint64_t>(outHeight);
    mask.m_vBits.m_vWords.resize((mask.m_vBits.m_uCount + 31) / 32);

    Rectangle box = m_rcBounds;
    for (const LassoPixel point : m_vPending) box = Union(box, BoxOf(point));
    box = Widened(box);
    const std::size_t width = WidthOf(box), height = HeightOf(box);
    Image image(width * height);
    for (std::size_t row = 0; row < height; ++row) {
        const std::size_t y = static_cast<std::size_t>(box[1]) + row;
        const std::size_t first = y * static_cast<std::size_t>(m_nWidth) + static_cast<std::size_t>(box[0]);
        std::copy_n(&m_vLines[first], width, &image[row * width]);
    }
    const auto inBox = [&box](LassoPixel pixel) { return LassoPixel{pixel.x - box[0], pixel.y - box[1]}; };
    LassoPixel last = m_ptLast;
    for (const LassoPixel point : m_vPending) {
        DrawLine(inBox(last), inBox(point), width, image, m_uLineColor);
        last = point;
    }
    DrawLine(inBox(last), inBox(m_ptStart), width, image, m_uPreviewColor);
    std::vector<LassoPixel> stack;
    FloodFill({0, 0}, static_cast<std::int32_t>(width), static_cast<std::int32_t>(height), image, stack, kEmpty,
              kReached);

    const std::vector<std::int32_t> columns = SourcePixels(m_nWidth, outWidth),
                                    rows = SourcePixels(m_nHeight, outHeight);
    for (std::int32_t y = 0; y < outHeight; ++y) {
        const std::int32_t row = rows[static_cast<std::size_t>(y)];
        if (row < box[1] || row > box[3]) continue;
        for (std::int32_t x = 0; x < outWidth; ++x) {
            const std::int32_t column = columns[static_cast<std::size_t>(x)];
            if (column < box[0] || column > box[2]) continue;
            const LassoPixel at = inBox({column, row});
            const std::uint32_t pixel = image[static_cast<std::size_t>(at.y) * width + static_cast<std::size_t>(at.x)];
            if (TintOf(pixel) == m_uOutsideColor) continue;
            const std::size_t bit =
                static_cast<std::size_t>(y) * static_cast<std::size_t>(outWidth) + static_cast<std::size_t>(x);
            mask.m_vBits.m_vWords[bit / 32] |= 1u << bit % 32;
            mask.m_rcBounds = Union(mask.m_rcBounds, BoxOf({x, y}));
        }
    }
    return mask;
}
