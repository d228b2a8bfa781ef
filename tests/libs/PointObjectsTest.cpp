// The objects of point clouds through their tables of operations: arguments, references and results.
#include <array>
#include <cfloat>
#include <cmath>

#include "GeometryObjects.h"

namespace {

using namespace GeometryObjects;
using Vector = std::array<float, 3>;

using PointCloudObject = NoLeak;
using NeighbourSearchObject = NoLeak;
using NormalEstimatorObject = NoLeak;

/// A square of 11 x 11 points in the plane z = 1, and one point far above it.
std::vector<float> SquareAndAPoint() {
    std::vector<float> points;
    for (int i = 0; i < 121; ++i)
        for (const float value : {static_cast<float>(i % 11), static_cast<float>(i / 11), 1.0f})
            points.push_back(value);
    for (const float value : {5.0f, 5.0f, 101.0f}) points.push_back(value);
    return points;
}

TEST_F(PointCloudObject, HasItsOwnOperationToAddAReference) {
    Object* const cloud = MakeObject(point_cloud::kFactory);
    point_cloud::kAddReference(cloud);
    EXPECT_NE(cloud->m_pOperations[4], nullptr);
    kRelease(cloud);
    EXPECT_EQ(Component::LiveCount(), 1);
    kRelease(cloud);
}

TEST_F(PointCloudObject, NeedsItsFormatFirst) {
    const ObjectPointer cloud = Make(point_cloud::kFactory);
    const float points[3] = {1, 2, 3};
    EXPECT_EQ(point_cloud::kSetCount(cloud.get(), 1), kNo);
    EXPECT_EQ(point_cloud::kSetPoints(cloud.get(), points, 12, 0), kNo);
    EXPECT_EQ(point_cloud::kSetFormat(cloud.get(), nullptr), kWrong);
    for (const wchar_t* format : {L"", L"N", L"p", L"PN", L"P "})
        EXPECT_EQ(point_cloud::kSetFormat(cloud.get(), format), kWrong) << format;
    EXPECT_EQ(point_cloud::kSetCount(cloud.get(), 1), kNo);
    EXPECT_EQ(point_cloud::kSetFormat(cloud.get(), L"P"), kOk);
    EXPECT_EQ(point_cloud::kSetCount(cloud.get(), 1), kOk);
    EXPECT_EQ(point_cloud::kSetPoints(cloud.get(), points, 12, 1), kOk);
}

TEST_F(PointCloudObject, RefusesArraysThatDoNotFit) {
    const ObjectPointer cloud = Make(point_cloud::kFactory);
    const float points[6] = {1, 2, 3, 4, 5, 6};
    Vector centroid{7, 7, 7};
    ASSERT_EQ(point_cloud::kSetFormat(cloud.get(), L"P"), kOk);
    EXPECT_EQ(point_cloud::kSetPoints(cloud.get(), points, 12, 1), kWrong) << "the count is 0";
    ASSERT_EQ(point_cloud::kSetCount(cloud.get(), 2), kOk);
    EXPECT_EQ(point_cloud::kGetCentroid(cloud.get(), centroid.data()), kNo) << "a count, but no points";
    EXPECT_EQ(point_cloud::kSetPoints(cloud.get(), nullptr, 12, 2), kWrong);
    for (const std::int32_t stride : {0, 4, 8, 11, 13, 14, -12, INT32_MIN, INT32_MAX})
        EXPECT_EQ(point_cloud::kSetPoints(cloud.get(), points, stride, 2), kWrong) << stride;
    for (const std::int32_t count : {0, 1, 3, -2}) {
        EXPECT_EQ(point_cloud::kSetPoints(cloud.get(), points, 12, count), kWrong) << count;
    }
    EXPECT_EQ(point_cloud::kSetCount(cloud.get(), -1), kWrong);
    EXPECT_EQ(centroid, (Vector{7, 7, 7}));
    ASSERT_EQ(point_cloud::kSetPoints(cloud.get(), points, 12, 2), kOk);
    EXPECT_EQ(point_cloud::kGetCentroid(cloud.get(), nullptr), kWrong);
    EXPECT_EQ(point_cloud::kSetPoints(cloud.get(), points, 13, 2), kWrong);
    EXPECT_EQ(point_cloud::kSetCount(cloud.get(), -1), kWrong);
    EXPECT_EQ(point_cloud::kGetCentroid(cloud.get(), centroid.data()), kOk) << "calls that fail change nothing";
    EXPECT_EQ(centroid, (Vector{2.5f, 3.5f, 4.5f}));
    ASSERT_EQ(point_cloud::kSetCount(cloud.get(), 2), kOk);
    EXPECT_EQ(point_cloud::kGetCentroid(cloud.get(), centroid.data()), kNo) << "a new count drops the points";
    ASSERT_EQ(point_cloud::kSetCount(cloud.get(), 0), kOk);
    EXPECT_EQ(point_cloud::kSetPoints(cloud.get(), points, 12, 0), kOk);
    EXPECT_EQ(point_cloud::kGetCentroid(cloud.get(), centroid.data()), kNo) << "no points";
}

TEST_F(PointCloudObject, ReadsTheArrayOfTheCaller) {
    std::vector<float> points{1, 2, 3, 5, 6, 7};
    const ObjectPointer cloud = CloudOf(points);
    points[0] = 3;
    Vector centroid{};
    EXPECT_EQ(point_cloud::kGetCentroid(cloud.get(), centroid.data()), kOk);
    EXPECT_EQ(centroid, (Vector{4, 4, 5})) << "nothing was copied";
}

TEST_F(PointCloudObject, SkipsWhatIsBetweenThePoints) {
    const float vertices[] = {1, 2, 3, 99, 98, 97, 96, 95, 5, 6, 7, 94, 93, 92, 91, 90};
    const ObjectPointer cloud = Make(point_cloud::kFactory);
    ASSERT_EQ(point_cloud::kSetFormat(cloud.get(), L"P"), kOk);
    ASSERT_EQ(point_cloud::kSetCount(cloud.get(), 2), kOk);
    ASSERT_EQ(point_cloud::kSetPoints(cloud.get(), vertices, 32, 2), kOk);
    Vector centroid{};
    EXPECT_EQ(point_cloud::kGetCentroid(cloud.get(), centroid.data()), kOk);
    EXPECT_EQ(centroid, (Vector{3, 4, 5}));
}

TEST_F(PointCloudObject, AddsManyPointsUpInDouble) {
    const std::vector<float> points(3 * 1'000'000, 1000.1f);  // a sum in float loses digits
    const ObjectPointer cloud = CloudOf(points);
    Vector centroid{};
    EXPECT_EQ(point_cloud::kGetCentroid(cloud.get(), centroid.data()), kOk);
    EXPECT_EQ(centroid, (Vector{1000.1f, 1000.1f, 1000.1f}));
}

TEST_F(PointCloudObject, HasNoCentroidWithAPointThatIsNotFinite) {
    for (const float bad : {NAN, INFINITY, -INFINITY}) {
        const std::vector<float> points{0, 0, 0, 1, 1, bad};
        const ObjectPointer cloud = CloudOf(points);
        Vector centroid{7, 7, 7};
        EXPECT_EQ(point_cloud::kGetCentroid(cloud.get(), centroid.data()), kNo) << bad;
        EXPECT_EQ(centroid, (Vector{7, 7, 7}));
    }
    const std::vector<float> points{FLT_MAX, FLT_MAX, FLT_MAX, FLT_MAX, -FLT_MAX, FLT_MAX};
    const ObjectPointer cloud = CloudOf(points);
    Vector centroid{};
    EXPECT_EQ(point_cloud::kGetCentroid(cloud.get(), centroid.data()), kOk);
    EXPECT_EQ(centroid, (Vector{FLT_MAX, 0, FLT_MAX}));
}

TEST_F(NeighbourSearchObject, HoldsTheCloudUntilItIsFinished) {
    const std::vector<float> points{0, 0, 0};
    ObjectPointer cloud = CloudOf(points);
    const ObjectPointer search = SearchIn(cloud);
    cloud.reset();
    EXPECT_EQ(Component::LiveCount(), 2);
    EXPECT_EQ(neighbour_search::kFinish(search.get()), kOk);
    EXPECT_EQ(Component::LiveCount(), 1);
    EXPECT_EQ(neighbour_search::kFinish(search.get()), kOk) << "a second time";
}

TEST_F(NeighbourSearchObject, ReleasesTheCloudWithItself) {
    const std::vector<float> points{0, 0, 0};
    SearchIn(CloudOf(points)).reset();
    EXPECT_EQ(Component::LiveCount(), 0);
}

TEST_F(NeighbourSearchObject, ReleasesTheFormerCloudWhenItGetsAnother) {
    const std::vector<float> points{0, 0, 0};
    const ObjectPointer search = SearchIn(CloudOf(points));
    Object* next = CloudOf(points).release();
    EXPECT_EQ(neighbour_search::kBuild(search.get(), &next), kOk);
    EXPECT_EQ(Component::LiveCount(), 2);
    Object* same = next;
    kAddReference(same);
    EXPECT_EQ(neighbour_search::kBuild(search.get(), &same), kOk) << "the same cloud again";
    EXPECT_EQ(Component::LiveCount(), 2);
}

TEST_F(NeighbourSearchObject, ReleasesWhatItRefuses) {
    const std::vector<float> points{0, 0, 0};
    const ObjectPointer cloud = CloudOf(points), search = SearchIn(cloud);
    Object* nothing = nullptr;
    EXPECT_EQ(neighbour_search::kBuild(search.get(), nullptr), kWrong);
    EXPECT_EQ(neighbour_search::kBuild(search.get(), &nothing), kWrong);
    Object* other = MakeObject(height_histogram::kFactory);
    EXPECT_EQ(neighbour_search::kBuild(search.get(), &other), kWrong);
    Object* empty = MakeObject(point_cloud::kFactory);
    EXPECT_EQ(neighbour_search::kBuild(search.get(), &empty), kNo) << "a cloud without points";
    EXPECT_EQ(Component::LiveCount(), 2) << "the first cloud and the search";
}

/// A cloud with its search and its estimator.
struct Estimator {
    explicit Estimator(const std::vector<float>& points) : cloud(CloudOf(points)), search(SearchIn(cloud)) {
        Object *handedCloud = Handed(cloud), *handedSearch = Handed(search);
        EXPECT_EQ(normal_estimator::kInitialize(object.get(), &handedCloud, &handedSearch), kOk);
    }
    [[nodiscard]] std::int32_t Estimate(Vector point, float radius) {
        return normal_estimator::kEstimateNormal(object.get(), point.data(), radius, normal.data());
    }
    ObjectPointer cloud, search;
    const ObjectPointer object = Make(normal_estimator::kFactory);
    Vector normal{7, 7, 7};
};

TEST_F(NormalEstimatorObject, EstimatesOverAllPointsWithinTheRadius) {
    const std::vector<float> points = SquareAndAPoint();
    Estimator estimator(points);
    EXPECT_EQ(estimator.Estimate({5, 5, 1}, 50.0f), kOk);
    EXPECT_EQ(estimator.normal, (Vector{0, 0, 1})) << "the square";
    // With the point above: its height outweighs the extent of the square.
    for (const float radius : {200.0f, 1e20f, FLT_MAX}) {
        EXPECT_EQ(estimator.Estimate({5, 5, 1}, radius), kOk);
        EXPECT_NEAR(estimator.normal[2], 0.0f, 1e-6f) << radius;
    }
}

TEST_F(NormalEstimatorObject, APointAtTheRadiusCounts) {
    const std::vector<float> points{0, 0, 0, 3, 0, 4, 0, 3, 4, 9, 9, 9};
    Estimator estimator(points);
    EXPECT_EQ(estimator.Estimate({0, 0, 0}, std::nextafter(5.0f, 0.0f)), kNo);
    EXPECT_EQ(estimator.normal, (Vector{7, 7, 7}));
    EXPECT_EQ(estimator.Estimate({0, 0, 0}, 5.0f), kOk);
    // (3, 0, 4) x (0, 3, 4) = (-12, -12, 9), of length sqrt(369).
    EXPECT_NEAR(estimator.normal[0], -12 / std::sqrt(369.0), 1e-6);
    EXPECT_NEAR(estimator.normal[1], -12 / std::sqrt(369.0), 1e-6);
    EXPECT_NEAR(estimator.normal[2], 9 / std::sqrt(369.0), 1e-6);
}

TEST_F(NormalEstimatorObject, FailsWithFewerThanThreePoints) {
    const std::vector<float> points{0, 0, 0, 1, 0, 0, 50, 50, 50};
    Estimator estimator(points);
    EXPECT_EQ(estimator.Estimate({0, 0, 0}, 0.0f), kNo);
    EXPECT_EQ(estimator.Estimate({0, 0, 0}, 10.0f), kNo);
    EXPECT_EQ(estimator.Estimate({-99, 0, 0}, 10.0f), kNo);
    EXPECT_EQ(estimator.Estimate({0, 0, 0}, FLT_MAX), kOk);
    const std::vector<float> two{0, 0, 0, 1, 0, 0};
    EXPECT_EQ(Estimator(two).Estimate({0, 0, 0}, FLT_MAX), kNo);
}

TEST_F(NormalEstimatorObject, RefusesBadArguments) {
    const std::vector<float> points = SquareAndAPoint();
    Estimator estimator(points);
    Object* const object = estimator.object.get();
    const Vector point{5, 5, 1};
    Vector normal{7, 7, 7};
    EXPECT_EQ(normal_estimator::kEstimateNormal(object, nullptr, 1, normal.data()), kWrong);
    EXPECT_EQ(normal_estimator::kEstimateNormal(object, point.data(), 1, nullptr), kWrong);
    for (const float bad : {NAN, INFINITY, -INFINITY, -1.0f, -FLT_TRUE_MIN})
        EXPECT_EQ(estimator.Estimate(point, bad), kWrong) << bad;
    for (const float bad : {NAN, INFINITY, -INFINITY})
        for (const Vector& place : {Vector{bad, 5, 1}, {5, bad, 1}, {5, 5, bad}})
            EXPECT_EQ(estimator.Estimate(place, FLT_MAX), kWrong) << bad;
    EXPECT_EQ(estimator.normal, (Vector{7, 7, 7}));
}

TEST_F(NormalEstimatorObject, HasNoNormalWithAPointThatIsNotFinite) {
    for (const float bad : {NAN, INFINITY, -INFINITY}) {
        const std::vector<float> points{0, 0, 0, 1, 0, 0, 0, 1, 0, 1, 1, 0, 2, 2, bad};
        Estimator estimator(points);
        for (const float radius : {1.0f, 100.0f, FLT_MAX}) {
            EXPECT_EQ(estimator.Estimate({0, 0, 0}, radius), kNo) << bad << " " << radius;
        }
        EXPECT_EQ(estimator.normal, (Vector{7, 7, 7}));
    }
}

TEST_F(NormalEstimatorObject, HoldsCloudAndSearchUntilItIsFinished) {
    const std::vector<float> points = SquareAndAPoint();
    Estimator estimator(points);
    estimator.cloud.reset();
    estimator.search.reset();
    EXPECT_EQ(Component::LiveCount(), 3);
    EXPECT_EQ(estimator.Estimate({5, 5, 1}, 5.0f), kOk);
    EXPECT_EQ(normal_estimator::kFinish(estimator.object.get()), kOk);
    EXPECT_EQ(Component::LiveCount(), 1);
    EXPECT_EQ(estimator.Estimate({5, 5, 1}, 5.0f), kNo);
    EXPECT_EQ(normal_estimator::kFinish(estimator.object.get()), kOk) << "a second time";
}

TEST_F(NormalEstimatorObject, FailsWhenItsSearchWasFinishedOrBuiltForAnotherCloud) {
    const std::vector<float> points = SquareAndAPoint();
    Estimator estimator(points);
    EXPECT_EQ(neighbour_search::kFinish(estimator.search.get()), kOk);
    EXPECT_EQ(estimator.Estimate({5, 5, 1}, FLT_MAX), kNo);
    Object* other = CloudOf(points).release();
    ASSERT_EQ(neighbour_search::kBuild(estimator.search.get(), &other), kOk);
    EXPECT_EQ(estimator.Estimate({5, 5, 1}, FLT_MAX), kNo);
    Object* own = Handed(estimator.cloud);
    ASSERT_EQ(neighbour_search::kBuild(estimator.search.get(), &own), kOk);
    EXPECT_EQ(estimator.Estimate({5, 5, 1}, FLT_MAX), kOk);
}

TEST_F(NormalEstimatorObject, ReleasesWhatItRefuses) {
    const std::vector<float> points = SquareAndAPoint();
    const ObjectPointer estimator = Make(normal_estimator::kFactory), cloud = CloudOf(points), search = SearchIn(cloud);
    const ObjectPointer otherCloud = CloudOf(points), unused = Make(neighbour_search::kFactory);
    const ObjectPointer histogram = Make(height_histogram::kFactory);
    const std::int32_t live = Component::LiveCount();
    const auto initialize = [&](Object* first, Object* second) {
        for (Object* const handed : {first, second})
            if (handed != nullptr) kAddReference(handed);
        return normal_estimator::kInitialize(estimator.get(), &first, &second);
    };
    EXPECT_EQ(initialize(nullptr, nullptr), kWrong);
    EXPECT_EQ(initialize(cloud.get(), nullptr), kWrong);
    EXPECT_EQ(initialize(nullptr, search.get()), kWrong);
    EXPECT_EQ(initialize(search.get(), cloud.get()), kWrong) << "in the wrong order";
    EXPECT_EQ(initialize(histogram.get(), search.get()), kWrong);
    EXPECT_EQ(initialize(cloud.get(), histogram.get()), kWrong);
    EXPECT_EQ(initialize(otherCloud.get(), search.get()), kWrong) << "a search in another cloud";
    EXPECT_EQ(initialize(cloud.get(), unused.get()), kWrong) << "a search that was not built";
    Object *handedCloud = Handed(cloud), *handedSearch = Handed(search);
    EXPECT_EQ(normal_estimator::kInitialize(estimator.get(), &handedCloud, nullptr), kWrong);
    EXPECT_EQ(normal_estimator::kInitialize(estimator.get(), nullptr, &handedSearch), kWrong);
    EXPECT_EQ(normal_estimator::kInitialize(estimator.get(), nullptr, nullptr), kWrong);
    Vector point{}, normal{};
    EXPECT_EQ(normal_estimator::kEstimateNormal(estimator.get(), point.data(), 1, normal.data()), kNo);

    // Each reference that was handed over is gone: what is released now is destroyed.
    EXPECT_EQ(Component::LiveCount(), live);
    EXPECT_EQ(initialize(cloud.get(), search.get()), kOk);
    EXPECT_EQ(initialize(otherCloud.get(), search.get()), kWrong);
    EXPECT_EQ(normal_estimator::kEstimateNormal(estimator.get(), point.data(), FLT_MAX, normal.data()), kOk)
        << "a call that fails changes nothing";
}

}  // namespace
