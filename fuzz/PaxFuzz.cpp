// Any bytes as a pax file: refused, or a grid in proportion to the file whose arrays have the announced size.
#include "Require.h"
#include "io/GridReaders.h"
#include "io/MeasurementData.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    try {
        const MeasurementGrid grid = ReadPax({reinterpret_cast<const std::byte*>(data), size});
        const auto pixels = static_cast<std::size_t>(grid.m_iWidth) * static_cast<std::size_t>(grid.m_iHeight);
        Require(grid.m_vPoints.size() == 3 * pixels && grid.m_vConfidence.size() == pixels);
        Require(16 * pixels <= 4 * size);
        const MeasurementData measurement = MakeMeasurementData({.m_iWidth = grid.m_iWidth,
                                                                 .m_iHeight = grid.m_iHeight,
                                                                 .m_pPoints = grid.m_vPoints.data(),
                                                                 .m_pConfidence = grid.m_vConfidence.data(),
                                                                 .m_pTrafo = grid.m_fTrafo.data()},
                                                                {.m_fConfidenceLimit = 0.5f});
        Require(measurement.m_vMask.size() == pixels);
    } catch (const MeasurementReadError&) {
    }
    return 0;
}
