// Any bytes as a pax file: refused, or a grid whose arrays have the size that it tells.
#include <cstdlib>

#include "io/GridReaders.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        const MeasurementGrid grid = ReadPax({reinterpret_cast<const std::byte*>(data), size});
        const auto pixels = static_cast<std::size_t>(grid.m_iWidth) * static_cast<std::size_t>(grid.m_iHeight);
        if (grid.m_vPoints.size() != 3 * pixels || grid.m_vConfidence.size() != pixels) std::abort();
        if (16 * pixels > 4 * size) std::abort();  // out of proportion
        if (ConfidenceMask(grid.m_vConfidence, 0.5f).size() != pixels) std::abort();
    } catch (const MeasurementReadError&) {
    }
    return 0;
}
