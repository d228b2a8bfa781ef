// Label, bar and button in one row.
#include "ImportProgress.h"

#include <QAction>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QToolButton>

#include "ToolTip.h"

namespace {

constexpr int kTextCharacters = 48, kBarWidth = 120;  // the latter in pixels

/// One width for all texts: a text that is painted at once must not wait for another layout. It can be squeezed.
class ProgressText : public QLabel {
public:
    [[nodiscard]] QSize sizeHint() const override {
        return {kTextCharacters * fontMetrics().averageCharWidth(), QLabel::sizeHint().height()};
    }
    [[nodiscard]] QSize minimumSizeHint() const override {
        return {sizeHint().width() / 3, QLabel::minimumSizeHint().height()};
    }
};

}  // namespace

ImportProgress::ImportProgress(QWidget* parent) : QWidget(parent) {
    setObjectName("importProgress");
    m_pText = new ProgressText;
    m_pText->setObjectName("importText");
    m_pText->setTextFormat(Qt::PlainText);  // it names files
    m_pBar = new QProgressBar;
    m_pBar->setObjectName("importBar");
    m_pBar->setFixedWidth(kBarWidth);
    m_pBar->setMaximumHeight(fontMetrics().height() + 2);
    m_pBar->setAccessibleName(tr("Progress of the import"));
    auto* const cancel = new QToolButton;
    cancel->setObjectName("importCancel");
    cancel->setText(tr("Cancel"));
    cancel->setToolTip(tr("Cancel the import (Esc)"));
    cancel->setFocusPolicy(Qt::TabFocus);  // a click must not take the keyboard from the viewer
    connect(cancel, &QToolButton::clicked, this, &ImportProgress::Cancelled);
    m_pEscape = new QAction(this);
    m_pEscape->setObjectName("importEscape");
    m_pEscape->setShortcut(Qt::Key_Escape);
    addAction(m_pEscape);
    connect(m_pEscape, &QAction::triggered, this, &ImportProgress::Cancelled);
    EnableEscape();
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(m_pText);
    row->addWidget(m_pBar);
    row->addWidget(cancel);
    hide();
}

void ImportProgress::Begin(int steps) {
    m_pBar->setRange(0, steps);
    m_pBar->setValue(0);
    m_bRunning = true;
    EnableEscape();
    show();
}

void ImportProgress::ShowText(const QString& text) {
    m_strText = text;
    ShowShortened(text);
}

void ImportProgress::Interrupt(const QString& text) {
    ShowShortened(text);
    PaintNow();
}

void ImportProgress::Resume() { ShowShortened(m_strText); }

void ImportProgress::ShowShortened(const QString& text) {
    const QString shown = m_pText->fontMetrics().elidedText(text, Qt::ElideMiddle, m_pText->sizeHint().width());
    m_pText->setText(shown);
    m_pText->setToolTip(shown == text ? QString() : PlainToolTip(text));
}

void ImportProgress::SetValue(int value) { m_pBar->setValue(value); }

void ImportProgress::PaintNow() { repaint(); }

void ImportProgress::End() {
    m_bRunning = false;
    EnableEscape();
    hide();
}

void ImportProgress::LeaveEscape(bool isUsed) {
    m_bEscapeUsed = isUsed;
    EnableEscape();
}

void ImportProgress::EnableEscape() { m_pEscape->setEnabled(m_bRunning && !m_bEscapeUsed); }
