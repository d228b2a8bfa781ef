// A component library of tests: hands out objects that do what the test entered, and keeps what was asked of them. A
// program that has FakeComponents.cpp among its sources gets every object from here, also those of the control.
#pragma once
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "KV_Components/Registry.h"

class FakeObject;

/// The library while it lives; without one there are no objects. Objects are named reader, mesh, vertices, source,
/// clone, decoder, image, writer and compressor, operations as in "reader.open".
///
/// Checks by itself that nobody uses an object that is gone or asks one that has more than one reference (the factory
/// object is released at once), that buffers have the size that the object fills, and at its end that all objects are
/// gone.
class FakeComponents {
public:
    FakeComponents();
    ~FakeComponents();
    FakeComponents(const FakeComponents&) = delete;
    FakeComponents& operator=(const FakeComponents&) = delete;

    // ---- how the library behaves
    std::map<std::string, std::int32_t> answers;  ///< operations that do nothing and answer this status
    std::set<std::string> missing;                ///< objects that the library does not have
    std::set<std::string> nulls;                  ///< operations that succeed and give a null object

    // ---- what is in the file that the reader opens
    std::int32_t lastError = 0;
    std::vector<float> positions, normals;
    std::vector<std::int32_t> indices;
    std::optional<std::int32_t> vertexCount, triangleCount;  ///< told instead of those of the arrays
    std::optional<std::vector<std::uint8_t>> uvBlock;        ///< none: the size of the block is not told
    std::optional<std::int32_t> uvBlockSize;                 ///< told instead of that of the block
    std::vector<std::uint8_t> pairsOfVertex;
    std::vector<float> pairs;
    std::optional<std::int32_t> measuredVertices, measuredPairs;
    std::int32_t orientation = 0;
    std::int32_t imageWidth = 0, imageHeight = 0;
    std::vector<std::uint32_t> pixels;
    std::vector<std::uint8_t> imageFile;
    std::optional<std::int32_t> imageFileSize;

    // ---- what the objects were given
    std::vector<std::string> calls;  ///< every object made, every operation with what it was told, every object gone
    std::vector<float> writtenPositions, writtenPairs;
    std::vector<std::int32_t> writtenIndices;
    std::vector<std::uint8_t> writtenTextureFile;
    std::vector<std::uint32_t> writtenPixels;
    std::string application, version;
    std::wstring savedPath;

    /// Those calls alone that begin so.
    [[nodiscard]] std::vector<std::string> CallsOf(const std::string& beginning) const;
    [[nodiscard]] int Alive() const;

    FakeObject* Make(const std::string& kind);
    /// Keeps the call. @return what the operation answers: when it is not 1, it must do nothing
    std::int32_t Call(const std::string& operation, const std::string& told = "");

private:
    std::vector<std::unique_ptr<FakeObject>> m_objects;  ///< also those that are gone, so that a late use is seen
};

/// One entry a line, as failures show it.
std::string Lines(const std::vector<std::string>& calls);
