// ply and stl files have readers here: the library refuses or misreads many of them (docs/decisions/foreign-files.md).
#include "ForeignFile.h"

#include <string_view>

#include "AnyPly.h"
#include "FoundMesh.h"
#include "KV_ScenePane/PathText.h"
#include "LibraryScene.h"
#include "NamedFiles.h"
#include "NumberWords.h"
#include "ObjPoints.h"
#include "TextStl.h"
#include "files/RegularFile.h"
#include "io/FileExtension.h"

namespace {

/// Whether an obj file has anything but points.
bool HasFaces(std::string_view text) {
    for (NumberWords words(text); words.Next(); words.SkipLine())
        if (words.Is("f")) return true;
    return false;
}

}  // namespace

ReaderResult ReadForeignFile(const std::string& file) {
    const NamedFiles files(file);
    const std::wstring extension = LowerCaseExtension(KV_ScenePane::WidePath(file));
    if (extension != L"ply" && extension != L"stl" && extension != L"obj") return ResultOf(ReadByLibrary(file, files));
    const std::vector<std::byte> bytes = FileStorage::RegularFile(file).ReadWhole();
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    if (extension == L"obj") return ResultOf(HasFaces(text) ? ReadByLibrary(file, files) : ReadObjPoints(text));
    if (extension == L"stl") return ResultOf(ReadTextStl(text));
    return ResultOf(ReadAnyPly(text, [&](const std::string& name) { return files.Load(name); }));
}
