// The operations of the hps objects one by one: the arguments that they refuse, the order in which they can be called,
// and their results.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cmath>
#include <set>

#include "HpsSample.h"
#include "KV_Components/Image.h"

namespace {

using namespace HpsSample;

constexpr std::int32_t kOk = 1, kNo = -1, kWrong = -4;

/// Checks that no test leaks a component.
class HpsObjects : public testing::Test {
protected:
    HpsObjects() { EXPECT_EQ(Component::LiveCount(), 0); }
    ~HpsObjects() override { EXPECT_EQ(Component::LiveCount(), 0); }
    const ScratchFolder m_folder;
};
using HpsMeshObject = HpsObjects;
using HpsReaderObject = HpsObjects;
using HpsWriterObject = HpsObjects;
using HpsUvDecoderObject = HpsObjects;

ObjectPointer Readable(Object* mesh) {
    Object* data = nullptr;
    return hps_mesh::kReadableVertexData(mesh, &data) == kOk ? ObjectPointer(data) : nullptr;
}

ObjectPointer Writable(Object* mesh) {
    Object* data = nullptr;
    return hps_mesh::kWritableVertexData(mesh, &data) == kOk ? ObjectPointer(data) : nullptr;
}

ObjectPointer Clone(Object* mesh) {
    Object *source = nullptr, *clone = nullptr, *found = nullptr;
    if (kQuery(mesh, hps_mesh_source::kInterface, &source) != kOk) return nullptr;
    const ObjectPointer sourceOwner(source);
    if (hps_mesh_source::kClone(source, &clone) != kOk) return nullptr;
    const ObjectPointer cloneOwner(clone);
    return kQuery(clone, hps_mesh::kInterface, &found) == kOk ? ObjectPointer(found) : nullptr;
}

TEST_F(HpsMeshObject, IsCreatedOnceAndWithPositionsOnly) {
    const ObjectPointer mesh = MakeMesh();
    std::int32_t count = 7;
    EXPECT_EQ(hps_mesh::kVertexCount(mesh.get(), &count), kNo);
    EXPECT_EQ(hps_mesh::kTriangleCount(mesh.get(), &count), kNo);
    EXPECT_EQ(hps_mesh::kCreate(mesh.get(), -1, 1, "P"), kWrong);
    EXPECT_EQ(hps_mesh::kCreate(mesh.get(), 1, -1, "P"), kWrong);
    EXPECT_EQ(hps_mesh::kCreate(mesh.get(), 1, 1, nullptr), kWrong);
    for (const char* attributes : {"", "N", "PN", "p", "PP"})
        EXPECT_EQ(hps_mesh::kCreate(mesh.get(), 1, 1, attributes), kWrong) << attributes;
    EXPECT_EQ(hps_mesh::kCreate(mesh.get(), 3, 2, "P"), kOk);
    EXPECT_EQ(hps_mesh::kCreate(mesh.get(), 3, 2, "P"), kNo);
    EXPECT_EQ(hps_mesh::kVertexCount(mesh.get(), &count), kOk);
    EXPECT_EQ(count, 3);
    EXPECT_EQ(hps_mesh::kTriangleCount(mesh.get(), &count), kOk);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(hps_mesh::kVertexCount(mesh.get(), nullptr), kWrong);
    EXPECT_EQ(hps_mesh::kTriangleCount(mesh.get(), nullptr), kWrong);
}

TEST_F(HpsMeshObject, HasZerosAfterItsCreation) {
    const ObjectPointer mesh = MakeMesh();
    ASSERT_EQ(hps_mesh::kCreate(mesh.get(), 3, 2, "P"), kOk);
    const std::optional<SampleMesh> content = ContentOf(mesh.get());
    ASSERT_TRUE(content);
    EXPECT_EQ(content->positions, std::vector<float>(9));
    EXPECT_EQ(content->indices, std::vector<std::int32_t>(6));
}

TEST_F(HpsMeshObject, RefusesIndexBuffersOfAWrongSize) {
    const ObjectPointer mesh = MakeMesh();
    std::int32_t indices[6] = {0, 0, 0, 0, 0, 0};
    EXPECT_EQ(hps_mesh::kWriteIndices(mesh.get(), indices, 0), kNo) << "before create";
    EXPECT_EQ(hps_mesh::kReadIndices(mesh.get(), indices, 0), kNo);
    ASSERT_EQ(hps_mesh::kCreate(mesh.get(), 3, 1, "P"), kOk);
    for (const std::size_t size : {0, 11, 13, 24}) {
        EXPECT_EQ(hps_mesh::kWriteIndices(mesh.get(), indices, size), kWrong) << size;
        EXPECT_EQ(hps_mesh::kReadIndices(mesh.get(), indices, size), kWrong) << size;
    }
    EXPECT_EQ(hps_mesh::kWriteIndices(mesh.get(), nullptr, 12), kWrong);
    EXPECT_EQ(hps_mesh::kReadIndices(mesh.get(), nullptr, 12), kWrong);
    EXPECT_EQ(hps_mesh::kWriteIndices(mesh.get(), indices, 12), kOk);
    EXPECT_EQ(hps_mesh::kReadIndices(mesh.get(), indices, 12), kOk);
}

TEST_F(HpsMeshObject, FinishesOnceAndOnlyWithValidIndices) {
    const ObjectPointer mesh = MakeMesh();
    EXPECT_EQ(hps_mesh::kFinish(mesh.get(), 0, 0), kNo) << "before create";
    ASSERT_EQ(hps_mesh::kCreate(mesh.get(), 3, 1, "P"), kOk);
    for (const std::int32_t bad : {3, -1, 2147483647}) {
        const std::int32_t indices[] = {0, bad, 1};
        ASSERT_EQ(hps_mesh::kWriteIndices(mesh.get(), indices, sizeof indices), kOk);
        EXPECT_EQ(hps_mesh::kFinish(mesh.get(), 0, 0), kNo) << bad;
    }
    const std::int32_t indices[] = {0, 2, 1};
    ASSERT_EQ(hps_mesh::kWriteIndices(mesh.get(), indices, sizeof indices), kOk);
    EXPECT_EQ(hps_mesh::kFinish(mesh.get(), 1, 0), kWrong);
    EXPECT_EQ(hps_mesh::kFinish(mesh.get(), 0, 1), kWrong);
    EXPECT_EQ(hps_mesh::kFinish(mesh.get(), 0, 0), kOk);
    EXPECT_EQ(hps_mesh::kFinish(mesh.get(), 0, 0), kNo);
    EXPECT_EQ(hps_mesh::kWriteIndices(mesh.get(), indices, sizeof indices), kNo);
    EXPECT_FALSE(Writable(mesh.get()));
    EXPECT_TRUE(Readable(mesh.get()));
}

TEST_F(HpsMeshObject, HasOneWritableOrSeveralReadableAccesses) {
    const ObjectPointer mesh = MakeMesh();
    Object* data = mesh.get();
    EXPECT_EQ(hps_mesh::kWritableVertexData(mesh.get(), &data), kNo) << "before create";
    EXPECT_EQ(data, nullptr);
    EXPECT_EQ(hps_mesh::kReadableVertexData(mesh.get(), &data), kNo);
    ASSERT_EQ(hps_mesh::kCreate(mesh.get(), 3, 1, "P"), kOk);
    EXPECT_EQ(hps_mesh::kWritableVertexData(mesh.get(), nullptr), kWrong);
    EXPECT_EQ(hps_mesh::kReadableVertexData(mesh.get(), nullptr), kWrong);

    ObjectPointer first = Readable(mesh.get()), second = Readable(mesh.get());
    EXPECT_TRUE(first && second);
    EXPECT_FALSE(Writable(mesh.get()));
    hps_vertex_data::kEndAccess(first.get());
    EXPECT_FALSE(Writable(mesh.get())) << "the second readable access is still open";
    second.reset();  // releasing the object ends the access too
    ObjectPointer writer = Writable(mesh.get());
    EXPECT_TRUE(writer);
    EXPECT_FALSE(Readable(mesh.get()));
    EXPECT_FALSE(Writable(mesh.get()));
    EXPECT_EQ(hps_mesh::kFinish(mesh.get(), 0, 0), kNo);
    hps_vertex_data::kEndAccess(writer.get());
    hps_vertex_data::kEndAccess(writer.get());
    EXPECT_EQ(hps_mesh::kFinish(mesh.get(), 0, 0), kOk);
}

TEST_F(HpsMeshObject, AccessRefusesWrongArguments) {
    const ObjectPointer mesh = MakeMesh();
    ASSERT_EQ(hps_mesh::kCreate(mesh.get(), 2, 0, "P"), kOk);
    const ObjectPointer data = Writable(mesh.get());
    float values[6] = {1, 2, 3, 4, 5, 6};
    const auto read = [&](char attribute, std::int32_t reserved, std::int32_t count, float* to, std::size_t size) {
        return hps_vertex_data::kReadAttribute(data.get(), attribute, reserved, count, to, size);
    };
    const auto write = [&](char attribute, std::int32_t reserved, std::int32_t count, float* from, std::size_t size) {
        return hps_vertex_data::kWriteAttribute(data.get(), attribute, reserved, count, from, size);
    };
    for (const char attribute : {'p', 'n', 'C', '\0', 'T'}) {
        EXPECT_EQ(read(attribute, 0, 2, values, 24), kWrong) << attribute;
        EXPECT_EQ(write(attribute, 0, 2, values, 24), kWrong) << attribute;
    }
    EXPECT_EQ(write('N', 0, 2, values, 24), kWrong) << "normals cannot be written";
    EXPECT_EQ(write('P', 0, 2, values, 24), kOk);
    const std::int32_t wrongCounts[] = {1, 3, -2, 0};
    for (const std::int32_t count : wrongCounts) {
        EXPECT_EQ(read('P', 0, count, values, 24), kWrong) << count;
        EXPECT_EQ(write('P', 0, count, values, 24), kWrong) << count;
    }
    for (const std::size_t size : {0, 23, 25, 12, 8}) {
        EXPECT_EQ(read('N', 0, 2, values, size), kWrong) << size;
        EXPECT_EQ(write('P', 0, 2, values, size), kWrong) << size;
    }
    EXPECT_EQ(read('P', 0, 2, nullptr, 24), kWrong);
    EXPECT_EQ(write('P', 0, 2, nullptr, 24), kWrong);
    EXPECT_EQ(read('P', 1, 2, values, 24), kWrong);
    EXPECT_EQ(write('P', 1, 2, values, 24), kWrong);
    EXPECT_EQ(read('P', 0, 2, values, 24), kOk);
    EXPECT_EQ(values[5], 6.0f);
    hps_vertex_data::kEndAccess(data.get());
    EXPECT_EQ(read('P', 0, 2, values, 24), kNo);
    EXPECT_EQ(write('P', 0, 2, values, 24), kNo);
    const ObjectPointer readable = Readable(mesh.get());
    EXPECT_EQ(hps_vertex_data::kWriteAttribute(readable.get(), 'P', 0, 2, values, 24), kNo);
}

TEST_F(HpsMeshObject, AccessHasThreeOperationsAndNoInterface) {
    const ObjectPointer mesh = MakeMesh();
    ASSERT_EQ(hps_mesh::kCreate(mesh.get(), 0, 0, "P"), kOk);
    const ObjectPointer data = Readable(mesh.get());
    const std::set<std::size_t> offered = {5, 23, 24};
    for (std::size_t position = 3; position < kTableSize; ++position) {
        if (!offered.contains(position)) {
            EXPECT_EQ((Operation<std::int32_t()>{position}(data.get())), -5) << position;
        }
    }
    Object* found = data.get();
    EXPECT_EQ(kQuery(data.get(), hps_mesh::kInterface, &found), -3);
    EXPECT_EQ(found, nullptr);
}

TEST_F(HpsMeshObject, AccessKeepsTheMeshAlive) {
    ObjectPointer mesh = MakeMesh(Tetrahedron(), true);
    const ObjectPointer data = Readable(mesh.get());
    mesh.reset();
    EXPECT_EQ(Component::LiveCount(), 2);
    float values[12];
    EXPECT_EQ(hps_vertex_data::kReadAttribute(data.get(), 'P', 0, 4, values, sizeof values), kOk);
    hps_vertex_data::kEndAccess(data.get());
    EXPECT_EQ(Component::LiveCount(), 1) << "the end of the access releases the mesh";
}

TEST_F(HpsMeshObject, CloneIsAnIndependentCopy) {
    const ObjectPointer mesh = MakeMesh(Tetrahedron(), true);
    ObjectPointer clone = Clone(mesh.get());
    ASSERT_TRUE(clone);
    ASSERT_TRUE(ContentOf(clone.get()));
    EXPECT_EQ(ContentOf(clone.get())->positions, Tetrahedron().positions);
    EXPECT_EQ(ContentOf(clone.get())->indices, Tetrahedron().indices);
    const std::vector<std::int32_t> other(12, 3);
    EXPECT_EQ(hps_mesh::kWriteIndices(clone.get(), other.data(), 48), kOk) << "the clone of a finished mesh is open";
    const ObjectPointer data = Writable(clone.get());
    const std::vector<float> positions(12, 5.0f);
    EXPECT_EQ(hps_vertex_data::kWriteAttribute(data.get(), 'P', 0, 4, positions.data(), 48), kOk);
    EXPECT_EQ(ContentOf(mesh.get())->positions, Tetrahedron().positions);
    EXPECT_EQ(ContentOf(mesh.get())->indices, Tetrahedron().indices);
}

TEST_F(HpsMeshObject, CloneRefusesNullAndAnEmptyMesh) {
    const ObjectPointer mesh = MakeMesh();
    Object* found = nullptr;
    ASSERT_EQ(kQuery(mesh.get(), hps_mesh_source::kInterface, &found), kOk);
    const ObjectPointer source(found);
    EXPECT_EQ(hps_mesh_source::kClone(source.get(), nullptr), kWrong);
    Object* clone = mesh.get();
    EXPECT_EQ(hps_mesh_source::kClone(source.get(), &clone), kNo) << "before create";
    EXPECT_EQ(clone, nullptr);
}

TEST_F(HpsMeshObject, NormalsAreTheDirectionsOfTheSumsOfUnitFaceNormals) {
    // Two triangles at right angles with a common edge, one of them nine times as large; a degenerate triangle; and a
    // vertex without triangles.
    SampleMesh mesh = {{0, 0, 0, 3, 0, 0, 0, 3, 0, 1, 0, 9, 7, 7, 7}, {0, 1, 2, 0, 3, 1, 0, 0, 1}, {}, {}, "", ""};
    const ObjectPointer object = MakeMesh(mesh, true);
    const ObjectPointer data = Readable(object.get());
    float n[15];
    ASSERT_EQ(hps_vertex_data::kReadAttribute(data.get(), 'N', 0, 5, n, sizeof n), kOk);
    const float h = 1.0f / std::sqrt(2.0f);
    const float expected[15] = {0, h, h, 0, h, h, 0, 0, 1, 0, 1, 0, 0, 0, 0};
    for (int i = 0; i < 15; ++i) EXPECT_NEAR(n[i], expected[i], 1e-7f) << i;
}

TEST_F(HpsMeshObject, NormalsNeedValidIndices) {
    const ObjectPointer mesh = MakeMesh();
    ASSERT_EQ(hps_mesh::kCreate(mesh.get(), 1, 1, "P"), kOk);
    const std::int32_t indices[] = {0, 0, 1};
    ASSERT_EQ(hps_mesh::kWriteIndices(mesh.get(), indices, sizeof indices), kOk);
    const ObjectPointer data = Readable(mesh.get());
    float n[3];
    EXPECT_EQ(hps_vertex_data::kReadAttribute(data.get(), 'N', 0, 1, n, sizeof n), kNo);
}

// ---- writer and compressor

TEST_F(HpsWriterObject, BindsMeshAndCompressorInOrderAndOnce) {
    const ObjectPointer writer = MakeWriter(), compressor = MakeCompressor();
    const ObjectPointer finished = MakeMesh(Tetrahedron(), true), open = MakeMesh(Tetrahedron(), false);
    EXPECT_EQ(hps_file_writer::kPrepare(writer.get()), kNo) << "nothing bound";
    EXPECT_EQ(hps_file_writer::kUnbind(writer.get()), kNo);
    EXPECT_EQ(hps_compressor::kUnbind(compressor.get()), kNo);
    EXPECT_EQ(hps_file_writer::kBind(writer.get(), nullptr), kWrong);
    EXPECT_EQ(hps_compressor::kBind(compressor.get(), nullptr), kWrong);
    EXPECT_EQ(hps_file_writer::kBind(writer.get(), finished.get()), kWrong) << "not a compressor";
    EXPECT_EQ(hps_compressor::kBind(compressor.get(), writer.get()), kWrong) << "not a mesh";
    EXPECT_EQ(hps_compressor::kBind(compressor.get(), open.get()), kNo) << "not finished";
    EXPECT_EQ(hps_file_writer::kBind(writer.get(), compressor.get()), kOk);
    EXPECT_EQ(hps_file_writer::kBind(writer.get(), compressor.get()), kNo);
    EXPECT_EQ(hps_file_writer::kPrepare(writer.get()), kNo) << "the compressor has no mesh";
    EXPECT_EQ(hps_compressor::kBind(compressor.get(), finished.get()), kOk);
    EXPECT_EQ(hps_compressor::kBind(compressor.get(), finished.get()), kNo);
    EXPECT_EQ(hps_file_writer::kPrepare(writer.get()), kOk);
    EXPECT_EQ(hps_file_writer::kUnbind(writer.get()), kOk);
    EXPECT_EQ(hps_file_writer::kUnbind(writer.get()), kNo);
    EXPECT_EQ(hps_compressor::kUnbind(compressor.get()), kOk);
    EXPECT_EQ(hps_compressor::kUnbind(compressor.get()), kNo);
}

TEST_F(HpsWriterObject, SavesOnlyAfterPrepare) {
    const ObjectPointer writer = MakeWriter(), compressor = MakeCompressor(), mesh = MakeMesh(Tetrahedron(), true);
    const std::string path = m_folder / "mesh.hps";
    const std::wstring wide = KV_ScenePane::WidePath(path);
    ASSERT_EQ(hps_compressor::kBind(compressor.get(), mesh.get()), kOk);
    ASSERT_EQ(hps_file_writer::kBind(writer.get(), compressor.get()), kOk);
    EXPECT_EQ(hps_file_writer::kSave(writer.get(), wide.c_str()), kNo);
    ASSERT_EQ(hps_file_writer::kPrepare(writer.get()), kOk);
    const std::vector<float> pairs(24);
    ASSERT_EQ(hps_file_writer::kUvPairs(writer.get(), pairs.data(), 12), kOk);
    EXPECT_EQ(hps_file_writer::kSave(writer.get(), wide.c_str()), kNo) << "the pairs were set after Prepare";
    ASSERT_EQ(hps_file_writer::kPrepare(writer.get()), kOk);
    EXPECT_EQ(hps_file_writer::kSave(writer.get(), nullptr), kWrong);
    EXPECT_EQ(m_folder.FileCount(), 0u);
    EXPECT_EQ(hps_file_writer::kSave(writer.get(), wide.c_str()), kOk);
    ASSERT_EQ(hps_file_writer::kUnbind(writer.get()), kOk);
    EXPECT_EQ(hps_file_writer::kSave(writer.get(), wide.c_str()), kNo) << "unbound";
    EXPECT_EQ(OpenError(MakeReader().get(), path), 0);
}

TEST_F(HpsWriterObject, RefusesNullAndAWrongNumberOfPairs) {
    const ObjectPointer writer = MakeWriter(), compressor = MakeCompressor(), mesh = MakeMesh(Tetrahedron(), true);
    EXPECT_EQ(hps_file_writer::kTextureFile(writer.get(), nullptr, 1), kWrong);
    EXPECT_EQ(hps_file_writer::kTextureFile(writer.get(), nullptr, 0), kOk);
    EXPECT_EQ(hps_file_writer::kUvPairs(writer.get(), nullptr, 1), kWrong);
    EXPECT_EQ(hps_file_writer::kUvPairs(writer.get(), nullptr, 0), kOk);
    EXPECT_EQ(hps_file_writer::kSourceApplication(writer.get(), nullptr, ""), kWrong);
    EXPECT_EQ(hps_file_writer::kSourceApplication(writer.get(), "", nullptr), kWrong);
    EXPECT_EQ(hps_file_writer::kSourceApplication(writer.get(), "", ""), kOk);
    ASSERT_EQ(hps_compressor::kBind(compressor.get(), mesh.get()), kOk);
    ASSERT_EQ(hps_file_writer::kBind(writer.get(), compressor.get()), kOk);
    const std::vector<float> pairs(26);
    for (const std::size_t count : {11, 13}) {
        ASSERT_EQ(hps_file_writer::kUvPairs(writer.get(), pairs.data(), count), kOk);
        EXPECT_EQ(hps_file_writer::kPrepare(writer.get()), kNo) << count;
    }
}

TEST_F(HpsWriterObject, KeepsTheOldFileWhenItCannotWrite) {
    EXPECT_EQ(Save(Tetrahedron(), m_folder / "missing/mesh.hps"), kNo);
    EXPECT_EQ(errno, ENOENT) << "the reason for the caller";
    EXPECT_EQ(Save(Tetrahedron(), m_folder.Path().string()), kNo);
    EXPECT_EQ(errno, EISDIR);
    EXPECT_EQ(Save(Tetrahedron(), ""), kNo);
    EXPECT_EQ(m_folder.FileCount(), 0u);
}

TEST_F(HpsWriterObject, ReplacesAFileAsAWhole) {
    const std::string path = m_folder / "mesh.hps";
    WriteBytes(path, std::vector<std::byte>(100'000));
    ASSERT_EQ(Save(Tetrahedron(), path), kOk);
    EXPECT_EQ(OpenError(MakeReader().get(), path), 0);
    EXPECT_EQ(m_folder.FileCount(), 1u);
}

TEST_F(HpsWriterObject, AcceptsAnyPathAndAnyText) {
    SampleMesh mesh = Tetrahedron();
    mesh.application = std::string(100'000, '\xE9');
    mesh.version = std::string(3, '\x01');
    const std::string path = m_folder / "m\xC3\xA9sh \xFF.hps";
    ASSERT_EQ(Save(mesh, path), kOk);
    EXPECT_EQ(OpenError(MakeReader().get(), path), 0);
    const Hps::ByteVector bytes = ReadBytes(path);
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    EXPECT_NE(text.find(mesh.application), text.npos);
}

// ---- reader

TEST_F(HpsReaderObject, FailsAllOperationsBeforeAFileIsOpen) {
    const ObjectPointer reader = MakeReader();
    std::int32_t value = 5;
    Object* object = reader.get();
    std::byte buffer[4];
    const auto expectNothing = [&] {
        EXPECT_EQ(hps_reader::kUvBlockSize(reader.get(), &value), kNo);
        EXPECT_EQ(hps_reader::kUvBlock(reader.get(), buffer, 4), kNo);
        EXPECT_EQ(hps_reader::kImageFileSize(reader.get(), &value, nullptr, nullptr), kNo);
        EXPECT_EQ(hps_reader::kImageFileBytes(reader.get(), buffer, 4), kNo);
        EXPECT_EQ(hps_reader::kImageOrientation(reader.get(), &value), kNo);
        EXPECT_EQ(hps_reader::kImage(reader.get(), &object), kNo);
        EXPECT_EQ(object, nullptr);
        EXPECT_EQ(hps_reader::kMesh(reader.get(), &object), kNo);
        EXPECT_EQ(hps_reader::kClose(reader.get()), kNo);
        EXPECT_EQ(hps_reader::kLastError(reader.get(), &value), kOk);
    };
    expectNothing();
    EXPECT_EQ(value, 0);
    EXPECT_EQ(OpenError(reader.get(), m_folder / "missing.hps"), 1);
    expectNothing();
    EXPECT_EQ(value, 1) << "the error code of the failed open";
    ASSERT_EQ(Save(TexturedTetrahedron(), m_folder / "mesh.hps"), kOk);
    ASSERT_EQ(OpenError(reader.get(), m_folder / "mesh.hps"), 0);
    ASSERT_EQ(hps_reader::kClose(reader.get()), kOk);
    expectNothing();
}

TEST_F(HpsReaderObject, RefusesNullAndWrongSizes) {
    ASSERT_EQ(Save(TexturedTetrahedron(), m_folder / "mesh.hps"), kOk);
    const ObjectPointer reader = MakeReader();
    EXPECT_EQ(hps_reader::kOpen(reader.get(), nullptr), kWrong);
    ASSERT_EQ(OpenError(reader.get(), m_folder / "mesh.hps"), 0);
    EXPECT_EQ(hps_reader::kLastError(reader.get(), nullptr), kWrong);
    EXPECT_EQ(hps_reader::kUvBlockSize(reader.get(), nullptr), kWrong);
    EXPECT_EQ(hps_reader::kImageFileSize(reader.get(), nullptr, nullptr, nullptr), kWrong);
    EXPECT_EQ(hps_reader::kImageOrientation(reader.get(), nullptr), kWrong);
    EXPECT_EQ(hps_reader::kImage(reader.get(), nullptr), kWrong);
    EXPECT_EQ(hps_reader::kMesh(reader.get(), nullptr), kWrong);
    std::int32_t uvSize = 0, imageSize = 0;
    ASSERT_EQ(hps_reader::kUvBlockSize(reader.get(), &uvSize), kOk);
    ASSERT_EQ(hps_reader::kImageFileSize(reader.get(), &imageSize, nullptr, nullptr), kOk);
    std::vector<std::byte> buffer(1000);
    for (const std::int32_t off : {-1, 1}) {
        EXPECT_EQ(hps_reader::kUvBlock(reader.get(), buffer.data(), static_cast<std::size_t>(uvSize + off)), kWrong);
        EXPECT_EQ(hps_reader::kImageFileBytes(reader.get(), buffer.data(), static_cast<std::size_t>(imageSize + off)),
                  kWrong);
    }
    EXPECT_EQ(hps_reader::kUvBlock(reader.get(), nullptr, static_cast<std::size_t>(uvSize)), kWrong);
    EXPECT_EQ(hps_reader::kImageFileBytes(reader.get(), nullptr, static_cast<std::size_t>(imageSize)), kWrong);
}

TEST_F(HpsReaderObject, ReturnsTheTextureAsItWasWritten) {
    ASSERT_EQ(Save(TexturedTetrahedron(), m_folder / "mesh.hps"), kOk);
    const ObjectPointer reader = MakeReader();
    ASSERT_EQ(OpenError(reader.get(), m_folder / "mesh.hps"), 0);
    std::int32_t size = 0, first = 9, second = 9, orientation = 9;
    ASSERT_EQ(hps_reader::kImageFileSize(reader.get(), &size, &first, &second), kOk);
    std::vector<unsigned char> bytes(static_cast<std::size_t>(size));
    ASSERT_EQ(hps_reader::kImageFileBytes(reader.get(), bytes.data(), bytes.size()), kOk);
    EXPECT_EQ(bytes, RedAboveBlue());
    ASSERT_EQ(hps_reader::kImageOrientation(reader.get(), &orientation), kOk);
    EXPECT_EQ(orientation, 1);
    // Each call returns a new image, with the top row first.
    for (int i = 0; i < 2; ++i) {
        Object* found = nullptr;
        ASSERT_EQ(hps_reader::kImage(reader.get(), &found), kOk);
        const ObjectPointer picture(found);
        unsigned char pixels[8] = {};
        ASSERT_EQ(image::kReadPixels(picture.get(), pixels, sizeof pixels), kOk);
        const unsigned char expected[8] = {255, 0, 0, 255, 0, 0, 255, 255};
        EXPECT_EQ(std::memcmp(pixels, expected, 8), 0) << i;
        ASSERT_EQ(image::kFlip(picture.get()), kOk);
    }
}

TEST_F(HpsReaderObject, HidesTextureCoordinatesWithoutATexture) {
    SampleMesh mesh = TexturedTetrahedron();
    mesh.texture.clear();
    ASSERT_EQ(Save(mesh, m_folder / "mesh.hps"), kOk);
    const ObjectPointer reader = MakeReader();
    ASSERT_EQ(OpenError(reader.get(), m_folder / "mesh.hps"), 0);
    std::int32_t size = 9;
    EXPECT_EQ(hps_reader::kUvBlockSize(reader.get(), &size), kNo);
    EXPECT_EQ(size, 0);
}

TEST_F(HpsReaderObject, OpenClosesThePreviousFile) {
    ASSERT_EQ(Save(TexturedTetrahedron(), m_folder / "textured.hps"), kOk);
    ASSERT_EQ(Save(Tetrahedron(), m_folder / "plain.hps"), kOk);
    const ObjectPointer reader = MakeReader();
    ASSERT_EQ(OpenError(reader.get(), m_folder / "textured.hps"), 0);
    ASSERT_EQ(OpenError(reader.get(), m_folder / "plain.hps"), 0);
    std::int32_t size = 0;
    EXPECT_EQ(hps_reader::kImageFileSize(reader.get(), &size, nullptr, nullptr), kNo);
    EXPECT_EQ(OpenError(reader.get(), m_folder / "missing.hps"), 1);
    Object* mesh = nullptr;
    EXPECT_EQ(hps_reader::kMesh(reader.get(), &mesh), kNo);
}

TEST_F(HpsReaderObject, ReturnsAFinishedMeshThatOutlivesTheReader) {
    ASSERT_EQ(Save(Tetrahedron(), m_folder / "mesh.hps"), kOk);
    ObjectPointer reader = MakeReader();
    ASSERT_EQ(OpenError(reader.get(), m_folder / "mesh.hps"), 0);
    Object *first = nullptr, *second = nullptr;
    ASSERT_EQ(hps_reader::kMesh(reader.get(), &first), kOk);
    ASSERT_EQ(hps_reader::kMesh(reader.get(), &second), kOk);
    const ObjectPointer firstOwner(first), secondOwner(second);
    reader.reset();
    EXPECT_EQ(ContentOf(first)->indices, Tetrahedron().indices);
    EXPECT_FALSE(Writable(second));
    EXPECT_EQ(hps_mesh::kFinish(first, 0, 0), kNo);
}

// ---- decoder

TEST_F(HpsUvDecoderObject, RefusesNullAndWrongSizes) {
    const std::int32_t indices[] = {0, 1, 2};
    const float pairs[] = {0, 1, 2, 3, 4, 5};
    const Hps::ByteVector block = Hps::PackUv(indices, 3, pairs).value();
    const ObjectPointer decoder = MakeDecoder();
    std::int32_t vertices = 0, count = 0, third = 9;
    const auto measure = [&](const void* bytes, std::int32_t* v, std::int32_t* p, std::int32_t* t) {
        return hps_uv_decoder::kMeasure(decoder.get(), bytes, block.size(), v, p, t);
    };
    EXPECT_EQ(measure(nullptr, &vertices, &count, &third), kWrong);
    EXPECT_EQ(measure(block.data(), nullptr, &count, &third), kWrong);
    EXPECT_EQ(measure(block.data(), &vertices, nullptr, &third), kWrong);
    EXPECT_EQ(measure(block.data(), &vertices, &count, nullptr), kOk);
    EXPECT_EQ(measure(block.data(), &vertices, &count, &third), kOk);
    EXPECT_EQ(vertices, 3);
    EXPECT_EQ(count, 3);
    std::uint8_t lengths[4];
    float values[8];
    const auto decode = [&](const void* bytes, std::uint8_t* l, std::size_t lSize, float* p, std::size_t pSize) {
        return hps_uv_decoder::kDecode(decoder.get(), bytes, block.size(), l, lSize, p, pSize);
    };
    EXPECT_EQ(decode(nullptr, lengths, 3, values, 24), kWrong);
    EXPECT_EQ(decode(block.data(), nullptr, 3, values, 24), kWrong);
    EXPECT_EQ(decode(block.data(), lengths, 3, nullptr, 24), kWrong);
    for (const std::size_t size : {2, 4}) EXPECT_EQ(decode(block.data(), lengths, size, values, 24), kWrong);
    for (const std::size_t size : {20, 28, 3}) EXPECT_EQ(decode(block.data(), lengths, 3, values, size), kWrong);
    EXPECT_EQ(decode(block.data(), lengths, 3, values, 24), kOk);
    EXPECT_EQ(std::memcmp(values, pairs, sizeof pairs), 0);
}

}  // namespace
