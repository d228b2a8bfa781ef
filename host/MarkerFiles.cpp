// Arrays of the file readers to the methods of the viewer.
#include "MarkerFiles.h"

#include <algorithm>
#include <array>
#include <functional>
#include <limits>
#include <stdexcept>
#include <utility>

#include "CaughtError.h"
#include "DebugCapture.h"
#include "ForeignImport.h"
#include "MessageTable.h"
#include "PaintBlock.h"
#include "SceneFile.h"

namespace {

using KV_ScenePane::PointCloud;

/// The number of points in an array of 3 floats per point, as the viewer counts them.
std::int32_t PointCount(const std::vector<float>& xyz) {
    const std::size_t count = xyz.size() / 3;
    if (count > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max()))
        throw std::length_error("more points than the viewer counts");
    return static_cast<std::int32_t>(count);
}

std::int32_t NextId(std::int32_t id) {
    if (id == std::numeric_limits<std::int32_t>::max()) throw std::length_error("no free number of a line is left");
    return id + 1;
}

void FillColors(PointCloud& cloud, std::int32_t color) {
    const auto packed = static_cast<std::uint32_t>(color);
    std::array<float, 3> rgb{};
    for (unsigned i = 0; i < 3; ++i) rgb[i] = static_cast<float>(packed >> (8 * i) & 0xFF) / 255.0f;
    cloud.colors.resize(cloud.xyz.size());
    for (std::size_t i = 0; i < cloud.colors.size(); ++i) cloud.colors[i] = rgb[i % 3];
}

/// What every marker file has around its import: the check of the path and the exceptions.
/// @param import  returns the reason why something was not added
std::string RunImport(const std::string& file, const std::function<std::string()>& import) {
    if (std::string refusal = ReadRefusal(file); !refusal.empty()) return refusal;
    try {
        return import();
    } catch (...) {
        return TextOfCaughtError();
    }
}

/// The reason about needles whose numbers were in use; empty without one. Names the first few.
std::string InUseText(const std::vector<std::int32_t>& ids) {
    if (ids.empty()) return {};
    constexpr std::size_t kNamed = 10;
    std::string text = ids.size() == 1 ? "a needle was not added, its number is in use: "
                                       : "needles were not added, their numbers are in use: ";
    for (std::size_t i = 0; i < std::min(ids.size(), kNamed); ++i)
        text.append(i == 0 ? "" : ", ").append(std::to_string(ids[i]));
    if (ids.size() > kNamed) text.append(" and ").append(std::to_string(ids.size() - kNamed)).append(" more");
    return text;
}

}  // namespace

std::int32_t AddPoints(KV_ScenePane::_DKV_ScenePane& methods, PointCloud cloud, std::int32_t color, float alpha) {
    const std::int32_t count = PointCount(cloud.xyz);
    if (cloud.colors.empty()) FillColors(cloud, color);
    constexpr float kNoPoint[3] = {};  // the viewer accepts no null pointer, also for no points
    return methods.ImportPoints(count, count == 0 ? kNoPoint : cloud.xyz.data(),
                                count == 0 ? kNoPoint : cloud.colors.data(), alpha);
}

std::int32_t AddDrawnPoints(KV_ScenePane::_DKV_ScenePane& methods, PointCloud cloud, std::int32_t color, float alpha) {
    const DebugCapture capture;
    const std::int32_t id = AddPoints(methods, std::move(cloud), color, alpha);
    constexpr const char* kReason = "not enough graphics memory";  // as the viewer starts its line about the set
    if (capture.Text().find(kReason) == std::string::npos) return id;
    methods.DeletePoints(id);
    throw std::runtime_error(kReason);
}

std::vector<std::int32_t> AddLines(KV_ScenePane::_DKV_ScenePane& methods, std::span<const Polyline> polylines) {
    const PaintBlock block(methods);  // each new line would draw a frame
    std::vector<std::int32_t> ids;
    ids.reserve(polylines.size());
    std::int32_t id = 0;
    for (const Polyline& polyline : polylines) {
        constexpr float kNoPoint[3] = {};
        const float* const points = polyline.empty() ? kNoPoint : polyline.data();
        // The viewer has no list of its lines: an id that is in use is one that it refuses.
        while (methods.CreateLine3D(id, PointCount(polyline), points) == KV_ScenePane::kVariantFalse) id = NextId(id);
        ids.push_back(id);
    }
    return ids;
}

std::string AddPointFile(KV_ScenePane::_DKV_ScenePane& methods, const std::string& file, std::int32_t color,
                         float alpha) {
    return RunImport(file, [&] {
        PointCloud cloud;
        std::string reason;
        if (!ReadAnyPoints(file, &cloud, &reason, {})) return PlainWords(reason);
        AddDrawnPoints(methods, std::move(cloud), color, alpha);
        return std::string();
    });
}

std::string AddLineFile(KV_ScenePane::_DKV_ScenePane& methods, const std::string& file,
                        std::vector<Polyline>* polylines) {
    return RunImport(file, [&] {
        std::string reason;
        if (!ReadLineFile(file, polylines, &reason)) return reason;
        methods.SetLine3DDrawingMode(KV_ScenePane::kVariantTrue);
        AddLines(methods, *polylines);
        return reason;
    });
}

std::string AddNeedleFile(KV_ScenePane::_DKV_ScenePane& methods, const std::string& file, const NeedleLook& look,
                          std::int32_t* limit, std::vector<NeedleMark>* marks) {
    return RunImport(file, [&] {
        std::string reason;
        if (!ReadNeedleFile(file, marks, &reason)) return reason;
        methods.SetNeedleDrawingMode(KV_ScenePane::kVariantTrue);
        return InUseText(PlaceNeedles(methods, *marks, look, limit));
    });
}
