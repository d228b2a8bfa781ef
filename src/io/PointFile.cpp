// Chooses the reader of a file of points.
#include "io/PointFile.h"

#include "KV_ScenePane/PathText.h"
#include "io/ByteInput.h"
#include "io/FileExtension.h"
#include "io/PcdFile.h"
#include "io/PlyPoints.h"
#include "io/PointText.h"
#include "io/ReadProgress.h"
#include "io/TextBlocks.h"

namespace {
using Read = KV_ScenePane::PointCloud (*)(ByteInput& input, ReadProgress& progress);

/// @return null for an unknown extension
Read ReaderOf(const std::wstring& extension) {
    if (extension == L"ply") return ReadPlyPoints;
    if (extension == L"pcd") return ReadPcd;
    for (const wchar_t* text : {L"xyz", L"xyzrgb", L"txt", L"asc", L"csv"})
        if (extension == text) return ReadPointText;
    return nullptr;
}
}  // namespace

KV_ScenePane::PointCloud ReadPoints(const std::string& path, const std::function<bool(double)>& progress) {
    const std::wstring wide = KV_ScenePane::WidePath(path);
    const Read read = ReaderOf(LowerCaseExtension(wide));
    if (read == nullptr) throw FileReadError("the type is not one of xyz, xyzrgb, txt, asc, csv, pcd and ply");
    FileInput input(wide);
    ReadProgress report(progress, input.Size());
    KV_ScenePane::PointCloud cloud = read(input, report);
    report.Finish();
    return cloud;
}
