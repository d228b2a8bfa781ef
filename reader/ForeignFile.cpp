// ply and stl files have readers here: the library refuses or misreads many of them (docs/decisions/foreign-files.md).
#include "ForeignFile.h"

#include <string_view>
#include <utility>
#include <vector>

#include "AnyPly.h"
#include "FoundMesh.h"
#include "KV_ScenePane/PathText.h"
#include "LibraryScene.h"
#include "NamedFiles.h"
#include "ObjLook.h"
#include "ObjPoints.h"
#include "OffCheck.h"
#include "TextStl.h"
#include "files/RegularFile.h"
#include "io/FileExtension.h"

namespace {

/// The library also looks for a file of materials with the name of the mesh.
std::string OwnMaterials(const std::string& file) {
    const std::string name = file.substr(file.rfind('/') + 1);
    return name.substr(0, name.rfind('.')) + ".mtl";
}

ReaderResult ReadObj(const std::string& file, std::string_view text, const NamedFiles& files) {
    const ObjLook look = LookAtObj(text);
    if (!look.hasFaces) return ResultOf(ReadObjPoints(text));
    if (!look.notFinite.empty()) throw UnreadableFile(look.notFinite);
    FoundMesh found = ReadByLibrary(file, files);
    if (look.usesMaterials && files.Find(OwnMaterials(file)).empty())
        for (const std::string& name : look.materialFiles)
            if (files.Find(name).empty())
                found.leftOut.push_back("the colours of its materials are not shown: there is no file " + name);
    return ResultOf(std::move(found));
}

}  // namespace

ReaderResult ReadForeignFile(const std::string& file) {
    const FileStorage::RegularFile regular(file);
    if (regular.Size() == 0) throw UnreadableFile("the file is empty");
    const NamedFiles files(file);
    const std::wstring extension = LowerCaseExtension(KV_ScenePane::WidePath(file));
    if (extension != L"ply" && extension != L"stl" && extension != L"obj" && extension != L"off")
        return ResultOf(ReadByLibrary(file, files));
    const std::vector<std::byte> bytes = regular.ReadWhole();
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    if (extension == L"obj") return ReadObj(file, text, files);
    if (extension == L"stl") return ResultOf(ReadTextStl(text));
    if (extension == L"ply")
        return ResultOf(ReadAnyPly(text, [&](const std::string& name) { return files.Load(name); }));
    RequireWholeOff(text);
    return ResultOf(ReadByLibrary(file, files));
}
