// A freehand lasso: its points and its images. The textures are in cut/CutSessionDraw.cpp.
#include "cut/CutSession.h"

#include <algorithm>
#include <cassert>
#include <stdexcept>
#include <utility>

namespace {

constexpr std::uint32_t kEmpty = 0;          // pixel of the images without a line
constexpr std::uint32_t kMarkerColor = 255;  // no pixel of the images has it

/// A colour as a pixel of the images.
std::uint32_t PackTint(LassoTint tint) {
    const double alpha = tint.opacity * 255.0;
    const std::uint32_t a = alpha >= 255.0 ? 255u : alpha > 0.0 ? static_cast<std::uint32_t>(alpha) : 0u;
    return a << 24 | (tint.color & 0xFFFFFF);
}

/// The source pixels of the output pixels along one axis, of those that have one in a range.
class SourcePixels {
public:
    /// @param first, last  the range; what the operator returns counts from its first
    SourcePixels(std::int32_t size, std::int32_t outSize, std::int32_t first, std::int32_t last) {
        m_vPixels.reserve(static_cast<std::size_t>(outSize));
        for (std::int32_t i = 0; i < outSize; ++i) {
            // Single precision decides where rows and columns of a mask lie.
            const float at = static_cast<float>(size) * static_cast<float>(i) / static_cast<float>(outSize);
            const std::int32_t pixel = std::min(static_cast<std::int32_t>(at), size - 1);
            if (pixel < first) begin = i + 1;
            if (pixel <= last) end = i + 1;
            m_vPixels.push_back(static_cast<std::size_t>(std::clamp(pixel, first, last) - first));
        }
    }
    [[nodiscard]] std::size_t operator[](std::int32_t i) const { return m_vPixels[static_cast<std::size_t>(i)]; }

