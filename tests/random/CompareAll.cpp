// What getters return, compared with the model: objects, undo steps, markers, settings, view.
#include <algorithm>
#include <array>
#include <cmath>

#include "control/ScenePaneCtrl.h"
#include "random/RandomRun.h"

namespace {

const CallRow& RowOf(std::span<const CallRow> rows, std::string_view method) {
    for (const CallRow& row : rows)
        if (row.method == method) return row;
    throw std::logic_error("no row " + std::string(method));
}

std::size_t LiveCount(const std::vector<std::weak_ptr<ModelObject>>& entries) {
    return static_cast<std::size_t>(std::ranges::count_if(entries, [](const auto& entry) { return !entry.expired(); }));
}

/// By address: which objects of the viewer are the same as which.
void CompareUndoSteps(RandomRun& run, const CKV_ScenePaneCtrl& control) {
    const Model& model = run.model;
    std::map<const Mesh*, const ModelObject*> partners;
    const auto compare = [&](const std::vector<std::shared_ptr<Mesh>>& list, const std::vector<ObjectPtr>& expected) {
        run.Require(list.size() == expected.size(), "an undo step of another length");
        for (std::size_t i = 0; i < list.size(); ++i) {
            const ModelObject*& partner = partners[list[i].get()];
            run.Require(partner == nullptr || partner == expected[i].get(), "an undo step with another object");
            partner = expected[i].get();
            run.Require(static_cast<std::int32_t>(list[i]->GetVertexCount()) == partner->vertexCount,
                        "an undo step with another number of vertices");
        }
    };
    compare(control.m_vpMeshes, model.objects);
    run.Require(control.m_vUndoStack.size() == model.undo.size(), "another number of undo steps");
    for (std::size_t i = 0; i < model.undo.size(); ++i) compare(control.m_vUndoStack[i], model.undo[i]);
}

void CompareObjects(RandomRun& run) {
    const Model& model = run.model;
    run.Require(run.Ask("GetNumObjects", {}) == AutomationValue(model.ObjectCount()), "another number of objects");
    const std::vector<int> cuts = run.viewer->CutCounts();
    run.Require(cuts.size() == model.objects.size(), "another number of objects in the plan of a save");
    for (std::size_t i = 0; i < model.objects.size(); ++i) {
        const ModelObject& object = *model.objects[i];
        run.AdoptObject(i);
        const auto color = run.Ask("GetObjectColor", {static_cast<std::int16_t>(i)});
        run.Require(color == AutomationValue(static_cast<std::int32_t>(object.color)),
                    "object " + std::to_string(i) + " has the colour " + std::to_string(std::get<std::int32_t>(color)) +
                        " in place of " + std::to_string(object.color));
        run.Require(cuts[i] == static_cast<int>(object.masks.size()), "another number of cuts");
    }
}

void CompareInternals(RandomRun& run) {
    const CKV_ScenePaneCtrl& control = *run.viewer->Control();
    const Model& model = run.model;
    CompareUndoSteps(run, control);
    run.Require(control.LiveSelection().size() == LiveCount(model.selection), "another selection");
    run.Require(control.LiveVariableObjects().size() == LiveCount(model.variable), "other variable objects");
    run.Require(control.m_vpSelection.size() == model.selection.size(), "another number of selected objects");
    run.Require(control.m_nInteractionMode == model.mode,
                "another interaction: " + std::to_string(control.m_nInteractionMode) + " in place of " +
                    std::to_string(model.mode));
    run.Require(control.m_vPendingImports.size() == model.staged.size(), "another number of staged objects");
    run.Require((control.m_hImportMutex != nullptr) == model.importing, "an import that runs, or none");
    run.Require(control.m_vLines3D.size() == model.lines.size(), "another number of lines");
    run.Require(control.m_mapFreePoints.size() == model.points.size(), "another number of point sets");
    run.Require(static_cast<std::int32_t>(control.m_vOverlays.size()) == model.overlays, "another number of overlays");
    run.Require((control.m_bToggleAnimationOnSpacebar != 0) == model.spaceStarts, "another action of the space bar");
    run.Require((control.m_bShadowEnabled != 0) == model.shadows, "other shadows");
    run.Require((control.m_bClipPlaneActive != 0) == model.planeActive, "another clipping");
    run.Require((control.m_bClipPlaneVisible != 0) == model.planeVisible, "another clip plane");
}

}  // namespace

