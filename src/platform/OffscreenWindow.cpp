// Pbuffers and contexts of EGL. On which display they are made is decided in EglDisplay.cpp.
#include "platform/OffscreenWindow.h"

#include <EGL/egl.h>
#include <GL/glew.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "platform/CurrentContext.h"

namespace {

// The longest side that drivers allow for a framebuffer, and an area whose colour and depth need about a gigabyte.
constexpr std::int32_t kLongestSide = 16384;
constexpr std::int64_t kLargestArea = std::int64_t{1} << 27;

bool IsPossibleSize(std::int32_t width, std::int32_t height) {
    return width <= kLongestSide && height <= kLongestSide && std::int64_t{width} * height <= kLargestArea;
}

EGLint Value(EGLDisplay display, EGLConfig config, EGLint attribute) {
    EGLint value = 0;
    eglGetConfigAttrib(display, config, attribute, &value);
    return value;
}

/// At least one pixel, whatever size is requested.
EGLSurface MakeSurface(EGLDisplay display, EGLConfig config, std::int32_t width, std::int32_t height) {
    const EGLint size[] = {EGL_WIDTH, std::max(width, 1), EGL_HEIGHT, std::max(height, 1), EGL_NONE};
    return eglCreatePbufferSurface(display, config, size);
}

/// On false no context is current.
bool MakeEglCurrent(EGLDisplay display, EGLSurface surface, EGLContext context) {
    ReleaseCurrentGlx();
    if (eglMakeCurrent(display, surface, surface, context) == EGL_TRUE) return true;
    ReleaseCurrentEgl();
    return false;
}

/// Either may be null. Both are null afterwards.
void DestroySurfaceAndContext(EGLDisplay display, void*& surface, void*& context) {
    if (context != nullptr) {
        if (eglGetCurrentContext() == context) ReleaseCurrentEgl();
        eglDestroyContext(display, context);
    }
    if (surface != nullptr) eglDestroySurface(display, surface);
    surface = context = nullptr;
}

}  // namespace

bool OffscreenWindow::Open(std::string* reason) {
    if (!IsPossibleSize(m_size.width, m_size.height)) {
        *reason = "An off-screen surface of " + std::to_string(m_size.width) + " x " + std::to_string(m_size.height) +
                  " pixels is too large";
        return false;
    }
    m_display = SharedEglDisplay(m_nGpu, m_wanted, reason);
    return m_display.handle != nullptr;
}

// Without the display the surface and the context are gone already, and their handles may be those of others.
bool OffscreenWindow::Exists() const {
    EGLint width = 0;
    return m_pSurface != nullptr && IsEglDisplayAlive(m_display) &&
           eglQuerySurface(m_display.handle, m_pSurface, EGL_WIDTH, &width) == EGL_TRUE;
}

void OffscreenWindow::Close() {
    EndBootstrap();
    DeleteContext();
    if (Exists()) eglDestroySurface(m_display.handle, m_pSurface);
    m_pSurface = nullptr;
    m_pConfig = nullptr;
    m_bCapture = false;
}

void OffscreenWindow::Resize(std::int32_t width, std::int32_t height) {
    if (!IsPossibleSize(width, height)) return;
    if (Exists() && (width != m_size.width || height != m_size.height)) {
        // The new one first: without memory for it the window keeps surface and size.
        const EGLSurface surface = MakeSurface(m_display.handle, m_pConfig, width, height);
        if (surface == EGL_NO_SURFACE) return;
        const bool wasCurrent = m_pContext != nullptr && eglGetCurrentContext() == m_pContext;
        const EGLSurface former = std::exchange(m_pSurface, surface);
        if (wasCurrent) MakeEglCurrent(m_display.handle, m_pSurface, m_pContext);
        eglDestroySurface(m_display.handle, former);
        m_size = {width, height};
        Invalidate(true);  // the former surface had the frame
    }
    m_size = {width, height};
}

