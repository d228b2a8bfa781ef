// Loads a pcm file through the measurement library, as a measurement in scene units.
#pragma once
#include <string>

#include "io/MeasurementData.h"

namespace MsrStorage {
class MSR;
}

/// Loads a file into a measurement of the library.
/// @return why it could not be read; empty when it was, and then it has all arrays that every measurement has
[[nodiscard]] std::string LoadMeasurement(const wchar_t* path, MsrStorage::MSR& measurement);

/// The arrays of a measurement, in the units of the file. They belong to the measurement.
[[nodiscard]] MeasurementArrays ArraysOf(MsrStorage::MSR& measurement);

/// Costs one pass over each array; the library's arrays and the result are in memory at the same time.
/// @param path             file to load, or null: @p measurement is loaded already
/// @param confidenceLimit  pixels of less confidence are masked
/// @param measurement      receives the file, for a caller who wants to write it again; null: the file's own arrays are
///                         freed before this returns
/// @return all arrays are the result's own. All zero, with m_sRefusal set, when the file could not be read
[[nodiscard]] MeasurementData LoadMeasurementFile(const wchar_t* path, float confidenceLimit,
                                                  MsrStorage::MSR* measurement);
