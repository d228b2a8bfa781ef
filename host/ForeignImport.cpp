// Everything in a result was checked when it was read (ReaderResult.h).
#include "ForeignImport.h"

#include <stdlib.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <filesystem>
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
#include "ObjectPalette.h"

namespace {

using KV_ScenePane::PointCloud;
using State = ImportResult::State;

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

/// A ply file in memory, with a name on disk for as long as this exists: the viewer opens files by their names, and
/// chooses its reader by the extension. What a killed program leaves is a folder with a link to nothing.
class TemporaryPly {
public:
    /// @throws std::system_error
    explicit TemporaryPly(std::span<const std::uint8_t> bytes)
        : m_iFd(memfd_create("mesh.ply", MFD_CLOEXEC)),
          m_folder((std::filesystem::temp_directory_path() / "scenepane-XXXXXX").string()) {
        const std::string content = "/proc/self/fd/" + std::to_string(m_iFd);
        const bool isMade = m_iFd >= 0 && WriteAll(bytes) && mkdtemp(m_folder.data()) != nullptr &&
                            symlink(content.c_str(), Path().c_str()) == 0;
        if (isMade) return;
        const int error = errno;
        Remove();
        throw std::system_error(error, std::generic_category(), "no temporary file");
    }
    ~TemporaryPly() { Remove(); }
    TemporaryPly(const TemporaryPly&) = delete;
    TemporaryPly& operator=(const TemporaryPly&) = delete;

    [[nodiscard]] std::string Path() const { return m_folder + "/mesh.ply"; }

private:
    [[nodiscard]] bool WriteAll(std::span<const std::uint8_t> bytes) const {
        while (!bytes.empty()) {
            const ssize_t written = write(m_iFd, bytes.data(), bytes.size());
            if (written < 0 && errno == EINTR) continue;
            if (written <= 0) return false;
            bytes = bytes.subspan(static_cast<std::size_t>(written));
        }
        return true;
    }
    void Remove() const {
        if (m_iFd >= 0) close(m_iFd);
        unlink(Path().c_str());
        rmdir(m_folder.c_str());
    }

    int m_iFd;
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

ImportResult AddReaderResult(KV_ScenePane::_DKV_ScenePane& methods, const std::string& file,
                             const ReaderResult& found) {
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
