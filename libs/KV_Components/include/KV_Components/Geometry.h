// The objects of point statistics: a weighted histogram of heights, a cloud of points, neighbours in a cloud, and
// normals of a cloud.
//
// Arrays belong to the caller. A null pointer, a count that does not fit or a number that is not finite gives
// kInvalidArgument and changes nothing. Where an operation needs another one first and returns kFailed without it, it
// may do so before it checks its arguments.
//
// The caller may have set another rounding mode, or denormal numbers flushed to 0: all operations but kAddSample
// compute with the default settings and restore those of the caller.
//
// Where an operation receives the address of an object reference, the caller adds a reference first; the operation
// owns that reference from then on, also when it fails. One thread at a time per object.
#pragma once
#include "KV_Components/Registry.h"

namespace KvComponents {

/// A weighted histogram of values with equal bins over a range. Before kInitialize all other operations return kFailed,
/// whatever their arguments are.
namespace height_histogram {
inline constexpr const char* kFactory = "{9D7D1BCB-F55C-4D00-9793-96553FE8F32E}";
inline constexpr const char* kInterface = "{A488E12A-7826-4533-B915-E74C87221D49}";

/// Bins by their index, ascending. The array belongs to the histogram and is valid until its next operation.
struct PeakList {
    std::int32_t count;
    const std::int32_t* indices;
};

/// Sets the range and forgets the samples.
/// @param low, high  edges of the first and of the last bin; low must be below high, by so much that the width of a bin
///                   is above 0 as a float
/// @param bins       1 to 4096
inline constexpr Operation<std::int32_t(float low, float high, std::int32_t bins)> kInitialize{8};
/// Weighted mean of the values.
/// @return kFailed without a weight above 0
inline constexpr Operation<std::int32_t(float* mean)> kGetMean{9};
/// Weighted mean of the squared differences from the mean.
/// @return kFailed without a weight above 0
inline constexpr Operation<std::int32_t(float* variance)> kGetVariance{10};
/// Forgets the samples; the range stays.
inline constexpr Operation<std::int32_t()> kReset{14};
/// Adds a value to the bins around it, in all by its weight. The share of a bin falls linearly with the distance of the
/// bin's centre from the value; a value with no centre that near goes to its own bin. A value outside the range is
/// ignored. Each sample costs the same; the operations that read values cost a pass over the bins. Computes with the
/// settings of the caller: the accuracy below includes all rounding modes, and denormal numbers flushed to 0 are 0.
/// @param spread  distance at which the share is 0, in the unit of the values, 0 or more
/// @param weight  0 or more
inline constexpr Operation<std::int32_t(float value, float spread, float weight)> kAddSample{15};
inline constexpr Operation<std::int32_t(float* width)> kGetBinWidth{17};
/// Copies the middle of each bin. @param count  exactly the number of bins
inline constexpr Operation<std::int32_t(std::int32_t count, float* centers)> kGetBinCenters{18};
/// Copies the weight in each bin. @param count  exactly the number of bins
/// @param values  accurate to the rounding of a float and 3e-10 of the weight of the samples that have a share in the
///                bin; 0 where none has
inline constexpr Operation<std::int32_t(std::int32_t count, float* values)> kGetBinValues{19};
/// The highest bin; of several the first.
/// @param width     bins that a peak must dominate, half of them on each side, 1 or more; the highest bin always does
/// @param reserved  1
/// @return kFailed when all bins are 0
inline constexpr Operation<std::int32_t(std::int32_t width, std::int32_t reserved, std::int32_t* index)> kFindMainPeak{
    20};
/// The bins above 0 that no bin within width / 2 to each side exceeds; of adjacent ones with the same value, a plateau,
/// the first. The list may be empty.
/// @param width  1 or more
inline constexpr Operation<std::int32_t(std::int32_t width, PeakList* peaks)> kFindPeaks{23};
}  // namespace height_histogram

/// Points in an array of the caller: nothing is copied. The array must outlive the use of the cloud, and must not
/// change while a search uses it.
namespace point_cloud {
inline constexpr const char* kFactory = "{C80FC412-6A36-405F-B0EE-3455714BBD76}";
inline constexpr const char* kInterface = "{802B0301-F1E0-46BB-8361-DFE3BB454407}";

/// Adds a reference, as entry 1 does.
inline constexpr Operation<void()> kAddReference{4};
/// @param format  L"P", positions; others are an invalid argument
inline constexpr Operation<std::int32_t(const wchar_t* format)> kSetFormat{10};
/// @param points  3 floats per point
/// @param stride  bytes from one point to the next: 12 or more, a multiple of 4
/// @param count   exactly that of kSetCount, which comes first
/// @return kFailed before kSetFormat
inline constexpr Operation<std::int32_t(const float* points, std::int32_t stride, std::int32_t count)> kSetPoints{14};
/// The number of points. The cloud has none until kSetPoints.
/// @return kFailed before kSetFormat
inline constexpr Operation<std::int32_t(std::int32_t count)> kSetCount{17};
/// Mean of the points, computed in double.
/// @param centroid  receives 3 floats
/// @return kFailed without points and where a coordinate is not finite
inline constexpr Operation<std::int32_t(float* centroid)> kGetCentroid{28};
}  // namespace point_cloud

/// Finds the points of a cloud near a place.
namespace neighbour_search {
inline constexpr const char* kFactory = "{8B99E47F-1592-48DF-969E-112FADD993AB}";
inline constexpr const char* kInterface = "{8DCA7665-4C2A-42D6-A65E-0BD82D4593B1}";

/// Holds a cloud with points until kFinish, in place of a former one. What speeds up the search is built when a normal
/// needs it first.
/// @return kFailed for a cloud without points
inline constexpr Operation<std::int32_t(Object** cloud)> kBuild{8};
/// Releases the cloud.
inline constexpr Operation<std::int32_t()> kFinish{10};
}  // namespace neighbour_search

/// Normals of a cloud by least squares.
namespace normal_estimator {
inline constexpr const char* kFactory = "{F9D07468-C253-40CC-9985-4424C52D1BC4}";
inline constexpr const char* kInterface = "{AFE1ED7C-0C63-4ADA-93D0-ED22CF75F839}";

/// Holds a cloud and a search that was built for it until kFinish, in place of former ones.
inline constexpr Operation<std::int32_t(Object** cloud, Object** search)> kInitialize{8};
/// Unit normal of the plane that is nearest to the points within a radius, in double: the sum of the squared distances
/// is the least. The first of z, y, x that is not 0 is positive. Where several planes are equally near, as for points
/// on a line, it is that of one of them.
/// @param point   3 floats
/// @param radius  0 or more; points at this distance count. All points count where its square is infinite as a float.
///                A radius that holds the whole cloud costs a few passes over it and no search
/// @param normal  receives 3 floats
/// @return kFailed before kInitialize, after the search was finished, with fewer than 3 points within the radius and
///         where a coordinate of the cloud is not finite
inline constexpr Operation<std::int32_t(const float* point, float radius, float* normal)> kEstimateNormal{16};
/// Releases the cloud and the search.
inline constexpr Operation<std::int32_t()> kFinish{20};
}  // namespace normal_estimator

}  // namespace KvComponents
