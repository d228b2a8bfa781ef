// The objects of point statistics in FakeComponents: histogram, cloud, search and estimator.
#include <gtest/gtest.h>

#include <algorithm>
#include <initializer_list>
#include <sstream>

#include "KV_Components/Geometry.h"
#include "support/FakeObject.h"

namespace FakeObjects {

namespace {

/// The arguments with blanks between them, in the shortest form.
template <class... Values>
std::string Words(Values... values) {
    std::ostringstream text;
    const char* separator = "";
    ((text << separator << values, separator = " "), ...);
    return text.str();
}

/// Keeps the references that the caller has added.
std::int32_t Hold(Object* object, const char* operation, std::initializer_list<Object**> given) {
    FakeObject& self = Self(object);
    std::string kinds;
    for (Object** one : given) {
        EXPECT_GT(Self(*one).m_iReferences, 1) << "no reference was added to the " << Self(*one).m_sKind;
        self.m_held.push_back(&Self(*one));
        kinds += (kinds.empty() ? "" : " ") + Self(*one).m_sKind;
    }
    return Call(object, operation, kinds);
}

std::int32_t Finish(Object* object) {
    const std::int32_t status = Call(object, "finish");
    ReleaseHeld(Self(object));
    return status;
}

/// Adds a reference, which is among the calls.
void AddRecordedReference(Object* object) {
    g_library->calls.push_back(Self(object).m_sKind + ".addReference");
    AddReference(object);
}

std::int32_t ReportFloat(Object* object, const char* operation, float from, float* out) {
    const std::int32_t status = Call(object, operation);
    if (status == kSucceeded) *out = from;
    return status;
}

std::int32_t FillBins(Object* object, const char* operation, const std::vector<float>& from, std::int32_t count,
                      float* to) {
    return Fill(Call(object, operation, Words(count)), from, to, static_cast<std::size_t>(count) * sizeof(float));
}

}  // namespace

Table Histogram() {
    Table table = EveryObject();
    Enter(
        table, height_histogram::kInitialize, +[](Object* o, float low, float high, std::int32_t bins) {
            return Call(o, "initialize", Words(low, high, bins));
        });
    Enter(
        table, height_histogram::kGetMean,
        +[](Object* o, float* mean) { return ReportFloat(o, "mean", g_library->mean, mean); });
    Enter(
        table, height_histogram::kGetVariance,
        +[](Object* o, float* variance) { return ReportFloat(o, "variance", g_library->variance, variance); });
    Enter(
        table, height_histogram::kReset, +[](Object* o) { return Call(o, "reset", Words(g_library->samples.size())); });
    Enter(
        table, height_histogram::kAddSample, +[](Object*, float value, float spread, float weight) {
            g_library->samples.push_back({value, spread, weight});
            const auto answer = g_library->answers.find("histogram.addSample");
            return answer == g_library->answers.end() ? kSucceeded : answer->second;
        });
    Enter(
        table, height_histogram::kGetBinWidth,
        +[](Object* o, float* width) { return ReportFloat(o, "binWidth", g_library->binWidth, width); });
    Enter(
        table, height_histogram::kGetBinCenters, +[](Object* o, std::int32_t count, float* centers) {
            return FillBins(o, "binCenters", g_library->binCenters, count, centers);
        });
    Enter(
        table, height_histogram::kGetBinValues, +[](Object* o, std::int32_t count, float* values) {
            return FillBins(o, "binValues", g_library->binValues, count, values);
        });
    Enter(
        table, height_histogram::kFindMainPeak,
        +[](Object* o, std::int32_t width, std::int32_t reserved, std::int32_t* index) {
            *index = g_library->mainPeak;  // also when it fails: the caller must look at the status
            return Call(o, "mainPeak", Words(width, reserved));
        });
    Enter(
        table, height_histogram::kFindPeaks, +[](Object* o, std::int32_t width, height_histogram::PeakList* list) {
            const std::int32_t status = Call(o, "peaks", Words(width));
            const std::vector<std::int32_t>& peaks = g_library->peaks;
            if (status == kSucceeded)
                *list = {g_library->peakCount.value_or(static_cast<std::int32_t>(peaks.size())),
                         peaks.empty() ? nullptr : peaks.data()};
            return status;
        });
    return table;
}

Table Cloud() {
    Table table = EveryObject();
    Enter(table, point_cloud::kAddReference, &AddRecordedReference);
    Enter(
        table, point_cloud::kSetFormat, +[](Object* o, const wchar_t* format) {
            return Call(o, "format", std::wstring(format) == L"P" ? "P" : "other");
        });
    Enter(
        table, point_cloud::kSetCount, +[](Object* o, std::int32_t count) { return Call(o, "count", Words(count)); });
    Enter(
        table, point_cloud::kSetPoints, +[](Object* o, const float* points, std::int32_t stride, std::int32_t count) {
            EXPECT_EQ(stride, 12);
            g_library->cloudPoints.resize(static_cast<std::size_t>(count));
            std::memcpy(g_library->cloudPoints.data(), points, g_library->cloudPoints.size() * 12);
            return Call(o, "points", Words(stride, count));
        });
    Enter(
        table, point_cloud::kGetCentroid, +[](Object* o, float* centroid) {
            const std::int32_t status = Call(o, "centroid");
            if (status == kSucceeded) std::ranges::copy(g_library->centroid, centroid);
            return status;
        });
    return table;
}

Table Search() {
    Table table = EveryObject();
    Enter(table, kAddReference, &AddRecordedReference);
    Enter(
        table, neighbour_search::kBuild, +[](Object* o, Object** cloud) { return Hold(o, "build", {cloud}); });
    Enter(table, neighbour_search::kFinish, &Finish);
    return table;
}

Table Estimator() {
    Table table = EveryObject();
    Enter(
        table, normal_estimator::kInitialize, +[](Object* o, Object** cloud, Object** search) {
            return Hold(o, "initialize", {cloud, search});
        });
    Enter(
        table, normal_estimator::kEstimateNormal, +[](Object* o, const float* point, float radius, float* normal) {
            const std::int32_t status = Call(o, "normal", Words(point[0], point[1], point[2], radius));
            if (status == kSucceeded) std::ranges::copy(g_library->normal, normal);
            return status;
        });
    Enter(table, normal_estimator::kFinish, &Finish);
    return table;
}

}  // namespace FakeObjects
