// A text field that follows its end. Its scroll position changes for several reasons besides the user, which are
// handled here one by one.
#include "MessagePane.h"

#include <QScrollBar>
#include <cmath>

namespace {
constexpr int kMaxLines = 10000;    // the oldest are dropped
constexpr int kPreferredLines = 8;  // height that the pane asks for
constexpr int kMinLetters = 30;     // width
}  // namespace

MessagePane::MessagePane(QWidget* parent) : QPlainTextEdit(parent) {
    setReadOnly(true);
    setMaximumBlockCount(kMaxLines);
    setMinimumWidth(kMinLetters * fontMetrics().averageCharWidth());
    // Whether to follow the end is decided by where the last scrolling ended.
    const QScrollBar* const bar = verticalScrollBar();
    connect(bar, &QScrollBar::valueChanged, this, [this, bar](int value) { m_bFollows = value >= bar->maximum(); });
    // The end can move out of sight without a new line: another width wraps the lines elsewhere, without wrapping a
    // line that is wider than the pane adds a horizontal scroll bar, which covers one line, and the user can make the
    // pane smaller.
    connect(bar, &QScrollBar::rangeChanged, this, [this] {
        if (m_bFollows) ShowEnd();
    });
}

QSize MessagePane::sizeHint() const {
    const auto margins = static_cast<int>(std::ceil(2 * document()->documentMargin())) + 2 * frameWidth();
    return {QPlainTextEdit::sizeHint().width(),
            kPreferredLines * fontMetrics().lineSpacing() + margins + horizontalScrollBar()->sizeHint().height()};
}

void MessagePane::AddText(const QString& text) {
    const bool follows = m_bFollows;  // before appending, which scrolls by itself
    for (const QString& line : text.split('\n', Qt::SkipEmptyParts)) appendPlainText(line);
    if (follows) ShowEnd();
}

void MessagePane::ShowEnd() {
    verticalScrollBar()->setValue(verticalScrollBar()->maximum());
    m_bFollows = true;
}

void MessagePane::AddProblem(const QString& text) {
    AddText(text);
    PointOut();
}

void MessagePane::AddProblemLater(std::string_view utf8) {
    const QString text = QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
    QMetaObject::invokeMethod(
        this, [this, text] { AddProblem(text); }, Qt::QueuedConnection);
}
