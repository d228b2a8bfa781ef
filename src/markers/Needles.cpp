// Needles by the host: the methods, and the selection that methods, mouse and keys share (NeedleInput.cpp). A handler
// of an event may call any method, so nothing is kept of the list across an event but ids.
#include <algorithm>
#include <cassert>
#include <optional>

#include "control/ScenePaneCtrl.h"

using KV_ScenePane::VARIANT_BOOL;
using Events = KV_ScenePane::_DKV_ScenePaneEvents;

namespace {

VARIANT_BOOL ToVariant(bool value) { return value ? KV_ScenePane::kVariantTrue : KV_ScenePane::kVariantFalse; }

/// Deselects all needles, or all but one, whatever handlers of the deselections select meanwhile. So that no handler
/// can go on without end, there are no more events than needles; what is selected after them loses the selection
/// without one.
void DeselectOthers(CKV_ScenePaneCtrl& control, std::optional<std::int32_t> kept) {
    const auto next = [&] {
        return std::ranges::find_if(control.m_vNeedles,
                                    [kept](const Needle& needle) { return needle.selected && needle.id != kept; });
    };
    for (auto events = control.m_vNeedles.size(); events > 0; --events) {
        const auto needle = next();
        if (needle == control.m_vNeedles.end()) return;
        control.DeselectNeedle(needle->id);
    }
    for (auto needle = next(); needle != control.m_vNeedles.end(); needle = next()) {
        needle->selected = false;
        control.InvalidateControl(true);
    }
}

}  // namespace

// ---- settings

void CKV_ScenePaneCtrl::SetNeedlePickingMode(VARIANT_BOOL enable) {
    m_bNeedlePickingMode = enable != 0;
    if (m_bNeedlePickingMode != 0) return;
    DeselectAllNeedles();
    InvalidateControl(true);
}

VARIANT_BOOL CKV_ScenePaneCtrl::GetNeedlePickingMode() { return ToVariant(m_bNeedlePickingMode != 0); }

void CKV_ScenePaneCtrl::SetNeedleDrawingMode(VARIANT_BOOL enable) { m_bNeedleDrawingMode = enable != 0; }

VARIANT_BOOL CKV_ScenePaneCtrl::GetNeedleDrawingMode() { return ToVariant(m_bNeedleDrawingMode != 0); }

void CKV_ScenePaneCtrl::SetNeedleRenderParameters(float needleLength, float needleHeadRadius,
                                                  std::int32_t needleHeadColor, float needlePinSize,
                                                  std::int32_t needlePinColor, float needleHitPointRadius,
                                                  std::int32_t needleHitPointColor,
                                                  std::int32_t needleHeadSelectionColor) {
    m_needleRender = {.needleLength = needleLength,
                      .headRadius = needleHeadRadius,
                      .headColor = static_cast<std::uint32_t>(needleHeadColor),
                      .pinSize = needlePinSize,
                      .pinColor = static_cast<std::uint32_t>(needlePinColor),
                      .hitPointRadius = needleHitPointRadius,
                      .hitPointColor = static_cast<std::uint32_t>(needleHitPointColor),
                      .headSelectionColor = static_cast<std::uint32_t>(needleHeadSelectionColor)};
}

bool CKV_ScenePaneCtrl::IsNeedleListFull() const { return std::ssize(m_vNeedles) >= m_nMaxNeedles; }

// The surplus goes from the end of the list, also selected ones without NeedleDeselected.
void CKV_ScenePaneCtrl::SetMaxNumberOfNeedles(std::int32_t num) {
    const std::int32_t limit = std::max(num, 0);
    m_nMaxNeedles = limit;  // before the events: a handler can create no needle beyond it
    std::vector<std::int32_t> surplus;
    for (auto i = m_vNeedles.size(); i > static_cast<std::size_t>(limit); --i) surplus.push_back(m_vNeedles[i - 1].id);
    for (const std::int32_t id : surplus) {
        if (std::ssize(m_vNeedles) <= limit) break;  // handlers have deleted others
        if (std::erase_if(m_vNeedles, [id](const Needle& needle) { return needle.id == id; }) != 0)
            Fire(&Events::NeedleDeleted, id);
    }
    if (!surplus.empty()) InvalidateControl(true);
}

// ---- creation and deletion

VARIANT_BOOL CKV_ScenePaneCtrl::CreateNeedle(std::int32_t id, float pinPosX, float pinPosY, float pinPosZ,
                                             float headPosX, float headPosY, float headPosZ) {
    if (IsNeedleListFull() || FindNeedle(m_vNeedles, id) != nullptr) return KV_ScenePane::kVariantFalse;
    m_vNeedles.push_back(MakeNeedle(id, {pinPosX, pinPosY, pinPosZ}, {headPosX, headPosY, headPosZ}, m_needleRender));
    RefreshControl();
    // The frame may report to the host, which may have deleted the needle.
    if (FindNeedle(m_vNeedles, id) != nullptr) Fire(&Events::NeedleCreated, id);
    return KV_ScenePane::kVariantTrue;
}

