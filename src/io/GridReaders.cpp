// Reads pax and xdt straight into the arrays of the result. One parser per format, for files and for bytes in memory.
#include "io/GridReaders.h"

#include <bit>
#include <cstdlib>
#include <new>

#include "base/HugePages.h"

static_assert(std::endian::native == std::endian::little, "values are copied from the file without a conversion");

namespace {

/// Fills the array as far as the file has values; the rest stays zero, and so does a value of which the file has a
/// part.
/// @return the number of values that the file has
std::size_t ReadFloats(ByteInput& input, std::span<float> values) {
    const std::size_t got = input.Read(values.data(), values.size_bytes());
    if (const std::size_t rest = got % sizeof(float); rest != 0) values[got / sizeof(float)] = 0.0f;
    return got / sizeof(float);
}

/// Reads and checks the size of the grid and allocates its arrays. They take at most four times the size of the file.
MeasurementGrid ReadHead(ByteInput& input, bool hasConfidence) {
    std::int16_t size[2] = {};
    if (input.Read(size, sizeof size) < sizeof size) throw MeasurementReadError("ends before the size of its grid");
    MeasurementGrid grid;
    if (size[0] < 0 || size[1] < 0) throw MeasurementReadError("announces a grid of negative size");
    if (size[0] == 0 || size[1] == 0) return grid;
    // 32-bit products of 16-bit numbers in 64 bits: nothing here can overflow.
    const auto pixels = static_cast<std::uint64_t>(size[0]) * static_cast<std::uint64_t>(size[1]);
    const std::uint64_t announced = pixels * (hasConfidence ? 4 : 3) * sizeof(float);
    if ((input.Size() - sizeof size) < (announced + 3) / 4) {
        throw MeasurementReadError("holds less than a quarter of the grid that it announces");
    }
    grid.m_iWidth = size[0];
    grid.m_iHeight = size[1];
    grid.m_vPoints = ZeroedFloats(pixels * 3);
    if (hasConfidence) grid.m_vConfidence = ZeroedFloats(pixels);
    return grid;
}

void ReadPoints(ByteInput& input, MeasurementGrid& grid) {
    grid.m_pixelShare = {ReadFloats(input, grid.m_vPoints) / 3, grid.m_vPoints.size() / 3};
}

/// Points, confidence and transform, in this order. A missing transform stays zero.
MeasurementGrid ReadPaxFrom(ByteInput&& input) {
    MeasurementGrid grid = ReadHead(input, true);
    ReadPoints(input, grid);
    (void)ReadFloats(input, grid.m_vConfidence);
    grid.m_bHasTrafo = ReadFloats(input, grid.m_fTrafo) == grid.m_fTrafo.size();
    return grid;
}

/// Points alone.
MeasurementGrid ReadXdtFrom(ByteInput&& input) {
    MeasurementGrid grid = ReadHead(input, false);
    ReadPoints(input, grid);
    return grid;
}

}  // namespace

ZeroedFloats::ZeroedFloats(std::size_t count) : m_uCount(count) {
    if (count == 0) return;
    m_pValues.reset(static_cast<float*>(std::calloc(count, sizeof(float))));
    if (!m_pValues) throw std::bad_alloc();
    AdviseHugePages(m_pValues.get(), count * sizeof(float));
}

void ZeroedFloats::Free::operator()(float* values) const { std::free(values); }

MeasurementGrid ReadPaxFile(const std::wstring& path) { return ReadPaxFrom(FileInput(path)); }
MeasurementGrid ReadPax(std::span<const std::byte> bytes) { return ReadPaxFrom(MemoryInput(bytes)); }
MeasurementGrid ReadXdtFile(const std::wstring& path) { return ReadXdtFrom(FileInput(path)); }
MeasurementGrid ReadXdt(std::span<const std::byte> bytes) { return ReadXdtFrom(MemoryInput(bytes)); }

void ScaleXdtPoints(std::span<float> points) {
    for (float& coordinate : points) coordinate /= 1000.0f;
}
