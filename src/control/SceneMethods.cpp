// Methods on the object list: counts, colours, boxes, transforms, deletion, selection.
#include <algorithm>
#include <string>
#include <utility>

#include "base/DebugOutput.h"
#include "control/ScenePaneCtrl.h"

namespace {

// Rotation and translation of a row-major 4 x 4 matrix; Set() receives the rotation column by column.
void SetFromRows(CACADQTrafo& trafo, const float (&m)[16]) {
    trafo.Set(m[0], m[4], m[8], m[1], m[5], m[9], m[2], m[6], m[10], m[3], m[7], m[11]);
}

using References = std::vector<std::weak_ptr<Mesh>>;

/// Appends an object to a list of plain pointers, and the reference that shows later whether it still exists: the
/// allocator may give its address to another object.
void AddEntry(const std::shared_ptr<Mesh>& mesh, std::vector<Mesh*>& list, References& references) {
    references.resize(list.size());
    references.push_back(mesh);
    list.push_back(mesh.get());
}

/// Whether it never referred to an object; one whose object is gone is not empty.
bool IsEmpty(const std::weak_ptr<Mesh>& reference) {
    const std::weak_ptr<Mesh> none;
    return !reference.owner_before(none) && !none.owner_before(reference);
}

/// An entry without a reference of its own was not made by AddEntry(); it counts while the scene holds its object.
std::vector<std::shared_ptr<Mesh>> LiveEntries(const std::vector<Mesh*>& list, const References& references,
                                               const std::vector<std::shared_ptr<Mesh>>& scene) {
    std::vector<std::shared_ptr<Mesh>> live;
    for (std::size_t i = 0; i < list.size(); ++i) {
        if (i < references.size() && !IsEmpty(references[i])) {
            if (std::shared_ptr<Mesh> mesh = references[i].lock()) live.push_back(std::move(mesh));
            continue;
        }
        const auto found = std::ranges::find(scene, list[i], &std::shared_ptr<Mesh>::get);
        if (found != scene.end()) live.push_back(*found);
    }
    return live;
}

}  // namespace

Mesh* CKV_ScenePaneCtrl::ObjectAt(std::int16_t idx) const {
    return idx < 0 || static_cast<std::size_t>(idx) >= m_vpMeshes.size()
               ? nullptr
               : m_vpMeshes[static_cast<std::size_t>(idx)].get();
}

void CKV_ScenePaneCtrl::SetSize(std::int16_t sx, std::int16_t sy) {
    m_pWindow->Resize(sx, sy);
    m_nWidth = sx;
    m_nHeight = sy;
    UpdateViewport();
}

void CKV_ScenePaneCtrl::ClearData() {
    MakeContextCurrent();  // the destructors of the meshes delete their OpenGL buffers
    // In this order: an object that only an undo step holds is destroyed with the step.
    m_vpMeshes.clear();
    m_vUndoStack.clear();
    m_vLines3D.clear();
    m_setLine3DIds.clear();
    m_pCutSession.reset();
    m_pCutMask.reset();
    m_fAxisX = {1, 0, 0};
    m_fAxisY = {0, 1, 0};
    m_fAxisZ = {0, 0, 1};
    FitViewToScene();
}

std::int16_t CKV_ScenePaneCtrl::GetNumObjects() { return static_cast<std::int16_t>(m_vpMeshes.size()); }

std::int32_t CKV_ScenePaneCtrl::GetObjectColor(std::int16_t idx) {
    const Mesh* mesh = ObjectAt(idx);
    return mesh == nullptr ? -1 : static_cast<std::int32_t>(mesh->GetColorRef());
}

void CKV_ScenePaneCtrl::SetObjectColor(std::int16_t idx, std::int32_t color) {
    Mesh* mesh = ObjectAt(idx);
    if (mesh == nullptr || mesh->GetColorRef() == static_cast<std::uint32_t>(color)) return;
    mesh->SetColorRef(static_cast<std::uint32_t>(color));
    mesh->MarkBuffersDirty();
    InvalidateControl(false);
}

void CKV_ScenePaneCtrl::SetObjectVisibility(std::int16_t idx, std::int16_t visible) {
    Mesh* mesh = ObjectAt(idx);
    if (mesh == nullptr) return;
    mesh->m_iVisible = visible;
    InvalidateControl(false);
}

// Without a range check: hosts pass a valid index, and existing ones rely on the outputs being written.
void CKV_ScenePaneCtrl::GetMeshDataSize(std::int16_t objIdx, std::int32_t* numP, std::int32_t* numT) {
    const Mesh& mesh = *m_vpMeshes[static_cast<std::size_t>(objIdx)];
    *numP = static_cast<std::int32_t>(mesh.GetVertexCount());
    *numT = static_cast<std::int32_t>(mesh.GetTriangleCount());
}

