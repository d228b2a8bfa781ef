// The objects of the component library for tests: one table of operations per kind, and the entry points that make
// them.
#include "support/FakeComponents.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <iterator>
#include <map>
#include <utility>

#include "KV_Components/Geometry.h"
#include "KV_Components/Hps.h"
#include "KV_Components/Image.h"
#include "KV_ScenePane/PathText.h"
#include "support/FakeObject.h"

using namespace KvComponents;
using namespace FakeObjects;

FakeComponents* FakeObjects::g_library = nullptr;

std::int32_t FakeObjects::Call(Object* object, const char* operation, const std::string& arguments) {
    const FakeObject& self = Self(object);
    EXPECT_EQ(self.m_iReferences, 1) << self.m_sKind << "." << operation;
    return g_library->Call(self.m_sKind + "." + operation, arguments);
}

namespace {

std::string Bytes(std::size_t size) { return std::to_string(size) + " bytes"; }

/// Returns a new object of that kind, unless the operation has another status.
std::int32_t ReturnObject(Object* object, const char* operation, const char* kind, Object** out) {
    const std::int32_t status = Call(object, operation);
    const bool null = status != kSucceeded || g_library->nulls.contains(Self(object).m_sKind + "." + operation);
    *out = null ? nullptr : g_library->Make(kind);
    return status;
}

/// Stores the caller's buffer.
template <class T>
std::int32_t Receive(std::int32_t status, std::vector<T>& to, const void* buffer, std::size_t size) {
    if (status != kSucceeded) return status;
    EXPECT_EQ(size % sizeof(T), 0u);
    to.resize(size / sizeof(T));
    if (size != 0) std::memcpy(to.data(), buffer, size);
    return kSucceeded;
}

/// Reports a number, unless the operation has another status.
std::int32_t ReportNumber(std::int32_t status, std::size_t fromData, std::optional<std::int32_t> instead,
                          std::int32_t* out) {
    if (status == kSucceeded) *out = instead.value_or(static_cast<std::int32_t>(fromData));
    return status;
}

// ---- every object

struct Kind {
    const char* name;
    const char* factory;
    const char* interface;
};
constexpr Kind kKinds[] = {
    {"reader", hps_reader::kFactory, hps_reader::kInterface},
    {"mesh", hps_mesh::kFactory, hps_mesh::kInterface},
    {"clone", "", hps_mesh::kInterface},
    {"decoder", hps_uv_decoder::kFactory, hps_uv_decoder::kInterface},
    {"writer", hps_file_writer::kFactory, hps_file_writer::kInterface},
    {"compressor", hps_compressor::kFactory, hps_compressor::kInterface},
    {"image", image::kFactory, image::kInterface},
    {"histogram", height_histogram::kFactory, height_histogram::kInterface},
    {"cloud", point_cloud::kFactory, point_cloud::kInterface},
    {"search", neighbour_search::kFactory, neighbour_search::kInterface},
    {"estimator", normal_estimator::kFactory, normal_estimator::kInterface},
};

std::int32_t Query(Object* object, const char* guid, Object** out) {
    *out = nullptr;
    FakeObject& self = Self(object);
    if (self.m_sKind == "mesh" && std::string(guid) == hps_mesh_source::kInterface) {
        const std::int32_t status = g_library->Call("source.query");
        if (status == kSucceeded) *out = g_library->Make("source");
        return status;
    }
    for (const Kind& kind : kKinds) {
        if (kind.name != self.m_sKind || std::string(guid) != kind.interface) continue;
        const auto answer = g_library->answers.find(self.m_sKind + ".query");
        if (answer != g_library->answers.end()) return answer->second;
        ++self.m_iReferences;
        *out = object;
        return kSucceeded;
    }
    return kNoInterface;
}

void Release(Object* object) {
    FakeObject& self = Self(object);
    EXPECT_GT(self.m_iReferences, 0) << self.m_sKind << " is released too often";
    if (--self.m_iReferences > 0) return;
    g_library->calls.push_back(self.m_sKind + " gone");
    ReleaseHeld(self);
}

std::int32_t NotImplemented(Object* object) {
    ADD_FAILURE() << Self(object).m_sKind << " has no such operation";
    return kNotImplemented;
}

}  // namespace

