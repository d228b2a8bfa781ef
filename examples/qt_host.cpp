// The viewer in a Qt program: qt_host [--frames N] FILE...
#include <QApplication>
#include <QResizeEvent>
#include <QSocketNotifier>
#include <QTimer>
#include <QWidget>
#include <memory>

#include "KV_ScenePane/PathText.h"
#include "KV_ScenePane/ScenePane.h"

class Viewer : public QWidget {
public:
    Viewer() {
        setAttribute(Qt::WA_NativeWindow);
        setAttribute(Qt::WA_PaintOnScreen);  // Qt paints nothing here: the viewer covers the widget
        setAttribute(Qt::WA_NoSystemBackground);
        resize(800, 600);
        KV_ScenePane::WindowRequest request;
        request.kind = KV_ScenePane::WindowRequest::Kind::Child;
        request.parent = winId();
        request.width = width(), request.height = height();
        std::string reason;
        m_pane = CreateScenePane(request, &reason);
        if (!m_pane) qFatal("no viewer: %s", reason.c_str());
        m_events = std::make_unique<QSocketNotifier>(m_pane->EventDescriptor(), QSocketNotifier::Read);
        connect(m_events.get(), &QSocketNotifier::activated, this, [this] { m_pane->ProcessEvents(); });
    }
    KV_ScenePane::_DKV_ScenePane& Methods() { return m_pane->Methods(); }

private:
    QPaintEngine* paintEngine() const override { return nullptr; }
    void resizeEvent(QResizeEvent* event) override {
        const QSize pixels = event->size() * devicePixelRatioF();
        Methods().SetSize(static_cast<std::int16_t>(pixels.width()), static_cast<std::int16_t>(pixels.height()));
        Methods().PerformInvalidate();
    }

    std::unique_ptr<KV_ScenePane::ScenePane> m_pane;
    std::unique_ptr<QSocketNotifier> m_events;  // goes first
};

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "xcb");  // the viewer lives in X11 windows, also on a Wayland desktop
    QApplication application(argc, argv);
    const bool timed = argc > 2 && qstrcmp(argv[1], "--frames") == 0;  // ends by itself, for tests
    Viewer viewer;
    for (int i = timed ? 3 : 1; i < argc; ++i)
        viewer.Methods().ImportScan(KV_ScenePane::WidePath(argv[i]).c_str(), 0xC8D4DC);
    viewer.Methods().CenterView();
    viewer.show();
    if (timed) QTimer::singleShot(50 * QByteArray(argv[2]).toInt(), &application, &QCoreApplication::quit);
    return application.exec();
}
