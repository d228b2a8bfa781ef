// Contexts made with plain GLX and EGL calls, without the component: for tests of what lies below it.
#pragma once
#include <EGL/egl.h>
#include <EGL/eglext.h>
// After EGL: glx.h brings the macros of Xlib.
#include <GL/glew.h>
#include <GL/glx.h>

#include <stdexcept>

/// A current context with a back buffer and depth, in a window of 64 x 64 or on a pbuffer of that size.
class PlainContext {
public:
    virtual ~PlainContext() = default;
    virtual void Swap() = 0;

    static constexpr int kSide = 64;
};

/// Connects to $DISPLAY.
class PlainGlxContext final : public PlainContext {
public:
    PlainGlxContext() : m_pDisplay(XOpenDisplay(nullptr)) {
        if (m_pDisplay == nullptr) throw std::runtime_error("no X server");
        const int wanted[] = {GLX_DOUBLEBUFFER, True, GLX_DEPTH_SIZE, 24, GLX_RED_SIZE, 8, None};
        int count = 0;
        GLXFBConfig* const configs = glXChooseFBConfig(m_pDisplay, DefaultScreen(m_pDisplay), wanted, &count);
        if (count == 0) throw std::runtime_error("no GLX configuration");
        XVisualInfo* const visual = glXGetVisualFromFBConfig(m_pDisplay, configs[0]);
        const Window root = DefaultRootWindow(m_pDisplay);
        XSetWindowAttributes attributes{};
        attributes.colormap = XCreateColormap(m_pDisplay, root, visual->visual, AllocNone);
        m_nWindow = XCreateWindow(m_pDisplay, root, 0, 0, kSide, kSide, 0, visual->depth, InputOutput, visual->visual,
                                  CWColormap | CWBorderPixel, &attributes);
        XMapWindow(m_pDisplay, m_nWindow);
        m_pContext = glXCreateNewContext(m_pDisplay, configs[0], GLX_RGBA_TYPE, nullptr, True);
        XFree(visual);
        XFree(configs);
        if (m_pContext == nullptr || glXMakeCurrent(m_pDisplay, m_nWindow, m_pContext) != True || glewInit() != GLEW_OK)
            throw std::runtime_error("no GLX context");
    }
    ~PlainGlxContext() override {
        glXMakeCurrent(m_pDisplay, None, nullptr);
        glXDestroyContext(m_pDisplay, m_pContext);
        XCloseDisplay(m_pDisplay);
    }
    PlainGlxContext(const PlainGlxContext&) = delete;
    PlainGlxContext& operator=(const PlainGlxContext&) = delete;

    void Swap() override { glXSwapBuffers(m_pDisplay, m_nWindow); }
    [[nodiscard]] Display* GetDisplay() const { return m_pDisplay; }
    [[nodiscard]] GLXDrawable Drawable() const { return m_nWindow; }

private:
    Display* m_pDisplay;
    GLXDrawable m_nWindow = 0;
    GLXContext m_pContext = nullptr;
};

/// Needs no display.
class PlainEglContext final : public PlainContext {
public:
    PlainEglContext() : m_pDisplay(eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, nullptr, nullptr)) {
        eglInitialize(m_pDisplay, nullptr, nullptr);
        eglBindAPI(EGL_OPENGL_API);
        const EGLint wanted[] = {
            EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT, EGL_DEPTH_SIZE, 24, EGL_RED_SIZE, 8,
            EGL_NONE};
        EGLConfig config = nullptr;
        EGLint count = 0;
        eglChooseConfig(m_pDisplay, wanted, &config, 1, &count);
        const EGLint size[] = {EGL_WIDTH, kSide, EGL_HEIGHT, kSide, EGL_NONE};
        m_pSurface = eglCreatePbufferSurface(m_pDisplay, config, size);
        m_pContext = eglCreateContext(m_pDisplay, config, EGL_NO_CONTEXT, nullptr);
        if (eglMakeCurrent(m_pDisplay, m_pSurface, m_pSurface, m_pContext) != EGL_TRUE)
            throw std::runtime_error("no EGL context");
        glewInit();  // its last step looks for an X display, which there is none of; OpenGL is loaded before that
    }
    ~PlainEglContext() override {
        eglMakeCurrent(m_pDisplay, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        eglDestroyContext(m_pDisplay, m_pContext);
        eglDestroySurface(m_pDisplay, m_pSurface);
    }
    PlainEglContext(const PlainEglContext&) = delete;
    PlainEglContext& operator=(const PlainEglContext&) = delete;

    void Swap() override { eglSwapBuffers(m_pDisplay, m_pSurface); }
    [[nodiscard]] EGLDisplay GetDisplay() const { return m_pDisplay; }

private:
    EGLDisplay m_pDisplay;
    EGLSurface m_pSurface = nullptr;
    EGLContext m_pContext = nullptr;
};