BootstrapReport OffscreenWindow::BeginBootstrap(const ContextAttributes& wanted) {
    BootstrapReport report;
    // A recreation may request a version that only another device has.
    m_wanted = wanted;
    m_display = SharedEglDisplay(m_nGpu, m_wanted, nullptr);
    PixelFormatAttributes attributes;
    attributes.stencilBits = 8;
    const EGLDisplay display = m_display.handle;
    const ScopedDesktopOpenGl desktop;
    const EGLConfig config = FindEglConfig(display, attributes);
    if (config == nullptr) return report;
    report.formatNumber = Value(display, config, EGL_CONFIG_ID);
    m_pBootstrapSurface = MakeSurface(display, config, 100, 100);
    m_pBootstrapContext = eglCreateContext(display, config, EGL_NO_CONTEXT, nullptr);
    if (m_pBootstrapContext == nullptr || !MakeEglCurrent(display, m_pBootstrapSurface, m_pBootstrapContext))
        return report;
    report.contextMade = true;
    glewExperimental = GL_TRUE;  // loads what the driver has, also what its list of extensions does not name
    const GLenum answer = glewInit();
    // A GLEW built for GLX looks for an X display as its last step, when the entry points of OpenGL are already loaded.
    report.entryPointsLoaded = answer == GLEW_OK || answer == GLEW_ERROR_NO_GLX_DISPLAY;
    report.pixelFormatExtension = true;  // EGL has no other way to request formats
    report.createContextExtension = m_display.createContext;
    report.version33 = report.entryPointsLoaded && GLEW_VERSION_3_3;
    ReadCurrentVersion(&report.major, &report.minor);
    return report;
}

void OffscreenWindow::EndBootstrap() {
    DestroySurfaceAndContext(m_display.handle, m_pBootstrapSurface, m_pBootstrapContext);
}

bool OffscreenWindow::ChoosePixelFormat(const PixelFormatAttributes& attributes, std::int32_t* format) {
    const EGLConfig config = FindEglConfig(m_display.handle, attributes);
    if (config == nullptr) return false;
    *format = Value(m_display.handle, config, EGL_CONFIG_ID);
    return true;
}

// The number is an EGL_CONFIG_ID; with it EGL ignores all other attributes.
bool OffscreenWindow::SetPixelFormat(std::int32_t format) {
    if (m_display.handle == nullptr || m_pSurface != nullptr) return false;
    const EGLint wanted[] = {EGL_CONFIG_ID, format, EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    if (eglChooseConfig(m_display.handle, wanted, &config, 1, &count) != EGL_TRUE || count != 1) return false;
    m_pSurface = MakeSurface(m_display.handle, config, m_size.width, m_size.height);
    m_pConfig = config;
    return m_pSurface != nullptr;
}

bool OffscreenWindow::CreateContext(const ContextAttributes& attributes) {
    if (m_pSurface == nullptr || m_pContext != nullptr) return false;
    m_pContext = CreateEglContext(m_display.handle, m_pConfig, attributes);
    return m_pContext != nullptr;
}

// Both checked: Resize() replaces the surface below a context that is current. A context of a terminated display
// remains current, and would still draw until another one is made current.
bool OffscreenWindow::MakeCurrent() {
    if (m_pContext == nullptr || !Exists()) {
        if (m_pContext != nullptr) m_messages.Wake();  // the next ProcessEvents() runs OnDestroy()
        ReleaseCurrentGlx();
        ReleaseCurrentEgl();
        return false;
    }
    if (eglGetCurrentContext() == m_pContext && eglGetCurrentSurface(EGL_DRAW) == m_pSurface) return true;
    return MakeEglCurrent(m_display.handle, m_pSurface, m_pContext);
}

void OffscreenWindow::DeleteContext() {
    if (IsEglDisplayAlive(m_display)) {
        void* noSurface = nullptr;
        DestroySurfaceAndContext(m_display.handle, noSurface, m_pContext);
    } else if (m_pContext != nullptr && eglGetCurrentContext() == m_pContext) {
        ReleaseCurrentEgl();
    }
    m_pContext = nullptr;
}

void OffscreenWindow::SwapBuffers() {
    if (m_pSurface == nullptr) return;
    // Swapping a pbuffer has no effect: on llvmpipe the commands of all frames would accumulate in memory.
    glFinish();
    eglSwapBuffers(m_display.handle, m_pSurface);
}
