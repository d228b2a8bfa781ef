// A list of pairs, in which the one with the largest residual is bold.
#include "ResidualPanel.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "AlignSummary.h"
#include "SceneReport.h"

namespace {

QString PointText(const KV_ScenePane::AlignmentPoint& point, const QString& separator) {
    QStringList numbers;
    for (const float value : point.point) numbers << QString::fromStdString(NumberText(value));
    return numbers.join(separator);
}

}  // namespace

QString ResidualText(const KV_ScenePane::AlignmentResult& result) {
    const auto number = [](double value) { return QString::fromStdString(NumberText(static_cast<float>(value))); };
    QStringList lines{"pair\tresidual\tmoving x\ty\tz\tfixed x\ty\tz"};
    for (std::size_t i = 0; i < result.pairs.size(); ++i) {
        const QString residual = i < result.residuals.size() ? number(result.residuals[i]) : QString();
        lines << QStringList{QString::number(i + 1), residual, PointText(result.pairs[i].moving, "\t"),
                             PointText(result.pairs[i].fixed, "\t")}
                     .join('\t');
    }
    if (result.isFound) lines << "rms\t" + number(result.rms);
    return lines.join('\n') + '\n';
}

ResidualPanel::ResidualPanel(QWidget* parent)
    : QWidget(parent), m_pSummary(new QLabel), m_pList(new QTreeWidget), m_pCopy(new QPushButton(tr("Copy"))) {
    m_pSummary->setObjectName("alignmentSummary");
    m_pSummary->setWordWrap(true);
    m_pSummary->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_pList->setObjectName("residuals");
    m_pList->setColumnCount(kColumnCount);
    m_pList->setHeaderLabels({tr("Pair"), tr("Residual (mm)"), tr("Moving point"), tr("Fixed point")});
    m_pList->setRootIsDecorated(false);
    m_pList->setUniformRowHeights(true);
    m_pList->setMinimumHeight(m_pList->header()->sizeHint().height() + fontMetrics().lineSpacing());
    m_pList->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    m_pCopy->setObjectName("copyResiduals");
    m_pCopy->setToolTip(tr("Copy all pairs with their residuals and points"));
    connect(m_pCopy, &QPushButton::clicked, this,
            [this] { QGuiApplication::clipboard()->setText(ResidualText(m_result)); });
    // Beside each other: a low window has little space for panes.
    auto* const row = new QHBoxLayout;
    row->addWidget(m_pSummary, 1);
    row->addWidget(m_pCopy);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(4, 2, 4, 2);
    column->addWidget(m_pList, 1);
    column->addLayout(row);
    Clear();
}

QSize ResidualPanel::sizeHint() const {
    constexpr int kPreferredRows = 4;
    return {QWidget::sizeHint().width(), minimumSizeHint().height() + kPreferredRows * fontMetrics().lineSpacing()};
}

void ResidualPanel::Show(const KV_ScenePane::AlignmentResult& result, const QString& summary) {
    m_result = result;
    m_pSummary->setText(summary);
    m_pList->clear();
    const int largest = LargestResidual(result);
    for (std::size_t i = 0; i < result.pairs.size(); ++i) {
        auto* const row = new QTreeWidgetItem(m_pList);
        row->setText(kPair, QString::number(i + 1));
        if (i < result.residuals.size()) row->setText(kResidual, LengthText(result.residuals[i]));
        row->setText(kMoving, PointText(result.pairs[i].moving, ", "));
        row->setText(kFixed, PointText(result.pairs[i].fixed, ", "));
        if (static_cast<int>(i) != largest) continue;
        row->setText(kResidual, tr("%1 largest").arg(row->text(kResidual)));
        QFont font = m_pList->font();
        font.setBold(true);
        for (int column = 0; column <= kResidual; ++column) row->setFont(column, font);
    }
    m_pCopy->setEnabled(!result.pairs.empty());
}

void ResidualPanel::Clear() { Show({}, tr("No result of an alignment by points.")); }
