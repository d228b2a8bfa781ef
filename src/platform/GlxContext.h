// OpenGL on an X connection: the bootstrap, the format, the context and the drawing surface of one window.
#pragma once
#include <cstdint>

#include "platform/PaneWindow.h"
#include "platform/X11Connection.h"

class GlxContext {
public:
    /// @param connection  outlives this
    GlxContext(X11Connection& connection, int screen) : m_connection(connection), m_nScreen(screen) {}
    ~GlxContext();
    GlxContext(const GlxContext&) = delete;
    GlxContext& operator=(const GlxContext&) = delete;

    /// A visual is what a window must be made with to be drawn by OpenGL; its type is Xlib's Visual.
    struct WindowFormat {
        void* visual = nullptr;
        int depth = 0;
    };

    BootstrapReport BeginBootstrap();
    void EndBootstrap();
    /// The number of the format that has what is asked for, with exactly the samples; 0 when there is none.
    [[nodiscard]] std::int32_t FindFormat(const PixelFormatAttributes& attributes) const;

    /// Chooses the format; null visual when there is none of that number.
    WindowFormat SetFormat(std::int32_t format);
    /// Makes the drawing surface of a window that was made with the chosen format.
    bool Attach(unsigned long window);
    bool Create(const ContextAttributes& attributes);
    [[nodiscard]] bool IsCurrent() const;
    bool MakeCurrent();
    void Delete();
    [[nodiscard]] void* Handle() const { return m_pContext; }
    void SwapBuffers();

private:
    bool MakeBootstrapContext(void* config);

    X11Connection& m_connection;
    int m_nScreen;
    // GLXFBConfig, GLXContext, GLXWindow: the GLX headers would bring those of X11 along, and their macros.
    void* m_pConfig = nullptr;
    void* m_pContext = nullptr;
    unsigned long m_nSurface = 0;
    void* m_pBootstrapContext = nullptr;
    unsigned long m_nBootstrapWindow = 0;
    unsigned long m_nBootstrapColors = 0;
};
