// Layout of the panel, and what its buttons mean for the selected rows.
#include "PickPanel.h"

#include <QAction>
#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTreeWidget>
#include <algorithm>
#include <numeric>

#include "ColorButton.h"
#include "KV_ScenePane/Modes.h"
#include "SceneReport.h"

namespace {

constexpr std::int32_t kFirstColor = 0x0000FF;  // 0x00BBGGRR: red
// Percent of the diagonal of the scene.
constexpr double kMinRadius = 0.01, kMaxRadius = 50.0, kFirstRadius = 1.0;

QPushButton* NamedButton(const QString& text, const char* name, const QString& tip) {
    auto* const button = new QPushButton(text);
    button->setObjectName(name);
    button->setToolTip(tip);
    return button;
}

/// An action of the list alone: its keys are keys of the viewer or of other panes too.
QAction* ListAction(QTreeWidget& list, const QString& text, const QKeySequence& keys) {
    auto* const action = new QAction(text, &list);
    action->setShortcut(keys);
    action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
    list.addAction(action);
    return action;
}

}  // namespace

bool IsPicking(int mode) {
    return mode == KV_ScenePane::PickModeObjects || mode == KV_ScenePane::PickModeObjectsSecond ||
           mode == KV_ScenePane::PickModePoints;
}

QString ObjectText(const PickedPoint& pick) {
    if (pick.object < 0 || pick.isDeleted) return PickPanel::tr("%1 (deleted)").arg(pick.name);
    return QString("%1: %2").arg(QString::number(pick.object), pick.name);
}

QString PointText(const PickedPoint& pick, const QString& separator) {
    QStringList numbers;
    for (const float value : pick.point) numbers << QString::fromStdString(NumberText(value));
    return numbers.join(separator);
}

QString ShownObject(const PickedPoint& pick) {
    return pick.object < 0 || pick.isDeleted ? ObjectText(pick) : pick.name;
}

QString ShownPoint(std::span<const float, 3> point) {
    QStringList numbers;
    for (const float value : point) numbers << ShownLength(static_cast<double>(value));
    return numbers.join(", ");
}

QString ShownLength(double length) { return QString::number(length, 'f', 3); }

PickPanel::PickPanel(QWidget* parent)
    : QWidget(parent),
      m_pPlacing(new QCheckBox(tr("A &double click places a point"))),
      m_pColor(new ColorButton(kFirstColor)),
      m_pRadius(new QDoubleSpinBox),
      m_pList(new QTreeWidget),
      m_pRemove(NamedButton(tr("Remove"), "removePoints", tr("Remove the selected points"))),
      m_pClear(NamedButton(tr("Clear"), "clearPoints", tr("Remove all points"))),
      m_pMove(NamedButton(tr("Move"), "movePoint",
                          tr("The next pick on an object moves the selected point; Escape cancels"))),
      m_pCopy(NamedButton(tr("Copy"), "copyPoints",
                          tr("Copy x, y, z of the selected points, or of all when none is selected"))),
      m_pCopyDistance(NamedButton(tr("Copy"), "copyDistance", tr("Copy the distance (Ctrl+Shift+C)"))),
      m_pDistance(new QLabel) {
    MakeList();
    auto* const column = new QVBoxLayout(this);
    column->addWidget(m_pPlacing);
    column->addLayout(MakeSettings());
    column->addWidget(m_pList, 1);
    column->addLayout(MakeButtons());
    column->addLayout(MakeDistance());
    ShowDistance({});
    EnableButtons();
    setEnabled(false);
}

void PickPanel::MakeList() {
    m_pList->setObjectName("pickPoints");
    m_pList->setColumnCount(kColumnCount);
    m_pList->setHeaderLabels({tr("No."), tr("Object"), tr("X"), tr("Y"), tr("Z")});
    m_pList->setRootIsDecorated(false);
    m_pList->setUniformRowHeights(true);
    m_pList->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_pList->setMinimumHeight(80);
    m_pList->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    connect(m_pList, &QTreeWidget::itemSelectionChanged, this, &PickPanel::EnableButtons);
    connect(ListAction(*m_pList, tr("&Remove"), QKeySequence::Delete), &QAction::triggered, this,
            &PickPanel::RemoveSelected);
    connect(ListAction(*m_pList, tr("&Copy coordinates"), QKeySequence::Copy), &QAction::triggered, this,
            &PickPanel::CopySelected);
    m_pList->setContextMenuPolicy(Qt::ActionsContextMenu);
}

QBoxLayout* PickPanel::MakeSettings() {
    m_pPlacing->setObjectName("placePoints");
    m_pPlacing->setToolTip(
        tr("The same as Tools, Picking, Points on objects. Another choice there removes all points."));
    connect(m_pPlacing, &QCheckBox::toggled, this, &PickPanel::PlacingWanted);
    m_pColor->setObjectName("pointColor");
    m_pColor->SetName(tr("Colour of the points that are placed next"));
    m_pRadius->setObjectName("pointRadius");
    m_pRadius->setRange(kMinRadius, kMaxRadius);
    m_pRadius->setDecimals(2);
    m_pRadius->setSingleStep(0.1);
    m_pRadius->setValue(kFirstRadius);
    m_pRadius->setSuffix(tr(" % of the scene"));
    m_pRadius->setToolTip(tr("Radius of all points, in percent of the diagonal of the box around all objects"));
    connect(m_pRadius, &QDoubleSpinBox::valueChanged, this, &PickPanel::RadiusChanged);
    auto* const radius = new QLabel(tr("Radi&us:"));
    radius->setBuddy(m_pRadius);
    auto* const row = new QHBoxLayout;
    row->addWidget(m_pColor);
    row->addWidget(radius);
    row->addWidget(m_pRadius, 1);
    return row;
}

