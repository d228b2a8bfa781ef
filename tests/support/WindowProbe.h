// A window that passes every call on to a real one and records what the control called, and the input that it received.
#pragma once
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/PaneWindow.h"

class WindowProbe : public PaneWindow, private WindowClient {
public:
    explicit WindowProbe(std::unique_ptr<PaneWindow> window) : m_window(std::move(window)) {}

    // ---- calls since the last Forget()
    int refreshes = 0;
    int invalidates = 0;       ///< without erase
    int eraseInvalidates = 0;  ///< with erase
    int swaps = 0;
    int waitCursorsBegun = 0, waitCursorsEnded = 0;
    std::vector<std::uint32_t> stoppedTimers;
    std::vector<std::string> modalMessages;
    std::function<void()> onEndWaitCursor = [] {};  ///< called before the end
    std::optional<WindowSize> claimedSize;          ///< in place of the real one, when it has a value

    // ---- input of the control, from its start
    std::vector<KV_ScenePane::MouseInput> mouseHeard;
    std::vector<KV_ScenePane::KeyInput> keysHeard;

    void Forget() {
        refreshes = invalidates = eraseInvalidates = swaps = waitCursorsBegun = waitCursorsEnded = 0;
        modalMessages.clear();
        stoppedTimers.clear();
    }

    void Refresh() override { ++refreshes, m_window->Refresh(); }
    void Invalidate(bool erase) override { ++(erase ? eraseInvalidates : invalidates), m_window->Invalidate(erase); }
    void BeginWaitCursor() override { ++waitCursorsBegun, m_window->BeginWaitCursor(); }
    void EndWaitCursor() override {
        onEndWaitCursor();
        ++waitCursorsEnded, m_window->EndWaitCursor();
    }
    void ShowModalMessage(const std::string& text) override {
        modalMessages.push_back(text);
        m_window->ShowModalMessage(text);
    }
    void ShowAboutBox(const KV_ScenePane::AboutText& text) override { m_window->ShowAboutBox(text); }

    // ---- passed on
    bool Create(WindowClient& client, std::string* reason) override {
        m_client = &client;
        return m_window->Create(*this, reason);
    }
    void Destroy() override { m_window->Destroy(); }
    bool Recreate() override { return m_window->Recreate(); }
    [[nodiscard]] bool Exists() const override { return m_window->Exists(); }
    [[nodiscard]] std::uintptr_t NativeHandle() const override { return m_window->NativeHandle(); }
    bool Reparent(std::uintptr_t parent, std::int32_t x, std::int32_t y) override {
        return m_window->Reparent(parent, x, y);
    }
    [[nodiscard]] WindowSize ClientSize() const override { return claimedSize.value_or(m_window->ClientSize()); }
    void Resize(std::int32_t width, std::int32_t height) override { m_window->Resize(width, height); }
    bool BeginPaint() override { return m_window->BeginPaint(); }
    void EndPaint() override { m_window->EndPaint(); }
    bool AllowDeferredFrames(bool allow) override { return m_window->AllowDeferredFrames(allow); }
    void DrawDeferredFrame() override { m_window->DrawDeferredFrame(); }
    void RetryPaint() override { m_window->RetryPaint(); }
    [[nodiscard]] bool IsPaintPending() const override { return m_window->IsPaintPending(); }
    BootstrapReport BeginBootstrap(const ContextAttributes& wanted) override {
        return m_window->BeginBootstrap(wanted);
    }
    bool ChoosePixelFormat(const PixelFormatAttributes& attributes, std::int32_t* format) override {
        return m_window->ChoosePixelFormat(attributes, format);
    }
    void EndBootstrap() override { m_window->EndBootstrap(); }
    bool SetPixelFormat(std::int32_t format) override { return m_window->SetPixelFormat(format); }
    bool CreateContext(const ContextAttributes& attributes) override { return m_window->CreateContext(attributes); }
    bool MakeCurrent() override { return m_window->MakeCurrent(); }
    void DeleteContext() override { m_window->DeleteContext(); }
    [[nodiscard]] void* ContextHandle() const override { return m_window->ContextHandle(); }
    void SwapBuffers() override { ++swaps, m_window->SwapBuffers(); }
    void SetCapture() override { m_window->SetCapture(); }
    void ReleaseCapture() override { m_window->ReleaseCapture(); }
    [[nodiscard]] bool HasCapture() const override { return m_window->HasCapture(); }
    void SetCursor(PaneCursor cursor) override { m_window->SetCursor(cursor); }
    std::uint32_t StartTimer(std::uint32_t milliseconds) override { return m_window->StartTimer(milliseconds); }
    void StopTimer(std::uint32_t id) override { stoppedTimers.push_back(id), m_window->StopTimer(id); }
    void PostPrivateMessage(std::uint32_t message) override { m_window->PostPrivateMessage(message); }
    [[nodiscard]] int EventDescriptor() const override { return m_window->EventDescriptor(); }
    void ProcessEvents() override { m_window->ProcessEvents(); }

private:
    int OnCreate() override { return m_client->OnCreate(); }
    void OnDestroy() override { m_client->OnDestroy(); }
    void OnPaint() override { m_client->OnPaint(); }
    void OnPrivateMessage(std::uint32_t message) override { m_client->OnPrivateMessage(message); }
    [[nodiscard]] bool WantsEveryMove() const override { return m_client->WantsEveryMove(); }
    void OnMouse(const KV_ScenePane::MouseInput& input) override {
        mouseHeard.push_back(input);
        m_client->OnMouse(input);
    }
    void OnKey(const KV_ScenePane::KeyInput& input) override {
        keysHeard.push_back(input);
        m_client->OnKey(input);
    }

    std::unique_ptr<PaneWindow> m_window;
    WindowClient* m_client = nullptr;  ///< the control
};
