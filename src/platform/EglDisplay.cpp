// Finds EGL displays that need no window system, and notes when somebody else in the process has terminated one.
#include "platform/EglDisplay.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>

#include <algorithm>
#include <array>
#include <memory>
#include <mutex>
#include <string_view>
#include <utility>
#include <vector>

#include "KV_ScenePane/ScenePane.h"
#include "platform/EglCandidates.h"

namespace {

using Source = EglCandidate::Source;

// Of a pbuffer of one row that marks a display. It is gone after an eglTerminate() of the host; no other surface has
// this size by chance.
constexpr EGLint kMarkWidth = 1147;

/// @param text  names with spaces between them; may be null
bool HasWord(const char* text, std::string_view name) {
    std::string_view rest = text == nullptr ? "" : text;
    while (!rest.empty()) {
        const std::string_view word = rest.substr(0, rest.find(' '));
        if (word == name) return true;
        rest.remove_prefix(std::min(rest.size(), word.size() + 1));
    }
    return false;
}

/// @param display  EGL_NO_DISPLAY for the extensions of the client library
bool HasExtension(EGLDisplay display, std::string_view name) {
    return HasWord(eglQueryString(display, EGL_EXTENSIONS), name);
}

/// Null when the library does not have the function.
template <typename Function>
Function EntryPoint(const char* name) {
    return reinterpret_cast<Function>(eglGetProcAddress(name));
}

// ---- what there is

// Mesa's software device also has an extension of the direct rendering manager, so its own mark is asked first.
bool IsSoftware(const char* deviceExtensions) {
    if (HasWord(deviceExtensions, "EGL_MESA_device_software")) return true;
    return !HasWord(deviceExtensions, "EGL_EXT_device_drm") && !HasWord(deviceExtensions, "EGL_NV_device_cuda");
}

EglDevice DescribeDevice(EGLDeviceEXT handle) {
    const auto queryString = EntryPoint<PFNEGLQUERYDEVICESTRINGEXTPROC>("eglQueryDeviceStringEXT");
    if (queryString == nullptr) return {handle, true, ""};
    const char* const extensions = queryString(handle, EGL_EXTENSIONS);
    EglDevice device{handle, IsSoftware(extensions), ""};
    if (!device.software && HasWord(extensions, "EGL_EXT_device_drm"))
        if (const char* const file = queryString(handle, EGL_DRM_DEVICE_FILE_EXT)) device.file = file;
    return device;
}

// Asked again for each viewer: a device may have been plugged in or a driver loaded since.
EglOffers AskForOffers() {
    EglOffers offers;
    if (EntryPoint<PFNEGLGETPLATFORMDISPLAYEXTPROC>("eglGetPlatformDisplayEXT") == nullptr) return offers;
    offers.surfaceless = HasExtension(EGL_NO_DISPLAY, "EGL_MESA_platform_surfaceless");
    const auto queryDevices = EntryPoint<PFNEGLQUERYDEVICESEXTPROC>("eglQueryDevicesEXT");
    const bool enumerates = HasExtension(EGL_NO_DISPLAY, "EGL_EXT_device_enumeration") ||
                            HasExtension(EGL_NO_DISPLAY, "EGL_EXT_device_base");
    if (queryDevices == nullptr || !enumerates || !HasExtension(EGL_NO_DISPLAY, "EGL_EXT_platform_device"))
        return offers;
    std::array<EGLDeviceEXT, 32> devices{};
    EGLint count = 0;
    if (queryDevices(static_cast<EGLint>(devices.size()), devices.data(), &count) != EGL_TRUE) return offers;
    offers.listsDevices = true;
    for (EGLint i = 0; i < count; ++i) offers.devices.push_back(DescribeDevice(devices[static_cast<std::size_t>(i)]));
    return offers;
}

// ---- the displays of the process

/// One that was asked for. Entries are never removed, so that their addresses and counts stay.
struct SharedDisplay {
    Source source;
    void* device;
    EGLDisplay handle = EGL_NO_DISPLAY;
    bool refused = false;  ///< it draws nothing; not asked again as long as another one draws
    bool createContext = false;
    EGLSurface mark = EGL_NO_SURFACE;  ///< made with each initialisation: gone means that somebody terminated it
    EGLConfig config = nullptr;        ///< of the mark
    std::uint32_t generation = 0;      ///< number of its last initialisation
    std::vector<std::pair<ContextAttributes, bool>> versions;  ///< that were tried since the initialisation
};

std::mutex g_lock;                     // guards the table, its entries and the count
std::uint32_t g_nInitialisations = 0;  // of all displays: two entries may turn out to be one display of EGL
std::vector<std::unique_ptr<SharedDisplay>>& Table() {
    // Not destroyed at the exit of the process: a viewer that is a static object of the host may end later.
    static auto& table = *new std::vector<std::unique_ptr<SharedDisplay>>;
    return table;
}

SharedDisplay& EntryOf(const EglCandidate& candidate) {
    auto& table = Table();
    const auto found = std::find_if(table.begin(), table.end(), [&](const auto& entry) {
        return entry->source == candidate.source && entry->device == candidate.device;
    });
    if (found != table.end()) return **found;
    table.push_back(std::make_unique<SharedDisplay>());
    table.back()->source = candidate.source;
    table.back()->device = candidate.device;
    return *table.back();
}

EGLDisplay HandleOf(Source source, void* device) {
    if (source == Source::DefaultDisplay) return eglGetDisplay(EGL_DEFAULT_DISPLAY);
    const auto getPlatformDisplay = EntryPoint<PFNEGLGETPLATFORMDISPLAYEXTPROC>("eglGetPlatformDisplayEXT");
    return source == Source::Surfaceless ? getPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, nullptr, nullptr)
                                         : getPlatformDisplay(EGL_PLATFORM_DEVICE_EXT, device, nullptr);
}

