// The masks of the objects as the host reads them.
#include <algorithm>
#include <cstddef>
#include <functional>
#include <memory>
#include <span>
#include <vector>

#include "control/ScenePaneCtrl.h"

namespace {

/// Each mask once, by address.
std::vector<const ACAD::CutMask*> DistinctMasks(std::span<const std::shared_ptr<Mesh>> meshes) {
    std::vector<const ACAD::CutMask*> masks;
    for (const auto& mesh : meshes)
        for (const auto& mask : mesh->m_vpCutMasks) masks.push_back(mask.get());
    std::ranges::sort(masks, std::less<>());
    masks.erase(std::unique(masks.begin(), masks.end()), masks.end());
    return masks;
}

}  // namespace

KV_ScenePane::VARIANT_BOOL CKV_ScenePaneCtrl::GetCutMasks(std::int32_t* count, const ACAD::CutMask** cutMaskPtrs) {
    const bool asksForNumber = cutMaskPtrs == nullptr;
    if (count == nullptr || (!asksForNumber && *count < 0)) return KV_ScenePane::kVariantFalse;
    const std::vector<const ACAD::CutMask*> masks = DistinctMasks(m_vpMeshes);
    if (asksForNumber) {
        *count = static_cast<std::int32_t>(masks.size());
        return KV_ScenePane::kVariantTrue;
    }
    const auto room = static_cast<std::size_t>(*count);
    if (room > masks.size()) return KV_ScenePane::kVariantFalse;
    std::copy_n(masks.begin(), room, cutMaskPtrs);
    return KV_ScenePane::kVariantTrue;
}

// Objects of undo steps keep theirs, unless the scene shows them, too.
void CKV_ScenePaneCtrl::ClearCutMasks() {
    for (const auto& mesh : m_vpMeshes) {
        mesh->m_vpCutMasks.clear();
        mesh->m_bCutWhileMoved = false;
    }
}
