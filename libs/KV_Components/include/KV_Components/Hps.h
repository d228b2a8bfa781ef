// The objects that read and write hps mesh files.
//
// All operations return one of the codes of Registry.h. Unless it says otherwise, an operation returns kInvalidArgument
// for a null pointer or a wrong size, kFailed when the object is not in the state for it, and then changes nothing.
// Sizes of buffers are in bytes. Buffers belong to the caller; objects that an operation returns have one reference for
// the caller. Objects are not for two threads at once; different objects are independent.
#pragma once
#include "KV_Components/Registry.h"

namespace KvComponents {

/// Reads a file. Open decodes all of it, so that every defect is reported there; the other operations return parts of
/// the file that is open.
namespace hps_reader {
inline constexpr const char* kFactory = "{281FE1B6-B8EB-4F98-A5E1-F5F1AA09D0C6}";
inline constexpr const char* kInterface = "{1CE01B36-C9C0-4039-8A48-4B97610DB225}";

/// Opens a file after closing the previous one.
/// @return kFailed when the file cannot be read; kLastError has the reason
inline constexpr Operation<std::int32_t(const wchar_t* path)> kOpen{8};
/// The reason why the last kOpen failed: 0 none, 1 file not found, 2 cannot be read, 3 invalid file, 4 invalid vertex
/// data, 5 invalid facet data, 6 invalid UV data, 7 invalid texture data.
inline constexpr Operation<std::int32_t(std::int32_t* code)> kLastError{10};
/// Size of the UV block, for kUvBlock.
/// @return kFailed, and a size of 0, for a file without texture coordinates and for a file without a texture
inline constexpr Operation<std::int32_t(std::int32_t* size)> kUvBlockSize{15};
/// Copies the UV block, still packed; hps_uv_decoder unpacks it.
/// @param size  exactly that of kUvBlockSize
inline constexpr Operation<std::int32_t(void* block, std::size_t size)> kUvBlock{16};
/// Size of the texture's picture file, for kImageFileBytes.
/// @param reserved1, reserved2  may be null; receive 0. Other libraries can return other values
/// @return kFailed, and a size of 0, for a file without a texture
inline constexpr Operation<std::int32_t(std::int32_t* size, std::int32_t* reserved1, std::int32_t* reserved2)>
    kImageFileSize{17};
/// Copies the texture's picture file (png or jpeg).
/// @param size  exactly that of kImageFileSize
inline constexpr Operation<std::int32_t(void* bytes, std::size_t size)> kImageFileBytes{18};
/// The decoded texture as a new image object (Image.h) on each call: the caller can change it.
inline constexpr Operation<std::int32_t(Object** image)> kImage{19};
/// The mesh, an object with hps_mesh::kInterface, finished. All calls return the same object. After a kOpen that failed
/// with code 5 because of a wrong index it returns a mesh with all triangles and zero positions, by which a caller can
/// report the triangle.
inline constexpr Operation<std::int32_t(Object** mesh)> kMesh{20};
/// The order of the texture's rows. 1 and 3: they must be flipped so that the row at v = 0 comes first.
inline constexpr Operation<std::int32_t(std::int32_t* orientation)> kImageOrientation{22};
/// Closes the file and releases its memory. Objects that the reader returned are still valid.
inline constexpr Operation<std::int32_t()> kClose{23};
}  // namespace hps_reader

/// A triangle mesh. It is created, written to, finished, and constant from then on; before kCreate all other operations
/// return kFailed.
namespace hps_mesh {
inline constexpr const char* kFactory = "{60CDEB75-8E34-4E7F-AF4F-35003727680E}";
inline constexpr const char* kInterface = "{187AE259-0EB8-4BE5-831D-E136B69998B8}";

/// Allocates positions and indices, all zero. Once per mesh.
/// @param attributes  of the vertices: "P", positions
inline constexpr Operation<std::int32_t(std::int32_t vertexCount, std::int32_t triangleCount, const char* attributes)>
    kCreate{8};
/// Opens the one writable access to the vertices (hps_vertex_data).
/// @return kFailed when the mesh is finished or another access is open
inline constexpr Operation<std::int32_t(Object** data)> kWritableVertexData{10};
/// Opens a readable access to the vertices; several can be open at a time.
/// @return kFailed when a writable access is open
inline constexpr Operation<std::int32_t(Object** data)> kReadableVertexData{11};
inline constexpr Operation<std::int32_t(std::int32_t* count)> kTriangleCount{17};
inline constexpr Operation<std::int32_t(std::int32_t* count)> kVertexCount{18};
/// Copies all indices, three per triangle.
/// @param size  exactly 12 times the number of triangles
inline constexpr Operation<std::int32_t(std::int32_t* indices, std::size_t size)> kReadIndices{20};
/// Replaces all indices. They are checked by kFinish.
inline constexpr Operation<std::int32_t(const std::int32_t* indices, std::size_t size)> kWriteIndices{21};
/// Makes the mesh constant. Both arguments are 0.
/// @return kFailed when a writable access is open or an index is not a vertex
inline constexpr Operation<std::int32_t(std::int32_t reserved1, std::int32_t reserved2)> kFinish{34};
}  // namespace hps_mesh

/// One access to the vertices of a mesh. Only kWritableVertexData and kReadableVertexData return it, and it has no
/// interface to be queried.
/// An attribute is 3 floats per vertex: 'P' positions, 'N' normals. Normals are computed when they are read (linear in
/// the number of triangles) and cannot be written.
namespace hps_vertex_data {
/// Ends the access and releases the mesh. The object itself is released like any other, which ends the access too.
inline constexpr Operation<void()> kEndAccess{5};
/// Copies one attribute of all vertices.
/// @param attribute    'P' or 'N'
/// @param reserved     0
/// @param vertexCount  all vertices of the mesh
/// @param size         exactly 12 times the number of vertices
inline constexpr Operation<std::int32_t(char attribute, std::int32_t reserved, std::int32_t vertexCount, float* values,
                                        std::size_t size)>
    kReadAttribute{23};
/// Replaces the positions of all vertices; the arguments are as for kReadAttribute.
/// @param attribute  'P'
inline constexpr Operation<std::int32_t(char attribute, std::int32_t reserved, std::int32_t vertexCount,
                                        const float* values, std::size_t size)>
    kWriteAttribute{24};
}  // namespace hps_vertex_data

/// A second interface of meshes.
namespace hps_mesh_source {
inline constexpr const char* kInterface = "{CB1DE91B-E204-4299-964C-FBCCA348C49D}";

/// A new mesh with the same content that is not finished: it can be written to. Query it for hps_mesh::kInterface.
inline constexpr Operation<std::int32_t(Object** clone)> kClone{8};
}  // namespace hps_mesh_source

/// Unpacks the UV block of a file. It has no state.
namespace hps_uv_decoder {
inline constexpr const char* kFactory = "{FA4A0221-DF47-4EC5-8286-A772E67EF31A}";
inline constexpr const char* kInterface = "{5BCC9B77-54EF-4DCC-A1C1-6DE7CDFC8C5F}";

/// The counts that a block announces, for the buffers of kDecode.
/// @param reserved  may be null; receives 0
/// @return kFailed when the block is damaged
inline constexpr Operation<std::int32_t(const void* block, std::size_t size, std::int32_t* vertexCount,
                                        std::int32_t* pairCount, std::int32_t* reserved)>
    kMeasure{9};
/// Unpacks the lists of texture coordinates. The k-th corner (from 0) that uses a vertex, in the order of the
/// triangles, has pair k modulo n of the vertex's list of n pairs.
/// @param pairsOfVertex  receives the number of pairs of each vertex, one byte per vertex
/// @param pairs          receives u, v of each pair, those of vertex 0 first: 8 bytes per pair
/// @return kFailed when the block is damaged; the buffers may be partly written then
inline constexpr Operation<std::int32_t(const void* block, std::size_t size, std::uint8_t* pairsOfVertex,
                                        std::size_t pairsOfVertexSize, float* pairs, std::size_t pairsSize)>
    kDecode{10};
}  // namespace hps_uv_decoder

/// Packs and writes a file: kBind, then texture, texture coordinates and source application in any order, kPrepare,
/// kSave.
namespace hps_file_writer {
inline constexpr const char* kFactory = "{103A4F7C-49B2-406F-A682-7E19869B8B88}";
inline constexpr const char* kInterface = "{672883FC-ECA9-46FC-8174-43E8428F1E92}";

/// Holds a compressor with a mesh until kUnbind.
inline constexpr Operation<std::int32_t(Object* compressor)> kBind{8};
/// Packs the mesh and the texture coordinates.
/// @return kFailed without a bound mesh, when the number of pairs is not that of the corners, and when a vertex has
/// more
///         than 255 pairs that do not repeat
inline constexpr Operation<std::int32_t()> kPrepare{11};
/// Copies the texture's picture file (png or jpeg); its first row is the top. Size 0 removes it.
inline constexpr Operation<std::int32_t(const void* bytes, std::size_t size)> kTextureFile{17};
/// Copies the texture coordinates; kPrepare is needed after it.
/// @param pairs  u, v of each triangle's corners in order: 3 pairs per triangle. Count 0 removes them
inline constexpr Operation<std::int32_t(const float* pairs, std::size_t pairCount)> kUvPairs{18};
/// Name and version of the program that the mesh is from, in UTF-8.
inline constexpr Operation<std::int32_t(const char* application, const char* version)> kSourceApplication{24};
/// Writes the file beside its target, flushes it to the disk and renames it: on failure the old file is unchanged.
/// @return kFailed before kPrepare and when the file cannot be written; errno is then the reason
inline constexpr Operation<std::int32_t(const wchar_t* path)> kSave{28};
/// Releases the compressor and the packed mesh.
inline constexpr Operation<std::int32_t()> kUnbind{29};
}  // namespace hps_file_writer

/// Holds a finished mesh for the file writer.
namespace hps_compressor {
inline constexpr const char* kFactory = "{A3FEFC16-AE54-4897-8237-2CF46870A76E}";
inline constexpr const char* kInterface = "{CC8052A0-62B2-4F02-BE8A-1150B11E23A4}";

/// Holds a mesh until kUnbind.
/// @return kFailed when the mesh is not finished, has a wrong index, or another mesh is bound
inline constexpr Operation<std::int32_t(Object* mesh)> kBind{8};
inline constexpr Operation<std::int32_t()> kUnbind{18};
}  // namespace hps_compressor

}  // namespace KvComponents
