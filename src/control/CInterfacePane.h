// What the functions of the C interface share: the viewer, the receiver of its events, and the way out for exceptions.
#pragma once
#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "KV_ScenePane/ScenePane.h"
#include "KV_ScenePane/kv_scenepane.h"

/// Sets the text of kv_last_error() on this thread.
void SetLastError(std::string_view text) noexcept;

/// Sets kv_last_error() to "NAME: WHAT".
/// @param what  such as "the value is null"
/// @return KV_BAD_ARGUMENTS
kv_status RefuseNull(std::string_view name, std::string_view what);

/// Leaves the viewer when a callback of the host has returned another value than 0.
class HandlerFailure final : public std::exception {
public:
    explicit HandlerFailure(std::string text) : m_text(std::move(text)) {}
    [[nodiscard]] const char* what() const noexcept override { return m_text.c_str(); }

private:
    std::string m_text;
};

/// @throws HandlerFailure  when @p answer is not 0
void CheckAnswer(std::int32_t answer, std::string_view callback);

/// Passes events on to the callback of the host.
class CEventReceiver final : public KV_ScenePane::_DKV_ScenePaneEvents {
public:
    kv_event_function m_pFunction = nullptr;
    void* m_pUser = nullptr;

    void ReadyStateChange() override;
    void SelectViewDirection(float px, float py, float pz, float vx, float vy, float vz) override;
    void SelectObjCoords(std::int16_t idx, float px, float py, float pz, std::int32_t shiftModifiers,
                         std::int32_t mouseX, std::int32_t mouseY) override;
    void SegmentationDone(std::int16_t numObj) override;
    void ViewDirectionChanged(float vx, float vy, float vz) override;
    void AlignmentDone() override;
    void NeedleCreated(std::int32_t id) override;
    void NeedleSelected(std::int32_t id) override;
    void NeedleDeleted(std::int32_t id) override;
    void NeedleDeselected(std::int32_t id) override;
    void CustomKeyDown(std::int32_t nChar, std::int32_t nRepCnt, std::int32_t nFlags) override;
    void PickPointCountChanged(std::int32_t newCount) override;
    void CutMaskApplied(std::int64_t addr) override;

private:
    template <typename... Arguments>
    void Send(std::int32_t id, Arguments... arguments);
};

struct kv_pane {
    std::unique_ptr<KV_ScenePane::ScenePane> m_pViewer;  ///< null once the host has destroyed the viewer
    CEventReceiver m_events;
    int m_nCalls = 0;  ///< calls that have not returned: one inside the callback of another
    /// What the last kv_cut_save_entries() handed out, with the files as bytes.
    std::vector<KV_ScenePane::CutSaveEntry> m_vSaveEntries;
    std::vector<std::string> m_vSaveFiles;
};

/// Sets kv_last_error() from the exception that is being handled.
/// @return KV_HANDLER_FAILED or KV_FAILED
kv_status ReportException(std::string_view function) noexcept;

/// @return whether a viewer can be called; if not, kv_last_error() says why
bool IsUsable(const kv_pane* pane, std::string_view function) noexcept;

/// Counts a call; the end of the outermost one frees a viewer that was destroyed in a callback.
class CallScope {
public:
    explicit CallScope(kv_pane& pane) : m_pane(pane) { ++m_pane.m_nCalls; }
    ~CallScope() {
        if (--m_pane.m_nCalls == 0 && m_pane.m_pViewer == nullptr) delete &m_pane;
    }
    CallScope(const CallScope&) = delete;
    CallScope& operator=(const CallScope&) = delete;

private:
    kv_pane& m_pane;
};

/// Runs one function of the interface on a viewer. The viewer may be gone when a method of it has returned: @p body
/// must not use it again afterwards.
/// @param function  its name, for kv_last_error(); read when the body has thrown
/// @param body      called with the viewer; returns a kv_status
template <typename Body>
kv_status CallViewer(kv_pane* pane, const std::string_view& function, Body&& body) noexcept {
    if (!IsUsable(pane, function)) return KV_BAD_ARGUMENTS;
    const CallScope scope(*pane);
    try {
        return body(*pane->m_pViewer);
    } catch (...) {
        return ReportException(function);
    }
}
