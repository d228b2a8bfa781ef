// The viewer in a GTK 3 program: gtk_host FILE...
//
// The viewer's window is a child of the X11 window of a drawing area. GLib's loop calls ProcessEvents() when the
// viewer's descriptor is readable, and the area passes on its size.
#include <gdk/gdkx.h>
#include <glib-unix.h>
#include <gtk/gtk.h>

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

#include "KV_ScenePane/ScenePane.h"

namespace {

using Viewer = std::unique_ptr<KV_ScenePane::ScenePane>;

Viewer MakeViewer(GtkWidget* area, std::string* reason) {
    GdkWindow* const window = gtk_widget_get_window(area);
    gdk_window_ensure_native(window);  // GTK makes no X11 window for it otherwise
    // The viewer has its own connection: the server must know the window before that asks for it.
    gdk_display_sync(gdk_window_get_display(window));
    const int scale = gtk_widget_get_scale_factor(area);
    KV_ScenePane::WindowRequest request;
    request.kind = KV_ScenePane::WindowRequest::Kind::Child;
    request.parent = gdk_x11_window_get_xid(window);
    request.width = scale * gtk_widget_get_allocated_width(area);
    request.height = scale * gtk_widget_get_allocated_height(area);
    request.samples = 4;  // smooth edges where the driver has them
    request.scale = scale;
    return CreateScenePane(request, reason);
}

// The viewer counts pixels of the device, GTK its own.
void OnSizeAllocate(GtkWidget* area, GtkAllocation* size, gpointer data) {
    const Viewer& viewer = *static_cast<Viewer*>(data);
    if (!viewer) return;
    const int scale = gtk_widget_get_scale_factor(area);
    viewer->SetScale(scale);
    viewer->Methods().SetSize(static_cast<std::int16_t>(scale * size->width),
                              static_cast<std::int16_t>(scale * size->height));
    viewer->Methods().PerformInvalidate();
}

gboolean OnReadable(gint, GIOCondition, gpointer data) {
    static_cast<Viewer*>(data)->get()->ProcessEvents();
    return G_SOURCE_CONTINUE;
}

}  // namespace

int main(int argc, char** argv) {
    gdk_set_allowed_backends("x11");  // the viewer needs X11 windows, also on a Wayland desktop
    if (gtk_init_check(&argc, &argv) == FALSE) return std::fputs("no X display\n", stderr), 1;
    GtkWidget* const window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_window_set_default_size(GTK_WINDOW(window), 800, 600);
    GtkWidget* const area = gtk_drawing_area_new();
    gtk_container_add(GTK_CONTAINER(window), area);
    gtk_widget_show_all(window);

    std::string reason;
    Viewer viewer = MakeViewer(area, &reason);
    if (!viewer) return std::fprintf(stderr, "no viewer: %s\n", reason.c_str()), 1;
    g_signal_connect(area, "size-allocate", G_CALLBACK(OnSizeAllocate), &viewer);
    const guint source = g_unix_fd_add(viewer->EventDescriptor(), G_IO_IN, OnReadable, &viewer);
    // Before GTK destroys the window that contains it, and with it the loop's interest in its descriptor.
    const auto close = +[](GtkWidget*, GdkEvent*, gpointer) -> gboolean {
        gtk_main_quit();
        return TRUE;
    };
    g_signal_connect(window, "delete-event", G_CALLBACK(close), nullptr);

    for (int i = 1; i < argc; ++i)
        if (!viewer->ImportFile(argv[i], {}, &reason)) std::fprintf(stderr, "%s: %s\n", argv[i], reason.c_str());
    viewer->Methods().CenterView();
    gtk_main();
    g_source_remove(source);
    viewer.reset();
    gtk_widget_destroy(window);
    return 0;
}