// The number is compared with the limit, not with the number that still fits: what does not fit is skipped, as is an id
// that the arrays hold twice.
VARIANT_BOOL CKV_ScenePaneCtrl::CreateNeedles(std::int32_t number, const std::int32_t* id, const float* pinPosXYZ,
                                              const float* headPosXYZ) {
    assert(number >= 0);
    assert(number == 0 || (id != nullptr && pinPosXYZ != nullptr && headPosXYZ != nullptr));
    if (number > m_nMaxNeedles) return KV_ScenePane::kVariantFalse;
    for (std::int32_t i = 0; i < number; ++i)
        if (FindNeedle(m_vNeedles, id[i]) != nullptr) return KV_ScenePane::kVariantFalse;
    for (std::ptrdiff_t i = 0; i < number; ++i) {
        const float *const pin = pinPosXYZ + 3 * i, *const head = headPosXYZ + 3 * i;
        CreateNeedle(id[i], pin[0], pin[1], pin[2], head[0], head[1], head[2]);
    }
    return KV_ScenePane::kVariantTrue;
}

VARIANT_BOOL CKV_ScenePaneCtrl::DeleteNeedle(std::int32_t id) {
    if (FindNeedle(m_vNeedles, id) == nullptr) return KV_ScenePane::kVariantFalse;
    DeselectNeedle(id);
    if (std::erase_if(m_vNeedles, [id](const Needle& needle) { return needle.id == id; }) == 0)
        return KV_ScenePane::kVariantTrue;  // a handler has deleted it
    RefreshControl();
    // The frame may report to the host, which may have created the needle again.
    if (FindNeedle(m_vNeedles, id) == nullptr) Fire(&Events::NeedleDeleted, id);
    return KV_ScenePane::kVariantTrue;
}

void CKV_ScenePaneCtrl::DeleteNeedles() {
    MakeContextCurrent();
    std::vector<std::int32_t> ids(m_vNeedles.size());
    std::ranges::transform(m_vNeedles, ids.begin(), &Needle::id);
    for (const std::int32_t id : ids) DeleteNeedle(id);
}

// ---- selection

void CKV_ScenePaneCtrl::SelectNeedle(std::int32_t id) {
    if (SelectOnlyNeedle(id)) RefreshControl();
}

bool CKV_ScenePaneCtrl::SelectOnlyNeedle(std::int32_t id) {
    if (FindNeedle(m_vNeedles, id) == nullptr) return false;
    DeselectNeedlesBut(id);
    Needle* const needle = FindNeedle(m_vNeedles, id);
    if (needle == nullptr) return false;
    needle->selected = true;  // it may be already: the event is fired all the same
    Fire(&Events::NeedleSelected, id);
    return true;
}

VARIANT_BOOL CKV_ScenePaneCtrl::DeselectNeedle(std::int32_t id) {
    Needle* const needle = FindNeedle(m_vNeedles, id);
    if (needle == nullptr || !needle->selected) return KV_ScenePane::kVariantFalse;
    needle->selected = false;
    InvalidateControl(true);
    Fire(&Events::NeedleDeselected, id);
    return KV_ScenePane::kVariantTrue;
}

void CKV_ScenePaneCtrl::DeselectAllNeedles() { DeselectOthers(*this, std::nullopt); }

void CKV_ScenePaneCtrl::DeselectNeedlesBut(std::int32_t id) { DeselectOthers(*this, id); }

// ---- queries

std::int32_t CKV_ScenePaneCtrl::GetNumberOfNeedles() { return static_cast<std::int32_t>(m_vNeedles.size()); }

VARIANT_BOOL CKV_ScenePaneCtrl::GetNeedle(std::int32_t id, float* pinPosX, float* pinPosY, float* pinPosZ,
                                          float* headPosX, float* headPosY, float* headPosZ) {
    const Needle* const needle = FindNeedle(m_vNeedles, id);
    if (needle == nullptr) return KV_ScenePane::kVariantFalse;
    *pinPosX = needle->pin[0], *pinPosY = needle->pin[1], *pinPosZ = needle->pin[2];
    *headPosX = needle->head[0], *headPosY = needle->head[1], *headPosZ = needle->head[2];
    return KV_ScenePane::kVariantTrue;
}

void CKV_ScenePaneCtrl::GetNeedles(std::int32_t* id, float* pinPosXYZ, float* headPosXYZ) {
    assert(m_vNeedles.empty() || (id != nullptr && pinPosXYZ != nullptr && headPosXYZ != nullptr));
    for (const Needle& needle : m_vNeedles) {
        *id++ = needle.id;
        pinPosXYZ = std::ranges::copy(needle.pin, pinPosXYZ).out;
        headPosXYZ = std::ranges::copy(needle.head, headPosXYZ).out;
    }
}
