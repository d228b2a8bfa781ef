// Random calls on the object list: colours, boxes, transforms, deletion, selection, undo steps, cut masks.
#include <array>
#include <cmath>
#include <set>

#include "KV_ScenePane/CutMask.h"
#include "random/RandomRun.h"

namespace {

constexpr std::int16_t kTrue = -1, kFalse = 0;

void SetSize(RandomRun& run) {
    const bool modest = run.random.Chance(0.9);
    const std::int16_t width = modest ? run.random.Short(16, 128) : run.random.OneOf<std::int16_t>({-1, 0, 1, 2, 1500});
    const std::int16_t height =
        modest ? run.random.Short(16, 128) : run.random.OneOf<std::int16_t>({-32768, 0, 1, 3, 40});
    ModelView& view = run.model.view;
    view.sizeKnown = modest && run.model.hasPicture;
    view.width = width, view.height = height;
    // Corners of a lasso are fractions of the window: where they are now is not predicted.
    if (!run.model.corners.empty()) run.model.plainCorners = false;
    if (run.model.session) run.model.session->plain = false;
    run.Call("SetSize", {width, height});
}

void ClearData(RandomRun& run) {
    run.model.ClearData();
    run.Call("ClearData", {});
}

void ClearUndoStack(RandomRun& run) {
    run.model.undo.clear();
    run.Call("ClearUndoStack", {});
}

void GetNumObjects(RandomRun& run) { run.Call("GetNumObjects", {}, {.result = run.model.ObjectCount()}); }

void GetObjectColor(RandomRun& run) {
    const std::int16_t index = run.AnyObjectIndex();
    const ObjectPtr object = run.model.ObjectAt(index);
    const std::int32_t color = object == nullptr ? -1 : static_cast<std::int32_t>(object->color);
    run.Call("GetObjectColor", {index}, {.result = color});
}

void SetObjectColor(RandomRun& run) {
    const std::int16_t index = run.AnyObjectIndex();
    const ObjectPtr object = run.model.ObjectAt(index);
    std::int32_t color = run.random.WildInt();
    if (object != nullptr && run.random.Chance(0.2)) color = static_cast<std::int32_t>(object->color);
    if (object != nullptr && object->color != static_cast<std::uint32_t>(color))
        object->color = ColorAfterStore(static_cast<std::uint32_t>(color));
    run.Call("SetObjectColor", {index, color});
}

void SetObjectVisibility(RandomRun& run) {
    const std::int16_t index = run.AnyObjectIndex();
    const std::int16_t visible = run.random.Chance(0.5) ? std::int16_t{1} : run.random.WildShort();
    if (const ObjectPtr object = run.model.ObjectAt(index)) object->visible = visible;
    run.Call("SetObjectVisibility", {index, visible});
}

void GetMeshDataSize(RandomRun& run) {
    const auto index = run.SomeObject();
    if (!index) return;
    std::array<std::int32_t, 2> counts{-7, -7};
    run.CallWithOutputs("GetMeshDataSize", {*index}, counts);
    const ModelObject& object = *run.model.ObjectAt(*index);
    run.Require(counts[0] == object.vertexCount && counts[1] == object.triangleCount, "another number of vertices");
}

void GetObjectCenter(RandomRun& run) {
    const std::int16_t index = run.AnyObjectIndex();
    const ObjectPtr object = run.model.ObjectAt(index);
    std::array<float, 3> center{7, 7, 7};
    run.CallWithOutputs("GetObjectCenter", {index}, center, {.result = object == nullptr ? kFalse : kTrue});
    if (object == nullptr) run.Require(center == std::array<float, 3>{7, 7, 7}, "the outputs were written");
    if (object == nullptr || !object->pointsKnown || object->vertexCount == 0) return;
    Point mean{};
    double largest = 0;
    for (const Point& point : object->points) {
        mean = mean + point;
        for (const double coordinate : point) largest = std::max(largest, std::abs(coordinate));
    }
    mean = (1.0 / object->vertexCount) * mean;
    for (std::size_t axis = 0; axis < 3; ++axis)
        run.RequireNear(mean[axis], static_cast<double>(center[axis]), 1e-3 + 1e-3 * largest, "the centre");
}

void GetObjectBoundingBox(RandomRun& run) {
    const std::int16_t index = run.AnyObjectIndex();
    const ObjectPtr object = run.model.ObjectAt(index);
    std::array<float, 6> box{};
    run.CallWithOutputs("GetObjectBoundingBox", {index}, box);
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const float min = box[2 * axis], max = box[2 * axis + 1];
        if (object == nullptr) run.Require(min == 1.0f && max == -1.0f, "the box of no object");
        if (object == nullptr || !object->boxKnown) continue;
        run.Require(min == object->box.min[axis] && max == object->box.max[axis], "another box");
    }
}

