// Heading, list, note, buttons.
#include "FileListDialog.h"

#include <QAbstractButton>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>

namespace {

constexpr int kMaxShownLines = 12;  // then the list scrolls

QLabel* MakeLabel(const QString& text) {
    auto* const label = new QLabel(text);
    label->setTextFormat(Qt::PlainText);  // file names may hold what looks like tags
    label->setWordWrap(true);
    return label;
}

}  // namespace

FileListDialog::FileListDialog(const Texts& texts, QDialogButtonBox::StandardButtons buttons, Button preset,
                               QWidget* parent)
    : QDialog(parent), m_texts(texts), m_pButtons(new QDialogButtonBox(buttons)) {
    setWindowTitle(texts.title);
    auto* const list = new QPlainTextEdit(texts.lines.join('\n'));
    list->setReadOnly(true);
    list->setLineWrapMode(QPlainTextEdit::NoWrap);
    list->setTabChangesFocus(true);
    const auto shown = std::clamp(static_cast<int>(texts.lines.size()), 1, kMaxShownLines);
    // Two lines more: one for the margins, one that a horizontal scroll bar covers.
    list->setMinimumHeight((shown + 2) * list->fontMetrics().lineSpacing() + 2 * list->frameWidth());
    list->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Ignored);  // starts with this height, and grows
    constexpr int kWidth = 560;                                         // pixels, for most paths
    list->setMinimumWidth(kWidth);
    auto* const column = new QVBoxLayout(this);
    column->addWidget(MakeLabel(texts.heading));
    column->addWidget(list, 1);
    if (!texts.note.isEmpty()) column->addWidget(MakeLabel(texts.note));
    column->addWidget(m_pButtons);
    m_pButtons->button(preset)->setDefault(true);
    m_pButtons->button(preset)->setFocus();
    connect(m_pButtons, &QDialogButtonBox::clicked, this, [this](QAbstractButton* button) {
        m_pressed = m_pButtons->standardButton(button);
        accept();
    });
}

FileListDialog::Button FileListDialog::Ask() {
    m_pressed = QDialogButtonBox::NoButton;
    return exec() == QDialog::Accepted ? m_pressed : QDialogButtonBox::NoButton;
}

void FileListDialog::SetButtonText(Button button, const QString& text) { m_pButtons->button(button)->setText(text); }

void FileListDialog::Press(Button button) { m_pButtons->button(button)->click(); }

QString FileListDialog::Text() const {
    QStringList parts = m_texts.lines;
    parts.prepend(m_texts.heading);
    parts.append(m_texts.note);
    return parts.join('\n');
}
