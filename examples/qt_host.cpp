// The viewer in a Qt program: qt_host FILE...
//
// The viewer's window is a child of the native window of a widget. The widget does three things for it: it creates the
// viewer, calls ProcessEvents() when the viewer's descriptor is readable, and passes on its size.
#include <QApplication>
#include <QResizeEvent>
#include <QSocketNotifier>
#include <QWidget>
#include <cstdint>
#include <memory>
#include <string>

#include "KV_ScenePane/ScenePane.h"

class Viewer : public QWidget {
public:
    Viewer() {
        setAttribute(Qt::WA_NativeWindow);   // the widget gets an X11 window of its own, the parent of the viewer's
        setAttribute(Qt::WA_PaintOnScreen);  // Qt paints nothing here: the viewer covers the widget
        setAttribute(Qt::WA_NoSystemBackground);
        resize(800, 600);
        KV_ScenePane::WindowRequest request;
        request.kind = KV_ScenePane::WindowRequest::Kind::Child;
        request.parent = winId();
        request.width = width();
        request.height = height();
        request.samples = 4;                  // smooth edges where the driver has them
        request.scale = devicePixelRatioF();  // text and lines as large as Qt's
        std::string reason;
        m_pane = CreateScenePane(request, &reason);
        if (!m_pane) qFatal("no viewer: %s", reason.c_str());
        m_events = std::make_unique<QSocketNotifier>(m_pane->EventDescriptor(), QSocketNotifier::Read);
        connect(m_events.get(), &QSocketNotifier::activated, this, [this] { m_pane->ProcessEvents(); });
    }
    KV_ScenePane::_DKV_ScenePane& Methods() { return m_pane->Methods(); }
    void Import(const char* file) {
        std::string reason;
        if (!m_pane->ImportFile(file, {}, &reason)) qWarning("%s: %s", file, reason.c_str());
    }

private:
    QPaintEngine* paintEngine() const override { return nullptr; }  // as WA_PaintOnScreen requires
    void resizeEvent(QResizeEvent* event) override {
        // The viewer counts device pixels, Qt its own.
        const QSize pixels = event->size() * devicePixelRatioF();
        m_pane->SetScale(devicePixelRatioF());
        Methods().SetSize(static_cast<std::int16_t>(pixels.width()), static_cast<std::int16_t>(pixels.height()));
        Methods().PerformInvalidate();
    }

    std::unique_ptr<KV_ScenePane::ScenePane> m_pane;
    std::unique_ptr<QSocketNotifier> m_events;  // destroyed first: its descriptor belongs to the viewer
};

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "xcb");  // the viewer needs X11 windows, also on a Wayland desktop
    QApplication application(argc, argv);
    Viewer viewer;
    for (int i = 1; i < argc; ++i) viewer.Import(argv[i]);
    viewer.Methods().CenterView();
    viewer.show();
    return application.exec();
}
