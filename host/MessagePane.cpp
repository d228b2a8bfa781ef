// A text field that keeps the last lines.
#include "MessagePane.h"

#include <QScrollBar>
#include <cmath>

namespace {
constexpr int kKeptLines = 10000;
constexpr int kLinesAtStart = 8;
}  // namespace

MessagePane::MessagePane(QWidget* parent) : QPlainTextEdit(parent) {
    setReadOnly(true);
    setMaximumBlockCount(kKeptLines);
    setLineWrapMode(QPlainTextEdit::NoWrap);
    const QScrollBar* const bar = verticalScrollBar();
    connect(bar, &QScrollBar::valueChanged, this, [this, bar](int value) { m_bFollows = value >= bar->maximum(); });
    // The text moves away from its end without a new line, too: a line wider than the pane brings a horizontal bar,
    // which takes a line's height; and the user makes the pane smaller.
    connect(bar, &QScrollBar::rangeChanged, this, [this] {
        if (m_bFollows) ShowEnd();
    });
}

QSize MessagePane::sizeHint() const {
    const auto margins = static_cast<int>(std::ceil(2 * document()->documentMargin())) + 2 * frameWidth();
    return {QPlainTextEdit::sizeHint().width(),
            kLinesAtStart * fontMetrics().lineSpacing() + margins + horizontalScrollBar()->sizeHint().height()};
}

void MessagePane::AddText(const QString& text) {
    const bool follows = m_bFollows;  // as the user left it: appending scrolls in steps of its own
    for (const QString& line : text.split('\n', Qt::SkipEmptyParts)) appendPlainText(line);
    if (follows) ShowEnd();
}

void MessagePane::ShowEnd() {
    verticalScrollBar()->setValue(verticalScrollBar()->maximum());
    m_bFollows = true;
}

void MessagePane::AddTextLater(std::string_view utf8) {
    const QString text = QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
    QMetaObject::invokeMethod(
        this, [this, text] { AddText(text); }, Qt::QueuedConnection);
}
