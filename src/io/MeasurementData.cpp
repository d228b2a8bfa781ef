// One pass over all arrays, in blocks: the points are written once and never zeroed before, since a grid of some
// megapixels does not fit into the caches.
#include "io/MeasurementData.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <iterator>
#include <string_view>

#include "base/HugePages.h"
#include "io/FiniteCoordinates.h"
#include "io/GridLimits.h"

namespace {

/// Iterates over floats and yields them scaled: a vector assigned from a pair of these is written in one pass.
class ScaledIterator {
public:
    using iterator_category = std::random_access_iterator_tag;
    using value_type = float;
    using difference_type = std::ptrdiff_t;
    using pointer = const float*;
    using reference = float;

    explicit ScaledIterator(const float* at) : m_pAt(at) {}
    float operator*() const { return *m_pAt * kFileToSceneScale; }
    ScaledIterator& operator++() {
        ++m_pAt;
        return *this;
    }
    ScaledIterator& operator--() {
        --m_pAt;
        return *this;
    }
    ScaledIterator& operator+=(std::ptrdiff_t n) {
        m_pAt += n;
        return *this;
    }
    friend std::ptrdiff_t operator-(ScaledIterator a, ScaledIterator b) { return a.m_pAt - b.m_pAt; }
    friend bool operator==(ScaledIterator, ScaledIterator) = default;

private:
    const float* m_pAt;
};

/// Pixels from first to before last.
struct PixelRange {
    std::size_t first, last;
};

/// Appends the mask of a range of pixels.
/// @param isMasked  called once per pixel, in row order; without branches, so that the loop can run on whole registers
template <class IsMasked>
void FillMask(MeasurementData& data, PixelRange range, IsMasked isMasked) {
    data.m_vMask.resize(range.last);
    int masked = 0;
    for (std::size_t i = range.first; i < range.last; ++i) {
        const bool skip = isMasked(i);
        data.m_vMask[i] = skip;
        masked += skip;
    }
    data.m_iMasked += masked;
}

/// One loop per rule: which arrays there are is decided once and not per pixel.
void MaskPixels(MeasurementData& data, PixelRange range, const MeasurementArrays& arrays,
                const MeasurementRules& rules) {
    const float* const points = data.Points();
    const float* const confidence = arrays.m_pConfidence;
    const std::uint8_t* const classes = arrays.m_pClassification;
    const float limit = rules.m_fConfidenceLimit;
    if (rules.m_eMask == GridMask::EqualNegatives) {
        return FillMask(data, range, [&](std::size_t i) {
            const float* const p = points + 3 * i;
            return ((p[0] == p[1]) & (p[1] == p[2]) & (p[0] < 0.0f)) != 0;
        });
    }
    // "limit > confidence" is false for NaN: such a pixel is valid.
    if (classes == nullptr) return FillMask(data, range, [&](std::size_t i) { return limit > confidence[i]; });
    FillMask(data, range,
             [&](std::size_t i) { return ((classes[i] >= kFirstInvalidClass) | (limit > confidence[i])) != 0; });
}

/// Scales, masks and counts block by block: the points of a block are in the cache for all three.
void FillPixels(MeasurementData& data, std::size_t pixels, const MeasurementArrays& arrays,
                const MeasurementRules& rules) {
    constexpr std::size_t kBlock = 1024;
    const bool isScaled = rules.m_eScale != GridScale::None;
    data.m_pSourcePoints = isScaled ? nullptr : arrays.m_pPoints;
    if (isScaled) ReserveInHugePages(data.m_vXYZ, 3 * pixels);
    ReserveInHugePages(data.m_vMask, pixels);
    for (std::size_t first = 0; first < pixels; first += kBlock) {
        const PixelRange range{first, std::min(pixels, first + kBlock)};
        if (isScaled) {
            data.m_vXYZ.insert(data.m_vXYZ.end(), ScaledIterator(arrays.m_pPoints + 3 * range.first),
                               ScaledIterator(arrays.m_pPoints + 3 * range.last));
        }
        // The mask rules apply to scaled points: a denormal number can become zero.
        MaskPixels(data, range, arrays, rules);
        data.m_uNotFinite +=
            CountNotFinite(data.Points() + 3 * range.first, std::span(data.m_vMask).subspan(range.first));
    }
}

/// Why no pixel is valid. Only for a grid whose pixels are all masked.
std::string MaskReason(const MeasurementArrays& arrays, const MeasurementRules& rules, std::size_t pixels) {
    if (rules.m_eMask == GridMask::EqualNegatives) return "no pixel was measured";
    const std::uint8_t* const classes = arrays.m_pClassification;
    const bool isByClass = classes != nullptr && std::all_of(classes, classes + pixels, [](std::uint8_t pixelClass) {
                               return pixelClass >= kFirstInvalidClass;
                           });
    if (isByClass) return "all pixels are classified as invalid";
    char digits[32];  // std::to_chars() does not depend on the locale
    const char* const end = std::to_chars(digits, std::end(digits), rules.m_fConfidenceLimit).ptr;
    return std::string("no pixel passes the confidence limit ").append(std::string_view(digits, end));
}

/// Only the translation has a unit; rotation and last row are copied.
void SetTrafo(MeasurementData& data, const float* trafo, GridScale scale) {
    data.m_bHasTrafo = trafo != nullptr;
    if (trafo == nullptr) return;
    std::copy_n(trafo, data.m_fTrafo.size(), data.m_fTrafo.begin());
    if (scale == GridScale::None) return;
    for (const std::size_t translation : {3, 7, 11}) data.m_fTrafo[translation] *= kFileToSceneScale;
}

/// Null when all arrays are there that the rules need.
const char* MissingArray(const MeasurementArrays& arrays, const MeasurementRules& rules) {
    if (arrays.m_pPoints == nullptr) return "there is no array of points";
    if (rules.m_eMask == GridMask::ClassAndConfidence && arrays.m_pConfidence == nullptr)
        return "there is no array of confidence values";
    return nullptr;
}

}  // namespace

MeasurementData MakeMeasurementData(const MeasurementArrays& arrays, const MeasurementRules& rules) {
    MeasurementData data;
    data.m_iWidth = arrays.m_iWidth;
    data.m_iHeight = arrays.m_iHeight;
    if (!IsPossibleGrid(arrays.m_iWidth, arrays.m_iHeight)) return data;

    // Sides are below 2^15: the products fit.
    const std::size_t pixels = static_cast<std::size_t>(arrays.m_iWidth) * static_cast<std::size_t>(arrays.m_iHeight);
    if (const char* refusal = MissingArray(arrays, rules); pixels > 0 && refusal != nullptr) {
        data.m_iWidth = data.m_iHeight = 0;
        data.m_sRefusal = refusal;
        return data;
    }
    SetTrafo(data, arrays.m_pTrafo, rules.m_eScale);
    FillPixels(data, pixels, arrays, rules);
    if (pixels > 0 && static_cast<std::size_t>(data.m_iMasked) == pixels)
        data.m_sMaskReason = MaskReason(arrays, rules, pixels);
    // Colours are never changed. Those of masked pixels count, too: they decide whether the object is grey.
    data.m_pSourceColors = arrays.m_pColors;
    return data;
}
