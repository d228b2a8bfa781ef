// Small measurements and their files. The bytes of pax and xdt are put together here by hand.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "KV_ScenePane/PathText.h"
#include "MSRDLL/PcmFile.h"
#include "support/ScratchFolder.h"

using ScanBytes = std::vector<std::byte>;

template <class T>
void AppendNumbers(ScanBytes& bytes, const T* values, std::size_t count) {
    const auto* first = reinterpret_cast<const std::byte*>(values);
    bytes.insert(bytes.end(), first, first + count * sizeof(T));
}

inline constexpr std::array<float, 16> kIdentity{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

/// A flat grid: pixel (x, y) at (x, y, 0) times the spacing, confidence 1, class 0, no colours. All in file units.
struct ScanSample {
    int width, height;
    std::vector<float> points, confidence;
    std::vector<std::uint8_t> classification;
    std::vector<std::uint32_t> colors;
    std::array<float, 16> trafo = kIdentity;

    ScanSample(int w, int h, float spacing) : width(w), height(h) {
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x)
                for (const float value : {static_cast<float>(x) * spacing, static_cast<float>(y) * spacing, 0.0f})
                    points.push_back(value);
        confidence.assign(points.size() / 3, 1.0f);
        classification.assign(points.size() / 3, 0);
    }
    void SetPoint(std::size_t pixel, std::array<float, 3> point) {
        std::memcpy(&points[3 * pixel], point.data(), sizeof point);
    }

    [[nodiscard]] ScanBytes Xdt() const {
        const std::int16_t size[] = {static_cast<std::int16_t>(width), static_cast<std::int16_t>(height)};
        ScanBytes bytes;
        AppendNumbers(bytes, size, 2);
        AppendNumbers(bytes, points.data(), points.size());
        return bytes;
    }
    [[nodiscard]] ScanBytes Pax() const {
        ScanBytes bytes = Xdt();
        AppendNumbers(bytes, confidence.data(), confidence.size());
        AppendNumbers(bytes, trafo.data(), trafo.size());
        return bytes;
    }
    void WritePcm(const std::string& path) const {
        MsrStorage::WritePcmFile(path, {.m_iWidth = width,
                                        .m_iHeight = height,
                                        .m_pPoints = points.data(),
                                        .m_pConfidence = confidence.data(),
                                        .m_pClassification = classification.data(),
                                        .m_pColors = colors.empty() ? nullptr : colors.data(),
                                        .m_pTrafo = trafo.data(),
                                        .m_foreign = {}});
    }
    /// Writes the form that the path's extension names.
    void Write(const std::string& path) const {
        const std::string kind = path.substr(path.size() - 3);
        if (kind == "pcm") return WritePcm(path);
        WriteBytes(path, kind == "pax" ? Pax() : Xdt());
    }
};

/// 3 x 3 pixels make 9 vertices and 8 triangles; without the middle one, 8 and 4.
inline constexpr std::size_t kMiddle = 4;
