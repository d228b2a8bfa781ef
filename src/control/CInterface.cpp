// The viewer for programs in C: its life, its window, input, and the debugger output. The calls by id are in
// CInterfaceCalls.cpp, pictures, cuts and alignments in CInterfaceScene.cpp.
#include <algorithm>
#include <cstddef>
#include <cstring>
#include <new>
#include <stdexcept>

#include "KV_ScenePane/DebugOutput.h"
#include "KV_ScenePane/PathText.h"
#include "control/CInterfacePane.h"

using KV_ScenePane::WindowRequest;

namespace {

/// Text of kv_last_error(). A text that memory is too short for becomes "out of memory".
struct LastError {
    std::string text;
    bool isMemoryShort = false;
};
LastError& TheLastError() {
    static thread_local LastError error;
    return error;
}

constexpr std::size_t kRequestSize = sizeof(kv_window_request);
constexpr std::size_t kSmallestRequest = offsetof(kv_window_request, x);

/// Copies the members that the caller's struct has; the others keep their defaults.
/// @return false with kv_last_error() when the struct is of a later version and asks for something unknown
bool ReadRequest(const kv_window_request& given, kv_window_request* request) {
    const std::size_t size = given.size;
    if (size < kSmallestRequest || size % alignof(kv_window_request) != 0) {
        SetLastError("kv_create: the member size must be sizeof(kv_window_request), not " + std::to_string(size));
        return false;
    }
    const auto* bytes = reinterpret_cast<const unsigned char*>(&given);
    for (std::size_t i = kRequestSize; i < size; ++i)
        if (bytes[i] != 0) {
            SetLastError("kv_create: the request is of a later version: its size is " + std::to_string(size) +
                         ", this library knows " + std::to_string(kRequestSize) + " bytes");
            return false;
        }
    kv_window_request_init(request);
    std::memcpy(request, &given, std::min(size, kRequestSize));
    return true;
}

WindowRequest ToRequest(const kv_window_request& given) {
    WindowRequest request;
    request.kind = static_cast<WindowRequest::Kind>(given.kind);
    request.parent = given.parent;
    if (given.display != nullptr) request.display = given.display;
    request.x = given.x, request.y = given.y;
    request.width = given.width, request.height = given.height;
    if (given.title != nullptr) request.title = KV_ScenePane::WidePath(given.title);
    request.glMajor = given.gl_major, request.glMinor = given.gl_minor;
    request.samples = given.samples;
    request.gpu = given.gpu;
    request.scale = given.scale;
    if (given.show_message != nullptr)
        request.showMessage = [show = given.show_message, user = given.user](const std::string& text) {
            CheckAnswer(show(user, text.c_str()), "show_message");
        };
    if (given.show_about != nullptr)
        request.showAbout = [show = given.show_about, user = given.user](const KV_ScenePane::AboutText& text) {
            CheckAnswer(show(user, text.title.c_str(), text.line.c_str()), "show_about");
        };
    return request;
}

static_assert(static_cast<int>(WindowRequest::Kind::Child) == KV_CHILD);
static_assert(static_cast<int>(WindowRequest::Kind::TopLevel) == KV_TOP_LEVEL);
static_assert(static_cast<int>(WindowRequest::Kind::OffScreen) == KV_OFF_SCREEN);
static_assert(static_cast<int>(WindowRequest::Kind::NoPicture) == KV_NO_PICTURE);
static_assert(WindowRequest::kAnyGpu == KV_ANY_GPU && WindowRequest::kSoftware == KV_SOFTWARE);

using MouseKind = KV_ScenePane::MouseInput::Kind;
static_assert(static_cast<int>(MouseKind::Move) == KV_MOUSE_MOVE);
static_assert(static_cast<int>(MouseKind::LeftDown) == KV_MOUSE_LEFT_DOWN);
static_assert(static_cast<int>(MouseKind::LeftUp) == KV_MOUSE_LEFT_UP);
static_assert(static_cast<int>(MouseKind::MiddleDown) == KV_MOUSE_MIDDLE_DOWN);
static_assert(static_cast<int>(MouseKind::MiddleUp) == KV_MOUSE_MIDDLE_UP);
static_assert(static_cast<int>(MouseKind::RightDown) == KV_MOUSE_RIGHT_DOWN);
static_assert(static_cast<int>(MouseKind::RightUp) == KV_MOUSE_RIGHT_UP);
static_assert(static_cast<int>(MouseKind::DoubleClick) == KV_MOUSE_DOUBLE_CLICK);
static_assert(static_cast<int>(MouseKind::Wheel) == KV_MOUSE_WHEEL);
static_assert(KV_ScenePane::kMouseLeft == KV_MOUSE_LEFT && KV_ScenePane::kMouseRight == KV_MOUSE_RIGHT);
static_assert(KV_ScenePane::kMouseShift == KV_MOUSE_SHIFT && KV_ScenePane::kMouseCtrl == KV_MOUSE_CTRL);
static_assert(KV_ScenePane::kMouseMiddle == KV_MOUSE_MIDDLE);

}  // namespace

