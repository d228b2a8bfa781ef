// A text field that keeps the last lines.
#include "MessagePane.h"

namespace {
constexpr int kKeptLines = 10000;
}

MessagePane::MessagePane(QWidget* parent) : QPlainTextEdit(parent) {
    setReadOnly(true);
    setMaximumBlockCount(kKeptLines);
    setLineWrapMode(QPlainTextEdit::NoWrap);
}

QSize MessagePane::sizeHint() const { return {QPlainTextEdit::sizeHint().width(), 6 * fontMetrics().height()}; }

void MessagePane::AddText(const QString& text) {
    for (const QString& line : text.split('\n', Qt::SkipEmptyParts)) appendPlainText(line);
}

void MessagePane::AddTextLater(std::string_view utf8) {
    const QString text = QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
    QMetaObject::invokeMethod(
        this, [this, text] { AddText(text); }, Qt::QueuedConnection);
}
