// From counts to the line.
#include "io/RecordShare.h"

#include <string>

#include "io/FileMessage.h"

namespace {

bool IsMissing(const RecordShare& share) { return share.m_uPresent < share.m_uAnnounced; }

std::string TextOf(const RecordShare& share, const char* kind) {
    return std::to_string(share.m_uPresent) + " of " + std::to_string(share.m_uAnnounced) + kind;
}

}  // namespace

void ReportMissing(std::wstring_view file, const RecordShare& vertices, const RecordShare& triangles) {
    if (IsMissing(vertices) && triangles.m_uAnnounced == 0)
        ReportFileRemark(file, TextOf(vertices, " vertices are in the file"));
    else if (IsMissing(vertices))
        ReportFileRemark(file, TextOf(vertices, " vertices and ") + TextOf(triangles, " triangles are in the file"));
    else if (IsMissing(triangles))
        ReportFileRemark(file, TextOf(triangles, " triangles are in the file"));
}

void ReportMissingPixels(std::wstring_view file, const RecordShare& pixels) {
    if (IsMissing(pixels)) ReportFileRemark(file, TextOf(pixels, " pixels are in the file"));
}

void ReportBytesAfterEnd(std::wstring_view file, std::uint64_t count) {
    if (count > 0) ReportFileRemark(file, std::to_string(count) + " bytes follow the end of its data");
}