void RandomRun::CompareAll() {
    BeginCall("comparison with the model");
    CompareObjects(*this);
    CompareInternals(*this);
    Require(viewer->UndoSteps() == static_cast<std::int32_t>(model.undo.size()), "another number of undo steps");
    Require(viewer->GetProperty(1) == model.drawMosaic, "another DrawMosaic");
    Require(viewer->GetProperty(2) == model.drawMode, "another DrawMode");
    Require(viewer->GetProperty(3) == model.moveReduced, "another MoveReduced");
    Require(viewer->GetProperty(-525) == 4, "another ReadyState");
    for (const char* getter : {"GetNumberOfNeedles", "GetNeedles", "GetNumberOfPickPointSpheres",
                               "GetNeedlePickingMode", "GetNeedleDrawingMode", "GetLine3DDrawingMode"})
        RowOf(MarkerCalls(), getter).make(*this);
    for (const char* getter : {"GetCrossColor", "GetPickMode", "GetScanSkipVal", "GetShadowMode"})
        RowOf(SettingCalls(), getter).make(*this);
    for (const char* getter : {"GetViewParams", "GetClipPlane", "IsAnimationRunning"})
        RowOf(ViewCalls(), getter).make(*this);
    RowOf(SceneCalls(), "GetCutMasks").make(*this);
    for (std::size_t i = 0; i < model.spheres.size(); ++i) {
        std::array<float, 3> center{};
        Ask("GetPickPointSphereCoords", {static_cast<std::int32_t>(i), static_cast<void*>(&center[0]),
                                         static_cast<void*>(&center[1]), static_cast<void*>(&center[2])});
        for (std::size_t axis = 0; axis < 3; ++axis)
            Require(center[axis] == model.spheres[i].center[axis] || std::isnan(center[axis]), "another sphere");
    }
    CompareEvents();
}

AutomationValue RandomRun::Ask(const char* method, std::vector<AutomationValue> arguments) {
    for (const AutomationMethod& row : AutomationMethods()) {
        if (row.name != method) continue;
        const Outcome outcome = viewer->Invoke(row.id, arguments);
        Require(outcome.status == AutomationStatus::Done && !outcome.failed, "refused: " + outcome.text);
        return outcome.result;
    }
    throw std::logic_error("no method " + std::string(method));
}

// Afterwards the box is exact: roundings do not add up.
void RandomRun::AdoptObject(std::size_t index) {
    ModelObject& object = *model.objects[index];
    const auto at = static_cast<std::int16_t>(index);
    std::array<std::int32_t, 2> counts{};
    Ask("GetMeshDataSize", {at, static_cast<void*>(&counts[0]), static_cast<void*>(&counts[1])});
    if (object.vertexCount < 0) object.vertexCount = counts[0], object.triangleCount = counts[1];
    Require(counts[0] == object.vertexCount && counts[1] == object.triangleCount,
            "object " + std::to_string(index) + " has " + std::to_string(counts[0]) + " vertices and " +
                std::to_string(counts[1]) + " triangles in place of " + std::to_string(object.vertexCount) + " and " +
                std::to_string(object.triangleCount));
    std::array<float, 6> box{};
    std::vector<AutomationValue> arguments{at};
    for (float& number : box) arguments.emplace_back(static_cast<void*>(&number));
    Ask("GetObjectBoundingBox", std::move(arguments));
    // A rotation carries the rounding of the largest coordinate to the other axes.
    double largest = 0;
    for (const float number : box) largest = std::max(largest, std::abs(static_cast<double>(number)));
    const double margin = object.pointsExact ? 0 : 0.03 + 1e-4 * largest;
    for (std::size_t axis = 0; object.boxKnown && axis < 3; ++axis) {
        RequireNear(static_cast<double>(object.box.min[axis]), static_cast<double>(box[2 * axis]), margin, "the box");
        RequireNear(static_cast<double>(object.box.max[axis]), static_cast<double>(box[2 * axis + 1]), margin,
                    "the box");
    }
    object.boxKnown = true;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        object.box.min[axis] = box[2 * axis], object.box.max[axis] = box[2 * axis + 1];
        if (!std::isfinite(box[2 * axis]) || !std::isfinite(box[2 * axis + 1])) object.boxKnown = false;
    }
    // Coordinates that are not numbers count in no box; whether the object counts in a fit is for other tests.
    if (!object.pointsKnown && object.points.size() != 0) object.boxKnown = false;
}