    std::int32_t begin = 0, end = 0;  ///< output pixels

private:
    std::vector<std::size_t> m_vPixels;
};

/// The markers of a box of an image, without the rest of the rows.
void MarkBox(const CutSession::Image& image, std::size_t stride, const PixelRectangle& box,
             std::vector<std::uint8_t>& markers) {
    const std::size_t width = WidthOf(box), height = HeightOf(box);
    markers.resize(width * height);
    for (std::size_t row = 0; row < height; ++row) {
        const std::size_t first = (static_cast<std::size_t>(box[1]) + row) * stride + static_cast<std::size_t>(box[0]);
        std::transform(&image[first], &image[first] + width, &markers[row * width],
                       [](std::uint32_t pixel) { return pixel == kEmpty ? kEmptyPixel : kLinePixel; });
    }
}

void FillFromCorner(const PixelRectangle& box, std::vector<std::uint8_t>& markers, std::vector<LassoPixel>& stack) {
    FloodFill({0, 0}, static_cast<std::int32_t>(WidthOf(box)), static_cast<std::int32_t>(HeightOf(box)), markers,
              stack);
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
        if (color == kMarkerColor) throw std::invalid_argument("Cannot use internal marker color");
    // The outside may have the colour of the lines.
    if (m_uFillColor == m_uLineColor) throw std::invalid_argument("Fill and lasso color must be different");
    assert(m_nWidth >= kMinLassoSide && m_nHeight >= kMinLassoSide);
    m_ptStart = {std::clamp(startPixel.x, 1, m_nWidth - 2), std::clamp(startPixel.y, 1, m_nHeight - 2)};
    m_ptLast = m_ptStart;
    m_rcBounds = m_rcShown = m_rcBand = BoxOf(m_ptStart);
    const std::size_t pixels = static_cast<std::size_t>(m_nWidth) * static_cast<std::size_t>(m_nHeight);
    m_vFloodStack.reserve(pixels);
    m_vMarkers.reserve(pixels);
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

/// Where the next CommitLines() changes m_vComposite: the lines of the pending points, and the former and the next
/// rubber band or closing edge.
CutSession::Rectangle CutSession::FindChangedLines() const {
    Rectangle changed = Union(m_rcBand, Union(BoxOf(m_ptStart), BoxOf(m_ptLast)));
    for (const LassoPixel point : m_vPending) changed = Union(changed, BoxOf(point));
    return m_optPreview ? Union(changed, BoxOf(*m_optPreview)) : changed;
}

/// Draws the pending points into m_vLines, and these with the rubber band, or the closing edge without one, into
/// m_vComposite. @param changed  FindChangedLines()
void CutSession::CommitLines(const Rectangle& changed) {
    const auto stride = static_cast<std::size_t>(m_nWidth);
    for (const LassoPixel point : m_vPending) {
        m_rcBounds = Union(m_rcBounds, BoxOf(point));
        DrawLine(m_ptLast, point, stride, m_vLines, m_uLineColor);
        m_ptLast = point;
    }
    m_vPending.clear();
    for (std::int32_t y = changed[1]; y <= changed[3]; ++y) {
        const std::size_t first = static_cast<std::size_t>(y) * stride + static_cast<std::size_t>(changed[0]);
        std::copy_n(&m_vLines[first], WidthOf(changed), &m_vComposite[first]);
    }
    m_rcShown = m_rcBounds;
    m_rcBand = Union(BoxOf(m_ptStart), BoxOf(m_ptLast));
    if (m_optPreview) {
        DrawLine(*m_optPreview, m_ptStart, stride, m_vComposite, m_uPreviewColor);
        DrawLine(*m_optPreview, m_ptLast, stride, m_vComposite, m_uPreviewColor);
        m_rcShown = Union(m_rcShown, BoxOf(*m_optPreview));
        m_rcBand = Union(m_rcBand, BoxOf(*m_optPreview));
        m_optPreview.reset();
    } else {
        DrawLine(m_ptLast, m_ptStart, stride, m_vComposite, m_uPreviewColor);
    }
    m_bFillIsStale = true;
}

/// The tint of a pixel after the flood fill from outside the lasso.
std::uint32_t CutSession::TintOf(std::uint8_t marker) const {
    return marker == kEmptyPixel ? m_uFillColor : marker == kReachedPixel ? m_uOutsideColor : m_uLineColor;
}

/// Marks what is outside the lasso in a box of m_vComposite. The corners of the box are outside.
void CutSession::FillLasso(const Rectangle& box) {
    MarkBox(m_vComposite, static_cast<std::size_t>(m_nWidth), box, m_vMarkers);
    FillFromCorner(box, m_vMarkers, m_vFloodStack);
}

/// The markers of the closed lasso in a box whose corners are outside.
std::vector<std::uint8_t> CutSession::CloseLasso(const Rectangle& box) const {
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
    std::vector<std::uint8_t> markers;
    MarkBox(image, width, {0, 0, box[2] - box[0], box[3] - box[1]}, markers);
    std::vector<LassoPixel> stack;
    FillFromCorner(box, markers, stack);
    return markers;
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
    const std::vector<std::uint8_t> markers = CloseLasso(box);
    const SourcePixels columns(m_nWidth, outWidth, box[0], box[2]), rows(m_nHeight, outHeight, box[1], box[3]);
    for (std::int32_t y = rows.begin; y < rows.end; ++y) {
        const std::uint8_t* const row = &markers[rows[y] * WidthOf(box)];
        const std::size_t firstBit = static_cast<std::size_t>(y) * static_cast<std::size_t>(outWidth);
        std::int32_t left = columns.end, right = -1;
        for (std::int32_t x = columns.begin; x < columns.end; ++x) {
            const bool isSet = TintOf(row[columns[x]]) != m_uOutsideColor;
            const std::size_t bit = firstBit + static_cast<std::size_t>(x);
            mask.m_vBits.m_vWords[bit / 32] |= (isSet ? 1u : 0u) << bit % 32;
            left = isSet ? std::min(left, x) : left;
            right = isSet ? x : right;
        }
        if (right >= 0) mask.m_rcBounds = Union(mask.m_rcBounds, {left, y, right, y});
    }
    return mask;
}
