// Layout: the header, then the text, the vertices, the triangles and the ply file, without padding, in the byte order
// of the machine: both programs run on the same one.
#include "ReaderResult.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>
#include <system_error>
#include <utility>

namespace {

using KV_ScenePane::Triangle;
using KV_ScenePane::Vertex;

constexpr char kMagic[8] = {'K', 'V', 'R', 'E', 'A', 'D', '0', '1'};
constexpr std::uint64_t kMaxCount = std::numeric_limits<std::int32_t>::max();

struct Header {
    char magic[8] = {};
    std::uint32_t kind = 0;
    std::uint32_t hasColors = 0;  // 0 or 1
    std::uint64_t textBytes = 0;
    std::uint64_t vertices = 0;
    std::uint64_t triangles = 0;
    std::uint64_t plyBytes = 0;
};
static_assert(sizeof(Header) == 48);

void WriteAll(int fd, const void* bytes, std::size_t size, std::uint64_t& offset) {
    const auto* from = static_cast<const std::byte*>(bytes);
    while (size > 0) {
        const ssize_t written = pwrite(fd, from, size, static_cast<off_t>(offset));
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) throw std::system_error(written < 0 ? errno : ENOSPC, std::generic_category());
        from += written;
        size -= static_cast<std::size_t>(written);
        offset += static_cast<std::uint64_t>(written);
    }
}

/// The bytes of the file, one part after the other.
class Parts {
public:
    explicit Parts(int fd) : m_iFd(fd) {
        struct stat state {};
        if (fstat(fd, &state) != 0 || !S_ISREG(state.st_mode)) throw ReaderResultError("the result is no file");
        m_uLeft = static_cast<std::uint64_t>(state.st_size);
    }

    [[nodiscard]] std::uint64_t Left() const { return m_uLeft; }

    void Read(void* to, std::uint64_t size) {
        if (size > m_uLeft) throw ReaderResultError("the result is cut short");
        m_uLeft -= size;
        auto* target = static_cast<std::byte*>(to);
        while (size > 0) {
            const ssize_t count = pread(m_iFd, target, static_cast<std::size_t>(size), static_cast<off_t>(m_uOffset));
            if (count < 0 && errno == EINTR) continue;
            if (count <= 0) throw ReaderResultError("the result is cut short");
            target += count;
            size -= static_cast<std::uint64_t>(count);
            m_uOffset += static_cast<std::uint64_t>(count);
        }
    }

    /// @throws ReaderResultError before memory is allocated when the file does not hold so many
    template <class Items>
    void ReadItems(Items& items, std::uint64_t count) {
        using Item = typename Items::value_type;
        if (count > m_uLeft / sizeof(Item)) throw ReaderResultError("the result is cut short");
        items.resize(static_cast<std::size_t>(count));
        Read(items.data(), count * sizeof(Item));
    }

private:
    int m_iFd;
    std::uint64_t m_uLeft = 0, m_uOffset = 0;
};

void Require(bool holds) {
    if (!holds) throw ReaderResultError("the result is damaged");
}

/// What one kind of result must not have.
void RequireShape(const Header& header, ReaderResult::Kind kind) {
    using Kind = ReaderResult::Kind;
    Require(header.hasColors <= 1 && header.vertices <= kMaxCount && header.triangles <= kMaxCount);
    Require(header.textBytes <= kMaxReaderText);
    Require((header.plyBytes > 0) == (kind == Kind::TexturedMesh));
    Require((header.vertices > 0) == (kind == Kind::Mesh || kind == Kind::Points));
    Require((header.triangles > 0) == (kind == Kind::Mesh));
    Require(kind != Kind::Refused || header.textBytes > 0);
}

void RequireIndices(const KV_ScenePane::MeshBuffers& mesh) {
    const auto count = static_cast<std::int64_t>(mesh.m_vVertices.size());
    const auto isValid = [count](const Triangle& triangle) {
        return std::ranges::all_of(triangle.v, [count](std::int32_t index) { return index >= 0 && index < count; });
    };
    Require(std::ranges::all_of(mesh.m_vTriangles, isValid));
}

/// The words of a vertex that its kind does not have, and normals that would spoil the lighting.
void Repair(KV_ScenePane::MeshBuffers& mesh) {
    for (Vertex& vertex : mesh.m_vVertices) {
        if (!std::isfinite(vertex.nx) || !std::isfinite(vertex.ny) || !std::isfinite(vertex.nz))
            vertex.nx = vertex.ny = vertex.nz = 0.0f;
        if (!mesh.m_bHasColors) vertex.color = 0;
        vertex.gridIndex = 0;
    }
}

bool IsFinite(const Vertex& vertex) {
    return std::isfinite(vertex.x) && std::isfinite(vertex.y) && std::isfinite(vertex.z);
}

}  // namespace

void WriteReaderResult(int fd, const ReaderResult& result) {
    Header header;
    header.kind = static_cast<std::uint32_t>(result.kind);
    header.hasColors = result.mesh.m_bHasColors ? 1 : 0;
    header.textBytes = std::min(result.text.size(), kMaxReaderText);
    header.vertices = result.mesh.m_vVertices.size();
    header.triangles = result.mesh.m_vTriangles.size();
    header.plyBytes = result.plyFile.size();
    std::uint64_t offset = sizeof header;
    WriteAll(fd, result.text.data(), static_cast<std::size_t>(header.textBytes), offset);
    WriteAll(fd, result.mesh.m_vVertices.data(), result.mesh.m_vVertices.size() * sizeof(Vertex), offset);
    WriteAll(fd, result.mesh.m_vTriangles.data(), result.mesh.m_vTriangles.size() * sizeof(Triangle), offset);
    WriteAll(fd, result.plyFile.data(), result.plyFile.size(), offset);
    std::memcpy(header.magic, kMagic, sizeof kMagic);
    offset = 0;
    WriteAll(fd, &header, sizeof header, offset);
}

ReaderResult ReadReaderResult(int fd) {
    Parts parts(fd);
    Header header;
    parts.Read(&header, sizeof header);
    if (std::memcmp(header.magic, kMagic, sizeof kMagic) != 0) throw ReaderResultError("there is no result");
    Require(header.kind <= static_cast<std::uint32_t>(ReaderResult::Kind::Points));
    ReaderResult result;
    result.kind = static_cast<ReaderResult::Kind>(header.kind);
    RequireShape(header, result.kind);
    parts.ReadItems(result.text, header.textBytes);
    result.mesh.m_bHasColors = header.hasColors == 1;
    parts.ReadItems(result.mesh.m_vVertices, header.vertices);
    parts.ReadItems(result.mesh.m_vTriangles, header.triangles);
    parts.ReadItems(result.plyFile, header.plyBytes);
    Require(parts.Left() == 0);
    RequireIndices(result.mesh);
    Repair(result.mesh);
    if (result.kind == ReaderResult::Kind::Points) Require(std::ranges::all_of(result.mesh.m_vVertices, IsFinite));
    return result;
}