bool HasMark(const SharedDisplay& entry) {
    EGLint width = 0;
    return entry.mark != EGL_NO_SURFACE && eglQuerySurface(entry.handle, entry.mark, EGL_WIDTH, &width) == EGL_TRUE &&
           width == kMarkWidth;
}

/// Initialises the display when it is not, and gives it a new mark then. EGL 1.5 has contexts by version and profile in
/// its core; before it they are an extension.
bool Initialise(SharedDisplay& entry) {
    if (HasMark(entry)) return true;
    entry.mark = EGL_NO_SURFACE;
    if (entry.handle == EGL_NO_DISPLAY) entry.handle = HandleOf(entry.source, entry.device);
    EGLint major = 0, minor = 0;
    if (entry.handle == EGL_NO_DISPLAY || eglInitialize(entry.handle, &major, &minor) != EGL_TRUE) return false;
    const EGLint wanted[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT, EGL_NONE};
    EGLint count = 0;
    if (eglChooseConfig(entry.handle, wanted, &entry.config, 1, &count) != EGL_TRUE || count < 1) return false;
    const EGLint size[] = {EGL_WIDTH, kMarkWidth, EGL_HEIGHT, 1, EGL_NONE};
    entry.mark = eglCreatePbufferSurface(entry.handle, entry.config, size);
    entry.createContext =
        std::pair(major, minor) >= std::pair(1, 5) || HasExtension(entry.handle, "EGL_KHR_create_context");
    entry.generation = ++g_nInitialisations;
    entry.versions.clear();
    return entry.mark != EGL_NO_SURFACE;
}

/// Whether it is known to draw on a device of hardware.
bool IsHardware(const SharedDisplay& entry) {
    const auto queryAttribute = EntryPoint<PFNEGLQUERYDISPLAYATTRIBEXTPROC>("eglQueryDisplayAttribEXT");
    EGLAttrib device = 0;
    if (queryAttribute == nullptr || queryAttribute(entry.handle, EGL_DEVICE_EXT, &device) != EGL_TRUE || device == 0)
        return false;
    // NOLINTNEXTLINE(performance-no-int-to-ptr): EGL returns the handle as a number
    return !DescribeDevice(reinterpret_cast<EGLDeviceEXT>(device)).software;
}

bool MakesContext(const SharedDisplay& entry, const ContextAttributes& wanted) {
    PixelFormatAttributes format;
    format.stencilBits = 8;  // as the bootstrap
    const EGLConfig config = FindEglConfig(entry.handle, format);
    if (config == nullptr) return false;
    void* const context = CreateEglContext(entry.handle, config, wanted);
    return context != EGL_NO_CONTEXT && eglDestroyContext(entry.handle, context) == EGL_TRUE;
}

/// The same with the answer kept: making a context costs some milliseconds.
bool HasVersion(SharedDisplay& entry, const ContextAttributes& wanted) {
    for (const auto& [version, made] : entry.versions)
        if (version.major == wanted.major && version.minor == wanted.minor) return made;
    entry.versions.emplace_back(wanted, MakesContext(entry, wanted));
    return entry.versions.back().second;
}

EglFit FitOf(SharedDisplay& entry, int gpu, const ContextAttributes& wanted) {
    if (entry.refused) return EglFit::None;
    entry.refused = !Initialise(entry);
    // The surfaceless display draws on hardware where Mesa has a driver for it.
    if (entry.refused || (gpu == KV_ScenePane::WindowRequest::kSoftware && IsHardware(entry))) return EglFit::None;
    return HasVersion(entry, wanted) ? EglFit::Version : EglFit::Display;
}

