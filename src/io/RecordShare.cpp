// From counts to the line.
#include "io/RecordShare.h"

#include <string>

#include "base/DebugOutput.h"
#include "io/FileMessage.h"

namespace {

bool IsMissing(const RecordShare& share) { return share.m_uPresent < share.m_uAnnounced; }

std::string TextOf(const RecordShare& share, const char* kind) {
    return std::to_string(share.m_uPresent) + " of " + std::to_string(share.m_uAnnounced) + kind;
}

void Report(std::wstring_view file, const std::string& text) {
    std::string line = FileLabel(file) + ": ";
    DebugOutput(line.append(text).append("\n"));
}

}  // namespace

void ReportMissing(std::wstring_view file, const RecordShare& vertices, const RecordShare& triangles) {
    if (IsMissing(vertices) && triangles.m_uAnnounced == 0)
        Report(file, TextOf(vertices, " vertices are in the file"));
    else if (IsMissing(vertices))
        Report(file, TextOf(vertices, " vertices and ") + TextOf(triangles, " triangles are in the file"));
    else if (IsMissing(triangles))
        Report(file, TextOf(triangles, " triangles are in the file"));
}

void ReportMissingPixels(std::wstring_view file, const RecordShare& pixels) {
    if (IsMissing(pixels)) Report(file, TextOf(pixels, " pixels are in the file"));
}

void ReportBytesAfterEnd(std::wstring_view file, std::uint64_t count) {
    if (count > 0) Report(file, std::to_string(count) + " bytes follow the end of its data");
}
