// Framebuffer configurations and contexts by attributes. Where a swap waits for the vertical retrace, its interval is
// the driver's, that is the user's; only frames that must not wait set it to 0.
#include "platform/GlxContext.h"

#include <GL/glew.h>
#include <GL/glx.h>
#include <X11/Xutil.h>

#include <algorithm>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "platform/CurrentContext.h"

namespace {

struct XDeleter {
    void operator()(void* data) const { XFree(data); }
};
template <typename T>
using XOwned = std::unique_ptr<T, XDeleter>;

// The temporary window is never mapped; its title is only for who lists the windows of the screen.
constexpr const char* kBootstrapTitle = "InitWIndow";
constexpr unsigned kBootstrapSide = 100;

/// Framebuffer configurations and the GLXWindow came with GLX 1.3.
bool HasFbConfigs(Display* display) {
    int major = 0, minor = 0;
    return glXQueryExtension(display, nullptr, nullptr) == True && glXQueryVersion(display, &major, &minor) == True &&
           (major > 1 || minor >= 3);
}

/// Compares whole words: the name of an extension may be the beginning of another one's.
bool HasExtension(Display* display, int screen, std::string_view name) {
    const char* const text = glXQueryExtensionsString(display, screen);
    std::istringstream words(text == nullptr ? "" : text);
    for (std::string word; words >> word;)
        if (word == name) return true;
    return false;
}

/// Null when the library does not have the function.
template <typename Function>
Function EntryPoint(const char* name) {
    return reinterpret_cast<Function>(glXGetProcAddressARB(reinterpret_cast<const GLubyte*>(name)));
}

int Value(Display* display, GLXFBConfig config, int attribute) {
    int value = 0;
    glXGetFBConfigAttrib(display, config, attribute, &value);
    return value;
}

int VisualDepth(Display* display, GLXFBConfig config) {
    const XOwned<XVisualInfo> visual(glXGetVisualFromFBConfig(display, config));
    return visual == nullptr ? 0 : visual->depth;
}

/// The first that fits, in the order of glXChooseFBConfig(), which sorts by its own rules. Null when none fits.
GLXFBConfig FindConfig(Display* display, int screen, const PixelFormatAttributes& attributes) {
    if (!HasFbConfigs(display)) return nullptr;
    const int colorSize = std::min(attributes.colorBits / 4, 8);  // per channel
    const int wanted[] = {GLX_X_RENDERABLE,
                          True,
                          GLX_DRAWABLE_TYPE,
                          GLX_WINDOW_BIT,
                          GLX_RENDER_TYPE,
                          GLX_RGBA_BIT,
                          GLX_X_VISUAL_TYPE,
                          GLX_TRUE_COLOR,
                          GLX_RED_SIZE,
                          colorSize,
                          GLX_GREEN_SIZE,
                          colorSize,
                          GLX_BLUE_SIZE,
                          colorSize,
                          GLX_ALPHA_SIZE,
                          attributes.alphaBits,
                          GLX_DEPTH_SIZE,
                          attributes.depthBits,
                          GLX_STENCIL_SIZE,
                          attributes.stencilBits,
                          GLX_DOUBLEBUFFER,
                          attributes.doubleBuffer ? True : False,
                          GLX_SAMPLE_BUFFERS,
                          attributes.sampleBuffers,
                          GLX_SAMPLES,
                          attributes.samples,
                          None};
    int count = 0;
    const XOwned<GLXFBConfig> list(glXChooseFBConfig(display, screen, wanted, &count));
    std::vector<GLXFBConfig> configs(list.get(), list.get() + (list == nullptr ? 0 : count));
    // GLX_SAMPLES is a minimum for the driver. A configuration without a visual cannot draw a window.
    std::erase_if(configs, [&](GLXFBConfig config) {
        return Value(display, config, GLX_SAMPLES) != attributes.samples || VisualDepth(display, config) == 0;
    });
    if (configs.empty()) return nullptr;
    // With a compositor, a visual deeper than the screen's is translucent wherever a frame has an alpha below 1.
    const int screenDepth = DefaultDepth(display, screen);
    const auto opaque = std::find_if(configs.begin(), configs.end(),
                                     [&](GLXFBConfig config) { return VisualDepth(display, config) == screenDepth; });
    return opaque == configs.end() ? configs.front() : *opaque;
}

GLXFBConfig FindConfigById(Display* display, int screen, std::int32_t number) {
    int count = 0;
    const XOwned<GLXFBConfig> list(HasFbConfigs(display) ? glXGetFBConfigs(display, screen, &count) : nullptr);
    for (int i = 0; i < count; ++i)
        if (Value(display, list.get()[i], GLX_FBCONFIG_ID) == number) return list.get()[i];
    return nullptr;
}

}  // namespace

