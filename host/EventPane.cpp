// A text field that keeps the last lines, and below it a row of controls.
#include "EventPane.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

#include "MessagePane.h"

namespace {
constexpr int kMaxLines = 1000;
}

EventPane::EventPane(QWidget* parent) : QWidget(parent), m_pLines(new MessagePane) {
    // Fewer than the messages: with the view events a drag adds hundreds of lines.
    m_pLines->setMaximumBlockCount(kMaxLines);
    // One line per event, also in a narrow pane.
    m_pLines->setLineWrapMode(QPlainTextEdit::NoWrap);
    // On a low window: the pane shares its place with others, below their tabs.
    m_pLines->setMinimumHeight(2 * m_pLines->fontMetrics().lineSpacing() + 2 * m_pLines->frameWidth());
    auto* const tracing = new QCheckBox(tr("With changes of the view"));
    tracing->setObjectName("tracing");
    connect(tracing, &QCheckBox::toggled, this, &EventPane::TracingWanted);
    auto* const clear = new QPushButton(tr("Clear"));
    clear->setObjectName("clearEvents");
    connect(clear, &QPushButton::clicked, this, &EventPane::Clear);
    // Switch at the left, button at the right.
    auto* const row = new QHBoxLayout;
    row->addWidget(tracing);
    row->addStretch(1);
    row->addWidget(clear);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(m_pLines, 1);
    column->addLayout(row);
}

void EventPane::AddLine(const QString& line) { m_pLines->AddText(line); }

void EventPane::Clear() { m_pLines->clear(); }

QString EventPane::Text() const { return m_pLines->toPlainText(); }
