// OpenGL on an X connection, by GLX 1.3: the bootstrap, the format, the context and the drawing surface of one window.
#pragma once
#include <cstdint>
#include <functional>

#include "platform/PaneWindow.h"
#include "platform/X11Connection.h"

/// The steps are those of PaneWindow, in the same order: bootstrap, FindFormat(), SetFormat(), Attach(), Create(). None
/// of them ends the process when the server refuses it.
class GlxContext {
public:
    /// @param connection  must outlive this object
    GlxContext(X11Connection& connection, int screen) : m_connection(connection), m_nScreen(screen) {}
    ~GlxContext();
    GlxContext(const GlxContext&) = delete;
    GlxContext& operator=(const GlxContext&) = delete;

    /// What XCreateWindow() needs so that the framebuffer configuration can draw the window.
    struct WindowFormat {
        void* visual = nullptr;  ///< Xlib's Visual; null: no such configuration
        int depth = 0;
    };

    /// Makes a temporary context current, on a window that is never mapped; loads the entry points.
    BootstrapReport BeginBootstrap();
    void EndBootstrap();
    /// The GLX_FBCONFIG_ID of a configuration that has the attributes, with exactly the samples; 0 when there is none.
    /// One of the screen's own depth is preferred.
    [[nodiscard]] std::int32_t FindFormat(const PixelFormatAttributes& attributes) const;

    /// @param format  a GLX_FBCONFIG_ID
    WindowFormat SetFormat(std::int32_t format);
    /// Makes the GLXWindow of a window that was made with the chosen format.
    bool Attach(unsigned long window);
    /// Makes the context, direct where the driver can; false when there is one already or the driver refuses it.
    bool Create(const ContextAttributes& attributes);
    [[nodiscard]] bool IsCurrent() const;
    /// On false no context is current.
    bool MakeCurrent();
    /// Releases the context first when it is current on this thread.
    void Delete();
    [[nodiscard]] void* Handle() const { return m_pContext; }
    /// Where the driver's swap interval can be read and set, see FindSwapInterval(); elsewhere @p wait has no effect.
    void SwapBuffers(SwapWait wait);

private:
    bool MakeBootstrapContext(void* config);
    void FindSwapInterval();

    X11Connection& m_connection;
    int m_nScreen;
    // GLXFBConfig, GLXContext, GLXWindow without the GLX headers: these include those of X11 with their macros.
    void* m_pConfig = nullptr;
    void* m_pContext = nullptr;
    unsigned long m_nSurface = 0;
    void* m_pBootstrapContext = nullptr;
    unsigned long m_nBootstrapWindow = 0;
    unsigned long m_nBootstrapColormap = 0;

    std::function<void(int)> m_setInterval;  ///< of swaps; empty: it cannot be set, or no swap waits anyway
    bool m_bIntervalFound = false;
    int m_nDriverInterval = 0;                ///< retraces; below 0 a late frame does not wait
    SwapWait m_wait = SwapWait::AsTheDriver;  ///< what is set now
};
