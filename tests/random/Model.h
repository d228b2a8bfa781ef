// What a host knows of a viewer from the calls that it has made and from the public documents: the state that getters
// return, and the events that the calls fire. The scene itself is random/SceneModel.h.
#pragma once
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <deque>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "random/SceneModel.h"

/// An event that must come. An argument that is not a number may be anything.
struct ExpectedEvent {
    std::string name;
    std::vector<double> arguments;
};
inline constexpr double kAnything = std::numeric_limits<double>::quiet_NaN();

struct ModelSphere {
    std::array<float, 3> center{};
};

struct ModelNeedle {
    std::int32_t id = 0;
    std::array<float, 3> pin{}, head{};
    bool selected = false;
};

struct ModelPoints {
    ModelBox box;
    bool hasBox = false;  ///< some point is finite
    bool visible = true;
};

/// An alignment that runs, or that was left open when the next one was started.
struct ModelDialog {
    int mode = 0;  ///< 6 by hand, 7 by points
    std::vector<std::pair<std::weak_ptr<ModelObject>, std::uint32_t>> savedColors;
};

enum class Known { No, Yes, Open };

struct Model {
    // ---- what the viewer is
    bool hasPicture = true;
    std::vector<ExpectedEvent> events;  ///< of the call that is being made

    // ---- scene
    std::vector<ObjectPtr> objects;
    std::vector<std::vector<ObjectPtr>> undo;
    std::vector<std::weak_ptr<ModelObject>> selection, variable;
    std::vector<std::pair<std::int32_t, ObjectPtr>> staged;
    bool importing = false;
    std::set<std::int32_t> lines;

    // ---- markers
    std::vector<ModelSphere> spheres;
    std::vector<ModelNeedle> needles;
    std::int32_t maxNeedles = 8;
    std::map<std::int32_t, ModelPoints> points;
    std::int32_t overlays = 0;

    // ---- view and clip plane
    ModelView view;
    Point planeCenter{0, 0, 10}, planeNormal{0, 0, 1};
    bool planeKnown = true, planeActive = false, planeVisible = false;
    std::uint64_t planeVersion = 0;  ///< another number for another plane

    // ---- interaction
    int mode = 0;  ///< 0 idle, 4 polygon, 10 freehand, 6 and 7 alignments
    std::uint32_t cutKind = 0;
    std::uint64_t cutCount = 0;
    bool lassoTextures = false;
    std::optional<ModelLasso> session;  ///< a freehand lasso with its points so far
    std::vector<std::array<double, 2>> corners;
    bool plainCorners = true;  ///< no change of the size has moved them
    bool plainColors = true;
    std::deque<ModelDialog> dialogs;
    bool currentDialog = false;  ///< the last one has the input
    Known animation = Known::No;
    float animationSpeed = 0.2f;
    double turned = 0;  ///< seconds since the start of the turntable; its clock runs in some steps only
    bool spaceStarts = false;

    // ---- settings
    std::int16_t pickMode = 0, skip = 1, igd = 0, allowMouse = 1, flip = 0;
    std::int32_t crossColor = 0xFFFFFF;
    bool shadows = false, lineDrawing = false, needlePicking = false, needleDrawing = false, tracing = false;
    bool allowEmpty = false, blocked = false;
    float confidence = 0;
    std::wstring scanPath;
    std::int32_t drawMosaic = 0, drawMode = 3, moveReduced = 0;

    void Fire(std::string name, std::vector<double> arguments = {}) {
        events.push_back({std::move(name), std::move(arguments)});
    }
    [[nodiscard]] ObjectPtr ObjectAt(std::int16_t index) const {
        const bool isIndex = index >= 0 && static_cast<std::size_t>(index) < objects.size();
        return isIndex ? objects[static_cast<std::size_t>(index)] : nullptr;
    }
    [[nodiscard]] std::int16_t ObjectCount() const { return static_cast<std::int16_t>(objects.size()); }

    // ---- needles
    ModelNeedle* FindNeedle(std::int32_t id) {
        const auto found = std::ranges::find(needles, id, &ModelNeedle::id);
        return found == needles.end() ? nullptr : &*found;
    }
    bool Deselect(std::int32_t id);
    void DeselectAll(std::optional<std::int32_t> but = std::nullopt);
    bool CreateNeedle(const ModelNeedle& needle);
    bool DeleteNeedle(std::int32_t id);

    // ---- view
    /// Box of what a fit shows; empty when it is not known.
    [[nodiscard]] std::optional<ModelBox> SceneBox() const;
    void SlidePlaneTo(const Point& point);
    void Fit();
    void ClearData();

    /// A frame of a turntable with a speed that is no number, infinite or negative may end it, or turn the view by what
    /// is no number.
    [[nodiscard]] bool TurnsAnyhow() const {
        const bool isSteady = !std::signbit(animationSpeed) && std::isfinite(animationSpeed);
        return animation != Known::No && !isSteady;
    }

    // ---- interaction
    [[nodiscard]] bool HasLasso() const { return mode == 4 || mode == 10; }
    [[nodiscard]] int RestingMode() const { return currentDialog ? dialogs.back().mode : 0; }
    void OpenDialog(int dialogMode);
    void CloseDialog();
    void StartLasso(std::int16_t segmentationMode);
    /// Without a cut. The event is fired.
    void AbandonLasso();
    void LeaveLasso();
};
