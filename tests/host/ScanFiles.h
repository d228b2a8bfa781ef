// Small scan files for the tests of the host: flat grids with a distance of one scene unit between points, and damaged
// ones.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "MSRDLL/PcmFile.h"
#include "support/ScratchFolder.h"

/// The points (column, row, height) of a flat grid, times @p scale.
inline std::vector<float> FlatGrid(int columns, int rows, float height, float scale) {
    std::vector<float> points;
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            for (const float value : {static_cast<float>(column), static_cast<float>(row), height})
                points.push_back(value * scale);
        }
    }
    return points;
}

inline void AppendBytes(std::vector<std::byte>& bytes, const void* data, std::size_t size) {
    if (size == 0) return;  // the pointer may be null then
    const std::size_t end = bytes.size();
    bytes.resize(end + size);
    std::memcpy(bytes.data() + end, data, size);
}

inline void AppendSize(std::vector<std::byte>& bytes, int columns, int rows) {
    for (const int side : {columns, rows}) {
        const auto word = static_cast<std::int16_t>(side);
        AppendBytes(bytes, &word, sizeof word);
    }
}

inline void WritePax(const std::string& path, int columns, int rows, float height = 0.0f) {
    std::vector<std::byte> bytes;
    AppendSize(bytes, columns, rows);
    const std::vector<float> points = FlatGrid(columns, rows, height, 1.0f);
    const std::vector<float> confidence(points.size() / 3, 1.0f);
    const float trafo[] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    AppendBytes(bytes, points.data(), points.size() * sizeof(float));
    AppendBytes(bytes, confidence.data(), confidence.size() * sizeof(float));
    AppendBytes(bytes, trafo, sizeof trafo);
    WriteBytes(path, bytes);
}

inline void WriteXdt(const std::string& path, int columns, int rows, float height = 0.0f) {
    std::vector<std::byte> bytes;
    AppendSize(bytes, columns, rows);
    const std::vector<float> points = FlatGrid(columns, rows, height, 1000.0f);
    AppendBytes(bytes, points.data(), points.size() * sizeof(float));
    WriteBytes(path, bytes);
}

/// @param height      of every point, scene units
/// @param confidence  of every pixel
/// @param pose        of the sensor: the rows of a matrix, scene units
/// @param colors      one per pixel, or none
inline void WritePcm(const std::string& path, int columns, int rows, float height = 0.0f, float confidence = 1.0f,
                     std::array<float, 16> pose = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1},
                     const std::vector<std::uint32_t>& colors = {}) {
    const std::vector<float> points = FlatGrid(columns, rows, height, 1000.0f);
    const std::vector<float> confidences(points.size() / 3, confidence);
    const std::vector<std::uint8_t> classes(points.size() / 3, 0);
    for (const std::size_t i : {3u, 7u, 11u}) pose[i] *= 1000.0f;
    MsrStorage::PcmView view;
    view.m_iWidth = columns;
    view.m_iHeight = rows;
    view.m_pPoints = points.data();
    view.m_pConfidence = confidences.data();
    view.m_pClassification = classes.data();
    view.m_pTrafo = pose.data();
    view.m_pColors = colors.empty() ? nullptr : colors.data();
    MsrStorage::WritePcmFile(path, view);
}

inline void WritePlacedPcm(const std::string& path, int columns, int rows, const std::array<float, 16>& pose) {
    WritePcm(path, columns, rows, 0.0f, 1.0f, pose);
}

struct DamagedPcm {
    std::string path;
    std::string reason;  ///< for a user
};

/// Writes three files with the same content and a different damage each.
inline std::vector<DamagedPcm> WriteDamagedPcms(const ScratchFolder& folder) {
    WritePcm(folder / "whole.pcm", 60, 60);
    const std::vector<std::byte> whole = ReadBytes(folder / "whole.pcm");
    const auto write = [&](const std::string& name, const std::vector<std::byte>& bytes, const std::string& reason) {
        WriteBytes(folder / name, bytes);
        return DamagedPcm{folder / name, reason};
    };
    // In the points, by far the longest section.
    std::vector<std::byte> changed = whole;
    changed.at(changed.size() / 2) ^= std::byte{1};
    return {write("cut100.pcm", {whole.begin(), whole.begin() + 100},
                  "the file is cut short after 100 bytes: copy or export it again from its source"),
            write("cut2000.pcm", {whole.begin(), whole.begin() + 2000},
                  "the file is cut short: copy or export it again from its source (2000 bytes, not " +
                      std::to_string(whole.size()) + ")"),
            write("changed.pcm", changed,
                  "the file is damaged: copy or export it again from its source (XYZ at byte 200)")};
}
