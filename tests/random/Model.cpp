#include "random/Model.h"

#include <cmath>

namespace {

constexpr double kLargest = 1e15;  // the square of a larger box is no float

bool IsModest(const ModelBox& box) {
    const auto isModest = [](float value) { return std::abs(value) < kLargest; };
    return std::ranges::all_of(box.min, isModest) && std::ranges::all_of(box.max, isModest);
}

void Merge(ModelBox& box, const ModelBox& other) {
    for (std::size_t axis = 0; axis < 3; ++axis) {
        box.min[axis] = std::min(box.min[axis], other.min[axis]);
        box.max[axis] = std::max(box.max[axis], other.max[axis]);
    }
}

std::uint32_t Dimmed(std::uint32_t color) {
    std::uint32_t dimmed = 0;
    for (const int shift : {0, 8, 16}) dimmed |= ((color >> shift & 0xFF) / 3) << shift;
    return dimmed;
}

}  // namespace

// ---- needles

bool Model::Deselect(std::int32_t id) {
    ModelNeedle* const needle = FindNeedle(id);
    if (needle == nullptr || !needle->selected) return false;
    needle->selected = false;
    Fire("NeedleDeselected", {static_cast<double>(id)});
    return true;
}

void Model::DeselectAll(std::optional<std::int32_t> but) {
    for (const ModelNeedle& needle : needles)
        if (needle.selected && needle.id != but) Deselect(needle.id);
}

bool Model::CreateNeedle(const ModelNeedle& needle) {
    if (std::ssize(needles) >= maxNeedles || FindNeedle(needle.id) != nullptr) return false;
    needles.push_back(needle);
    Fire("NeedleCreated", {static_cast<double>(needle.id)});
    return true;
}

bool Model::DeleteNeedle(std::int32_t id) {
    if (FindNeedle(id) == nullptr) return false;
    Deselect(id);
    std::erase_if(needles, [id](const ModelNeedle& needle) { return needle.id == id; });
    Fire("NeedleDeleted", {static_cast<double>(id)});
    return true;
}

// ---- view

std::optional<ModelBox> Model::SceneBox() const {
    constexpr float kMax = std::numeric_limits<float>::max();
    ModelBox box{{kMax, kMax, kMax}, {-kMax, -kMax, -kMax}};
    for (const ObjectPtr& object : objects) {
        if (object->visible == 0 || object->triangleCount == 0) continue;
        if (!object->boxKnown || !IsModest(object->box)) return std::nullopt;
        Merge(box, object->box);
    }
    for (const auto& [id, set] : points) {
        if (!set.visible || !set.hasBox) continue;
        if (!IsModest(set.box)) return std::nullopt;
        Merge(box, set.box);
    }
    for (std::size_t axis = 0; axis < 3; ++axis)
        if (box.min[axis] > box.max[axis]) return ModelBox{{-50, -50, -50}, {50, 50, 50}};
    return box;
}

void Model::SlidePlaneTo(const Point& point) {
    if (planeKnown) planeCenter = point - Dot(point - planeCenter, planeNormal) * planeNormal;
    ++planeVersion;
}

void Model::Fit() {
    view.zoom = view.defaultZoom;
    view.zoomKnown = std::isfinite(view.zoom) && view.zoom > 1e-3 && view.zoom < 1e3;
    const auto box = SceneBox();
    view.centerKnown = view.sceneSizeKnown = box.has_value();
    ++planeVersion;
    if (!box) {
        planeKnown = false;
        return;
    }
    Point extent{};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        view.center[axis] = (static_cast<double>(box->min[axis]) + box->max[axis]) / 2;
        extent[axis] = static_cast<double>(box->max[axis]) - box->min[axis];
    }
    view.sceneSize = std::sqrt(Dot(extent, extent));
    SlidePlaneTo(view.center);
}

void Model::ClearData() {
    objects.clear();
    undo.clear();
    lines.clear();
    session.reset();
    lassoTextures = false;
    view.right = {1, 0, 0}, view.up = {0, 1, 0}, view.toViewer = {0, 0, 1};
    view.axesKnown = true;
    Fit();
}

// ---- interaction

void Model::OpenDialog(int dialogMode) {
    ModelDialog dialog{dialogMode, {}};
    std::set<const ModelObject*> moving;
    for (const auto& entry : variable)
        if (const ObjectPtr object = entry.lock()) moving.insert(object.get());
    for (const ObjectPtr& object : objects) {
        if (moving.contains(object.get())) continue;
        dialog.savedColors.emplace_back(object, object->color);
        object->color = ColorAfterStore(Dimmed(object->color));
    }
    dialogs.push_back(std::move(dialog));
    currentDialog = true;
    mode = dialogMode;
}

// The colours are back when the event is fired.
void Model::CloseDialog() {
    for (const auto& [entry, color] : dialogs.back().savedColors)
        if (const ObjectPtr object = entry.lock()) object->color = ColorAfterStore(color);
    dialogs.pop_back();
    if (currentDialog && !HasLasso()) mode = 0;
    currentDialog = false;
    Fire("AlignmentDone");
}

void Model::StartLasso(std::int16_t segmentationMode) {
    constexpr std::uint32_t kKinds[] = {1, 0, 2};
    spaceStarts = false;
    corners.clear();
    plainCorners = true;
    if (segmentationMode < 0 || segmentationMode > 5) return;
    cutKind = kKinds[segmentationMode % 3];
    mode = segmentationMode < 3 ? 4 : 10;
    if (mode == 10) lassoTextures = hasPicture;
}

void Model::LeaveLasso() {
    mode = RestingMode();
    spaceStarts = true;
}

void Model::AbandonLasso() {
    session.reset();
    LeaveLasso();
    Fire("SegmentationDone", {-1});
}
