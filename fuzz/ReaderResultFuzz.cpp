// Any bytes as the result of scenepane-read: refused, or a result that keeps its promises. It is what a reader that has
// run wild could hand to the host.
#include <sys/mman.h>
#include <unistd.h>

#include <cmath>
#include <cstddef>
#include <cstdint>

#include "ReaderResult.h"
#include "Require.h"

namespace {

void RequirePromises(const ReaderResult& result) {
    using Kind = ReaderResult::Kind;
    const auto count = static_cast<std::int64_t>(result.mesh.m_vVertices.size());
    for (const KV_ScenePane::Triangle& triangle : result.mesh.m_vTriangles)
        for (const std::int32_t index : triangle.v) Require(index >= 0 && index < count);
    for (const KV_ScenePane::Vertex& vertex : result.mesh.m_vVertices) {
        Require(std::isfinite(vertex.nx) && std::isfinite(vertex.ny) && std::isfinite(vertex.nz));
        Require(vertex.gridIndex == 0);
        Require(result.mesh.m_bHasColors || vertex.color == 0);
        Require(result.kind != Kind::Points ||
                (std::isfinite(vertex.x) && std::isfinite(vertex.y) && std::isfinite(vertex.z)));
    }
    Require(result.text.size() <= kMaxReaderText);
    Require((result.kind == Kind::TexturedMesh) == !result.plyFile.empty());
    Require((result.kind == Kind::Mesh) == !result.mesh.m_vTriangles.empty());
    Require(result.kind != Kind::Refused || !result.text.empty());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    static const int fd = memfd_create("result", MFD_CLOEXEC);
    Require(ftruncate(fd, 0) == 0 && pwrite(fd, bytes, size, 0) == static_cast<ssize_t>(size));
    try {
        RequirePromises(ReadReaderResult(fd));
    } catch (const ReaderResultError&) {
    }
    return 0;
}
