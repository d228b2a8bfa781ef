// Makes the window object of a request; the window itself comes with Create().
#pragma once
#include <functional>
#include <memory>
#include <string>

#include "platform/PaneWindow.h"

struct PaneWindowRequest {
    enum class Kind { Child, TopLevel, OffScreen, NoPicture };
    Kind kind = Kind::OffScreen;
    std::uintptr_t parent = 0;  ///< X11 window id, for Child
    std::string display;        ///< X display name; empty takes $DISPLAY
    std::int32_t x = 0, y = 0;
    std::int32_t width = 640, height = 480;
    std::wstring title;
    std::function<void(const std::string& text)> showMessage;  ///< empty: the debugger output
};

[[nodiscard]] std::unique_ptr<PaneWindow> MakePaneWindow(const PaneWindowRequest& request);
