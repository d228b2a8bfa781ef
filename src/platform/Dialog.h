// A modeless dialog that is never shown: only the life of its window remains.
#pragma once
#include <cstdint>

/// Create() and DestroyWindow() frame the life of the window. The object may delete itself in PostNcDestroy(), so a
/// caller of DestroyWindow(), or of what may call it, uses the dialog no more afterwards.
class CDialog {
public:
    CDialog() = default;
    virtual ~CDialog() = default;
    CDialog(const CDialog&) = delete;
    CDialog& operator=(const CDialog&) = delete;

    /// Makes the window; runs OnInitDialog() before it returns.
    void Create() {
        m_bHasWindow = true;
        OnInitDialog();
    }
    /// Closes the window, then runs PostNcDestroy(). Nothing without a window.
    void DestroyWindow() {
        if (!m_bHasWindow) return;
        m_bHasWindow = false;
        PostNcDestroy();
    }
    [[nodiscard]] bool HasWindow() const { return m_bHasWindow; }

    /// A key press that arrives while the window of the dialog has the keyboard focus.
    /// @return whether the dialog has used it
    virtual bool PreTranslateKey(std::int32_t /*nChar*/) { return false; }
    virtual void OnOK() { DestroyWindow(); }
    virtual void OnCancel() { DestroyWindow(); }

protected:
    /// The window exists now.
    virtual void OnInitDialog() {}
    /// The window is gone.
    virtual void PostNcDestroy() {}

private:
    bool m_bHasWindow = false;
};