QBoxLayout* PickPanel::MakeButtons() {
    m_pMove->setCheckable(true);
    connect(m_pRemove, &QPushButton::clicked, this, &PickPanel::RemoveSelected);
    connect(m_pClear, &QPushButton::clicked, this, &PickPanel::ClearingWanted);
    connect(m_pCopy, &QPushButton::clicked, this, &PickPanel::CopySelected);
    connect(m_pMove, &QPushButton::clicked, this, [this](bool checked) {
        const std::vector<int> points = SelectedPoints();
        emit MoveWanted(checked && points.size() == 1 ? points.front() : -1);
    });
    auto* const row = new QHBoxLayout;
    for (QPushButton* const button : {m_pRemove, m_pClear, m_pMove, m_pCopy}) row->addWidget(button);
    return row;
}

QBoxLayout* PickPanel::MakeDistance() {
    m_pDistance->setObjectName("distance");
    m_pDistance->setTextInteractionFlags(Qt::TextSelectableByMouse);
    connect(m_pCopyDistance, &QPushButton::clicked, this, &PickPanel::DistanceCopyWanted);
    auto* const row = new QHBoxLayout;
    row->addWidget(new QLabel(tr("Distance of the last two picks:")));
    row->addWidget(m_pDistance, 1);
    row->addWidget(m_pCopyDistance);
    return row;
}

void PickPanel::ShowPoints(const std::vector<PickedPoint>& points) {
    {
        const QSignalBlocker quiet(m_pList);
        const auto count = static_cast<int>(points.size());
        // The rows of what was removed are not known: a selection that stays could name other points.
        if (count < m_pList->topLevelItemCount()) m_pList->clearSelection();
        while (m_pList->topLevelItemCount() > count) delete m_pList->topLevelItem(m_pList->topLevelItemCount() - 1);
        while (m_pList->topLevelItemCount() < count) new QTreeWidgetItem(m_pList);
        for (int i = 0; i < count; ++i) {
            const PickedPoint& pick = points[static_cast<std::size_t>(i)];
            QTreeWidgetItem& row = *m_pList->topLevelItem(i);
            row.setText(kNumber, QString::number(i + 1));
            row.setText(kObject, ObjectText(pick));
            for (int axis = 0; axis < 3; ++axis)
                row.setText(kX + axis, QString::fromStdString(NumberText(pick.point[static_cast<std::size_t>(axis)])));
        }
    }
    // Qt loses the repaint of the moved rows when it paints a part of the list, the deselected row, before it has laid
    // out the list.
    m_pList->viewport()->update();
    EnableButtons();
}

void PickPanel::SelectPoint(int point) {
    m_pList->setCurrentItem(m_pList->topLevelItem(point));  // and clears the rest of the selection
}

void PickPanel::ShowDistance(const QString& text) {
    m_pDistance->setText(text);
    m_pCopyDistance->setEnabled(!text.isEmpty());
}

void PickPanel::ShowPlacing(bool on) {
    const QSignalBlocker quiet(m_pPlacing);  // the caller has set the mode already
    m_pPlacing->setChecked(on);
}

void PickPanel::ShowClicks(int clicks) {
    m_pPlacing->setText(clicks == 1   ? tr("A &click places a point")
                        : clicks == 2 ? tr("A &double click places a point")
                                      : tr("&Place points (not with flipped mouse buttons)"));
}

void PickPanel::ShowMoving(int point) {
    m_nMoving = point;
    EnableButtons();
}

std::int32_t PickPanel::Color() const { return m_pColor->Packed(); }

double PickPanel::RadiusOfDiagonal() const { return m_pRadius->value() / 100.0; }

std::vector<int> PickPanel::SelectedPoints() const {
    std::vector<int> points;
    for (QTreeWidgetItem* const row : m_pList->selectedItems()) points.push_back(m_pList->indexOfTopLevelItem(row));
    std::ranges::sort(points);
    return points;
}

void PickPanel::RemoveSelected() {
    const std::vector<int> points = SelectedPoints();
    if (!points.empty()) emit RemovalWanted(points);
}

void PickPanel::CopySelected() {
    std::vector<int> points = SelectedPoints();
    if (points.empty()) {
        points.resize(static_cast<std::size_t>(m_pList->topLevelItemCount()));
        std::iota(points.begin(), points.end(), 0);
    }
    if (!points.empty()) emit CopyWanted(points);
}

void PickPanel::EnableButtons() {
    const auto selected = m_pList->selectedItems().size();
    m_pRemove->setEnabled(selected > 0);
    m_pMove->setEnabled(selected == 1 || m_nMoving >= 0);
    m_pMove->setChecked(m_nMoving >= 0);
    const bool any = m_pList->topLevelItemCount() > 0;
    m_pClear->setEnabled(any);
    m_pCopy->setEnabled(any);
}
