// A pcm file of a flat scan that has a pose.
#pragma once
#include <array>
#include <string>
#include <vector>

#include "host/ScanFiles.h"

/// @param pose  of the sensor: the rows of a matrix, scene units
inline void WritePlacedPcm(const std::string& path, int columns, int rows, const std::array<float, 16>& pose) {
    const std::vector<float> points = FlatGrid(columns, rows, 0.0f, 1000.0f);
    const std::vector<float> confidences(points.size() / 3, 1.0f);
    const std::vector<std::uint8_t> classes(points.size() / 3, 0);
    std::array<float, 16> stored = pose;
    for (const std::size_t i : {3u, 7u, 11u}) stored[i] *= 1000.0f;
    MsrStorage::PcmView view;
    view.m_iWidth = columns;
    view.m_iHeight = rows;
    view.m_pPoints = points.data();
    view.m_pConfidence = confidences.data();
    view.m_pClassification = classes.data();
    view.m_pTrafo = stored.data();
    MsrStorage::WritePcmFile(path, view);
}
