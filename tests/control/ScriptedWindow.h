// A window that answers the steps of a context's creation as a test scripts them, and records the order of the calls.
// It has no OpenGL, so a script must end in a refusal.
#pragma once
#include <string>
#include <vector>

#include "platform/PaneWindow.h"

class ScriptedWindow final : public PaneWindow {
public:
    // ---- the script
    BootstrapReport report{.formatNumber = 17,
                           .contextMade = true,
                           .entryPointsLoaded = true,
                           .pixelFormatExtension = true,
                           .createContextExtension = true,
                           .version33 = true};
    bool formatChosen = true;
    bool formatSet = true;

    // ---- recorded calls
    std::vector<std::string> calls;
    PixelFormatAttributes format;                ///< of the last request
    std::vector<std::int32_t> requestedSamples;  ///< of all requests
    ContextAttributes context;
    std::vector<std::string> messages;

    bool Create(WindowClient& client, std::string*) override { return client.OnCreate() == 0; }
    void Destroy() override {}
    bool Recreate() override { return false; }
    [[nodiscard]] bool Exists() const override { return false; }
    [[nodiscard]] std::uintptr_t NativeHandle() const override { return 0; }
    bool Reparent(std::uintptr_t, std::int32_t, std::int32_t) override { return false; }
    [[nodiscard]] WindowSize ClientSize() const override { return {10, 10}; }
    void Resize(std::int32_t, std::int32_t) override {}
    void Refresh() override { calls.emplace_back("Refresh"); }
    void Invalidate(bool) override {}
    bool BeginPaint() override { return false; }
    void EndPaint() override {}
    void RetryPaint() override {}
    [[nodiscard]] bool IsPaintPending() const override { return false; }

    BootstrapReport BeginBootstrap(const ContextAttributes&) override {
        calls.emplace_back("BeginBootstrap");
        return report;
    }
    bool ChoosePixelFormat(const PixelFormatAttributes& attributes, std::int32_t* number) override {
        calls.emplace_back("ChoosePixelFormat");
        format = attributes;
        requestedSamples.push_back(attributes.samples);
        *number = 23;
        return formatChosen;
    }
    void EndBootstrap() override { calls.emplace_back("EndBootstrap"); }
    bool SetPixelFormat(std::int32_t number) override {
        calls.push_back("SetPixelFormat " + std::to_string(number));
        return formatSet;
    }
    bool CreateContext(const ContextAttributes& attributes) override {
        calls.emplace_back("CreateContext");
        context = attributes;
        return false;
    }
    bool MakeCurrent() override { return false; }
    void DeleteContext() override {}
    [[nodiscard]] void* ContextHandle() const override { return nullptr; }
    void SwapBuffers() override {}
    void SetCapture() override {}
    void ReleaseCapture() override {}
    [[nodiscard]] bool HasCapture() const override { return false; }
    void SetCursor(PaneCursor) override {}
    void BeginWaitCursor() override {}
    void EndWaitCursor() override {}
    std::uint32_t StartTimer(std::uint32_t) override { return 1; }
    void StopTimer(std::uint32_t) override {}
    void PostPrivateMessage(std::uint32_t) override {}
    void ShowModalMessage(const std::string& text) override { messages.push_back(text); }
    void ShowAboutBox(const KV_ScenePane::AboutText&) override {}
    [[nodiscard]] int EventDescriptor() const override { return -1; }
    void ProcessEvents() override {}
};