std::string NoDisplayReason(const EglOffers& offers, int gpu) {
    using KV_ScenePane::WindowRequest;
    if (gpu == WindowRequest::kAnyGpu) return "EGL offers no display that draws OpenGL without a window";
    if (gpu == WindowRequest::kSoftware) return "EGL offers no OpenGL that is drawn by the processor";
    const int count = CountHardwareDevices(offers);
    const std::string number = std::to_string(gpu);
    if (gpu >= 0 && gpu < count) return "Graphics device " + number + " draws no OpenGL without a window";
    return "There is no graphics device " + number + ": EGL lists " + (count == 0 ? "none" : std::to_string(count));
}

EGLint Value(EGLDisplay display, EGLConfig config, EGLint attribute) {
    EGLint value = 0;
    eglGetConfigAttrib(display, config, attribute, &value);
    return value;
}

}  // namespace

// A failure is not kept: a display may become available later, for example when a driver is loaded.
EglDisplay SharedEglDisplay(int gpu, const ContextAttributes& wanted, std::string* reason) {
    const std::lock_guard guard(g_lock);
    const EglOffers offers = AskForOffers();
    const std::vector<EglCandidate> candidates = OrderEglCandidates(offers, gpu);
    const int chosen = ChooseEglCandidate(
        candidates, [&](const EglCandidate& candidate) { return FitOf(EntryOf(candidate), gpu, wanted); });
    if (chosen < 0) {
        for (const EglCandidate& candidate : candidates) EntryOf(candidate).refused = false;
        if (reason != nullptr) *reason = NoDisplayReason(offers, gpu);
        return {};
    }
    const EglCandidate& candidate = candidates[static_cast<std::size_t>(chosen)];
    const SharedDisplay& entry = EntryOf(candidate);
    return {entry.handle, entry.createContext, candidate.name, entry.generation};
}

bool IsEglDisplayAlive(const EglDisplay& display) {
    const std::lock_guard guard(g_lock);
    const auto& table = Table();
    return std::any_of(table.begin(), table.end(), [&](const auto& entry) {
        return entry->handle == display.handle && entry->generation == display.generation && HasMark(*entry);
    });
}

void* CreateEglContext(void* display, void* config, const ContextAttributes& wanted) {
    const ScopedDesktopOpenGl desktop;
    const EGLint attributes[] = {EGL_CONTEXT_MAJOR_VERSION,
                                 wanted.major,
                                 EGL_CONTEXT_MINOR_VERSION,
                                 wanted.minor,
                                 EGL_CONTEXT_OPENGL_PROFILE_MASK,
                                 EGL_CONTEXT_OPENGL_COMPATIBILITY_PROFILE_BIT,
                                 EGL_NONE};
    return eglCreateContext(display, config, EGL_NO_CONTEXT, attributes);
}

void* FindEglConfig(void* display, const PixelFormatAttributes& attributes) {
    const EGLint colorSize = std::min(attributes.colorBits / 4, 8);  // per channel
    const EGLint wanted[] = {EGL_SURFACE_TYPE,
                             EGL_PBUFFER_BIT,
                             EGL_RENDERABLE_TYPE,
                             EGL_OPENGL_BIT,
                             EGL_RED_SIZE,
                             colorSize,
                             EGL_GREEN_SIZE,
                             colorSize,
                             EGL_BLUE_SIZE,
                             colorSize,
                             EGL_ALPHA_SIZE,
                             attributes.alphaBits,
                             EGL_DEPTH_SIZE,
                             attributes.depthBits,
                             EGL_STENCIL_SIZE,
                             attributes.stencilBits,
                             EGL_SAMPLE_BUFFERS,
                             attributes.sampleBuffers,
                             EGL_SAMPLES,
                             attributes.samples,
                             EGL_NONE};
    // EGL sorts the smallest first; EGL_SAMPLES is only a minimum for it.
    EGLint count = 0;
    if (eglChooseConfig(display, wanted, nullptr, 0, &count) != EGL_TRUE || count <= 0) return nullptr;
    std::vector<EGLConfig> configs(static_cast<std::size_t>(count));
    if (eglChooseConfig(display, wanted, configs.data(), count, &count) != EGL_TRUE) return nullptr;
    configs.resize(static_cast<std::size_t>(count));
    const auto exact = std::find_if(configs.begin(), configs.end(), [&](EGLConfig config) {
        return Value(display, config, EGL_SAMPLES) == attributes.samples;
    });
    return exact == configs.end() ? nullptr : *exact;
}

ScopedDesktopOpenGl::ScopedDesktopOpenGl() : m_former(eglQueryAPI()) { eglBindAPI(EGL_OPENGL_API); }
ScopedDesktopOpenGl::~ScopedDesktopOpenGl() { eglBindAPI(m_former); }