CKV_ScenePaneCtrl::VARIANT_BOOL CKV_ScenePaneCtrl::GetObjectCenter(std::int16_t objectIdx, float* x, float* y,
                                                                   float* z) {
    Mesh* mesh = ObjectAt(objectIdx);
    if (mesh == nullptr) return KV_ScenePane::kVariantFalse;
    Float3 center;
    mesh->GetCenter(center.data());
    *x = center[0];
    *y = center[1];
    *z = center[2];
    return KV_ScenePane::kVariantTrue;
}

void CKV_ScenePaneCtrl::GetObjectBoundingBox(std::int16_t objectIdx, float* x_min, float* x_max, float* y_min,
                                             float* y_max, float* z_min, float* z_max) {
    const Mesh* mesh = ObjectAt(objectIdx);
    if (mesh == nullptr) {
        DebugOutput("CKV_ScenePaneCtrl::GetObjectBoundingBox() object index out of range!\n");
        DebugOutput("- objectIdx = " + std::to_string(objectIdx) + "\n");
        DebugOutput("- m_vpMeshes.size() = " + std::to_string(m_vpMeshes.size()) + "\n");
        *x_min = *y_min = *z_min = 1.0f;
        *x_max = *y_max = *z_max = -1.0f;
        return;
    }
    mesh->GetBoundingBox(x_min, x_max, y_min, y_max, z_min, z_max);
}

std::int16_t CKV_ScenePaneCtrl::GetTrafoOfScan(std::int16_t idx, float* v0, float* v1, float* v2, float* v3, float* v4,
                                               float* v5, float* v6, float* v7, float* v8, float* v9, float* v10,
                                               float* v11, float* v12, float* v13, float* v14, float* v15) {
    const Mesh* mesh = ObjectAt(idx);
    if (mesh == nullptr) return -1;
    // The transform holds its rotation by columns; hosts get rows.
    const double* r = mesh->m_Trafo.m_dRotation;
    const double* t = mesh->m_Trafo.m_dTranslation;
    float* const out[16] = {v0, v1, v2, v3, v4, v5, v6, v7, v8, v9, v10, v11, v12, v13, v14, v15};
    const double rows[16] = {r[0], r[3], r[6], t[0], r[1], r[4], r[7], t[1], r[2], r[5], r[8], t[2], 0, 0, 0, 1};
    for (std::size_t i = 0; i < 16; ++i) *out[i] = static_cast<float>(rows[i]);
    return 0;
}

std::int16_t CKV_ScenePaneCtrl::SetTrafoOfScan(std::int16_t idx, float v0, float v1, float v2, float v3, float v4,
                                               float v5, float v6, float v7, float v8, float v9, float v10, float v11,
                                               float v12, float v13, float v14, float v15) {
    Mesh* mesh = ObjectAt(idx);
    if (mesh == nullptr) return -1;
    // The vertices are in the world frame: the old transform is reverted before the new one is baked in.
    mesh->RevertTrafo(mesh->m_Trafo);
    SetFromRows(mesh->m_Trafo, {v0, v1, v2, v3, v4, v5, v6, v7, v8, v9, v10, v11, v12, v13, v14, v15});
    mesh->ApplyTrafo(mesh->m_Trafo);
    RefreshControl();
    return 0;
}

void CKV_ScenePaneCtrl::DeleteObject(std::int16_t idx) {
    if (ObjectAt(idx) == nullptr) return;
    MakeContextCurrent();  // the destructor of the mesh deletes its buffers in it
    m_vpMeshes.erase(m_vpMeshes.begin() + idx);
}

void CKV_ScenePaneCtrl::SetBlendObjectColors(std::int16_t idx, std::int16_t enabled) {
    if (Mesh* mesh = ObjectAt(idx)) mesh->SetBlendColors(enabled != 0);
}

// ---- the lists of selected and variable objects

void CKV_ScenePaneCtrl::ResetSelection() {
    m_vpSelection.clear();
    m_vSelectionRefs.clear();
}

void CKV_ScenePaneCtrl::AddSelection(std::int16_t idx) {
    if (ObjectAt(idx) != nullptr) AddEntry(m_vpMeshes[static_cast<std::size_t>(idx)], m_vpSelection, m_vSelectionRefs);
}

std::vector<std::shared_ptr<Mesh>> CKV_ScenePaneCtrl::LiveSelection() const {
    return LiveEntries(m_vpSelection, m_vSelectionRefs, m_vpMeshes);
}

void CKV_ScenePaneCtrl::ResetVariableObjects() {
    m_vpVariableObjects.clear();
    m_vVariableRefs.clear();
}

void CKV_ScenePaneCtrl::AddVariableObject(std::int16_t idx) {
    if (ObjectAt(idx) != nullptr)
        AddEntry(m_vpMeshes[static_cast<std::size_t>(idx)], m_vpVariableObjects, m_vVariableRefs);
}

std::vector<std::shared_ptr<Mesh>> CKV_ScenePaneCtrl::LiveVariableObjects() const {
    return LiveEntries(m_vpVariableObjects, m_vVariableRefs, m_vpMeshes);
}
