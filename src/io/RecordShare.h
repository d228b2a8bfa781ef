// Files that end before or after the data that they announce: they are imported all the same, and the host gets one
// line about them.
#pragma once
#include <cstdint>
#include <string_view>

/// How many of the announced records of one kind a file has, each of them as a whole.
struct RecordShare {
    std::uint64_t m_uPresent = 0;
    std::uint64_t m_uAnnounced = 0;
};

/// Writes the line "FILE: 768 of 1280 triangles are in the file" to the debugger output, unless all records are there.
/// Where vertices are missing, too: "FILE: 10 of 12 vertices and 0 of 20 triangles are in the file". Any thread.
/// @param file  path or name, shown as FileLabel() shows it
void ReportMissing(std::wstring_view file, const RecordShare& vertices, const RecordShare& triangles);
/// The same for a grid: "FILE: 9 of 16 pixels are in the file".
void ReportMissingPixels(std::wstring_view file, const RecordShare& pixels);
/// Writes the line "FILE: 5 bytes follow the end of its data", unless @p count is 0.
void ReportBytesAfterEnd(std::wstring_view file, std::uint64_t count);
