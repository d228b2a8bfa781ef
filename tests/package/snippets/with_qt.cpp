// The fragments of the documents that use Qt.
#include <KV_ScenePane/ScenePane.h>

#include <QCoreApplication>
#include <QTimer>
#include <cstdio>

struct Host : QObject {
    QTimer timer;
    std::unique_ptr<KV_ScenePane::ScenePane> viewer;
    void Run() {
        //@ docs/hosting.md: QTimer::timeout
    }
};

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    Host host;
    std::string reason;
    host.viewer = KV_ScenePane::CreateScenePane({}, &reason);
    if (!host.viewer) return std::fprintf(stderr, "no viewer: %s\n", reason.c_str()), 1;
    host.Run();
    QObject::connect(&host.timer, &QTimer::timeout, [&] {
        if (!host.timer.isActive()) application.exit(0);
    });
    host.viewer->Methods().StartAnimation(20);  // a revolution in 50 ms
    QTimer::singleShot(20000, &application, [&] { application.exit(3); });
    host.timer.start(10);
    return application.exec();
}