void FakeObjects::AddReference(Object* object) { ++Self(object).m_iReferences; }

void FakeObjects::ReleaseHeld(FakeObject& self) {
    for (FakeObject* held : std::exchange(self.m_held, {})) Release(held);
}

Table FakeObjects::EveryObject() {
    Table table;
    table.fill(reinterpret_cast<Object::Entry>(&NotImplemented));
    Enter(table, kQuery, &Query);
    Enter(table, kAddReference, &AddReference);
    Enter(table, kRelease, &Release);
    return table;
}

// ---- one table per kind of object; those of point statistics are in FakePointStatistics.cpp

namespace {

Table Reader() {
    Table table = EveryObject();
    Enter(
        table, hps_reader::kOpen,
        +[](Object* o, const wchar_t* path) { return Call(o, "open", KV_ScenePane::PathBytes(path)); });
    Enter(
        table, hps_reader::kLastError, +[](Object* o, std::int32_t* code) {
            return ReportNumber(Call(o, "lastError"), 0, g_library->lastError, code);
        });
    Enter(
        table, hps_reader::kUvBlockSize, +[](Object* o, std::int32_t* size) {
            const std::int32_t status = Call(o, "uvBlockSize");
            if (!g_library->uvBlock) return kFailed;
            return ReportNumber(status, g_library->uvBlock->size(), g_library->uvBlockSize, size);
        });
    Enter(
        table, hps_reader::kUvBlock, +[](Object* o, void* block, std::size_t size) {
            return Fill(Call(o, "uvBlock", Bytes(size)), *g_library->uvBlock, block, size);
        });
    Enter(
        table, hps_reader::kImageFileSize,
        +[](Object* o, std::int32_t* size, std::int32_t* first, std::int32_t* second) {
            const std::int32_t status = Call(o, "imageFileSize");
            *first = *second = -1;  // the caller passes variables for what it ignores
            return ReportNumber(status, g_library->imageFile.size(), g_library->imageFileSize, size);
        });
    Enter(
        table, hps_reader::kImageFileBytes, +[](Object* o, void* bytes, std::size_t size) {
            return Fill(Call(o, "imageFileBytes", Bytes(size)), g_library->imageFile, bytes, size);
        });
    Enter(
        table, hps_reader::kImage, +[](Object* o, Object** out) { return ReturnObject(o, "image", "image", out); });
    Enter(
        table, hps_reader::kMesh, +[](Object* o, Object** out) { return ReturnObject(o, "mesh", "mesh", out); });
    Enter(
        table, hps_reader::kImageOrientation, +[](Object* o, std::int32_t* orientation) {
            return ReportNumber(Call(o, "imageOrientation"), 0, g_library->orientation, orientation);
        });
    Enter(
        table, hps_reader::kClose, +[](Object* o) { return Call(o, "close"); });
    return table;
}

Table MeshTable() {
    Table table = EveryObject();
    Enter(
        table, hps_mesh::kCreate,
        +[](Object* o, std::int32_t vertices, std::int32_t triangles, const char* attributes) {
            return Call(o, "create", std::to_string(vertices) + " " + std::to_string(triangles) + " " + attributes);
        });
    Enter(
        table, hps_mesh::kWritableVertexData,
        +[](Object* o, Object** out) { return ReturnObject(o, "writableVertexData", "vertices", out); });
    Enter(
        table, hps_mesh::kReadableVertexData,
        +[](Object* o, Object** out) { return ReturnObject(o, "readableVertexData", "vertices", out); });
    Enter(
        table, hps_mesh::kTriangleCount, +[](Object* o, std::int32_t* count) {
            const bool written = Self(o).m_sKind == "clone";
            return ReportNumber(Call(o, "triangleCount"),
                                (written ? g_library->writtenIndices : g_library->indices).size() / 3,
                                g_library->triangleCount, count);
        });
    Enter(
        table, hps_mesh::kVertexCount, +[](Object* o, std::int32_t* count) {
            return ReportNumber(Call(o, "vertexCount"), g_library->positions.size() / 3, g_library->vertexCount, count);
        });
    Enter(
        table, hps_mesh::kReadIndices, +[](Object* o, std::int32_t* indices, std::size_t size) {
            return Fill(Call(o, "readIndices", Bytes(size)), g_library->indices, indices, size);
        });
    Enter(
        table, hps_mesh::kWriteIndices, +[](Object* o, const std::int32_t* indices, std::size_t size) {
            return Receive(Call(o, "writeIndices", Bytes(size)), g_library->writtenIndices, indices, size);
        });
    Enter(
        table, hps_mesh::kFinish, +[](Object* o, std::int32_t first, std::int32_t second) {
            return Call(o, "finish", std::to_string(first) + " " + std::to_string(second));
        });
    return table;
}

std::string ArgumentText(char attribute, std::int32_t reserved, std::int32_t count, std::size_t size) {
    return attribute + (" " + std::to_string(reserved)) + " " + std::to_string(count) + " " + Bytes(size);
}

Table Vertices() {
    Table table = EveryObject();
    Enter(
        table, hps_vertex_data::kEndAccess, +[](Object* o) { Call(o, "endAccess"); });
    Enter(
        table, hps_vertex_data::kReadAttribute,
        +[](Object* o, char attribute, std::int32_t reserved, std::int32_t count, float* values, std::size_t size) {
            return Fill(Call(o, "read", ArgumentText(attribute, reserved, count, size)),
                        attribute == 'P' ? g_library->positions : g_library->normals, values, size);
        });
    Enter(
        table, hps_vertex_data::kWriteAttribute,
        +[](Object* o, char attribute, std::int32_t reserved, std::int32_t count, const float* values,
            std::size_t size) {
            return Receive(Call(o, "write", ArgumentText(attribute, reserved, count, size)),
                           g_library->writtenPositions, values, size);
        });
    return table;
}

Table Source() {
    Table table = EveryObject();
    Enter(
        table, hps_mesh_source::kClone,
        +[](Object* o, Object** out) { return ReturnObject(o, "clone", "clone", out); });
    return table;
}

Table Decoder() {
    Table table = EveryObject();
    Enter(
        table, hps_uv_decoder::kMeasure,
        +[](Object* o, const void* block, std::size_t size, std::int32_t* vertices, std::int32_t* pairs,
            std::int32_t* third) {
            const std::int32_t status = Call(o, "measure", Bytes(size));
            EXPECT_EQ(size, g_library->uvBlock->size());
            EXPECT_EQ(std::memcmp(block, g_library->uvBlock->data(), size), 0);
            *third = -1;
            (void)ReportNumber(status, g_library->pairsOfVertex.size(), g_library->measuredVertices, vertices);
            return ReportNumber(status, g_library->pairs.size() / 2, g_library->measuredPairs, pairs);
        });
    Enter(
        table, hps_uv_decoder::kDecode,
        +[](Object* o, const void*, std::size_t size, std::uint8_t* pairsOfVertex, std::size_t pairsOfVertexSize,
            float* pairs, std::size_t pairsSize) {
            std::int32_t status =
                Call(o, "decode", Bytes(size) + ", " + Bytes(pairsOfVertexSize) + ", " + Bytes(pairsSize));
            status = Fill(status, g_library->pairsOfVertex, pairsOfVertex, pairsOfVertexSize);
            return Fill(status, g_library->pairs, pairs, pairsSize);
        });
    return table;
}

Table Image() {
    Table table = EveryObject();
    Enter(
        table, image::kSize, +[](Object* o, std::int32_t* width, std::int32_t* height) {
            const std::int32_t status = Call(o, "size");
            *width = g_library->imageWidth;
            *height = g_library->imageHeight;
            return status;
        });
    Enter(
        table, image::kSetSize, +[](Object* o, std::int32_t width, std::int32_t height) {
            return Call(o, "setSize", std::to_string(width) + " " + std::to_string(height));
        });
    Enter(
        table, image::kReadPixels, +[](Object* o, void* pixels, std::size_t size) {
            return Fill(Call(o, "readPixels", Bytes(size)), g_library->pixels, pixels, size);
        });
    Enter(
        table, image::kWritePixels, +[](Object* o, const void* pixels, std::size_t size) {
            return Receive(Call(o, "writePixels", Bytes(size)), g_library->writtenPixels, pixels, size);
        });
    Enter(
        table, image::kFlip, +[](Object* o) {
            const auto width = static_cast<std::ptrdiff_t>(g_library->imageWidth);
            auto top = g_library->pixels.begin();
            for (auto bottom = g_library->pixels.end() - width; top < bottom; bottom -= width)
                top = std::swap_ranges(top, top + width, bottom);
            return Call(o, "flip");
        });
    return table;
}

Table Writer() {
    Table table = EveryObject();
    Enter(
        table, hps_file_writer::kBind,
        +[](Object* o, Object* compressor) { return Call(o, "bind", Self(compressor).m_sKind); });
    Enter(
        table, hps_file_writer::kPrepare, +[](Object* o) { return Call(o, "prepare"); });
    Enter(
        table, hps_file_writer::kTextureFile, +[](Object* o, const void* bytes, std::size_t size) {
            return Receive(Call(o, "textureFile", Bytes(size)), g_library->writtenTextureFile, bytes, size);
        });
    Enter(
        table, hps_file_writer::kUvPairs, +[](Object* o, const float* pairs, std::size_t count) {
            return Receive(Call(o, "uvPairs", std::to_string(count)), g_library->writtenPairs, pairs,
                           count * 2 * sizeof(float));
        });
    Enter(
        table, hps_file_writer::kSourceApplication, +[](Object* o, const char* application, const char* version) {
            g_library->application = application;
            g_library->version = version;
            return Call(o, "sourceApplication");
        });
    Enter(
        table, hps_file_writer::kSave, +[](Object* o, const wchar_t* path) {
            g_library->savedPath = path;
            return Call(o, "save");
        });
    Enter(
        table, hps_file_writer::kUnbind, +[](Object* o) { return Call(o, "unbind"); });
    return table;
}

Table Compressor() {
    Table table = EveryObject();
    Enter(
        table, hps_compressor::kBind, +[](Object* o, Object* mesh) { return Call(o, "bind", Self(mesh).m_sKind); });
    Enter(
        table, hps_compressor::kUnbind, +[](Object* o) { return Call(o, "unbind"); });
    return table;
}

const Table& TableOf(const std::string& kind) {
    static const std::map<std::string, Table> tables = {
        {"reader", Reader()},         {"mesh", MeshTable()},      {"clone", MeshTable()}, {"vertices", Vertices()},
        {"source", Source()},         {"decoder", Decoder()},     {"image", Image()},     {"writer", Writer()},
        {"compressor", Compressor()}, {"histogram", Histogram()}, {"cloud", Cloud()},     {"search", Search()},
        {"estimator", Estimator()}};
    return tables.at(kind);
}

}  // namespace

