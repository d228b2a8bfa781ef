// The window of the viewer covers its widget: the note is a native window above that.
#include "ViewNote.h"

#include <QEvent>
#include <algorithm>
#include <utility>

#include "KV_ScenePane/Modes.h"

bool IsBlankWithShadows(int drawMode) { return drawMode == KV_ScenePane::DrawModePerPixel; }

QString NoteOf(const ViewNoteState& state) {
    if (!state.hasViewer || state.isBusy) return {};
    if (state.objects == 0)
        return state.hasMarks ? QString() : ViewNote::tr("Open scans and meshes with Ctrl+O, or drop them here.");
    if (state.drawMode == KV_ScenePane::DrawModeNothing)
        return ViewNote::tr("The render mode \"Background only\" shows no objects. Ctrl+3 shows them shaded.");
    if (state.shadows && IsBlankWithShadows(state.drawMode))
        return ViewNote::tr(
            "The render mode \"Lit per pixel\" shows no objects while shadows are on. S switches shadows off.");
    if (state.visibleObjects == 0)
        return ViewNote::tr("%n object(s), all hidden. Check those to show in the Objects pane.", nullptr,
                            state.objects);
    if (state.isAllClipped) return ViewNote::tr("The clip plane cuts everything away. P switches it off.");
    return {};
}

ViewNote::ViewNote(QWidget& view, std::function<ViewNoteState()> state, QWidget* parent)
    : QLabel(parent), m_view(view), m_state(std::move(state)) {
    setObjectName("viewNote");
    setAttribute(Qt::WA_NativeWindow);
    setAttribute(Qt::WA_DontCreateNativeAncestors);
    // For Qt and for the X server.
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setWindowFlag(Qt::WindowTransparentForInput);
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::ToolTipBase);
    setForegroundRole(QPalette::ToolTipText);
    setAlignment(Qt::AlignCenter);
    setWordWrap(true);
    setTextFormat(Qt::PlainText);
    setMargin(8);
    m_view.installEventFilter(this);
    hide();
}

void ViewNote::CheckLater() {
    if (std::exchange(m_bWillCheck, true)) return;
    QMetaObject::invokeMethod(this, &ViewNote::Check, Qt::QueuedConnection);
}

void ViewNote::Check() {
    m_bWillCheck = false;
    const QString text = NoteOf(m_state());
    if (text.isEmpty()) return hide();
    if (text != this->text() || isHidden()) {
        setText(text);
        Place();
    }
    show();
    raise();
}

bool ViewNote::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize || event->type() == QEvent::Move) Place();
    return QLabel::eventFilter(watched, event);
}

void ViewNote::Place() {
    const QPoint corner = m_view.mapTo(parentWidget(), QPoint());
    const int space = std::max(m_view.width() - 16, 1);  // a margin of the view stays
    const int oneLine = fontMetrics().horizontalAdvance(text()) + 2 * (margin() + frameWidth()) + 8;
    const int width = std::min(oneLine, space);
    const int height = std::min(heightForWidth(width), m_view.height());
    setGeometry(corner.x() + (m_view.width() - width) / 2, corner.y() + (m_view.height() - height) / 2, width, height);
}