// In the reverse order of creation. A server that has ended took the GLXWindow with it.
GlxContext::~GlxContext() {
    EndBootstrap();
    Delete();
    if (m_nSurface != 0 && m_connection.IsAlive()) glXDestroyWindow(m_connection.Get(), m_nSurface);
}

// The steps after the context need its entry points, so a failure reports everything after it as missing.
BootstrapReport GlxContext::BeginBootstrap() {
    BootstrapReport report;
    PixelFormatAttributes wanted;
    wanted.stencilBits = 8;
    Display* const display = m_connection.Get();
    const X11Connection::ErrorTrap trap(m_connection);
    if (!m_connection.IsAlive()) return report;
    const GLXFBConfig config = FindConfig(display, m_nScreen, wanted);
    if (config == nullptr) return report;
    report.formatNumber = Value(display, config, GLX_FBCONFIG_ID);
    if (!MakeBootstrapContext(config) || !trap.Succeeded()) return report;
    report.contextMade = true;
    glewExperimental = GL_TRUE;  // loads what the driver has, also what its list of extensions does not name
    report.entryPointsLoaded = glewInit() == GLEW_OK;
    report.pixelFormatExtension = HasFbConfigs(display);
    report.createContextExtension = HasExtension(display, m_nScreen, "GLX_ARB_create_context") &&
                                    HasExtension(display, m_nScreen, "GLX_ARB_create_context_profile");
    report.version33 = report.entryPointsLoaded && GLEW_VERSION_3_3;
    ReadCurrentVersion(&report.major, &report.minor);
    return report;
}

bool GlxContext::MakeBootstrapContext(void* config) {
    Display* const display = m_connection.Get();
    const XOwned<XVisualInfo> visual(glXGetVisualFromFBConfig(display, static_cast<GLXFBConfig>(config)));
    const Window root = RootWindow(display, m_nScreen);
    // A visual other than the root's needs a colormap of its own.
    m_nBootstrapColormap = XCreateColormap(display, root, visual->visual, AllocNone);
    XSetWindowAttributes attributes{};
    attributes.colormap = m_nBootstrapColormap;
    m_nBootstrapWindow = XCreateWindow(display, root, 0, 0, kBootstrapSide, kBootstrapSide, 0, visual->depth,
                                       InputOutput, visual->visual, CWColormap | CWBorderPixel, &attributes);
    XStoreName(display, m_nBootstrapWindow, kBootstrapTitle);
    m_pBootstrapContext = glXCreateNewContext(display, static_cast<GLXFBConfig>(config), GLX_RGBA_TYPE, nullptr, True);
    if (m_pBootstrapContext == nullptr) return false;
    ReleaseCurrentEgl();  // GLX refuses while an EGL context is current on the thread
    return glXMakeCurrent(display, m_nBootstrapWindow, static_cast<GLXContext>(m_pBootstrapContext)) == True;
}

// Also after a BeginBootstrap() that failed half-way: each part is checked.
void GlxContext::EndBootstrap() {
    Display* const display = m_connection.Get();
    if (m_pBootstrapContext != nullptr) {
        const GLXContext context = static_cast<GLXContext>(m_pBootstrapContext);
        if (glXGetCurrentContext() == context) ReleaseCurrentGlx();
        glXDestroyContext(display, context);
    }
    if (m_nBootstrapWindow != 0) XDestroyWindow(display, m_nBootstrapWindow);
    if (m_nBootstrapColormap != 0) XFreeColormap(display, m_nBootstrapColormap);
    m_pBootstrapContext = nullptr;
    m_nBootstrapWindow = m_nBootstrapColormap = 0;
}

std::int32_t GlxContext::FindFormat(const PixelFormatAttributes& attributes) const {
    if (!m_connection.IsAlive()) return 0;
    const GLXFBConfig config = FindConfig(m_connection.Get(), m_nScreen, attributes);
    return config == nullptr ? 0 : Value(m_connection.Get(), config, GLX_FBCONFIG_ID);
}

GlxContext::WindowFormat GlxContext::SetFormat(std::int32_t format) {
    if (!m_connection.IsAlive()) return {};
    const GLXFBConfig config = FindConfigById(m_connection.Get(), m_nScreen, format);
    if (config == nullptr) return {};
    const XOwned<XVisualInfo> visual(glXGetVisualFromFBConfig(m_connection.Get(), config));
    if (visual == nullptr) return {};
    m_pConfig = config;
    return {visual->visual, visual->depth};
}

