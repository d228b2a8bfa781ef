// Layout of the panel, and numbers as texts.
#include "TransformPanel.h"

#include <QApplication>
#include <QClipboard>
#include <QFontDatabase>
#include <QGridLayout>
#include <QLabel>
#include <QPushButton>
#include <cmath>

#include "SceneReport.h"

namespace {

/// Rotations with six decimals, translations with four; large ones as they are.
QString ShownNumber(float value, bool isTranslation) {
    constexpr float kMaxFixed = 1e7f;
    if (!(std::abs(value) < kMaxFixed)) return QString::fromStdString(NumberText(value));
    const int decimals = isTranslation ? 4 : 6;
    // Rounded first: no minus before what is shown as zero.
    const double step = std::pow(10.0, -decimals), rounded = std::round(static_cast<double>(value) / step) * step;
    return QString::number(rounded == 0.0 ? 0.0 : rounded, 'f', decimals);
}

}  // namespace

QString TransformText(const Matrix4& transform) {
    QString text;
    for (std::size_t i = 0; i < transform.size(); ++i) {
        text += QString::fromStdString(NumberText(transform[i]));
        text += i % 4 == 3 ? '\n' : '\t';
    }
    return text;
}

TransformPanel::TransformPanel(QWidget* parent)
    : QWidget(parent), m_pName(new QLabel), m_pState(new QLabel), m_pCopy(new QPushButton(tr("Copy"))) {
    m_pName->setObjectName("transformName");
    m_pName->setTextFormat(Qt::PlainText);
    m_pState->setObjectName("transformState");
    auto* const grid = new QGridLayout;
    for (std::size_t i = 0; i < m_pNumbers.size(); ++i) {
        auto* const number = new QLabel;
        number->setObjectName(QString("transform%1%2").arg(i / 4).arg(i % 4));
        number->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
        number->setAlignment(Qt::AlignRight);
        number->setTextInteractionFlags(Qt::TextSelectableByMouse);
        grid->addWidget(number, static_cast<int>(i / 4), static_cast<int>(i % 4));
        m_pNumbers[i] = number;
    }
    m_pCopy->setObjectName("transformCopy");
    m_pCopy->setToolTip(tr("Copy 4 lines of 4 numbers, with tabs between them and all digits"));
    connect(m_pCopy, &QPushButton::clicked, this, &TransformPanel::Copy);
    grid->setVerticalSpacing(0);
    grid->setHorizontalSpacing(fontMetrics().averageCharWidth());
    // Beside each other: a low window has little space for panes.
    auto* const column = new QVBoxLayout;
    column->addWidget(m_pName);
    column->addWidget(m_pState);
    column->addWidget(m_pCopy, 0, Qt::AlignLeft);
    auto* const row = new QHBoxLayout;
    row->addLayout(grid);
    row->addSpacing(fontMetrics().averageCharWidth());
    row->addLayout(column);
    row->addStretch(1);
    auto* const whole = new QVBoxLayout(this);
    whole->setContentsMargins(4, 2, 4, 2);
    whole->addLayout(row);
    whole->addStretch(1);
    Show(nullptr);
}

void TransformPanel::Show(const Shown* object) {
    m_transform.reset();
    if (object != nullptr) m_transform = object->transform;
    m_pName->setText(object != nullptr ? object->name : tr("Select an object in the list."));
    m_pState->setText(object != nullptr ? object->state : QString());
    for (std::size_t i = 0; i < m_pNumbers.size(); ++i)
        m_pNumbers[i]->setText(m_transform ? ShownNumber((*m_transform)[i], i % 4 == 3) : QString());
    m_pCopy->setEnabled(m_transform.has_value());
}

void TransformPanel::Copy() const {
    if (m_transform) QApplication::clipboard()->setText(TransformText(*m_transform));
}
