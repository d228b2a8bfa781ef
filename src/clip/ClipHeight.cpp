// The passes over the vertices, the plane fit that decides the rule, and the three rules.
#include "clip/ClipHeight.h"

#include <algorithm>
#include <array>
#include <cfloat>
#include <cmath>
#include <cstddef>
#include <limits>

#include "KV_Components/Geometry.h"
#include "geometry/Box.h"
#include "platform/ComponentRegistry.h"

namespace {

namespace height_histogram = KvComponents::height_histogram;
namespace neighbour_search = KvComponents::neighbour_search;
namespace normal_estimator = KvComponents::normal_estimator;
namespace point_cloud = KvComponents::point_cloud;
using KV_ScenePane::ClipHeight;
using KV_ScenePane::ClipHeightKind;
using KvComponents::Object;

constexpr std::int64_t kMaxSamples = 3703490;
constexpr std::size_t kMaxSpanCount = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kBinCount = 500;
constexpr float kSpotRadius = 1.0f, kNeighbourhoodRadius = 12.0f, kEverywhere = FLT_MAX;
constexpr std::int32_t kMinSpotPoints = 10;
constexpr double kMaxFlatRms = 1.1;

/// One value per bin.
using BinArray = std::array<float, kBinCount>;

// ---- passes over the vertices

const float* At(const float* first, std::int32_t stride, std::size_t index) {
    return reinterpret_cast<const float*>(reinterpret_cast<const std::byte*>(first) +
                                          index * static_cast<std::size_t>(stride));
}

bool IsFinite(const float* p) { return std::isfinite(p[0]) && std::isfinite(p[1]) && std::isfinite(p[2]); }

/// Of every finite vertex.
Box BoxOf(std::span<const PointSpan> spans) {
    Box box;
    for (const PointSpan& span : spans)
        for (std::size_t i = 0; i < static_cast<std::size_t>(span.count); ++i) {
            const float* p = At(span.positions, span.positionStride, i);
            box.MergeIfFinite({p[0], p[1], p[2]});
        }
    return box;
}

/// What all passes share.
struct SampleContext {
    std::span<const PointSpan> spans;
    Object* histogram = nullptr;
    std::size_t step = 1;
    float spread = 0.0f;  ///< of a sample in the histogram
    Box box;
};

/// Calls visit(position, normal) for each sampled vertex within @p radius of the spot, measured in x and y: the middle
/// of the box in x, a quarter of its extent from the low end in y.
template <class Visit>
void VisitNearSpot(const SampleContext& context, float radius, const Visit& visit) {
    const Float3 &low = context.box.min, &high = context.box.max;
    const float spotX = (high[0] + low[0]) * 0.5f;
    const float spotY = high[1] * 0.25f + low[1] * 0.75f;
    const float limit = radius * radius;
    const bool everywhere = std::isinf(limit);  // also what is so far out that its distance overflows
    for (const PointSpan& span : context.spans)
        for (std::size_t i = 0; i < static_cast<std::size_t>(span.count); i += context.step) {
            const float* p = At(span.positions, span.positionStride, i);
            const float dx = p[0] - spotX, dy = p[1] - spotY;
            if (!(dx * dx + dy * dy < limit || everywhere) || !IsFinite(p)) continue;
            visit(p, At(span.normals, span.normalStride, i));
        }
}

enum class Weighting : std::int8_t { FacingUp, FacingSideways };

/// 0 for what faces the other way, and for a normal that is not finite.
float WeightOf(float normalZ, Weighting weighting) {
    const float weight = weighting == Weighting::FacingUp ? normalZ : 1.0f - std::abs(normalZ);
    return weight > 0.0f && std::isfinite(weight) ? weight : 0.0f;
}

/// Adds the vertices within the radius to the histogram; returns how many.
std::int32_t Sample(const SampleContext& context, float radius, Weighting weighting) {
    std::int32_t count = 0;
    VisitNearSpot(context, radius, [&](const float* position, const float* normal) {
        height_histogram::kAddSample(context.histogram, position[2], context.spread, WeightOf(normal[2], weighting));
        ++count;
    });
    return count;
}

/// The points of a Sample() that returned @p count: a vector that grew would need up to three times the memory.
std::vector<Float3> Collect(const SampleContext& context, float radius, std::int32_t count) {
    std::vector<Float3> points;
    points.reserve(static_cast<std::size_t>(count));
    VisitNearSpot(context, radius, [&](const float* position, const float*) {
        points.push_back({position[0], position[1], position[2]});
    });
    return points;
}

// ---- the plane fit

/// References for an operation that releases them itself.
Object* AddCloudReference(const ComponentPtr& cloud) {
    point_cloud::kAddReference(cloud.get());
    return cloud.get();
}
Object* AddSearchReference(const ComponentPtr& search) {
    KvComponents::kAddReference(search.get());
    return search.get();
}

/// Root mean square distance from the plane through @p center. In double: the sum of millions of squares.
double RmsDistance(const std::vector<Float3>& points, const Float3& center, const Float3& normal) {
    const Double3 n = ToDouble3(normal);
    const double offset = Dot(n, ToDouble3(center));
    double sum = 0;
    for (const Float3& point : points) {
        const double distance = Dot(n, ToDouble3(point)) - offset;
        sum += distance * distance;
    }
    return std::sqrt(sum / static_cast<double>(points.size()));
}

/// By the distance of the points from their best plane.
ClipHeightKind KindOfSpot(const std::vector<Float3>& points) {
    const auto count = static_cast<std::int32_t>(points.size());
    const ComponentPtr cloud = RequireComponent(point_cloud::kFactory, point_cloud::kInterface);
    Float3 center{}, normal{};
    RequireSuccess(point_cloud::kSetFormat(cloud.get(), L"P"));
    RequireSuccess(point_cloud::kSetCount(cloud.get(), count));
    RequireSuccess(point_cloud::kSetPoints(cloud.get(), points.front().data(), sizeof(Float3), count));
    RequireSuccess(point_cloud::kGetCentroid(cloud.get(), center.data()));

    const ComponentPtr search = RequireComponent(neighbour_search::kFactory, neighbour_search::kInterface);
    Object* given = AddCloudReference(cloud);
    ComponentUse searchUse(neighbour_search::kBuild(search.get(), &given), search.get(), neighbour_search::kFinish);

    const ComponentPtr estimator = RequireComponent(normal_estimator::kFactory, normal_estimator::kInterface);
    given = AddCloudReference(cloud);
    Object* givenSearch = AddSearchReference(search);
    ComponentUse estimatorUse(normal_estimator::kInitialize(estimator.get(), &given, &givenSearch), estimator.get(),
                              normal_estimator::kFinish);

    RequireSuccess(normal_estimator::kEstimateNormal(estimator.get(), center.data(), kEverywhere, normal.data()));
    const double rms = RmsDistance(points, center, normal);
    estimatorUse.Finish();
    searchUse.Finish();
    return rms > kMaxFlatRms ? KV_ScenePane::HeightCurvedSpot : KV_ScenePane::HeightFlatSpot;
}

/// Fills the histogram; returns the rule that holds for it.
ClipHeightKind SampleSpot(const SampleContext& context) {
    if (Sample(context, kSpotRadius, Weighting::FacingUp) < kMinSpotPoints) {
        height_histogram::kReset(context.histogram);
        Sample(context, kEverywhere, Weighting::FacingUp);
        Sample(context, kEverywhere, Weighting::FacingSideways);
        return KV_ScenePane::HeightFromAllPoints;
    }
    // What lies within the spot counts twice.
    const std::int32_t count = Sample(context, kNeighbourhoodRadius, Weighting::FacingUp);
    return KindOfSpot(Collect(context, kNeighbourhoodRadius, count));
}

// ---- the rules

/// The histogram when it is filled.
struct Profile {
    Object* histogram = nullptr;
    BinArray heights{}, weights{};
    std::int32_t window = 0;  ///< bins that a peak must dominate
    std::size_t peak = 0;
};

/// The next level above the main one that has clearly fewer points, or else a standard deviation above the main level.
float HeightOfFlatSpot(const Profile& profile) {
    height_histogram::PeakList peaks{};
    RequireSuccess(height_histogram::kFindPeaks(profile.histogram, profile.window, &peaks));
    const float peak = profile.weights[profile.peak];
    for (std::int32_t k = 0; peaks.indices != nullptr && k < peaks.count; ++k) {
        const std::int32_t index = peaks.indices[k];
        if (index < 0 || index >= kBinCount) continue;
        const auto i = static_cast<std::size_t>(index);
        if (i > profile.peak && profile.weights[i] > 0.1f * peak && profile.weights[i] < 0.5f * peak)
            return profile.heights[i];
    }
    float variance = 0;
    RequireSuccess(height_histogram::kGetVariance(profile.histogram, &variance));
    return profile.heights[profile.peak] + std::sqrt(variance);
}

/// Where the main peak ends below; without an end, the peak.
float HeightOfCurvedSpot(const Profile& profile) {
    for (std::size_t i = profile.peak; i-- > 0;)
        if (profile.weights[i] < 0.2f * profile.weights[profile.peak]) return profile.heights[i];
    return profile.heights[profile.peak];
}

float HeightByKind(const Profile& profile, ClipHeightKind kind) {
    if (kind == KV_ScenePane::HeightFlatSpot) return HeightOfFlatSpot(profile);
    if (kind == KV_ScenePane::HeightCurvedSpot) return HeightOfCurvedSpot(profile);
    float mean = 0;
    RequireSuccess(height_histogram::kGetMean(profile.histogram, &mean));
    return mean;
}

/// In whole bins, in single precision: a spread of five bins may divide to just above 5, which gives 30 in place of 25.
/// Limited, as very thin data has bins far below the smallest spread.
std::int32_t PeakWindow(float spread, float binWidth) {
    return static_cast<std::int32_t>(std::min(5.0f * std::ceil(spread / binWidth), 1e9f));
}

}  // namespace

