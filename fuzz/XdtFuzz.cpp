// Any bytes as an xdt file: refused, or a grid in proportion to the file whose arrays have the announced size.
#include "Require.h"
#include "io/GridReaders.h"
#include "io/MeasurementData.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        MeasurementGrid grid = ReadXdt({reinterpret_cast<const std::byte*>(data), size});
        const auto pixels = static_cast<std::size_t>(grid.m_iWidth) * static_cast<std::size_t>(grid.m_iHeight);
        Require(grid.m_vPoints.size() == 3 * pixels && grid.m_vConfidence.empty());
        Require(12 * pixels <= 4 * size);
        ScaleXdtPoints(grid.m_vPoints);
        const MeasurementData measurement = MakeMeasurementData(
            {.m_iWidth = grid.m_iWidth, .m_iHeight = grid.m_iHeight, .m_pPoints = grid.m_vPoints.data()},
            {.m_eMask = GridMask::EqualNegatives});
        Require(measurement.m_vMask.size() == pixels);
    } catch (const MeasurementReadError&) {
    }
    return 0;
}
