// What both alignments share: clicks, Escape, the end.
#include "align/CInteractionDlg.h"

#include <algorithm>
#include <span>
#include <utility>

#include "KV_ScenePane/Input.h"
#include "control/ScenePaneCtrl.h"
#include "geometry/ObjectPick.h"

namespace {

constexpr float kPickDepth = 0.1f;  // window depth of the line's origin, in front of the scene

/// Those that still exist and are in the list: a cut keeps the object that it replaces for an undo.
std::vector<std::shared_ptr<Mesh>> ObjectsInScene(std::span<const std::weak_ptr<Mesh>> objects,
                                                  std::span<const std::shared_ptr<Mesh>> scene) {
    std::vector<std::shared_ptr<Mesh>> found;
    found.reserve(objects.size());
    for (const auto& object : objects) {
        auto mesh = object.lock();
        if (mesh != nullptr && std::ranges::find(scene, mesh) != scene.end()) found.push_back(std::move(mesh));
    }
    return found;
}

}  // namespace

std::int32_t RestingMode(const CKV_ScenePaneCtrl& control) {
    return control.m_pInteractionDlg == nullptr ? ModeIdle : control.m_pInteractionDlg->m_nMode;
}

// In the handler of AlignmentDone the picking is over.
bool HasLassoCursorAtRest(const CKV_ScenePaneCtrl& control) {
    const CInteractionDlg* const dialog = control.m_pInteractionDlg;
    return dialog != nullptr && dialog->HasWindow() && dialog->m_nMode == ModeAlignPickPoints;
}

// The release of a button that is held must not return to a mode that has no dialog.
void LeaveAlignmentMode(CKV_ScenePaneCtrl& control) {
    control.m_nSavedInteractionMode = ModeIdle;
    if (control.m_nInteractionMode == ModeLasso || control.m_nInteractionMode == ModeMaskLasso) return;
    control.m_nInteractionMode = ModeIdle;
}

void CInteractionDlg::OnInteractionKey(std::int32_t nChar, std::int32_t /*nRepCnt*/, std::int32_t /*nFlags*/) {
    if (nChar == KV_ScenePane::kKeyEscape) DestroyWindow();
}

void CInteractionDlg::OnClick(std::int32_t x, std::int32_t y, std::uint32_t flags) {
    if (m_vpPickableObjects.empty()) return;
    CKV_ScenePaneCtrl& control = *m_pControl;
    const auto objects = ObjectsInScene(m_vpPickableObjects, control.m_vpMeshes);
    if (objects.empty()) return;
    Float3 origin{};
    if (control.UnprojectPoint(x, y, kPickDepth, &origin[0], &origin[1], &origin[2]) == 0) return;
    const auto hit = FindNearestObject(objects, origin, control.m_fAxisZ);
    if (hit) OnObjectPicked(objects[hit->object], hit->triangle, hit->point, flags);
}

void CInteractionDlg::MarkObjects(const std::vector<std::shared_ptr<Mesh>>& moving) {
    for (const auto& mesh : m_pControl->m_vpMeshes) mesh->m_iObjectTag = kFixedTag;
    for (const auto& mesh : moving) mesh->m_iObjectTag = kVariableTag;
}

void CInteractionDlg::AbandonMouseDrag() {
    CKV_ScenePaneCtrl& control = *m_pControl;
    ForgetDrag();
    if (control.m_pInteractionDlg != this) return;
    control.m_pWindow->ReleaseCapture();
    control.m_bMoving = 0;
    control.m_bRollRotation = 0;
}

void CInteractionDlg::OnInteractionClosed() {
    CKV_ScenePaneCtrl& control = *m_pControl;
    if (control.m_pInteractionDlg == this) {
        control.m_pInteractionDlg = nullptr;
        LeaveAlignmentMode(control);
    }
    auto& dialogs = control.m_vInteractionDlgs;
    const auto own = std::ranges::find(dialogs, this, &std::unique_ptr<CInteractionDlg>::get);
    if (own == dialogs.end()) return;  // its owner deletes it
    const auto last = std::move(*own);
    dialogs.erase(own);
}