std::vector<PointSpan> SpansOf(std::span<const std::shared_ptr<Mesh>> meshes) {
    std::vector<PointSpan> spans;
    spans.reserve(meshes.size());
    for (const auto& mesh : meshes) {
        if (mesh->m_vVertices.empty()) continue;
        const Vertex& first = mesh->m_vVertices.front();
        PointSpan span;
        span.count = static_cast<std::int32_t>(std::min(mesh->m_vVertices.size(), kMaxSpanCount));
        span.positions = &first.x;
        span.normals = &first.nx;
        spans.push_back(span);
    }
    return spans;
}

std::int32_t ClipHeightStep(std::int64_t vertexCount) {
    return static_cast<std::int32_t>(vertexCount / kMaxSamples + 1);
}

ClipHeight EstimateFromSpans(std::span<const PointSpan> spans, std::int32_t step) {
    const ClipHeight notFound;
    SampleContext context{.spans = spans, .step = static_cast<std::size_t>(step), .box = BoxOf(spans)};
    if (context.box.IsEmpty()) return notFound;

    const ComponentPtr histogram = RequireComponent(height_histogram::kFactory, height_histogram::kInterface);
    context.histogram = histogram.get();
    float binWidth = 0;
    RequireSuccess(height_histogram::kInitialize(histogram.get(), context.box.min[2], context.box.max[2], kBinCount));
    RequireSuccess(height_histogram::kGetBinWidth(histogram.get(), &binWidth));
    if (!(binWidth > 0) || !std::isfinite(binWidth)) return notFound;
    context.spread = std::max(0.1f, 5.0f * binWidth);

    const ClipHeightKind kind = SampleSpot(context);
    Profile profile{.histogram = histogram.get(), .window = PeakWindow(context.spread, binWidth)};
    RequireSuccess(height_histogram::kGetBinCenters(histogram.get(), kBinCount, profile.heights.data()));
    RequireSuccess(height_histogram::kGetBinValues(histogram.get(), kBinCount, profile.weights.data()));
    std::int32_t peak = -1;
    const std::int32_t status = height_histogram::kFindMainPeak(histogram.get(), profile.window, 1, &peak);
    if (status != KvComponents::kSucceeded || peak < 0 || peak >= kBinCount) return notFound;
    profile.peak = static_cast<std::size_t>(peak);

    const float height = HeightByKind(profile, kind);
    if (!std::isfinite(height)) return notFound;
    return {.found = true, .height = height, .kind = kind};
}
