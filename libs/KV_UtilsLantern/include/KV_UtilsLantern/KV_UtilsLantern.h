// The rigid transform of one set of points to another one, by pairs.
#pragma once

extern "C" {

/// The least-squares fit without reflection and scale: the rotation comes from the singular value decomposition of the
/// correlation of both sets (K. S. Arun, T. S. Huang, S. D. Blostein, "Least-Squares Fitting of Two 3-D Point Sets",
/// IEEE PAMI 9(5), 1987; the sign that excludes a reflection: S. Umeyama, IEEE PAMI 13(4), 1991). Computed in double.
///
/// Two pairs, and points of either side on a line, leave the rotation about that line open. The result is then the
/// shortest rotation that takes the direction of the source to that of the target; the centroids come together.
/// Opposite directions give half a turn about the x axis as far as it is perpendicular to the line, about y for a line
/// along x. With one side on a line of direction d, the direction of the other side is the least-squares one by the
/// pairs: of the sum of its points times the positions of their partners along d, both from their centroids. For two
/// lines that is the line itself, its sign by the pairs. Where the sum vanishes the pairs say nothing about the
/// direction: it is that of the largest extent of the other side, with the sign that is nearer to d.
///
/// Points count as points on a line when their root of summed squared distances from it is at most
///     2^-24 times the root of the summed squared coordinates, the rounding of coordinates to float, plus
///     2^-20 times the extent along the line, several roundings of a transform in float before that.
/// A smaller distance is rounding and says nothing about the rotation about the line. The limit grows with the
/// coordinates, so it holds in any unit. Points that are the same within this limit have no direction: a failure.
///
/// @param count      number of pairs, 2 or more
/// @param sourceXYZ  count x 3 floats: x, y, z
/// @param targetXYZ  count x 3 floats; pair i is index i of both
/// @param result     receives 12 floats: the 3 x 3 rotation column after column, then the translation; it maps source
///                   to target. Untouched on failure
/// @return 0, or negative on failure: fewer than 2 pairs, a null pointer, a coordinate that is not finite, points of
///         one side that are all the same, or a result that no float can hold
__attribute__((visibility("default"))) int LANDLL_PickPointMatching(int count, const float* sourceXYZ,
                                                                    const float* targetXYZ, float* result) noexcept;
}