void GetTrafoOfScan(RandomRun& run) {
    const std::int16_t index = run.AnyObjectIndex();
    const ObjectPtr object = run.model.ObjectAt(index);
    std::array<float, 16> rows{};
    rows.fill(7);
    const std::int16_t result = object == nullptr ? std::int16_t{-1} : std::int16_t{0};
    run.CallWithOutputs("GetTrafoOfScan", {index}, rows, {.result = result});
    if (object == nullptr) run.Require(rows[0] == 7 && rows[15] == 7, "the outputs were written");
    if (object == nullptr || !object->transform.known) return;
    const ModelTransform& transform = object->transform;
    for (std::size_t row = 0; row < 3; ++row) {
        const double t = transform.translation[row];
        for (std::size_t column = 0; column < 3; ++column)
            run.RequireNear(transform.rows[row][column], static_cast<double>(rows[4 * row + column]), 1e-5,
                            "the rotation");
        run.RequireNear(t, static_cast<double>(rows[4 * row + 3]), 1e-6 * (1 + std::abs(t)), "the translation");
    }
    run.Require(rows[12] == 0 && rows[13] == 0 && rows[14] == 0 && rows[15] == 1, "the last row");
}

/// A rotation about a main axis with a translation; seldom anything.
std::array<float, 16> SomeTransform(Random& random) {
    std::array<float, 16> rows{};
    if (random.Chance(0.05)) {
        for (float& number : rows) number = random.WildFloat();
        return rows;
    }
    const float angle = random.Float(-3, 3), c = std::cos(angle), s = std::sin(angle);
    const float scale = random.Chance(0.1) ? 2.0f : 1.0f;  // is lost: only the rotation counts
    const std::size_t a = random.Index(3), b = (a + 1) % 3, axis = (a + 2) % 3;
    rows[5 * a] = rows[5 * b] = c * scale;
    rows[4 * a + b] = -s * scale, rows[4 * b + a] = s * scale;
    rows[5 * axis] = scale;
    for (std::size_t row = 0; row < 3; ++row) rows[4 * row + 3] = random.Float(-20, 20);
    for (std::size_t column = 12; column < 16; ++column) rows[column] = random.WildFloat();  // is ignored
    return rows;
}

void SetTrafoOfScan(RandomRun& run) {
    const std::int16_t index = run.AnyObjectIndex();
    const std::array<float, 16> rows = SomeTransform(run.random);
    const ObjectPtr object = run.model.ObjectAt(index);
    std::vector<AutomationValue> arguments{index};
    for (const float number : rows) arguments.emplace_back(number);
    const std::int16_t result = object == nullptr ? std::int16_t{-1} : std::int16_t{0};
    if (object != nullptr) {
        const ModelTransform next = ModelTransform::FromMatrix(rows);
        object->pointsKnown = object->pointsKnown && object->transform.known && next.known;
        for (Point& point : object->points) point = next.Apply(object->transform.Revert(point));
        object->pointsExact = false;
        object->transform = next;
        object->ComputeBox();
    }
    run.Call("SetTrafoOfScan", std::move(arguments), {.result = result});
    if (object != nullptr) run.AdoptObject(static_cast<std::size_t>(index));
}

void DeleteObject(RandomRun& run) {
    const std::int16_t index = run.AnyObjectIndex();
    if (run.model.ObjectAt(index) != nullptr) run.model.objects.erase(run.model.objects.begin() + index);
    run.Call("DeleteObject", {index});
}

void SetBlendObjectColors(RandomRun& run) {
    run.Call("SetBlendObjectColors", {run.AnyObjectIndex(), run.random.WildShort()});
}

void ResetSelection(RandomRun& run) {
    run.model.selection.clear();
    run.Call("ResetSelection", {});
}

void AddSelection(RandomRun& run) {
    const std::int16_t index = run.AnyObjectIndex();
    if (const ObjectPtr object = run.model.ObjectAt(index)) run.model.selection.emplace_back(object);
    run.Call("AddSelection", {index});
}

void ResetVariableObjects(RandomRun& run) {
    run.model.variable.clear();
    run.Call("ResetVariableObjects", {});
}

void AddVariableObject(RandomRun& run) {
    const std::int16_t index = run.AnyObjectIndex();
    if (const ObjectPtr object = run.model.ObjectAt(index)) run.model.variable.emplace_back(object);
    run.Call("AddVariableObject", {index});
}

