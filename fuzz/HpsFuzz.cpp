// Any bytes as an hps file: refused, or a mesh in proportion to the file that is the same to the bit when it is written
// and read again. A mutated file fails its checksums, so each input is tried a second time with repaired ones.
#include <sys/mman.h>
#include <unistd.h>

#include <cstring>
#include <string>

#include "KV_Components/Hps.h"
#include "KV_Components/HpsFacets.h"
#include "KV_Components/HpsFile.h"
#include "KV_Components/HpsUv.h"
#include "KV_Components/HpsVertices.h"
#include "KV_Components/ObjectRegistry.h"
#include "KV_ScenePane/PathText.h"
#include "RepairChecksums.h"
#include "Require.h"

using namespace KvComponents;
using namespace KvComponents::Hps;

namespace {

bool ReadPairs(const FileContent& content) {
    if (content.uv.empty()) return true;
    try {
        const UvCounts counts = MeasureUv(content.uv);
        Require((counts.vertices + 8ull * counts.pairs) / kMaxExpansion <= content.uv.size());
        std::vector<std::uint8_t> lengths(counts.vertices);
        std::vector<float> pairs(2 * std::size_t{counts.pairs});
        UnpackUv(content.uv, lengths, pairs);
        return true;
    } catch (const DamagedData&) {
        return false;
    }
}

void ReadWriteAndReadAgain(const ByteVector& bytes) {
    try {
        const FileContent content = ParseFile(bytes);
        Require(12 * (std::uint64_t{content.vertexCount} + content.triangleCount) / kMaxExpansion <= bytes.size());
        (void)ReadPairs(content);
        const Facets facets = DecodeFacets(content.facets, content.vertexCount, content.triangleCount);
        if (facets.firstBad != Facets::kNone) return;
        const RawArray<float> positions =
            PackedPositions(content.positions, content.vertexCount).Decode(facets.introductions.Span());
        RawArray<Introduction> introductions;
        const ByteVector packedFacets = EncodeFacets(facets.indices.Span(), content.vertexCount, introductions);
        const ByteVector packedPositions = EncodePositions(positions.Span(), introductions.Span());
        const Facets again = DecodeFacets(packedFacets, content.vertexCount, content.triangleCount);
        const RawArray<float> positionsAgain =
            PackedPositions(packedPositions, content.vertexCount).Decode(again.introductions.Span());
        Require(std::memcmp(facets.indices.data(), again.indices.data(), facets.indices.Span().size_bytes()) == 0);
        Require(std::memcmp(positions.data(), positionsAgain.data(), positions.Span().size_bytes()) == 0);
    } catch (const FileError&) {
    } catch (const DamagedData&) {
    }
}

/// The same bytes as a file, through the binary interface of the objects.
void ReadThroughTheObjects(const ByteVector& bytes) {
    static const int fd = ::memfd_create("hps", 0);
    static const std::wstring path = KV_ScenePane::WidePath("/proc/self/fd/" + std::to_string(fd));
    Require(::ftruncate(fd, 0) == 0);
    Require(::pwrite(fd, bytes.data(), bytes.size(), 0) == static_cast<ssize_t>(bytes.size()));
    Object* const reader = MakeObject(hps_reader::kFactory);
    std::int32_t code = -1;
    const bool isOpen = hps_reader::kOpen(reader, path.c_str()) == kSucceeded;
    Require(hps_reader::kLastError(reader, &code) == kSucceeded && isOpen == (code == 0));
    Object* mesh = nullptr;
    if (hps_reader::kMesh(reader, &mesh) == kSucceeded) {
        Object* data = nullptr;
        std::int32_t count = 0;
        Require(hps_mesh::kVertexCount(mesh, &count) == kSucceeded);
        Require(hps_mesh::kReadableVertexData(mesh, &data) == kSucceeded);
        std::vector<float> normals(3 * static_cast<std::size_t>(count));
        (void)hps_vertex_data::kReadAttribute(data, 'N', 0, count, normals.data(), normals.size() * sizeof(float));
        kRelease(data);
        kRelease(mesh);
    }
    kRelease(reader);
    Require(Component::LiveCount() == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kFileSizeOffset = 16;
    ReadThroughTheObjects(CheckTwice(data, size, kFileSizeOffset, ReadWriteAndReadAgain));
    return 0;
}
