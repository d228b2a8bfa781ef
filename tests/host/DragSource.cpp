// A window like that of a file manager: a drag from it offers the files of the command line. The title says how far the
// drag has come: "drag source", "dragging", "moved", "accepted" or "refused" by the window under the pointer, "dropped"
// or "cancelled".
#include <QApplication>
#include <QDrag>
#include <QFileInfo>
#include <QMimeData>
#include <QMouseEvent>
#include <QTimer>
#include <QUrl>
#include <QWidget>

namespace {

class Source : public QWidget {
public:
    explicit Source(const QList<QUrl>& urls) : m_urls(urls) {
        setWindowTitle("drag source");
        setWindowFlag(Qt::WindowStaysOnTopHint);
        resize(80, 60);
    }

protected:
    void mouseMoveEvent(QMouseEvent* event) override {
        if ((event->buttons() & Qt::LeftButton) == 0) return;
        auto* const files = new QMimeData;
        files->setUrls(m_urls);
        auto* const drag = new QDrag(this);  // Qt deletes it when the target has the files, which is after exec()
        drag->setMimeData(files);
        connect(drag, &QDrag::actionChanged, this,
                [this](Qt::DropAction action) { setWindowTitle(action == Qt::IgnoreAction ? "refused" : "accepted"); });
        QTimer::singleShot(0, this, [this] {
            qApp->installEventFilter(this);  // after that of the drag, which lets no event through
            setWindowTitle("dragging");
        });
        const Qt::DropAction done = drag->exec(Qt::CopyAction | Qt::MoveAction);
        qApp->removeEventFilter(this);
        setWindowTitle(done == Qt::IgnoreAction ? "cancelled" : "dropped");
    }
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::MouseMove && windowTitle() == "dragging") setWindowTitle("moved");
        return QWidget::eventFilter(watched, event);
    }

private:
    const QList<QUrl> m_urls;
};

}  // namespace

int main(int argc, char** argv) {
    const QApplication application(argc, argv);
    QList<QUrl> urls;
    for (const QString& path : QApplication::arguments().mid(1))
        urls << QUrl::fromLocalFile(QFileInfo(path).absoluteFilePath());
    Source source(urls);
    source.show();
    return QApplication::exec();
}
