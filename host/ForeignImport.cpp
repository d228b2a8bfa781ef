// Everything in a result was checked when it was read (ReaderResult.h).
#include "ForeignImport.h"

#include <stdlib.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <memory>
#include <span>
#include <system_error>
#include <utility>

#include "CaughtError.h"
#include "DebugCapture.h"
#include "FileLook.h"
#include "ForeignReader.h"
#include "KV_ScenePane/PathText.h"
#include "MessageTable.h"

namespace {

using KV_ScenePane::PointCloud;
using State = ImportResult::State;

constexpr std::int32_t kUncolored = 0xFFFFFF;  // as the viewer's own imports of meshes

PointCloud CloudOf(const KV_ScenePane::MeshBuffers& mesh) {
    PointCloud cloud;
    cloud.xyz.reserve(3 * mesh.m_vVertices.size());
    if (mesh.m_bHasColors) cloud.colors.reserve(3 * mesh.m_vVertices.size());
    for (const KV_ScenePane::Vertex& vertex : mesh.m_vVertices) {
        cloud.xyz.insert(cloud.xyz.end(), {vertex.x, vertex.y, vertex.z});
        if (!mesh.m_bHasColors) continue;
        for (const unsigned shift : {16U, 8U, 0U})
            cloud.colors.push_back(static_cast<float>(vertex.color >> shift & 0xFF) / 255.0f);
    }
    return cloud;
}

/// A folder that is removed with the one file in it.
class TemporaryPly {
public:
    /// @throws std::system_error
    explicit TemporaryPly(std::span<const std::uint8_t> bytes)
        : m_folder((std::filesystem::temp_directory_path() / "scenepane-XXXXXX").string()) {
        if (mkdtemp(m_folder.data()) == nullptr)
            throw std::system_error(errno, std::generic_category(), "no temporary folder");
        std::ofstream out(Path(), std::ios::binary);
        out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        if (out.flush()) return;
        const int error = errno;
        Remove();
        throw std::system_error(error, std::generic_category(), "no temporary file");
    }
    ~TemporaryPly() { Remove(); }
    TemporaryPly(const TemporaryPly&) = delete;
    TemporaryPly& operator=(const TemporaryPly&) = delete;

    [[nodiscard]] std::string Path() const { return m_folder + "/mesh.ply"; }

private:
    void Remove() const {
        unlink(Path().c_str());
        rmdir(m_folder.c_str());
    }
    std::string m_folder;
};

/// @return the text of an exception; empty without one
std::string Import(KV_ScenePane::_DKV_ScenePane& methods, const std::string& file, const ReaderResult& found,
                   std::string& importedPath) {
    try {
        if (found.kind == ReaderResult::Kind::TexturedMesh) {
            const TemporaryPly ply(found.plyFile);
            importedPath = ply.Path();
            methods.ImportMesh(KV_ScenePane::WidePath(importedPath).c_str());
        } else {
            methods.ImportMeshedMeasurement(&found.mesh, KV_ScenePane::WidePath(file).c_str(), kUncolored);
        }
        return {};
    } catch (...) {  // exhausted memory for one file must not end the import of the others
        return TextOfCaughtError();
    }
}

}  // namespace

ImportResult AddReaderResult(KV_ScenePane::_DKV_ScenePane& methods, const std::string& file, ReaderResult found) {
    if (found.kind == ReaderResult::Kind::Refused) return {State::Failed, FailureReason(file, found.text)};
    if (found.kind == ReaderResult::Kind::Points)
        return {State::Points, FileMessage(file, found.text), std::make_shared<PointCloud>(CloudOf(found.mesh))};
    if (FreePlaces(methods) < 1) return {State::Failed, kSceneIsFull};
    const std::int16_t before = methods.GetNumObjects();
    const DebugCapture capture;
    std::string path = file;
    const std::string thrown = Import(methods, file, found, path);
    if (methods.GetNumObjects() == before) return {State::Failed, FailureReason(path, capture.Text(), thrown)};
    return {State::Added, FileMessage(path, found.text + '\n' + capture.Text(), thrown)};
}

bool ReadAnyPoints(const std::string& path, PointCloud* cloud, std::string* reason,
                   const std::function<bool(double)>& progress) {
    const bool isForeign = LookAt(path) == FileLook::Process;
    reason->clear();
    if (!isForeign && KV_ScenePane::ReadPointFile(path, cloud, reason, progress)) return true;
    const bool isCancelled = !isForeign && *reason == kCancelled;
    if (!isForeign && (isCancelled || !HasSecondReader(path) || ReaderProgram().empty())) return false;
    const ReaderResult found = RunReader(path, [&] { return progress && !progress(0.0); });
    if (found.mesh.m_vVertices.empty()) {
        const bool isImage = found.kind == ReaderResult::Kind::TexturedMesh;
        *reason = isImage ? kMeshWithImage : found.text;
        return false;
    }
    *cloud = CloudOf(found.mesh);
    *reason = found.text;
    return !progress || progress(1.0);
}