// ---- what the functions share

void SetLastError(std::string_view text) noexcept {
    LastError& error = TheLastError();
    try {
        error.text.assign(text);
        error.isMemoryShort = false;
    } catch (...) {
        error.isMemoryShort = true;
    }
}

kv_status RefuseNull(std::string_view name, std::string_view what) {
    SetLastError(std::string(name).append(": ").append(what));
    return KV_BAD_ARGUMENTS;
}

void CheckAnswer(std::int32_t answer, std::string_view callback) {
    if (answer != 0) throw HandlerFailure(std::string(callback) + " returned " + std::to_string(answer));
}

kv_status ReportException(std::string_view function) noexcept {
    try {
        throw;
    } catch (const HandlerFailure& failure) {
        SetLastError(failure.what());
        return KV_HANDLER_FAILED;
    } catch (const std::bad_alloc&) {
        SetLastError("out of memory");
    } catch (const std::length_error&) {  // of a container that is asked for more than any memory holds
        SetLastError("out of memory");
    } catch (const std::exception& error) {
        try {
            SetLastError(std::string(function) + ": " + error.what());
        } catch (...) {
            SetLastError("out of memory");
        }
    } catch (...) {
        SetLastError("an exception of an unknown type");
    }
    return KV_FAILED;
}

bool IsUsable(const kv_pane* pane, std::string_view function) noexcept {
    if (pane != nullptr && pane->m_pViewer != nullptr) [[likely]]
        return true;
    try {
        SetLastError(std::string(function) + (pane == nullptr ? ": the viewer is null" : ": the viewer is destroyed"));
    } catch (...) {
        SetLastError("out of memory");
    }
    return false;
}

// ---- life of a viewer

void kv_window_request_init(kv_window_request* request) {
    // A program that was compiled with this header allocates these bytes only: a longer struct of a later version
    // needs another function to fill it.
    static_assert(kRequestSize == 104);
    if (request == nullptr) return SetLastError("kv_window_request_init: the request is null");
    *request = kv_window_request{};
    request->size = kRequestSize;
    request->kind = KV_OFF_SCREEN;
    request->width = 640, request->height = 480;
    request->gl_major = 3, request->gl_minor = 3;
    request->gpu = KV_ANY_GPU;
    request->scale = 1;
}

kv_pane* kv_create(const kv_window_request* request) {
    try {
        kv_window_request known;
        if (request == nullptr) {
            SetLastError("kv_create: the request is null");
            return nullptr;
        }
        if (!ReadRequest(*request, &known)) return nullptr;
        if (known.kind < KV_CHILD || known.kind > KV_NO_PICTURE) {
            SetLastError("kv_create: kind must be KV_CHILD to KV_NO_PICTURE, 0 to 3, not " +
                         std::to_string(known.kind));
            return nullptr;
        }
        auto pane = std::make_unique<kv_pane>();
        std::string reason;
        pane->m_pViewer = KV_ScenePane::CreateScenePane(ToRequest(known), &reason);
        if (pane->m_pViewer != nullptr) return pane.release();
        SetLastError(reason);
    } catch (...) {
        ReportException("kv_create");
    }
    return nullptr;
}

