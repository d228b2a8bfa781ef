// Random calls on markers: pick-point spheres, needles, lines, free points, overlays.
#include <array>
#include <cmath>
#include <limits>

#include "random/RandomRun.h"

namespace {

constexpr std::int16_t kTrue = -1, kFalse = 0;

std::int16_t ToVariant(bool value) { return value ? kTrue : kFalse; }

std::array<float, 3> SomePoint(RandomRun& run) { return {run.Coordinate(), run.Coordinate(), run.Coordinate()}; }

bool IsSame(const std::array<float, 3>& a, const float* b) {
    for (std::size_t i = 0; i < 3; ++i)
        if (a[i] != b[i] && !(std::isnan(a[i]) && std::isnan(b[i]))) return false;
    return true;
}

// ---- pick-point spheres

void FireCount(Model& model) { model.Fire("PickPointCountChanged", {static_cast<double>(model.spheres.size())}); }

void SetPickMode(RandomRun& run) {
    const std::int16_t mode = run.random.Chance(0.7) ? run.random.Short(0, 5) : run.random.WildShort();
    run.model.pickMode = mode;
    run.model.spheres.clear();
    FireCount(run.model);
    run.Call("SetPickMode", {mode});
}

void AddPickPointSphere(RandomRun& run) {
    if (run.model.spheres.size() > 30) return;
    const auto center = SomePoint(run);
    run.model.spheres.push_back({center});
    FireCount(run.model);
    const auto id = static_cast<std::int32_t>(run.model.spheres.size() - 1);
    run.Call("AddPickPointSphere", {center[0], center[1], center[2], run.random.WildInt()}, {.result = id});
}

/// An id of a sphere: the viewer does not check it.
std::optional<std::int32_t> SomeSphere(RandomRun& run) {
    if (run.model.spheres.empty()) return std::nullopt;
    return static_cast<std::int32_t>(run.random.Index(run.model.spheres.size()));
}

void MovePickPointSphere(RandomRun& run) {
    const auto id = SomeSphere(run);
    if (!id) return;
    const auto center = SomePoint(run);
    run.model.spheres[static_cast<std::size_t>(*id)].center = center;
    run.Call("MovePickPointSphere", {*id, center[0], center[1], center[2]});
}

void RemovePickPointSphere(RandomRun& run) {
    const auto id = SomeSphere(run);
    if (!id) return;
    run.model.spheres.erase(run.model.spheres.begin() + *id);
    FireCount(run.model);
    run.Call("RemovePickPointSphere", {*id});
}

void ClearPickPointSpheres(RandomRun& run) {
    run.model.spheres.clear();
    FireCount(run.model);
    run.Call("ClearPickPointSpheres", {});
}

void GetNumberOfPickPointSpheres(RandomRun& run) {
    run.Call("GetNumberOfPickPointSpheres", {}, {.result = static_cast<std::int32_t>(run.model.spheres.size())});
}

void GetPickPointSphereCoords(RandomRun& run) {
    const auto id = SomeSphere(run);
    if (!id) return;
    std::array<float, 3> center{};
    run.CallWithOutputs("GetPickPointSphereCoords", {*id}, center);
    run.Require(IsSame(run.model.spheres[static_cast<std::size_t>(*id)].center, center.data()), "another centre");
}

/// Squared distance in pixels; not a number when the sphere has no pixel.
double PixelDistance(const ModelSphere& sphere, const ModelView& view, std::int32_t x, std::int32_t y) {
    const auto [px, upward] = view.Project({sphere.center[0], sphere.center[1], sphere.center[2]});
    return std::pow(std::trunc(px) - x, 2) + std::pow(std::trunc(view.height - upward) - y, 2);
}

void FindNearestPickPointSphere(RandomRun& run) {
    const bool modest = run.random.Chance(0.8);
    const std::int32_t x = modest ? run.random.Int(0, 100) : run.random.WildInt();
    const std::int32_t y = modest ? run.random.Int(0, 100) : run.random.WildInt();
    const bool none = run.model.spheres.empty() || !run.model.hasPicture;
    const AutomationValue result = run.Call("FindNearestPickPointSphere", {x, y},
                                            {.result = none ? std::optional<AutomationValue>(-1) : std::nullopt});
    const ModelView& view = run.model.view;
    const std::int32_t id = std::get<std::int32_t>(result);
    run.Require(id >= -1 && id < static_cast<std::int32_t>(run.model.spheres.size()), "not the id of a sphere");
    if (none || !modest || !view.IsKnown()) return;
    double nearest = std::numeric_limits<double>::infinity();
    for (const ModelSphere& sphere : run.model.spheres) {
        const double distance = PixelDistance(sphere, view, x, y);
        if (std::isfinite(distance)) nearest = std::min(nearest, distance);
    }
    if (nearest > 1e8) return;
    run.Require(id >= 0, "no sphere was found");
    const double found = PixelDistance(run.model.spheres[static_cast<std::size_t>(id)], view, x, y);
    // Each coordinate may be rounded to another pixel.
    run.Require(std::sqrt(found) <= std::sqrt(nearest) + 3,
                "sphere " + std::to_string(id) + " is at " + std::to_string(std::sqrt(found)) +
                    " pixels, the nearest one at " + std::to_string(std::sqrt(nearest)));
}

// ---- needles

std::int32_t SomeNeedleId(RandomRun& run) {
    if (!run.model.needles.empty() && run.random.Chance(0.6))
        return run.model.needles[run.random.Index(run.model.needles.size())].id;
    return run.random.Chance(0.8) ? run.random.Int(0, 12) : run.random.WildInt();
}

void SetMaxNumberOfNeedles(RandomRun& run) {
    std::int32_t limit = run.random.Chance(0.9) ? run.random.Int(0, 12) : run.random.WildInt();
    run.model.maxNeedles = std::max(limit, 0);
    while (std::ssize(run.model.needles) > run.model.maxNeedles) {
        run.model.Fire("NeedleDeleted", {static_cast<double>(run.model.needles.back().id)});
        run.model.needles.pop_back();
    }
    run.Call("SetMaxNumberOfNeedles", {limit});
}

void CreateNeedle(RandomRun& run) {
    const ModelNeedle needle{SomeNeedleId(run), SomePoint(run), SomePoint(run)};
    if (run.model.needles.size() > 30) return;
    const bool created = run.model.CreateNeedle(needle);
    run.Call("CreateNeedle",
             {needle.id, needle.pin[0], needle.pin[1], needle.pin[2], needle.head[0], needle.head[1], needle.head[2]},
             {.result = ToVariant(created)});
}

void CreateNeedles(RandomRun& run) {
    const auto number = static_cast<std::size_t>(run.random.Int(0, 9));
    std::vector<std::int32_t> ids(number);
    std::vector<float> pins(3 * number), heads(3 * number);
    for (std::int32_t& id : ids) id = run.random.Chance(0.3) ? SomeNeedleId(run) : run.random.Int(0, 60);
    for (auto* numbers : {&pins, &heads})
        for (float& coordinate : *numbers) coordinate = run.Coordinate();
    bool tried = static_cast<std::int32_t>(number) <= run.model.maxNeedles;
    for (const std::int32_t id : ids) tried = tried && run.model.FindNeedle(id) == nullptr;
    for (std::size_t i = 0; tried && i < number; ++i)
        run.model.CreateNeedle({ids[i],
                                {pins[3 * i], pins[3 * i + 1], pins[3 * i + 2]},
                                {heads[3 * i], heads[3 * i + 1], heads[3 * i + 2]}});
    run.Call("CreateNeedles",
             {static_cast<std::int32_t>(number), static_cast<void*>(ids.data()), static_cast<void*>(pins.data()),
              static_cast<void*>(heads.data())},
             {.result = ToVariant(tried)});
}

void DeleteNeedle(RandomRun& run) {
    const std::int32_t id = SomeNeedleId(run);
    const bool deleted = run.model.DeleteNeedle(id);
    run.Call("DeleteNeedle", {id}, {.result = ToVariant(deleted)});
}

void DeleteNeedles(RandomRun& run) {
    while (!run.model.needles.empty()) run.model.DeleteNeedle(run.model.needles.front().id);
    run.Call("DeleteNeedles", {});
}

void SelectNeedle(RandomRun& run) {
    const std::int32_t id = SomeNeedleId(run);
    if (ModelNeedle* const needle = run.model.FindNeedle(id)) {
        run.model.DeselectAll(id);
        needle->selected = true;
        run.model.Fire("NeedleSelected", {static_cast<double>(id)});
    }
    run.Call("SelectNeedle", {id});
}

void DeselectNeedle(RandomRun& run) {
    const std::int32_t id = SomeNeedleId(run);
    const bool deselected = run.model.Deselect(id);
    run.Call("DeselectNeedle", {id}, {.result = ToVariant(deselected)});
}

void DeselectAllNeedles(RandomRun& run) {
    run.model.DeselectAll();
    run.Call("DeselectAllNeedles", {});
}

void GetNumberOfNeedles(RandomRun& run) {
    run.Call("GetNumberOfNeedles", {}, {.result = static_cast<std::int32_t>(run.model.needles.size())});
}

void GetNeedle(RandomRun& run) {
    const std::int32_t id = SomeNeedleId(run);
    const ModelNeedle* const needle = run.model.FindNeedle(id);
    std::array<float, 6> ends{7, 7, 7, 7, 7, 7};
    run.CallWithOutputs("GetNeedle", {id}, ends, {.result = ToVariant(needle != nullptr)});
    if (needle == nullptr) return run.Require(ends[0] == 7 && ends[5] == 7, "the outputs were written");
    run.Require(IsSame(needle->pin, ends.data()) && IsSame(needle->head, ends.data() + 3), "another needle");
}

void GetNeedles(RandomRun& run) {
    const std::size_t count = run.model.needles.size();
    std::vector<std::int32_t> ids(count);
    std::vector<float> pins(3 * count), heads(3 * count);
    run.Call("GetNeedles",
             {static_cast<void*>(ids.data()), static_cast<void*>(pins.data()), static_cast<void*>(heads.data())});
    for (std::size_t i = 0; i < count; ++i) {
        const ModelNeedle& needle = run.model.needles[i];
        run.Require(ids[i] == needle.id, "another id or order");
        run.Require(IsSame(needle.pin, &pins[3 * i]) && IsSame(needle.head, &heads[3 * i]), "another needle");
    }
}

void SetNeedlePickingMode(RandomRun& run) {
    const std::int16_t enable = run.random.Chance(0.5) ? std::int16_t{0} : run.random.WildShort();
    run.model.needlePicking = enable != 0;
    if (enable == 0) run.model.DeselectAll();
    run.Call("SetNeedlePickingMode", {enable});
}

void SetNeedleDrawingMode(RandomRun& run) {
    const std::int16_t enable = run.random.WildShort();
    run.model.needleDrawing = enable != 0;
    run.Call("SetNeedleDrawingMode", {enable});
}

void GetNeedlePickingMode(RandomRun& run) {
    run.Call("GetNeedlePickingMode", {}, {.result = ToVariant(run.model.needlePicking)});
}

void GetNeedleDrawingMode(RandomRun& run) {
    run.Call("GetNeedleDrawingMode", {}, {.result = ToVariant(run.model.needleDrawing)});
}

void SetNeedleRenderParameters(RandomRun& run) {
    Random& random = run.random;
    const auto size = [&] { return random.Chance(0.8) ? random.Float(0, 12) : random.WildFloat(); };
    run.Call("SetNeedleRenderParameters",
             {size(), size(), random.WildInt(), size(), random.WildInt(), size(), random.WildInt(), random.WildInt()});
}

// ---- lines and free points

void SetLine3DDrawingMode(RandomRun& run) {
    const std::int16_t enable = run.random.WildShort();
    run.model.lineDrawing = enable != 0;
    run.Call("SetLine3DDrawingMode", {enable});
}

void GetLine3DDrawingMode(RandomRun& run) {
    run.Call("GetLine3DDrawingMode", {}, {.result = ToVariant(run.model.lineDrawing)});
}

void CreateLine3D(RandomRun& run) {
    if (run.model.lines.size() > 40) return;
    const std::int32_t id = run.random.Chance(0.8) ? run.random.Int(-5, 60) : run.random.WildInt();
    const std::int32_t number = run.random.Int(0, 8);
    std::vector<float> coordinates(3 * static_cast<std::size_t>(number));
    for (float& coordinate : coordinates) coordinate = run.Coordinate();
    const bool created = run.model.lines.insert(id).second;
    run.Call("CreateLine3D", {id, number, static_cast<void*>(number == 0 ? nullptr : coordinates.data())},
             {.result = ToVariant(created)});
}

void ImportPoints(RandomRun& run) {
    if (run.model.points.size() > 12) return;
    const std::int32_t number = run.random.Int(0, 20);
    const auto count = static_cast<std::size_t>(number);
    std::vector<float> xyz(3 * count), colors(3 * count);
    for (float& coordinate : xyz) coordinate = run.Coordinate();
    for (float& channel : colors) channel = run.random.Chance(0.95) ? run.random.Float(0, 1) : run.random.WildFloat();
    std::int32_t id = 0;
    while (run.model.points.contains(id)) ++id;
    constexpr float kMax = std::numeric_limits<float>::max();
    ModelPoints& set = run.model.points[id];
    set.box = {{kMax, kMax, kMax}, {-kMax, -kMax, -kMax}};
    for (std::size_t i = 0; i < count; ++i) {
        const float* const p = &xyz[3 * i];
        if (!std::isfinite(p[0]) || !std::isfinite(p[1]) || !std::isfinite(p[2])) continue;
        set.hasBox = true;
        for (std::size_t axis = 0; axis < 3; ++axis) {
            set.box.min[axis] = std::min(set.box.min[axis], p[axis]);
            set.box.max[axis] = std::max(set.box.max[axis], p[axis]);
        }
    }
    const float alpha = run.random.Chance(0.8) ? run.random.Float(0, 1) : run.random.WildFloat();
    run.Call("ImportPoints",
             {number, static_cast<void*>(count == 0 ? nullptr : xyz.data()),
              static_cast<void*>(count == 0 ? nullptr : colors.data()), alpha},
             {.result = id});
}

std::int32_t SomePointsId(RandomRun& run) {
    return run.random.Chance(0.8) ? run.random.Int(0, 12) : run.random.WildInt();
}

void DeletePoints(RandomRun& run) {
    const std::int32_t id = SomePointsId(run);
    run.model.points.erase(id);
    run.Call("DeletePoints", {id});
}

void SetPointsVisibility(RandomRun& run) {
    const std::int32_t id = SomePointsId(run);
    const std::int16_t visible = run.random.Chance(0.6) ? kTrue : run.random.WildShort();
    if (const auto found = run.model.points.find(id); found != run.model.points.end())
        found->second.visible = visible != 0;
    run.Call("SetPointsVisibility", {id, visible});
}

// ---- overlays

void AddOverlayData(RandomRun& run) {
    if (run.model.overlays >= 6) return;
    Random& random = run.random;
    const bool modest = random.Chance(0.8);
    const std::int32_t width = modest ? random.Int(1, 9) : random.OneOf<std::int32_t>({-1, 0, 20000, INT32_MIN});
    const std::int32_t height = modest ? random.Int(1, 9) : random.OneOf<std::int32_t>({-5, 0, 1, 2});
    const auto pixels = static_cast<std::size_t>(std::max(width, 0)) * static_cast<std::size_t>(std::max(height, 0));
    std::vector<std::uint8_t> image(4 * pixels + 4, 0x80);
    std::vector<AutomationValue> arguments{static_cast<void*>(random.Chance(0.1) ? nullptr : image.data()), width,
                                           height};
    for (int i = 0; i < 6; ++i) arguments.emplace_back(random.Chance(0.8) ? random.Float(-1, 1) : random.WildFloat());
    run.Call("AddOverlayData", std::move(arguments), {.result = run.model.overlays++});
}

void SetOverlayVisibility(RandomRun& run) {
    if (run.model.overlays == 0) return;
    run.Call("SetOverlayVisibility", {run.random.Int(0, run.model.overlays - 1), run.random.WildInt()});
}

constexpr CallRow kRows[] = {{"SetPickMode", 0.5, SetPickMode},
                             {"AddPickPointSphere", 2, AddPickPointSphere},
                             {"MovePickPointSphere", 1, MovePickPointSphere},
                             {"RemovePickPointSphere", 1, RemovePickPointSphere},
                             {"ClearPickPointSpheres", 0.2, ClearPickPointSpheres},
                             {"GetNumberOfPickPointSpheres", 1, GetNumberOfPickPointSpheres},
                             {"GetPickPointSphereCoords", 1, GetPickPointSphereCoords},
                             {"FindNearestPickPointSphere", 2, FindNearestPickPointSphere},
                             {"SetMaxNumberOfNeedles", 0.5, SetMaxNumberOfNeedles},
                             {"CreateNeedle", 2, CreateNeedle},
                             {"CreateNeedles", 1, CreateNeedles},
                             {"DeleteNeedle", 1, DeleteNeedle},
                             {"DeleteNeedles", 0.2, DeleteNeedles},
                             {"SelectNeedle", 2, SelectNeedle},
                             {"DeselectNeedle", 1, DeselectNeedle},
                             {"DeselectAllNeedles", 0.5, DeselectAllNeedles},
                             {"GetNumberOfNeedles", 1, GetNumberOfNeedles},
                             {"GetNeedle", 1, GetNeedle},
                             {"GetNeedles", 1, GetNeedles},
                             {"SetNeedlePickingMode", 0.5, SetNeedlePickingMode},
                             {"SetNeedleDrawingMode", 0.5, SetNeedleDrawingMode},
                             {"GetNeedlePickingMode", 0.5, GetNeedlePickingMode},
                             {"GetNeedleDrawingMode", 0.5, GetNeedleDrawingMode},
                             {"SetNeedleRenderParameters", 0.5, SetNeedleRenderParameters},
                             {"SetLine3DDrawingMode", 0.5, SetLine3DDrawingMode},
                             {"GetLine3DDrawingMode", 0.5, GetLine3DDrawingMode},
                             {"CreateLine3D", 1, CreateLine3D},
                             {"ImportPoints", 1, ImportPoints},
                             {"DeletePoints", 1, DeletePoints},
                             {"SetPointsVisibility", 1, SetPointsVisibility},
                             {"AddOverlayData", 0.3, AddOverlayData},
                             {"SetOverlayVisibility", 0.5, SetOverlayVisibility}};

}  // namespace

std::span<const CallRow> MarkerCalls() { return kRows; }
