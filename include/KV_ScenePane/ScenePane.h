// Making a viewer: in a window of the host, in a window of its own, or without any display.
#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "KV_ScenePane/Input.h"
#include "KV_ScenePane/_DKV_ScenePane.h"
#include "KV_ScenePane/_DKV_ScenePaneEvents.h"

namespace KV_ScenePane {

/// Where a viewer shall show itself.
struct WindowRequest {
    enum class Kind {
        Child,      ///< a child of the X11 window @c parent of the host
        TopLevel,   ///< an X11 window of its own
        OffScreen,  ///< a surface without a display, by EGL
        NoPicture   ///< no surface and no OpenGL: imports and their results only
    };
    Kind kind = Kind::OffScreen;
    std::uintptr_t parent = 0;      ///< X11 window id, for Child
    std::string display;            ///< X display name; empty takes $DISPLAY
    int x = 0, y = 0;               ///< place in the parent, pixels
    int width = 640, height = 480;  ///< pixels
    std::wstring title = L"KV_ScenePane";
    int glMajor = 3, glMinor = 3;  ///< requested OpenGL version, compatibility profile
    int samples = 0;               ///< requested samples a pixel
    /// Shows a message that the user must see, and returns when it was read. Without one it goes to the debugger
    /// output.
    std::function<void(const std::string& text)> showMessage;
};

/// What an object carries beside what the automation surface tells.
struct ObjectInfo {
    std::wstring name;             ///< the path it came from, or empty
    bool hasVertexColors = false;  ///< its vertices carry colours of their own
};

/// A picture as the window shows it.
struct Picture {
    int width = 0, height = 0;
    std::vector<std::uint32_t> pixels;  ///< 0xAARRGGBB, row after row, top row first
};

/// One viewer. Everything is called on the thread that made it; its destruction closes the window.
/// Several viewers may live in one process.
class ScenePane {
public:
    virtual ~ScenePane() = default;

    [[nodiscard]] virtual _DKV_ScenePane& Methods() = 0;

    /// @param events  the host's; must outlive the viewer or be disconnected with null
    virtual void Connect(_DKV_ScenePaneEvents* events) = 0;

    /// A descriptor that is readable when ProcessEvents() has work: for poll(), QSocketNotifier, g_unix_fd_add ...
    [[nodiscard]] virtual int EventDescriptor() const = 0;
    /// Handles what waits: window messages, posted messages, timers, queued repaints. Never blocks.
    virtual void ProcessEvents() = 0;

    /// False once the window is gone: the host destroyed it, or a recreation of the context failed.
    [[nodiscard]] virtual bool HasWindow() const = 0;
    /// The X11 window id; 0 without one.
    [[nodiscard]] virtual std::uintptr_t NativeWindow() const = 0;
    /// Moves a Child into another window of the host. False when that is not an X11 window; the viewer stays.
    virtual bool Reparent(std::uintptr_t parent, int x, int y) = 0;

    /// Input as a window would get it: the only way into an off-screen viewer, and for a host whose toolkit keeps the
    /// mouse or the keys to itself.
    virtual void SendMouse(const MouseInput& input) = 0;
    virtual void SendKey(const KeyInput& input) = 0;

    /// False for an index outside the list; @p info is then untouched.
    virtual bool GetObjectInfo(std::int16_t idx, ObjectInfo* info) = 0;

    /// Draws a frame now and hands out its picture; false without a picture to draw, or while painting is blocked.
    virtual bool CapturePicture(Picture* picture) = 0;
};

/// Makes a viewer.
/// @param reason  takes, in clear words, why there is none (no display, not an X11 window, no OpenGL); may be null
/// @return null when the window was refused. Never throws but for exhausted memory
[[nodiscard]] __attribute__((visibility("default"))) std::unique_ptr<ScenePane> CreateScenePane(
    const WindowRequest& request, std::string* reason);

}  // namespace KV_ScenePane
