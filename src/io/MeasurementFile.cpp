// One pass for each array of the measurement.
#include "io/MeasurementFile.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <optional>

#include "MSRDLL/Msr.h"
#include "base/HugePages.h"

namespace {

/// Walks over floats and yields them scaled: a vector made from a pair of these is written once, not zeroed before.
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

template <class T>
void ReserveHuge(std::vector<T>& values, std::size_t count) {
    values.reserve(count);
    AdviseHugePages(values.data(), count * sizeof(T));
}

MeasurementData ReadMeasurement(MsrStorage::MSR& msr, float confidenceLimit) {
    const float* points = msr.GetXYZ();
    const float* confidence = msr.GetConfidence();
    const std::uint8_t* classification = msr.GetPixelClassification();
    const float* trafo = msr.GetTrafo();
    if (!points || !confidence || !classification || !trafo) return {};

    MeasurementData data;
    data.m_iWidth = msr.GetWidth();
    data.m_iHeight = msr.GetHeight();
    const std::size_t pixels = static_cast<std::size_t>(data.m_iWidth) * static_cast<std::size_t>(data.m_iHeight);
    std::copy_n(trafo, data.m_fTrafo.size(), data.m_fTrafo.begin());
    for (const std::size_t translation : {3, 7, 11}) data.m_fTrafo[translation] *= kFileToSceneScale;
    ReserveHuge(data.m_vXYZ, 3 * pixels);
    data.m_vXYZ.assign(ScaledIterator(points), ScaledIterator(points + 3 * pixels));

    ReserveHuge(data.m_vMask, pixels);
    data.m_vMask.resize(pixels);
    int masked = 0;
    for (std::size_t i = 0; i < pixels; ++i) {
        const bool skip = (classification[i] >= kFirstInvalidClass) | (confidenceLimit > confidence[i]);
        data.m_vMask[i] = skip;
        masked += skip;
    }
    data.m_iMasked = masked;
    if (const std::uint32_t* colors = msr.GetColorData()) {
        ReserveHuge(data.m_vColors, pixels);
        data.m_vColors.assign(colors, colors + pixels);
    }
    return data;
}

}  // namespace

MeasurementData LoadMeasurementFile(const wchar_t* path, float confidenceLimit, MsrStorage::MSR* measurement) {
    std::optional<MsrStorage::MSR> local;
    MsrStorage::MSR& msr = measurement ? *measurement : local.emplace();
    // The three flags choose between parts of other libraries' files; with ours they mean nothing.
    if (path != nullptr && !msr.Load(path, false, true, false)) return {};
    return ReadMeasurement(msr, confidenceLimit);
}
