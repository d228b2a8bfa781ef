// The rigid transform of one set of points to another one, by pairs.
#pragma once

extern "C" {

/// @param count      number of pairs, 2 or more
/// @param sourceXYZ  count x 3 floats: x, y, z
/// @param targetXYZ  count x 3 floats; pair i is index i of both
/// @param result     receives 12 floats: the 3 x 3 rotation column after column, then the translation; it maps source
///                   to target. Untouched on failure
/// @return 0, or negative on failure
__attribute__((visibility("default"))) int LANDLL_PickPointMatching(int count, const float* sourceXYZ,
                                                                    const float* targetXYZ, float* result);
}