FakeComponents::FakeComponents() {
    EXPECT_EQ(g_library, nullptr);
    g_library = this;
}

FakeComponents::~FakeComponents() {
    EXPECT_EQ(Alive(), 0) << Lines(calls);
    g_library = nullptr;
}

std::vector<std::string> FakeComponents::CallsOf(const std::string& beginning) const {
    std::vector<std::string> found;
    std::ranges::copy_if(calls, std::back_inserter(found),
                         [&](const std::string& call) { return call.starts_with(beginning); });
    return found;
}

int FakeComponents::Alive() const {
    return static_cast<int>(
        std::ranges::count_if(m_objects, [](const auto& object) { return object->m_iReferences > 0; }));
}

FakeObject* FakeComponents::Make(const std::string& kind) {
    return m_objects.emplace_back(std::make_unique<FakeObject>(TableOf(kind), kind)).get();
}

std::int32_t FakeComponents::Call(const std::string& operation, const std::string& arguments) {
    calls.push_back(arguments.empty() ? operation : operation + " " + arguments);
    const auto answer = answers.find(operation);
    return answer == answers.end() ? kSucceeded : answer->second;
}

std::string Lines(const std::vector<std::string>& calls) {
    std::string lines;
    for (const std::string& call : calls) lines += call + "\n";
    return lines;
}

Object* KV_Components_Ordinal2(const char* guid) {
    if (g_library == nullptr) return nullptr;
    for (const Kind& kind : kKinds) {
        if (std::string(guid) != kind.factory || g_library->missing.contains(kind.name)) continue;
        g_library->calls.push_back(std::string("new ") + kind.name);
        return g_library->Make(kind.name);
    }
    return nullptr;
}