void PerformUndo(RandomRun& run) {
    Model& model = run.model;
    if (!model.undo.empty()) {
        model.objects = std::move(model.undo.back());
        model.undo.pop_back();
    }
    run.Call("PerformUndo", {}, {.result = static_cast<std::int32_t>(model.undo.size())});
}

std::int32_t MaskCount(const Model& model) {
    std::set<std::uint64_t> masks;
    for (const ObjectPtr& object : model.objects) masks.insert(object->masks.begin(), object->masks.end());
    return static_cast<std::int32_t>(masks.size());
}

void GetCutMasks(RandomRun& run) {
    const std::int32_t there = MaskCount(run.model);
    const auto call = [&](void* count, void* masks, std::int16_t result) {
        run.Call("GetCutMasks", {count, masks}, {.result = result});
    };
    std::int32_t count = -7;
    call(&count, nullptr, kTrue);
    run.Require(count == there, "another number of masks");
    call(nullptr, nullptr, kFalse);
    count = run.random.Chance(0.5) ? there : run.random.WildInt();
    if (count > there || count < 0) return call(&count, &count, kFalse);  // nothing is written
    std::vector<const ACAD::CutMask*> masks(static_cast<std::size_t>(count) + 1, nullptr);
    call(&count, masks.data(), kTrue);
    for (std::size_t i = 0; i + 1 < masks.size(); ++i) {
        run.Require(masks[i] != nullptr && (i == 0 || masks[i - 1] < masks[i]), "the masks are not ascending");
        run.Require(masks[i]->m_nKind <= 2, "not a mask");
    }
    run.Require(masks.back() == nullptr, "one mask more was written");
}

void ClearCutMasks(RandomRun& run) {
    for (const ObjectPtr& object : run.model.objects) object->masks.clear();
    run.Call("ClearCutMasks", {});
}

/// What a save does with an object. Open when the plane may be the same by numbers.
Known SaveOf(ModelObject& object, const Model& model) {
    Known known = Known::Yes;
    if (object.masks.empty()) {
        if (!model.planeActive) return Known::No;
        // A plane that is not finite differs from itself.
        if (object.savedPlane == model.planeVersion && model.planeKnown) return Known::No;
        if (object.savedPlane) known = Known::Open;
    }
    if (!object.IsPcm()) return Known::No;
    object.masks.clear();
    if (model.planeActive) object.savedPlane = model.planeVersion;
    return known;
}

void SaveCuttingToPcms(RandomRun& run) {
    Known result = Known::No;
    for (const ObjectPtr& object : run.model.objects) {
        const Known one = SaveOf(*object, run.model);
        if (one == Known::Yes || result == Known::No) result = one;
    }
    Expected expected;
    if (result != Known::Open) expected.result = std::int16_t{result == Known::Yes ? std::int16_t{1} : kFalse};
    run.Call("SaveCuttingToPcms", {}, expected);
}

constexpr CallRow kRows[] = {{"SetSize", 0.4, SetSize},
                             {"ClearData", 0.3, ClearData},
                             {"ClearUndoStack", 0.3, ClearUndoStack},
                             {"GetNumObjects", 1, GetNumObjects},
                             {"GetObjectColor", 1, GetObjectColor},
                             {"SetObjectColor", 2, SetObjectColor},
                             {"SetObjectVisibility", 2, SetObjectVisibility},
                             {"GetMeshDataSize", 1, GetMeshDataSize},
                             {"GetObjectCenter", 1, GetObjectCenter},
                             {"GetObjectBoundingBox", 1, GetObjectBoundingBox},
                             {"GetTrafoOfScan", 1, GetTrafoOfScan},
                             {"SetTrafoOfScan", 1, SetTrafoOfScan},
                             {"DeleteObject", 2, DeleteObject},
                             {"SetBlendObjectColors", 1, SetBlendObjectColors},
                             {"ResetSelection", 0.5, ResetSelection},
                             {"AddSelection", 1, AddSelection},
                             {"ResetVariableObjects", 0.5, ResetVariableObjects},
                             {"AddVariableObject", 1, AddVariableObject},
                             {"PerformUndo", 2, PerformUndo},
                             {"GetCutMasks", 1, GetCutMasks},
                             {"ClearCutMasks", 0.3, ClearCutMasks},
                             {"SaveCuttingToPcms", 0.5, SaveCuttingToPcms}};

}  // namespace

std::span<const CallRow> SceneCalls() { return kRows; }