void kv_destroy(kv_pane* pane) {
    if (pane == nullptr || pane->m_pViewer == nullptr) return;
    pane->m_pViewer.reset();
    if (pane->m_nCalls == 0) delete pane;  // else the outermost call frees it
}

const char* kv_version(void) { return KV_VERSION; }

int32_t kv_version_number(void) { return KV_ScenePane::LibraryVersion(); }

const char* kv_last_error(void) {
    const LastError& error = TheLastError();
    return error.isMemoryShort ? "out of memory" : error.text.c_str();
}

// ---- the window

int kv_event_descriptor(const kv_pane* pane) {
    return IsUsable(pane, "kv_event_descriptor") ? pane->m_pViewer->EventDescriptor() : -1;
}

kv_status kv_process_events(kv_pane* pane) {
    return CallViewer(pane, "kv_process_events", [](KV_ScenePane::ScenePane& viewer) {
        viewer.ProcessEvents();
        return KV_DONE;
    });
}

int32_t kv_has_window(const kv_pane* pane) {
    return IsUsable(pane, "kv_has_window") && pane->m_pViewer->HasWindow() ? 1 : 0;
}

uintptr_t kv_native_window(const kv_pane* pane) {
    return IsUsable(pane, "kv_native_window") ? pane->m_pViewer->NativeWindow() : 0;
}

kv_status kv_reparent(kv_pane* pane, uintptr_t parent, int32_t x, int32_t y) {
    return CallViewer(pane, "kv_reparent", [&](KV_ScenePane::ScenePane& viewer) {
        if (viewer.Reparent(parent, x, y)) return KV_DONE;
        SetLastError("kv_reparent: " + std::to_string(parent) + " is not a window that this viewer can move into");
        return KV_FAILED;
    });
}

kv_status kv_set_scale(kv_pane* pane, double scale) {
    return CallViewer(pane, "kv_set_scale", [&](KV_ScenePane::ScenePane& viewer) {
        viewer.SetScale(scale);
        return KV_DONE;
    });
}

kv_status kv_send_mouse(kv_pane* pane, int32_t kind, uint32_t flags, int32_t x, int32_t y, int32_t delta) {
    return CallViewer(pane, "kv_send_mouse", [&](KV_ScenePane::ScenePane& viewer) {
        if (kind < KV_MOUSE_MOVE || kind > KV_MOUSE_WHEEL) {
            SetLastError("kv_send_mouse: kind must be KV_MOUSE_MOVE to KV_MOUSE_WHEEL, 0 to 8, not " +
                         std::to_string(kind));
            return KV_BAD_ARGUMENTS;
        }
        viewer.SendMouse({.kind = static_cast<MouseKind>(kind), .flags = flags, .x = x, .y = y, .delta = delta});
        return KV_DONE;
    });
}

kv_status kv_send_key(kv_pane* pane, int32_t is_down, int32_t code, int32_t count, int32_t flags) {
    return CallViewer(pane, "kv_send_key", [&](KV_ScenePane::ScenePane& viewer) {
        viewer.SendKey({.isDown = is_down != 0, .nChar = code, .nRepCnt = count, .nFlags = flags});
        return KV_DONE;
    });
}

// ---- the debugger output

void kv_set_debug_output(kv_debug_function function, void* user) {
    try {
        if (function == nullptr) return KV_ScenePane::SetDebugOutputSink({});
        KV_ScenePane::SetDebugOutputSink(
            [function, user](std::string_view text) { function(user, text.data(), text.size()); });
    } catch (...) {
        ReportException("kv_set_debug_output");
    }
}
