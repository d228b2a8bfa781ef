// Each entry point that the stand-in replaces is defined and exported here under its own name. The real ones are looked
// up in the libraries of OpenGL by name, never by RTLD_NEXT: a program may have loaded these libraries later.
#define GL_GLEXT_PROTOTYPES
#define GLX_GLXEXT_PROTOTYPES
#include "support/DriverStandIn.h"

#include <EGL/egl.h>
#include <GL/gl.h>
#include <GL/glext.h>
#include <GL/glx.h>
#include <GL/glxext.h>
#include <dlfcn.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

namespace {

using Procedure = void (*)();

void* LibrarySymbol(const char* library, const char* name) {
    void* const handle = dlopen(library, RTLD_NOW | RTLD_GLOBAL);
    void* const symbol = handle == nullptr ? nullptr : dlsym(handle, name);
    if (symbol != nullptr) return symbol;
    std::fprintf(stderr, "driver stand-in: %s has no %s\n", library, name);
    std::abort();
}

template <class Function>
Function* RealGlx(const char* name) {
    return reinterpret_cast<Function*>(LibrarySymbol("libGLX.so.0", name));
}

template <class Function>
Function* RealEgl(const char* name) {
    return reinterpret_cast<Function*>(LibrarySymbol("libEGL.so.1", name));
}

Procedure RealGlxProcedure(const GLubyte* name) {
    static const auto real = RealGlx<Procedure(const GLubyte*)>("glXGetProcAddressARB");
    return real(name);
}

/// Of OpenGL: the same address for all contexts, whether GLX or EGL made them.
template <class Function>
Function* RealGl(const char* name) {
    return reinterpret_cast<Function*>(RealGlxProcedure(reinterpret_cast<const GLubyte*>(name)));
}

/// The real function of an entry point of OpenGL, looked up once.
#define KV_REAL(function)                                               \
    ([]() -> decltype(&(function)) {                                    \
        static const auto real = RealGl<decltype(function)>(#function); \
        return real;                                                    \
    }())

// ---- state

std::mutex g_mutex;
DriverFaults g_faults;  // guarded by g_mutex, as all below
DriverCounters g_counters;
std::map<std::uintptr_t, int> g_intervals;  // by drawable; 1 where there is no entry
thread_local bool t_outOfMemory = false;    // what glGetError() reports next

bool IsOn(const char* name) {
    const char* const text = std::getenv(name);
    return text != nullptr && std::strcmp(text, "0") != 0 && text[0] != '\0';
}

void ReadEnvironment(DriverFaults& faults) {
    faults.dropDepth = IsOn("KV_STAND_IN_DROP_DEPTH");
    faults.garbageBackBuffer = IsOn("KV_STAND_IN_GARBAGE_BACK_BUFFER");
    if (const char* const text = std::getenv("KV_STAND_IN_FAIL_UPLOAD")) {
        faults.failUpload = std::atoi(text);
        if (const char* const colon = std::strchr(text, ':')) faults.failUploadCount = std::atoi(colon + 1);
    }
    if (const char* const text = std::getenv("KV_STAND_IN_BLANK_MS")) faults.blankMs = std::strtod(text, nullptr);
    if (const char* const text = std::getenv("KV_STAND_IN_SWAP_CONTROL")) {
        const std::string_view list(text);
        faults.swapControlExt = list.find("EXT") != std::string_view::npos;
        faults.swapControlMesa = list.find("MESA") != std::string_view::npos;
        faults.swapControlSgi = list.find("SGI") != std::string_view::npos;
    }
}

void WriteReport() {
    const char* const file = std::getenv("KV_STAND_IN_REPORT");
    if (file == nullptr) return;
    const DriverCounters counters = ReadDriverCounters();
    std::ofstream(file) << "swaps " << counters.swaps << "\nwaits " << counters.waits << "\nuploads "
                        << counters.uploads << "\nfailedUploads " << counters.failedUploads << "\nbackBufferReads "
                        << counters.backBufferReads << "\nqueries " << counters.queries << "\n";
}

/// The environment is read once, before the first use of the state.
class LockedState {
public:
    LockedState() : m_lock(g_mutex) {
        static const bool read = [] {
            ReadEnvironment(g_faults);
            std::atexit(WriteReport);
            return true;
        }();
        static_cast<void>(read);
    }

private:
    std::lock_guard<std::mutex> m_lock;
};

DriverFaults Faults() {
    const LockedState state;
    return g_faults;
}

void Count(std::int64_t DriverCounters::*counter) {
    const LockedState state;
    ++(g_counters.*counter);
}

// ---- swaps

/// Fills what a fault makes undefined in framebuffer 0 of the current context. Restores all state it changes.
void SpoilFramebuffer(const DriverFaults& faults) {
    const GLbitfield what = (faults.garbageBackBuffer ? GLbitfield{GL_COLOR_BUFFER_BIT} : 0U) |
                            (faults.dropDepth ? GLbitfield{GL_DEPTH_BUFFER_BIT} : 0U);
    if (what == 0) return;
    GLint framebuffer = 0, drawBuffer = 0;
    GLboolean isDouble = GL_FALSE, depthMask = GL_FALSE;
    std::array<GLboolean, 4> colorMask{};
    std::array<GLfloat, 4> clearColor{};
    GLdouble clearDepth = 1;
    KV_REAL(glGetIntegerv)(GL_DRAW_FRAMEBUFFER_BINDING, &framebuffer);
    KV_REAL(glBindFramebuffer)(GL_DRAW_FRAMEBUFFER, 0);
    KV_REAL(glGetIntegerv)(GL_DRAW_BUFFER, &drawBuffer);
    KV_REAL(glGetBooleanv)(GL_DOUBLEBUFFER, &isDouble);
    KV_REAL(glGetBooleanv)(GL_DEPTH_WRITEMASK, &depthMask);
    KV_REAL(glGetBooleanv)(GL_COLOR_WRITEMASK, colorMask.data());
    KV_REAL(glGetFloatv)(GL_COLOR_CLEAR_VALUE, clearColor.data());
    KV_REAL(glGetDoublev)(GL_DEPTH_CLEAR_VALUE, &clearDepth);
    const GLboolean scissor = KV_REAL(glIsEnabled)(GL_SCISSOR_TEST);

    KV_REAL(glDisable)(GL_SCISSOR_TEST);
    KV_REAL(glDrawBuffer)(isDouble == GL_TRUE ? GL_BACK : GL_FRONT);
    KV_REAL(glDepthMask)(GL_TRUE);
    KV_REAL(glColorMask)(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    KV_REAL(glClearColor)
    (kGarbageColor[0] / 255.0f, kGarbageColor[1] / 255.0f, kGarbageColor[2] / 255.0f, kGarbageColor[3] / 255.0f);
    KV_REAL(glClearDepth)(kDroppedDepth);
    KV_REAL(glClear)(what);

    KV_REAL(glClearDepth)(clearDepth);
    KV_REAL(glClearColor)(clearColor[0], clearColor[1], clearColor[2], clearColor[3]);
    KV_REAL(glColorMask)(colorMask[0], colorMask[1], colorMask[2], colorMask[3]);
    KV_REAL(glDepthMask)(depthMask);
    KV_REAL(glDrawBuffer)(static_cast<GLenum>(drawBuffer));
    if (scissor == GL_TRUE) KV_REAL(glEnable)(GL_SCISSOR_TEST);
    KV_REAL(glBindFramebuffer)(GL_DRAW_FRAMEBUFFER, static_cast<GLuint>(framebuffer));
}

int IntervalOf(std::uintptr_t drawable) {
    const LockedState state;
    const auto found = g_intervals.find(drawable);
    return found == g_intervals.end() ? 1 : found->second;
}

void SetInterval(std::uintptr_t drawable, int interval) {
    const LockedState state;
    g_intervals[drawable] = interval;
}

/// Counts the swap and sleeps for the vertical blanks of the drawable's interval.
void WaitForBlank(std::uintptr_t drawable) {
    Count(&DriverCounters::swaps);
    // A negative interval means its absolute value, without a wait after a late frame.
    const int interval = std::abs(IntervalOf(drawable));
    const double blankMs = Faults().blankMs;
    if (blankMs <= 0 || interval == 0) return;
    Count(&DriverCounters::waits);
    std::this_thread::sleep_for(std::chrono::duration<double, std::milli>(blankMs * interval));
}

// ---- uploads

/// Whether the upload that begins now fails by a fault; counts it.
bool UploadFails(GLsizeiptr size) {
    if (size <= 0) return false;
    const LockedState state;
    const std::int64_t number = ++g_counters.uploads;
    const std::int64_t first = g_faults.failUpload;
    if (first <= 0 || number < first || number >= first + g_faults.failUploadCount) return false;
    ++g_counters.failedUploads;
    t_outOfMemory = true;
    return true;
}

// ---- reads

void CountRead() {
    GLint framebuffer = -1;
    KV_REAL(glGetIntegerv)(GL_READ_FRAMEBUFFER_BINDING, &framebuffer);
    if (framebuffer == 0) Count(&DriverCounters::backBufferReads);
}

// ---- extensions

std::string BetweenSpaces(std::string_view text) { return std::string(" ").append(text).append(" "); }

bool HasWord(std::string_view list, std::string_view word) {
    return BetweenSpaces(list).find(BetweenSpaces(word)) != std::string::npos;
}

/// The driver's list with the extensions of swap intervals that the faults name, and without the others.
std::string WithSwapControl(std::string_view real, const DriverFaults& faults) {
    const std::pair<const char*, bool> chosen[] = {{"GLX_EXT_swap_control", faults.swapControlExt},
                                                   {"GLX_EXT_swap_control_tear", false},
                                                   {"GLX_MESA_swap_control", faults.swapControlMesa},
                                                   {"GLX_SGI_swap_control", faults.swapControlSgi}};
    std::string list = BetweenSpaces(real);
    for (const auto& [name, has] : chosen) {
        const std::string word = BetweenSpaces(name);
        for (std::size_t at = list.find(word); at != std::string::npos; at = list.find(word))
            list.erase(at, word.size() - 1);
        if (has) list.append(name).append(" ");
    }
    return list;
}

/// Passes an interval on to a driver that has the extension itself.
template <class Function, class... Arguments>
void PassInterval(const char* extension, const char* name, Arguments... arguments) {
    Display* const display = glXGetCurrentDisplay();
    if (display == nullptr) return;
    static const auto list = RealGlx<const char*(Display*, int)>("glXQueryExtensionsString");
    const char* const real = list(display, DefaultScreen(display));
    if (real == nullptr || !HasWord(real, extension)) return;
    const auto function = RealGl<Function>(name);
    if (function != nullptr) function(arguments...);
}

Procedure Replacement(std::string_view name);

}  // namespace

extern "C" {

void KvSetDriverFaults(const DriverFaults* faults) {
    const LockedState state;
    g_faults = *faults;
    g_counters = {};
    g_intervals.clear();
    t_outOfMemory = false;
}

void KvReadDriverCounters(DriverCounters* counters) {
    const LockedState state;
    *counters = g_counters;
}

// ---- GLX

void glXSwapBuffers(Display* display, GLXDrawable drawable) {
    static const auto real = RealGlx<decltype(glXSwapBuffers)>("glXSwapBuffers");
    WaitForBlank(drawable);
    real(display, drawable);
    if (glXGetCurrentDrawable() == drawable) SpoilFramebuffer(Faults());
}

void glXSwapIntervalEXT(Display* display, GLXDrawable drawable, int interval) {
    SetInterval(drawable, interval);
    PassInterval<decltype(glXSwapIntervalEXT)>("GLX_EXT_swap_control", "glXSwapIntervalEXT", display, drawable,
                                               interval);
}

int glXSwapIntervalMESA(unsigned int interval) {
    if (glXGetCurrentContext() == nullptr) return GLX_BAD_CONTEXT;
    SetInterval(glXGetCurrentDrawable(), static_cast<int>(interval));
    PassInterval<decltype(glXSwapIntervalMESA)>("GLX_MESA_swap_control", "glXSwapIntervalMESA", interval);
    return 0;
}

int glXGetSwapIntervalMESA() { return IntervalOf(glXGetCurrentDrawable()); }

// This extension alone cannot switch the wait off.
int glXSwapIntervalSGI(int interval) {
    if (glXGetCurrentContext() == nullptr) return GLX_BAD_CONTEXT;
    if (interval <= 0) return GLX_BAD_VALUE;
    SetInterval(glXGetCurrentDrawable(), interval);
    PassInterval<decltype(glXSwapIntervalSGI)>("GLX_SGI_swap_control", "glXSwapIntervalSGI", interval);
    return 0;
}

void glXQueryDrawable(Display* display, GLXDrawable drawable, int attribute, unsigned int* value) {
    static const auto real = RealGlx<decltype(glXQueryDrawable)>("glXQueryDrawable");
    if (attribute == GLX_SWAP_INTERVAL_EXT && Faults().blankMs > 0)
        *value = static_cast<unsigned int>(IntervalOf(drawable));
    else
        real(display, drawable, attribute, value);
}

const char* glXQueryExtensionsString(Display* display, int screen) {
    static const auto real = RealGlx<decltype(glXQueryExtensionsString)>("glXQueryExtensionsString");
    const char* const list = real(display, screen);
    const DriverFaults faults = Faults();
    if (list == nullptr || faults.blankMs <= 0) return list;
    thread_local std::string changed;
    changed = WithSwapControl(list, faults);
    return changed.c_str();
}

Procedure glXGetProcAddressARB(const GLubyte* name) {
    const Procedure replacement = Replacement(reinterpret_cast<const char*>(name));
    return replacement != nullptr ? replacement : RealGlxProcedure(name);
}

Procedure glXGetProcAddress(const GLubyte* name) { return glXGetProcAddressARB(name); }

// ---- EGL

EGLBoolean eglSwapBuffers(EGLDisplay display, EGLSurface surface) {
    static const auto real = RealEgl<decltype(eglSwapBuffers)>("eglSwapBuffers");
    static const auto current = RealEgl<decltype(eglGetCurrentSurface)>("eglGetCurrentSurface");
    WaitForBlank(reinterpret_cast<std::uintptr_t>(surface));
    const EGLBoolean swapped = real(display, surface);
    if (current(EGL_DRAW) == surface) SpoilFramebuffer(Faults());
    return swapped;
}

EGLBoolean eglSwapInterval(EGLDisplay display, EGLint interval) {
    static const auto real = RealEgl<decltype(eglSwapInterval)>("eglSwapInterval");
    static const auto current = RealEgl<decltype(eglGetCurrentSurface)>("eglGetCurrentSurface");
    SetInterval(reinterpret_cast<std::uintptr_t>(current(EGL_DRAW)), interval);
    return real(display, interval);
}

Procedure eglGetProcAddress(const char* name) {
    static const auto real = RealEgl<decltype(eglGetProcAddress)>("eglGetProcAddress");
    const Procedure replacement = Replacement(name);
    return replacement != nullptr ? replacement : real(name);
}

// ---- OpenGL: errors and uploads

GLenum glGetError() {
    if (!t_outOfMemory) return KV_REAL(glGetError)();
    t_outOfMemory = false;
    return GL_OUT_OF_MEMORY;
}

// A failed upload is passed on with size 0: the store that the buffer had is lost, as with a real driver.
void glBufferData(GLenum target, GLsizeiptr size, const void* data, GLenum usage) {
    const bool fails = UploadFails(size);
    KV_REAL(glBufferData)(target, fails ? 0 : size, fails ? nullptr : data, usage);
}

void glNamedBufferData(GLuint buffer, GLsizeiptr size, const void* data, GLenum usage) {
    const bool fails = UploadFails(size);
    KV_REAL(glNamedBufferData)(buffer, fails ? 0 : size, fails ? nullptr : data, usage);
}

void glBufferStorage(GLenum target, GLsizeiptr size, const void* data, GLbitfield flags) {
    if (!UploadFails(size)) KV_REAL(glBufferStorage)(target, size, data, flags);
}

void glNamedBufferStorage(GLuint buffer, GLsizeiptr size, const void* data, GLbitfield flags) {
    if (!UploadFails(size)) KV_REAL(glNamedBufferStorage)(buffer, size, data, flags);
}

// ---- OpenGL: reads of framebuffer 0

void glReadPixels(GLint x, GLint y, GLsizei width, GLsizei height, GLenum format, GLenum type, void* pixels) {
    CountRead();
    KV_REAL(glReadPixels)(x, y, width, height, format, type, pixels);
}

void glCopyPixels(GLint x, GLint y, GLsizei width, GLsizei height, GLenum type) {
    CountRead();
    KV_REAL(glCopyPixels)(x, y, width, height, type);
}

void glCopyTexImage2D(GLenum target, GLint level, GLenum format, GLint x, GLint y, GLsizei width, GLsizei height,
                      GLint border) {
    CountRead();
    KV_REAL(glCopyTexImage2D)(target, level, format, x, y, width, height, border);
}

void glCopyTexSubImage2D(GLenum target, GLint level, GLint toX, GLint toY, GLint x, GLint y, GLsizei width,
                         GLsizei height) {
    CountRead();
    KV_REAL(glCopyTexSubImage2D)(target, level, toX, toY, x, y, width, height);
}

void glBlitFramebuffer(GLint x0, GLint y0, GLint x1, GLint y1, GLint toX0, GLint toY0, GLint toX1, GLint toY1,
                       GLbitfield mask, GLenum filter) {
    CountRead();
    KV_REAL(glBlitFramebuffer)(x0, y0, x1, y1, toX0, toY0, toX1, toY1, mask, filter);
}

// ---- OpenGL: draws

void glDrawArrays(GLenum mode, GLint first, GLsizei count) {
    Count(&DriverCounters::draws);
    KV_REAL(glDrawArrays)(mode, first, count);
}

void glDrawElements(GLenum mode, GLsizei count, GLenum type, const void* indices) {
    Count(&DriverCounters::draws);
    KV_REAL(glDrawElements)(mode, count, type, indices);
}

// ---- OpenGL: queries

GLint glGetUniformLocation(GLuint program, const GLchar* name) {
    Count(&DriverCounters::uniformLookUps);
    return KV_REAL(glGetUniformLocation)(program, name);
}

void glGetBooleanv(GLenum name, GLboolean* values) {
    Count(&DriverCounters::queries);
    KV_REAL(glGetBooleanv)(name, values);
}

void glGetIntegerv(GLenum name, GLint* values) {
    Count(&DriverCounters::queries);
    KV_REAL(glGetIntegerv)(name, values);
}

void glGetFloatv(GLenum name, GLfloat* values) {
    Count(&DriverCounters::queries);
    KV_REAL(glGetFloatv)(name, values);
}

void glGetDoublev(GLenum name, GLdouble* values) {
    Count(&DriverCounters::queries);
    KV_REAL(glGetDoublev)(name, values);
}

GLboolean glIsEnabled(GLenum name) {
    Count(&DriverCounters::queries);
    return KV_REAL(glIsEnabled)(name);
}

}  // extern "C"

namespace {

/// What the ...GetProcAddress functions return for a name; null for all that the stand-in does not replace.
Procedure Replacement(std::string_view name) {
#define KV_ROW(function) \
    { #function, reinterpret_cast < Procedure>(&(function)) }
    static const std::map<std::string_view, Procedure> table{KV_ROW(glXSwapBuffers),
                                                             KV_ROW(glXSwapIntervalEXT),
                                                             KV_ROW(glXSwapIntervalMESA),
                                                             KV_ROW(glXGetSwapIntervalMESA),
                                                             KV_ROW(glXSwapIntervalSGI),
                                                             KV_ROW(glXQueryDrawable),
                                                             KV_ROW(glXQueryExtensionsString),
                                                             KV_ROW(glXGetProcAddress),
                                                             KV_ROW(glXGetProcAddressARB),
                                                             KV_ROW(eglSwapBuffers),
                                                             KV_ROW(eglSwapInterval),
                                                             KV_ROW(eglGetProcAddress),
                                                             KV_ROW(glGetError),
                                                             KV_ROW(glBufferData),
                                                             KV_ROW(glNamedBufferData),
                                                             KV_ROW(glBufferStorage),
                                                             KV_ROW(glNamedBufferStorage),
                                                             KV_ROW(glReadPixels),
                                                             KV_ROW(glCopyPixels),
                                                             KV_ROW(glCopyTexImage2D),
                                                             KV_ROW(glCopyTexSubImage2D),
                                                             KV_ROW(glBlitFramebuffer),
                                                             KV_ROW(glDrawArrays),
                                                             KV_ROW(glDrawElements),
                                                             KV_ROW(glGetUniformLocation),
                                                             KV_ROW(glGetBooleanv),
                                                             KV_ROW(glGetIntegerv),
                                                             KV_ROW(glGetFloatv),
                                                             KV_ROW(glGetDoublev),
                                                             KV_ROW(glIsEnabled)};
#undef KV_ROW
    const auto found = table.find(name);
    return found == table.end() ? nullptr : found->second;
}

}  // namespace
