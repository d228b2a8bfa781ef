// The objects that read and write hps mesh files.
#pragma once
#include "KV_Components/Registry.h"

namespace KvComponents {

namespace hps_reader {
inline constexpr const char* kFactory = "{281FE1B6-B8EB-4F98-A5E1-F5F1AA09D0C6}";
inline constexpr const char* kInterface = "{1CE01B36-C9C0-4039-8A48-4B97610DB225}";

inline constexpr Operation<std::int32_t(const wchar_t* path)> kOpen{8};
/// Why the last operation failed: 0 none, 1 file not found, 2 cannot be read, 3 invalid file, 4 invalid vertex data, 5
/// invalid facet data, 6 invalid UV data, 7 invalid texture data.
inline constexpr Operation<std::int32_t(std::int32_t* code)> kLastError{10};
/// Fails for a file without a texture, too.
inline constexpr Operation<std::int32_t(std::int32_t* size)> kUvBlockSize{15};
inline constexpr Operation<std::int32_t(void* block, std::size_t size)> kUvBlock{16};
/// The two further addresses may be null; what they receive is this library's own affair.
inline constexpr Operation<std::int32_t(std::int32_t* size, std::int32_t* reserved1, std::int32_t* reserved2)>
    kImageFileSize{17};
inline constexpr Operation<std::int32_t(void* bytes, std::size_t size)> kImageFileBytes{18};
/// The decoded texture, an image object of the caller's own.
inline constexpr Operation<std::int32_t(Object** image)> kImage{19};
/// Succeeds behind an open that failed because a triangle names no vertex, too: for a look at the triangles.
inline constexpr Operation<std::int32_t(Object** mesh)> kMesh{20};
/// 1 and 3: the image's rows must be turned round before v = 0 is its first row.
inline constexpr Operation<std::int32_t(std::int32_t* orientation)> kImageOrientation{22};
inline constexpr Operation<std::int32_t()> kClose{23};
}  // namespace hps_reader

namespace hps_mesh {
inline constexpr const char* kFactory = "{60CDEB75-8E34-4E7F-AF4F-35003727680E}";
inline constexpr const char* kInterface = "{187AE259-0EB8-4BE5-831D-E136B69998B8}";

/// @param attributes  "P"
inline constexpr Operation<std::int32_t(std::int32_t vertexCount, std::int32_t triangleCount, const char* attributes)>
    kCreate{8};
inline constexpr Operation<std::int32_t(Object** data)> kWritableVertexData{10};
inline constexpr Operation<std::int32_t(Object** data)> kReadableVertexData{11};
inline constexpr Operation<std::int32_t(std::int32_t* count)> kTriangleCount{17};
inline constexpr Operation<std::int32_t(std::int32_t* count)> kVertexCount{18};
/// Three a triangle. Sizes are in bytes.
inline constexpr Operation<std::int32_t(std::int32_t* indices, std::size_t size)> kReadIndices{20};
inline constexpr Operation<std::int32_t(const std::int32_t* indices, std::size_t size)> kWriteIndices{21};
/// Both arguments are 0.
inline constexpr Operation<std::int32_t(std::int32_t reserved1, std::int32_t reserved2)> kFinish{34};
}  // namespace hps_mesh

/// Handed out by a mesh; 3 floats a vertex and attribute: 'P' positions, 'N' normals, which are computed and can only
/// be read. The end of access lets the mesh go; the object itself is released like any other.
namespace hps_vertex_data {
inline constexpr Operation<void()> kEndAccess{5};
inline constexpr Operation<std::int32_t(char attribute, std::int32_t reserved, std::int32_t vertexCount, float* values,
                                        std::size_t size)>
    kReadAttribute{23};
inline constexpr Operation<std::int32_t(char attribute, std::int32_t reserved, std::int32_t vertexCount,
                                        const float* values, std::size_t size)>
    kWriteAttribute{24};
}  // namespace hps_vertex_data

/// An interface of meshes.
namespace hps_mesh_source {
inline constexpr const char* kInterface = "{CB1DE91B-E204-4299-964C-FBCCA348C49D}";

/// A new object, to be queried for hps_mesh::kInterface.
inline constexpr Operation<std::int32_t(Object** clone)> kClone{8};
}  // namespace hps_mesh_source

namespace hps_uv_decoder {
inline constexpr const char* kFactory = "{FA4A0221-DF47-4EC5-8286-A772E67EF31A}";
inline constexpr const char* kInterface = "{5BCC9B77-54EF-4DCC-A1C1-6DE7CDFC8C5F}";

/// @param reserved  may be null
inline constexpr Operation<std::int32_t(const void* block, std::size_t size, std::int32_t* vertexCount,
                                        std::int32_t* pairCount, std::int32_t* reserved)>
    kMeasure{9};
/// @param pairsOfVertex  how many pairs each vertex has
/// @param pairs          u, v; those of vertex 0 first. Sizes are in bytes
inline constexpr Operation<std::int32_t(const void* block, std::size_t size, std::uint8_t* pairsOfVertex,
                                        std::size_t pairsOfVertexSize, float* pairs, std::size_t pairsSize)>
    kDecode{10};
}  // namespace hps_uv_decoder

namespace hps_file_writer {
inline constexpr const char* kFactory = "{103A4F7C-49B2-406F-A682-7E19869B8B88}";
inline constexpr const char* kInterface = "{672883FC-ECA9-46FC-8174-43E8428F1E92}";

inline constexpr Operation<std::int32_t(Object* compressor)> kBind{8};
/// Packs what is bound and set; fails when a vertex has more than 255 pairs that do not repeat.
inline constexpr Operation<std::int32_t()> kPrepare{11};
inline constexpr Operation<std::int32_t(const void* bytes, std::size_t size)> kTextureFile{17};
/// @param pairs  u, v of each triangle's corners in order
inline constexpr Operation<std::int32_t(const float* pairs, std::size_t pairCount)> kUvPairs{18};
inline constexpr Operation<std::int32_t(const char* application, const char* version)> kSourceApplication{24};
inline constexpr Operation<std::int32_t(const wchar_t* path)> kSave{28};
inline constexpr Operation<std::int32_t()> kUnbind{29};
}  // namespace hps_file_writer

namespace hps_compressor {
inline constexpr const char* kFactory = "{A3FEFC16-AE54-4897-8237-2CF46870A76E}";
inline constexpr const char* kInterface = "{CC8052A0-62B2-4F02-BE8A-1150B11E23A4}";

inline constexpr Operation<std::int32_t(Object* mesh)> kBind{8};
inline constexpr Operation<std::int32_t()> kUnbind{18};
}  // namespace hps_compressor

}  // namespace KvComponents