bool GlxContext::Attach(unsigned long window) {
    const X11Connection::ErrorTrap trap(m_connection);
    m_nSurface = glXCreateWindow(m_connection.Get(), static_cast<GLXFBConfig>(m_pConfig), window, nullptr);
    return trap.Succeeded();
}

bool GlxContext::Create(const ContextAttributes& attributes) {
    if (m_nSurface == 0 || m_pContext != nullptr || !m_connection.IsAlive()) return false;
    const auto create = EntryPoint<PFNGLXCREATECONTEXTATTRIBSARBPROC>("glXCreateContextAttribsARB");
    if (create == nullptr) return false;
    const int wanted[] = {GLX_CONTEXT_MAJOR_VERSION_ARB,
                          attributes.major,
                          GLX_CONTEXT_MINOR_VERSION_ARB,
                          attributes.minor,
                          GLX_CONTEXT_PROFILE_MASK_ARB,
                          GLX_CONTEXT_COMPATIBILITY_PROFILE_BIT_ARB,
                          None};
    const X11Connection::ErrorTrap trap(m_connection);
    m_pContext = create(m_connection.Get(), static_cast<GLXFBConfig>(m_pConfig), nullptr, True, wanted);
    // A version that the driver does not have is an X error, whose default handler would end the process.
    if (m_pContext != nullptr && !trap.Succeeded()) Delete();
    return m_pContext != nullptr;
}

// The drawable too: the address of a deleted context may be used again for one of another window.
bool GlxContext::IsCurrent() const {
    return m_pContext != nullptr && glXGetCurrentContext() == m_pContext && glXGetCurrentDrawable() == m_nSurface;
}

bool GlxContext::MakeCurrent() {
    ReleaseCurrentEgl();
    if (glXMakeContextCurrent(m_connection.Get(), m_nSurface, m_nSurface, static_cast<GLXContext>(m_pContext)) == True)
        return true;
    ReleaseCurrentGlx();
    return false;
}

void GlxContext::Delete() {
    if (m_pContext == nullptr) return;
    const GLXContext context = static_cast<GLXContext>(m_pContext);
    if (glXGetCurrentContext() == context) ReleaseCurrentGlx();
    glXDestroyContext(m_connection.Get(), context);
    m_pContext = nullptr;
}

// Set only when it changes: a driver may first wait for the frames before.
void GlxContext::SwapBuffers(SwapWait wait) {
    if (wait == SwapWait::Never && !m_bIntervalFound) FindSwapInterval();
    if (wait != m_wait && m_setInterval) m_setInterval(wait == SwapWait::Never ? 0 : m_nDriverInterval);
    m_wait = wait;
    glXSwapBuffers(m_connection.Get(), m_nSurface);
}

// GLX_SGI_swap_control alone is of no use: its interval cannot be read, and 0 is an error. The context is current.
void GlxContext::FindSwapInterval() {
    m_bIntervalFound = true;
    Display* const display = m_connection.Get();
    if (HasExtension(display, m_nScreen, "GLX_EXT_swap_control")) {
        const auto set = EntryPoint<PFNGLXSWAPINTERVALEXTPROC>("glXSwapIntervalEXT");
        unsigned interval = 0, tears = 0;  // a negative interval is reported as two values
        glXQueryDrawable(display, m_nSurface, GLX_SWAP_INTERVAL_EXT, &interval);
        if (HasExtension(display, m_nScreen, "GLX_EXT_swap_control_tear"))
            glXQueryDrawable(display, m_nSurface, GLX_LATE_SWAPS_TEAR_EXT, &tears);
        m_nDriverInterval = static_cast<int>(interval) * (tears != 0 ? -1 : 1);
        if (set != nullptr) m_setInterval = [=, this](int value) { set(display, m_nSurface, value); };
    } else if (HasExtension(display, m_nScreen, "GLX_MESA_swap_control")) {
        const auto get = EntryPoint<PFNGLXGETSWAPINTERVALMESAPROC>("glXGetSwapIntervalMESA");
        const auto set = EntryPoint<PFNGLXSWAPINTERVALMESAPROC>("glXSwapIntervalMESA");
        if (get != nullptr) m_nDriverInterval = get();
        if (set != nullptr) m_setInterval = [set](int value) { set(static_cast<unsigned>(value)); };
    }
    if (m_nDriverInterval == 0) m_setInterval = {};
}
