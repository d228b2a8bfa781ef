// Random calls on the view, the clip plane and the turntable.
#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>

#include "random/RandomRun.h"

namespace {

constexpr std::int16_t kTrue = -1, kFalse = 0;
constexpr double kTolerance = 1e-4;

Point RotatedAboutZ(const Point& p, double angle) {
    const double c = std::cos(angle), s = std::sin(angle);
    return {c * p[0] - s * p[1], s * p[0] + c * p[1], p[2]};
}

/// Right and up of a view in any direction.
std::array<Point, 2> SomeFrame(Random& random) {
    const double a = random.Fraction() * 6.28, b = random.Fraction() * 6.28;
    const Point right{std::cos(a), std::sin(a), 0}, side{-std::sin(a), std::cos(a), 0};
    return {right, std::cos(b) * side + std::sin(b) * Point{0, 0, 1}};
}

void SetViewMode(RandomRun& run) {
    constexpr double s = std::numbers::sqrt2 / 2;
    constexpr Point kRight[] = {{-1, 0, 0}, {1, 0, 0}, {0, 1, 0},  {0, -1, 0},
                                {1, 0, 0},  {1, 0, 0}, {-s, s, 0}, {-1, 0, 0}};
    constexpr Point kUp[] = {{0, 0, 1}, {0, 0, 1},  {0, 0, 1},       {0, 0, 1},
                             {0, 1, 0}, {0, -1, 0}, {-0.5, -0.5, s}, {0, 1, 0}};
    const std::int16_t mode = run.random.Chance(0.8) ? run.random.Short(0, 7) : run.random.WildShort();
    ModelView& view = run.model.view;
    if (mode >= 0 && mode <= 7) {
        view.right = kRight[mode], view.up = kUp[mode];
        view.toViewer = Cross(view.right, view.up);
        view.axesKnown = true;
    }
    run.Call("SetViewMode", {mode});
}

/// Sets the view to the arguments, when they are accepted.
void AcceptView(Model& model, const Point& right, const Point& up, const Point& center, float zoom) {
    ModelView& view = model.view;
    view.right = right, view.up = up, view.toViewer = Cross(right, up);
    view.axesKnown = true;
    view.center = center;
    view.centerKnown = true;
    for (const double coordinate : center) view.centerKnown = view.centerKnown && std::abs(coordinate) < 1e5;
    view.zoom = view.defaultZoom / std::clamp(static_cast<double>(zoom), static_cast<double>(0.1f), 10.0);
    view.zoomKnown = std::isfinite(view.zoom) && view.zoom > 1e-3 && view.zoom < 1e3;
    view.Snap();
    if (model.tracing) model.Fire("ViewDirectionChanged", {view.toViewer[0], view.toViewer[1], view.toViewer[2]});
}

void SetViewParams(RandomRun& run) {
    Random& random = run.random;
    auto [right, up] = SomeFrame(random);
    std::array<float, 3> center{run.Coordinate(), run.Coordinate(), run.Coordinate()};
    const float zoom = random.Chance(0.9) ? random.Float(0.05f, 12.0f) : random.WildFloat();
    bool accepted = true;
    if (random.Chance(0.2)) {
        const double factor = random.OneOf<double>({0, 0.9, 1.1, 1e20, NAN, INFINITY});
        (random.Chance(0.5) ? right : up)[random.Index(3)] += factor + 0.5;
        accepted = std::abs(Dot(right, right) - 1) <= 0.01 && std::abs(Dot(up, up) - 1) <= 0.01 &&
                   std::abs(Dot(right, up)) <= 0.01;
    }
    std::vector<AutomationValue> arguments;
    for (const Point& axis : {right, up})
        for (const double coordinate : axis) arguments.emplace_back(static_cast<float>(coordinate));
    for (const float coordinate : center) arguments.emplace_back(coordinate);
    arguments.emplace_back(zoom);
    arguments.emplace_back(random.WildShort());
    if (accepted) AcceptView(run.model, right, up, {center[0], center[1], center[2]}, zoom);
    run.Call("SetViewParams", std::move(arguments), {.result = accepted ? kTrue : kFalse});
}

void GetViewParams(RandomRun& run) {
    std::array<float, 10> values{};
    run.CallWithOutputs("GetViewParams", {}, values);
    const ModelView& view = run.model.view;
    for (std::size_t i = 0; i < 3; ++i) {
        if (view.axesKnown) {
            run.RequireNear(view.right[i], static_cast<double>(values[i]), kTolerance, "the right direction");
            run.RequireNear(view.up[i], static_cast<double>(values[3 + i]), kTolerance, "the up direction");
        }
        const double center = view.center[i];
        if (view.centerKnown)
            run.RequireNear(center, static_cast<double>(values[6 + i]), kTolerance * (1 + std::abs(center)),
                            "the centre");
    }
    if (view.zoomKnown)
        run.RequireNear(1 / view.zoom, static_cast<double>(values[9]), kTolerance * (1 + 1 / view.zoom), "the zoom");
}

void GetViewDirection(RandomRun& run) {
    std::array<float, 6> values{};
    values.fill(7);
    bool none = !run.model.hasPicture;
    bool hasVertices = false;
    for (const ObjectPtr& object : run.model.objects) hasVertices = hasVertices || object->vertexCount != 0;
    none = none || !hasVertices;
    const AutomationValue result = run.CallWithOutputs(
        "GetViewDirection", {}, values, {.result = none ? std::optional<AutomationValue>(kFalse) : std::nullopt});
    if (result == AutomationValue(kFalse))
        return run.Require(values[0] == 7 && values[5] == 7, "the outputs were written");
    for (std::size_t i = 0; run.model.view.axesKnown && i < 3; ++i)
        run.RequireNear(run.model.view.toViewer[i], static_cast<double>(values[3 + i]), kTolerance, "the direction");
}

void CenterView(RandomRun& run) {
    run.model.Fit();
    run.Call("CenterView", {});
}

void SetDefaultZoomFactor(RandomRun& run) {
    const float zoom = run.random.Chance(0.9) ? run.random.Float(0.3f, 3.0f) : run.random.WildFloat();
    run.model.view.defaultZoom = zoom;
    run.Call("SetDefaultZoomFactor", {zoom});
}

void TracingMode(RandomRun& run) {
    const std::int16_t on = run.random.Chance(0.5) ? std::int16_t{1} : run.random.WildShort();
    run.model.tracing = on == 1;
    run.Call("TracingMode", {on});
}

// ---- clip plane

void SetClipPlane(RandomRun& run) {
    std::array<float, 6> values{};
    for (float& value : values) value = run.Coordinate();
    Model& model = run.model;
    const Point normal{values[3], values[4], values[5]};
    const double length = std::sqrt(Dot(normal, normal));
    model.planeCenter = {values[0], values[1], values[2]};
    model.planeNormal = (1 / length) * normal;
    // A normal along -Z, and numbers beyond those of scenes, are for other tests.
    model.planeKnown = length > 1e-3 && length < 1e5 && model.planeNormal[2] > -0.9999;
    for (const double coordinate : model.planeCenter) model.planeKnown = model.planeKnown && std::abs(coordinate) < 1e5;
    ++model.planeVersion;
    std::vector<AutomationValue> arguments(values.begin(), values.end());
    run.Call("SetClipPlane", std::move(arguments));
}

std::array<float, 6> ReadPlane(RandomRun& run) {
    std::array<float, 6> values{};
    run.CallWithOutputs("GetClipPlane", {}, values);
    return values;
}

void GetClipPlane(RandomRun& run) {
    const std::array<float, 6> values = ReadPlane(run);
    const Model& model = run.model;
    for (std::size_t i = 0; model.planeKnown && i < 3; ++i) {
        const double center = model.planeCenter[i];
        run.RequireNear(center, static_cast<double>(values[i]), 1e-3 * (1 + std::abs(center)), "the centre");
        run.RequireNear(model.planeNormal[i], static_cast<double>(values[3 + i]), kTolerance, "the normal");
    }
}

/// Whether an object surely has a vertex that counts for the height: one that is not finite does not.
bool HasFinitePoint(const ObjectPtr& object) {
    if (object->triangleCount > 0 && object->boxKnown) return true;
    return object->pointsKnown && std::ranges::any_of(object->points, [](const Point& point) {
               return std::isfinite(point[0]) && std::isfinite(point[1]) && std::isfinite(point[2]);
           });
}

// Without the registry there is no estimate of the height.
void SetClipPlaneEnabled(RandomRun& run) {
    const std::int32_t display = run.random.Chance(0.6) ? run.random.Int(0, 1) : run.random.WildInt();
    Model& model = run.model;
    model.planeActive = true;
    model.planeVisible = (display & 0xFF) != 0;
    ++model.planeVersion;
    if (!model.planeVisible) {
        run.Call("SetClipPlaneEnabled", {display});
        return;
    }
    if (run.registryStarts == 0 && std::ranges::any_of(model.objects, HasFinitePoint)) {
        run.Call("SetClipPlaneEnabled", {display}, {.failure = Expected::Always});
        return;
    }
    // What the components cannot estimate, such as points beyond all numbers, is refused by an exception.
    run.Call("SetClipPlaneEnabled", {display}, {.failure = Expected::Maybe});
    const auto box = model.SceneBox();
    const std::array<float, 6> plane = ReadPlane(run);
    model.planeKnown = std::isfinite(plane[2]) && std::abs(plane[2]) < 1e5f;
    model.planeKnown = model.planeKnown && box.has_value() && plane[3] == 0 && plane[4] == 0 && plane[5] == 1;
    if (!model.planeKnown) return;
    model.planeNormal = {0, 0, 1};
    for (std::size_t i = 0; i < 3; ++i) model.planeCenter[i] = static_cast<double>(plane[i]);
}

void SetClipPlaneDisabled(RandomRun& run) {
    run.model.planeActive = run.model.planeVisible = false;
    run.Call("SetClipPlaneDisabled", {});
}

void SetClipPlaneColor(RandomRun& run) {
    run.Call("SetClipPlaneColor", {run.random.WildInt(), run.random.WildInt(), run.random.WildInt()});
}

void DisplayClipPlanePartCloseToData(RandomRun& run) {
    const auto box = run.model.SceneBox();
    Point middle{};
    for (std::size_t i = 0; box && i < 3; ++i)
        middle[i] = (static_cast<double>(box->min[i]) + static_cast<double>(box->max[i])) / 2;
    run.model.planeKnown = run.model.planeKnown && box.has_value();
    run.model.SlidePlaneTo(middle);
    run.Call("DisplayClipPlanePartCloseToData", {});
}

// ---- turntable. The clock runs in the steps below only.

float SomeSpeed(Random& random) { return random.Chance(0.8) ? random.Float(0.1f, 2.0f) : random.WildFloat(); }

void NoteSpeed(Model& model, float speed) {
    model.animationSpeed = speed;
    const bool mayEnd = model.animation == Known::Yes && model.turned * static_cast<double>(speed) > 0.9;
    if (model.TurnsAnyhow() || mayEnd) model.animation = Known::Open;
}

void StartAnimation(RandomRun& run) {
    const float speed = SomeSpeed(run.random);
    if (run.model.animation == Known::No) run.model.turned = 0, run.model.animation = Known::Yes;
    NoteSpeed(run.model, speed);
    run.Call("StartAnimation", {speed});
}

void SetAnimationSpeed(RandomRun& run) {
    const float speed = SomeSpeed(run.random);
    NoteSpeed(run.model, speed);
    run.Call("SetAnimationSpeed", {speed});
}

void StopAnimation(RandomRun& run) {
    run.model.animation = Known::No;
    run.Call("StopAnimation", {});
}

void IsAnimationRunning(RandomRun& run) {
    Expected expected;
    if (run.model.animation != Known::Open) expected.result = run.model.animation == Known::Yes ? kTrue : kFalse;
    const AutomationValue result = run.Call("IsAnimationRunning", {}, expected);
    if (result == AutomationValue(kFalse)) run.model.animation = Known::No;
}

void ToggleAnimationOnSpacebar(RandomRun& run) {
    const std::int32_t enabled = run.random.WildInt();
    run.model.spaceStarts = (enabled & 0xFF) != 0;
    run.Call("ToggleAnimationOnSpacebar", {enabled});
}

/// Lets time pass, to the end of the revolution or a part of it, and draws a frame. Frames that are due come before.
void TurnFor(RandomRun& run) {
    Model& model = run.model;
    const bool draws = model.hasPicture && !model.blocked && run.IsAlive();
    const double speed = static_cast<double>(model.animationSpeed);
    if (model.animation != Known::Yes || !draws || !(speed > 0.01 && speed < 100)) return;
    run.Act("the clock advances by a tenth of a revolution or by more than one", [&] {
        run.Ask("PerformRefresh", {});
        run.Ask("StopAnimation", {});
        run.Ask("StartAnimation", {model.animationSpeed});
        const bool ends = run.random.Chance(0.5);
        AdvanceFakeCounter((ends ? 1.5 : 0.1) / speed);
        run.Ask("PerformRefresh", {});
        const bool runs = run.Ask("IsAnimationRunning", {}) == AutomationValue(kTrue);
        run.Require(runs == !ends, "the turntable ends at another time");
        ModelView& view = model.view;
        if (ends) model.animation = Known::No;
        model.turned = ends ? 0 : 0.1 / speed;
        for (Point* axis : {&view.right, &view.up, &view.toViewer})
            if (!ends) *axis = RotatedAboutZ(*axis, 0.2 * std::numbers::pi);
        if (!ends) view.Snap();
    });
}

constexpr CallRow kRows[] = {{"SetViewMode", 2, SetViewMode},
                             {"SetViewParams", 2, SetViewParams},
                             {"GetViewParams", 1, GetViewParams},
                             {"GetViewDirection", 1, GetViewDirection},
                             {"CenterView", 2, CenterView},
                             {"SetDefaultZoomFactor", 0.5, SetDefaultZoomFactor},
                             {"TracingMode", 0.5, TracingMode},
                             {"SetClipPlane", 1, SetClipPlane},
                             {"GetClipPlane", 1, GetClipPlane},
                             {"SetClipPlaneEnabled", 0.7, SetClipPlaneEnabled},
                             {"SetClipPlaneDisabled", 0.5, SetClipPlaneDisabled},
                             {"SetClipPlaneColor", 0.5, SetClipPlaneColor},
                             {"DisplayClipPlanePartCloseToData", 0.5, DisplayClipPlanePartCloseToData},
                             {"StartAnimation", 0.7, StartAnimation},
                             {"SetAnimationSpeed", 0.5, SetAnimationSpeed},
                             {"StopAnimation", 0.3, StopAnimation},
                             {"IsAnimationRunning", 1, IsAnimationRunning},
                             {"ToggleAnimationOnSpacebar", 0.5, ToggleAnimationOnSpacebar},
                             {"(a turn of the turntable)", 0.5, TurnFor}};

}  // namespace

std::span<const CallRow> ViewCalls() { return kRows; }
