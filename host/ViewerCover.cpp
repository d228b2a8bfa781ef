// The viewer draws through another connection than Qt's: the constructor waits for the server, so that the copy is made
// before the viewer draws anything else.
#include "ViewerCover.h"

#include <xcb/xcb.h>

#include <QGuiApplication>
#include <cstdlib>
#include <memory>

#include "ViewerWidget.h"

namespace {

xcb_connection_t* Connection() {
    auto* const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 == nullptr ? nullptr : x11->connection();
}

template <class Reply>
std::unique_ptr<Reply, void (*)(void*)> Owned(Reply* reply) {
    return {reply, &std::free};
}

}  // namespace

ViewerCover::ViewerCover(const ViewerWidget& viewer) {
    xcb_connection_t* const connection = Connection();
    if (connection == nullptr || viewer.Pane() == nullptr || !viewer.isVisible()) return;
    const auto shown = static_cast<xcb_window_t>(viewer.Pane()->NativeWindow());
    const auto parent = static_cast<xcb_window_t>(viewer.internalWinId());
    const auto area = Owned(xcb_get_geometry_reply(connection, xcb_get_geometry(connection, shown), nullptr));
    const auto look =
        Owned(xcb_get_window_attributes_reply(connection, xcb_get_window_attributes(connection, shown), nullptr));
    if (!area || !look || look->map_state != XCB_MAP_STATE_VIEWABLE) return;
    const xcb_pixmap_t pixmap = xcb_generate_id(connection);
    const xcb_gcontext_t context = xcb_generate_id(connection);
    const std::uint32_t noExposures = 0;
    xcb_create_pixmap(connection, area->depth, pixmap, shown, area->width, area->height);
    xcb_create_gc(connection, context, pixmap, XCB_GC_GRAPHICS_EXPOSURES, &noExposures);
    xcb_copy_area(connection, shown, pixmap, context, 0, 0, 0, 0, area->width, area->height);
    m_nWindow = xcb_generate_id(connection);
    // A border pixel and a colour map are needed where the depth or the visual is another one than the parent's.
    const std::uint32_t values[] = {pixmap, 0, look->colormap};
    xcb_create_window(connection, area->depth, m_nWindow, parent, area->x, area->y, area->width, area->height, 0,
                      XCB_WINDOW_CLASS_INPUT_OUTPUT, look->visual,
                      XCB_CW_BACK_PIXMAP | XCB_CW_BORDER_PIXEL | XCB_CW_COLORMAP, values);
    xcb_free_gc(connection, context);
    xcb_free_pixmap(connection, pixmap);
    // With the answer to the last request all others are done.
    const auto mapped = Owned(xcb_request_check(connection, xcb_map_window_checked(connection, m_nWindow)));
    if (mapped) m_nWindow = 0;  // it was not made
}

ViewerCover::~ViewerCover() {
    if (m_nWindow == 0) return;
    xcb_destroy_window(Connection(), m_nWindow);
    xcb_flush(Connection());
}
