// Everything in a result was checked when it was read (ReaderResult.h).
#include "ForeignImport.h"

#include <memory>
#include <utility>

#include "CaughtError.h"
#include "DebugCapture.h"
#include "FileLook.h"
#include "ForeignReader.h"
#include "KV_ScenePane/PathText.h"
#include "MessageTable.h"
#include "ObjectPalette.h"
#include "TemporaryPly.h"

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
