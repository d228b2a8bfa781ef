// A context without a control, on an off-screen surface of 640 x 480.
#pragma once
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>

#include "platform/WindowFactory.h"
#include "support/TestFolder.h"

/// A window that makes its context, which is then current, and draws nothing.
class BareContext final : public WindowClient {
public:
    BareContext() : m_window(MakePaneWindow({})) {
        TestFolder();
        std::string reason;
        if (!m_window->Create(*this, &reason)) ADD_FAILURE() << "no off-screen window: " << reason;
    }
    ~BareContext() { m_window->Destroy(); }
    BareContext(const BareContext&) = delete;
    BareContext& operator=(const BareContext&) = delete;

    void MakeCurrent() { EXPECT_TRUE(m_window->MakeCurrent()); }

    int OnCreate() override {
        m_window->BeginBootstrap({});
        std::int32_t format = 0;
        const bool chosen = m_window->ChoosePixelFormat({}, &format);
        m_window->EndBootstrap();
        const bool made = chosen && m_window->SetPixelFormat(format) && m_window->CreateContext({});
        return made && m_window->MakeCurrent() ? 0 : -1;
    }
    void OnDestroy() override { m_window->DeleteContext(); }
    void OnPaint() override {}
    void OnPrivateMessage(std::uint32_t) override {}

private:
    std::unique_ptr<PaneWindow> m_window;
};
