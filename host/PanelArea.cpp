// A pane is never narrower than its contents: only its height scrolls.
#include "PanelArea.h"

#include <QEvent>
#include <QScrollBar>
#include <algorithm>

namespace {
constexpr int kLowestLines = 4;  // of text
}

PanelArea::PanelArea(QWidget* contents, QWidget* parent) : QScrollArea(parent) {
    setFrameShape(QFrame::NoFrame);
    setFocusPolicy(Qt::NoFocus);  // a click beside the controls leaves the keyboard where it is
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setWidgetResizable(true);
    setWidget(contents);
    contents->installEventFilter(this);
}

QSize PanelArea::sizeHint() const { return widget()->sizeHint().expandedTo(widget()->minimumSizeHint()); }

QSize PanelArea::minimumSizeHint() const {
    const QSize inner = widget()->minimumSizeHint().expandedTo(widget()->minimumSize());
    return {inner.width() + verticalScrollBar()->sizeHint().width(),
            std::min(inner.height(), kLowestLines * fontMetrics().lineSpacing())};
}

bool PanelArea::eventFilter(QObject* watched, QEvent* event) {
    if (watched == widget() && event->type() == QEvent::LayoutRequest) updateGeometry();
    return QScrollArea::eventFilter(watched, event);
}
