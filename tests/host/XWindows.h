// Questions to an X server about its windows, for files without Qt: names of Xlib and Qt collide. A window may be
// destroyed between two questions: the answer about one that is gone is empty.
#pragma once
#include <X11/Xatom.h>
#include <X11/Xlib.h>

#include <cstring>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/ScreenArea.h"

using XConnection = std::unique_ptr<Display, int (*)(Display*)>;

/// @param name  in the form of $DISPLAY; errors of requests are ignored from here on, on all connections
inline XConnection OpenXConnection(const std::string& name) {
    XSetErrorHandler([](Display*, XErrorEvent*) { return 0; });
    XConnection connection(XOpenDisplay(name.c_str()), XCloseDisplay);
    if (!connection) throw std::runtime_error("the X display " + name + " cannot be opened");
    return connection;
}

struct XProperty {
    Atom type = None;
    int format = 0;
    std::vector<unsigned long> words;  // format 32
    std::string bytes;                 // format 8
};

inline XProperty ReadProperty(Display* display, Window window, const char* name) {
    XProperty property;
    unsigned long count = 0, left = 0;
    unsigned char* value = nullptr;
    if (XGetWindowProperty(display, window, XInternAtom(display, name, False), 0, 1 << 20, False, AnyPropertyType,
                           &property.type, &property.format, &count, &left, &value) != Success ||
        value == nullptr)
        return property;
    if (property.format == 8) property.bytes.assign(reinterpret_cast<char*>(value), count);
    if (property.format == 32) {
        property.words.resize(count);
        std::memcpy(property.words.data(), value, count * sizeof(unsigned long));  // longs, whatever their length
    }
    XFree(value);
    return property;
}

struct XFamily {
    Window parent = None;
    std::vector<Window> children;  // from the bottom to the top
};

inline XFamily FamilyOf(Display* display, Window window) {
    XFamily family;
    Window root = None, *list = nullptr;
    unsigned count = 0;
    if (XQueryTree(display, window, &root, &family.parent, &list, &count) == 0) return {};
    family.children.assign(list, list + count);
    if (list != nullptr) XFree(list);
    return family;
}

inline bool IsShown(Display* display, Window window) {
    XWindowAttributes attributes{};
    return XGetWindowAttributes(display, window, &attributes) != 0 && attributes.map_state == IsViewable;
}

/// Without its frame.
inline std::optional<ScreenArea> AreaOf(Display* display, Window window) {
    XWindowAttributes attributes{};
    if (XGetWindowAttributes(display, window, &attributes) == 0) return std::nullopt;
    ScreenArea area{0, 0, attributes.width, attributes.height};
    Window child = None;
    XTranslateCoordinates(display, window, attributes.root, 0, 0, &area.x, &area.y, &child);
    return area;
}

/// The largest window that is shown two levels inside another one: the viewer in a window of the host.
inline std::optional<ScreenArea> ViewerIn(Display* display, Window window) {
    std::optional<ScreenArea> largest;
    for (const Window child : FamilyOf(display, window).children) {
        for (const Window inner : FamilyOf(display, child).children) {
            if (!IsShown(display, inner)) continue;
            const std::optional<ScreenArea> area = AreaOf(display, inner);
            if (area && (!largest || area->width * area->height > largest->width * largest->height)) largest = area;
        }
    }
    return largest;
}

/// What the window manager leaves to windows; nothing without one.
inline std::optional<ScreenArea> WorkingAreaOf(Display* display) {
    const std::vector<unsigned long> words = ReadProperty(display, DefaultRootWindow(display), "_NET_WORKAREA").words;
    if (words.size() < 4) return std::nullopt;
    const auto number = [&](std::size_t i) { return static_cast<int>(words[i]); };
    return ScreenArea{number(0), number(1), number(2), number(3)};
}
