// A component library for tests: its objects behave as the test configures, and record their calls. A program that has
// FakeComponents.cpp and FakePointStatistics.cpp among its sources gets every object from here, also those of the
// control.
#pragma once
#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "KV_Components/Registry.h"

class FakeObject;

/// The library while this object lives; without it no object can be made. Objects are named reader, mesh, vertices,
/// source, clone, decoder, image, writer, compressor, histogram, cloud, search and estimator, operations as in
/// "reader.open".
///
/// It checks that no released object is used, that an object has one reference when it is called (the factory object is
/// released at once), that buffers have the size that the object fills, and at its end that all objects are released.
/// Objects that a search or an estimator received are released by its finish, or with it.
class FakeComponents {
public:
    FakeComponents();
    ~FakeComponents();
    FakeComponents(const FakeComponents&) = delete;
    FakeComponents& operator=(const FakeComponents&) = delete;

    // ---- how the library behaves
    std::map<std::string, std::int32_t> answers;  ///< operations that do nothing and return this status
    std::set<std::string> missing;                ///< objects that the library does not have
    std::set<std::string> nulls;                  ///< operations that succeed and return a null object

    // ---- the content of the file that the reader opens
    std::int32_t lastError = 0;
    std::vector<float> positions, normals;
    std::vector<std::int32_t> indices;
    std::optional<std::int32_t> vertexCount, triangleCount;  ///< reported instead of the sizes of the arrays
    std::optional<std::vector<std::uint8_t>> uvBlock;        ///< none: the operation for its size fails
    std::optional<std::int32_t> uvBlockSize;                 ///< reported instead of the size of the block
    std::vector<std::uint8_t> pairsOfVertex;
    std::vector<float> pairs;
    std::optional<std::int32_t> measuredVertices, measuredPairs;
    std::int32_t orientation = 0;
    std::int32_t imageWidth = 0, imageHeight = 0;
    std::vector<std::uint32_t> pixels;
    std::vector<std::uint8_t> imageFile;
    std::optional<std::int32_t> imageFileSize;

    // ---- what the objects of point statistics report; the histogram counts nothing
    float binWidth = 1.0f;
    std::vector<float> binCenters, binValues;
    std::int32_t mainPeak = 0;
    std::vector<std::int32_t> peaks;
    std::optional<std::int32_t> peakCount;  ///< reported instead of the size of the list
    float mean = 0.0f, variance = 0.0f;
    std::array<float, 3> centroid{}, normal{};

    // ---- what the objects received
    std::vector<std::string> calls;  ///< objects made, operations with their arguments, objects released
    std::vector<float> writtenPositions, writtenPairs;
    std::vector<std::int32_t> writtenIndices;
    std::vector<std::uint8_t> writtenTextureFile;
    std::vector<std::uint32_t> writtenPixels;
    std::string application, version;
    std::wstring savedPath;
    struct HistogramSample {
        float value, spread, weight;
        bool operator==(const HistogramSample&) const = default;
    };
    /// All of them in order; they are not among the calls. "histogram.reset" records how many were before it.
    std::vector<HistogramSample> samples;
    std::vector<std::array<float, 3>> cloudPoints;  ///< of the last cloud

    /// The calls with this prefix.
    [[nodiscard]] std::vector<std::string> CallsOf(const std::string& beginning) const;
    [[nodiscard]] int Alive() const;

    FakeObject* Make(const std::string& kind);
    /// Records the call.
    /// @return the status of the operation: when it is not 1, it must do nothing
    std::int32_t Call(const std::string& operation, const std::string& arguments = "");

private:
    std::vector<std::unique_ptr<FakeObject>> m_objects;  ///< also the released ones, so that a late use is found
};

/// One call per line, for failure messages.
std::string Lines(const std::vector<std::string>& calls);
