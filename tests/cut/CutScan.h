// Scans and masks whose pixels coincide: pixel (x, y) of the grid projects into pixel (x, y) of the window.
#pragma once
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "KV_ScenePane/CutMask.h"
#include "KV_ScenePane/PathText.h"
#include "MSRDLL/PcmFile.h"
#include "geometry/Mesh.h"
#include "io/ScanSample.h"

using PixelChoice = std::function<bool(int x, int y)>;

/// A flat scan in the middle of the pixels of a window of its size, at the world depth 0.
inline ScanSample FlatCutScan(int width, int height) {
    ScanSample scan(width, height, 1000.0f);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            scan.SetPoint(
                static_cast<std::size_t>(y * width + x),
                {(static_cast<float>(x) + 0.5f) * 1000.0f, (static_cast<float>(height - y) - 1.5f) * 1000.0f, 0.0f});
    return scan;
}

/// A mask of a window in which one pixel is one world unit; depths are 0.5 in the plane of FlatCutScan().
inline std::shared_ptr<ACAD::CutMask> MaskOf(std::uint32_t kind, int width, int height, const PixelChoice& isInside) {
    auto mask = std::make_shared<ACAD::CutMask>();
    mask->m_nKind = kind;
    for (const std::size_t i : {0, 5, 10, 15}) mask->m_dModelView[i] = mask->m_dProjection[i] = 1.0;
    mask->m_dProjection[0] = 2.0 / width;
    mask->m_dProjection[5] = 2.0 / height;
    mask->m_dProjection[12] = mask->m_dProjection[13] = -1.0;
    mask->m_nViewport = {0, 0, width, height};
    const auto pixels = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
    mask->m_vBits.m_vWords.resize((pixels + 31) / 32);
    mask->m_vBits.m_uCount = pixels;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            if (!isInside(x, y)) continue;
            const auto bit = static_cast<std::size_t>(y * width + x);
            mask->m_vBits.m_vWords[bit / 32] |= 1u << (bit % 32);
            auto& [minX, minY, maxX, maxY] = mask->m_rcBounds;
            minX = std::min(minX, x), minY = std::min(minY, y), maxX = std::max(maxX, x), maxY = std::max(maxY, y);
        }
    }
    return mask;
}

/// Removes the pixels of the scan that are in it.
inline std::shared_ptr<ACAD::CutMask> MaskOf(const ScanSample& scan, const PixelChoice& isInside) {
    return MaskOf(ACAD::CutKindInside, scan.width, scan.height, isInside);
}

/// An object from a file, as the save sees it: by its name and its masks.
inline std::shared_ptr<Mesh> ObjectOf(const std::string& file,
                                      std::vector<std::shared_ptr<const ACAD::CutMask>> masks = {}) {
    auto mesh = std::make_shared<Mesh>(KV_ScenePane::WidePath(file), false);
    mesh->m_vpCutMasks = std::move(masks);
    return mesh;
}

inline std::vector<std::uint8_t> ClassesIn(const std::string& file) {
    const MsrStorage::PcmMeasurement measurement = MsrStorage::ReadPcmFile(file);
    const auto* first = measurement.m_pClassification.get();
    return {first, first + measurement.m_iWidth * measurement.m_iHeight};
}

/// The classes of a scan with 250 in the chosen pixels.
inline std::vector<std::uint8_t> ClassesAfterCut(const ScanSample& scan, const PixelChoice& isCut) {
    std::vector<std::uint8_t> classes = scan.classification;
    for (int y = 0; y < scan.height; ++y)
        for (int x = 0; x < scan.width; ++x)
            if (isCut(x, y)) classes[static_cast<std::size_t>(y * scan.width + x)] = 250;
    return classes;
}
