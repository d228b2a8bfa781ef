// Each control changes the viewer at once; the list follows the viewer's events.
#include "NeedlePanel.h"

#include <QAction>
#include <QCheckBox>
#include <QDoubleSpinBox>
#include <QFontMetrics>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QResizeEvent>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <numeric>
#include <utility>

#include "ColorButton.h"
#include "NumberBox.h"
#include "ObjectCentring.h"
#include "PaintBlock.h"

namespace {

constexpr double kMaxSize = 1e6;  // scene units
constexpr int kSizeDecimals = 6;
constexpr double kStartDiagonal = 100;  // of a scene that the viewer's first sizes suit

/// Reports a number that is too low: the box itself returns to the former one without a word.
class LimitBox : public QSpinBox {
public:
    explicit LimitBox(std::function<void()> onTooLow) : m_onTooLow(std::move(onTooLow)) {}
    void fixup(QString& input) const override {
        bool isNumber = false;
        const int limit = locale().toInt(input, &isNumber);
        if (isNumber && limit < minimum()) m_onTooLow();
        QSpinBox::fixup(input);
    }

private:
    std::function<void()> m_onTooLow;
};

QString MouseText() {
    return NeedlePanel::tr("Double click on a scan: new needle. Click on a head: select. Drag: move. Delete: remove.");
}
QString LimitReachedText(int limit) {
    return NeedlePanel::tr("No needle was created: the limit of %1 is reached. Raise it or delete needles.").arg(limit);
}
QString LimitTooLowText(std::size_t count) {
    return NeedlePanel::tr("There are %1 needles: the limit cannot be lower. Delete needles first.").arg(count);
}

/// With two significant digits, which is what a user would type.
double Rounded(double size) {
    if (!(size > 0)) return 0;
    const double digit = std::pow(10, std::floor(std::log10(size)) - 1);
    return std::round(size / digit) * digit;
}

QString PositionText(const float* position) {
    const auto number = [&](int i) { return QString::number(static_cast<double>(position[i]), 'g', 5); };
    return number(0) + ", " + number(1) + ", " + number(2);
}

/// Pin, then head. @return false for an unknown needle
bool GetPositions(KV_ScenePane::_DKV_ScenePane& methods, int id, std::array<float, 6>* p) {
    float* const f = p->data();
    return methods.GetNeedle(id, f, f + 1, f + 2, f + 3, f + 4, f + 5) != KV_ScenePane::kVariantFalse;
}

KV_ScenePane::VARIANT_BOOL Variant(bool on) { return on ? KV_ScenePane::kVariantTrue : KV_ScenePane::kVariantFalse; }

}  // namespace

NeedlePanel::NeedlePanel(QWidget* parent)
    : QWidget(parent),
      m_pCreate(new QCheckBox(tr("Create and select with the mouse"))),
      m_pShow(new QCheckBox(tr("Show needles"))),
      m_pLimit(new LimitBox([this] { WarnOfLimit(LimitTooLowText(m_rows.size())); })),
      m_pText(new QLabel),
      m_pList(new QTreeWidget),
      m_pDelete(new QPushButton(tr("Delete"))),
      m_pDeleteAll(new QPushButton(tr("Delete all..."))),
      m_pSave(new QPushButton(tr("Save..."))) {
    MakeSwitches();
    MakeList();
    Arrange();
    SetViewer(nullptr);
}

void NeedlePanel::MakeSwitches() {
    m_pCreate->setObjectName("needleCreate");
    m_pCreate->setToolTip(
        tr("Double click on a scan: a new needle. Click on a head: select it. Drag: move the head of the selected "
           "needle.\nDelete key: remove it. Escape: deselect. A double click does not centre the view meanwhile."));
    connect(m_pCreate, &QCheckBox::toggled, this, &NeedlePanel::CreationWanted);
    m_pShow->setObjectName("needleShow");
    m_pShow->setToolTip(tr("Needles that are not shown still exist, and the mouse can still select them."));
    connect(m_pShow, &QCheckBox::toggled, this, &NeedlePanel::SwitchDrawing);
    m_pLimit->setObjectName("needleLimit");
    m_pLimit->setAccessibleName(tr("Greatest number of needles"));
    m_pLimit->setToolTip(tr("How many needles there can be. It cannot be lowered below the number of needles."));
    m_pLimit->setMaximum(static_cast<int>(kMaxNeedlesInFile));
    m_pLimit->setValue(m_nLimit);
    connect(m_pLimit, &QSpinBox::valueChanged, this, &NeedlePanel::ChangeLimit);
    m_pText->setObjectName("needleText");
    m_pText->setWordWrap(true);
    m_pText->setAlignment(Qt::AlignLeft | Qt::AlignTop);
}

QDoubleSpinBox* NeedlePanel::MakeSize(const QString& name, const QString& title, const QString& tip,
                                      float NeedleLook::*size) {
    auto* const box = new NumberBox;
    box->setObjectName(name);
    box->setAccessibleName(title);
    box->setToolTip(tip);
    box->setDecimals(kSizeDecimals);
    box->setRange(0, kMaxSize);
    box->setStepType(QAbstractSpinBox::AdaptiveDecimalStepType);
    box->setValue(static_cast<double>(m_look.*size));
    connect(box, &QDoubleSpinBox::valueChanged, this, [this, size](double value) {
        m_look.*size = static_cast<float>(value);
        m_bSizesChosen = true;
        if (m_pMethods != nullptr) SetNeedleLook(*m_pMethods, m_look);
    });
    m_vSizes.emplace_back(box, size);
    return box;
}

ColorButton* NeedlePanel::MakeColor(const QString& name, const QString& title, std::int32_t NeedleLook::*color) {
    auto* const button = new ColorButton(m_look.*color);
    button->setObjectName(name);
    button->SetName(title);
    connect(button, &ColorButton::ColorChosen, this, [this, color](std::int32_t packed) {
        m_look.*color = packed;
        if (m_pMethods != nullptr) SetNeedleLook(*m_pMethods, m_look);
    });
    return button;
}

QFormLayout* NeedlePanel::MakeLook() {
    const auto row = [](std::initializer_list<QWidget*> widgets) {
        auto* const box = new QHBoxLayout;
        for (QWidget* const widget : widgets) box->addWidget(widget, widget == *widgets.begin() ? 1 : 0);
        return box;
    };
    auto* const fit = new QPushButton(tr("Fit to scene"));
    fit->setObjectName("needleFit");
    fit->setToolTip(tr("Sets the sizes of new needles in proportion to the objects."));
    connect(fit, &QPushButton::clicked, this, [this] {
        m_bSizesChosen = false;
        FitSizes(SceneDiagonal());
    });
    auto* const form = new QFormLayout;
    form->addRow(tr("New needles:"), fit);
    form->addRow(tr("Length:"), MakeSize("needleLength", tr("Length of new needles"),
                                         tr("From the surface to the head, scene units."), &NeedleLook::length));
    form->addRow(tr("Head radius:"),
                 row({MakeSize("needleHeadRadius", tr("Head radius"), tr("Scene units."), &NeedleLook::headRadius),
                      MakeColor("needleHeadColor", tr("Colour of the head"), &NeedleLook::headColor),
                      MakeColor("needleSelectionColor", tr("Colour of the head while it is selected"),
                                &NeedleLook::headSelectionColor)}));
    form->addRow(
        tr("Pin radius:"),
        row({MakeSize("needlePinSize", tr("Pin radius"),
                      tr("At the head, scene units. The pin is a fifth as thick at its tip."), &NeedleLook::pinSize),
             MakeColor("needlePinColor", tr("Colour of the pin"), &NeedleLook::pinColor)}));
    form->addRow(
        tr("Point radius:"),
        row({MakeSize("needleHitPointRadius", tr("Point radius"),
                      tr("Of the mark on the surface, scene units. 0: no mark."), &NeedleLook::hitPointRadius),
             MakeColor("needleHitPointColor", tr("Colour of the mark on the surface"), &NeedleLook::hitPointColor)}));
    form->addRow(tr("Limit:"), m_pLimit);
    return form;
}

void NeedlePanel::MakeList() {
    m_pList->setObjectName("needleList");
    m_pList->setColumnCount(kColumnCount);
    m_pList->setHeaderLabels({tr("Needle"), tr("Pin"), tr("Head")});
    m_pList->setRootIsDecorated(false);
    m_pList->setUniformRowHeights(true);
    m_pList->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    connect(m_pList, &QTreeWidget::itemSelectionChanged, this, &NeedlePanel::SelectInViewer);
    auto* const remove = new QAction(tr("Delete"), m_pList);
    remove->setShortcut(QKeySequence::Delete);
    remove->setShortcutContext(Qt::WidgetWithChildrenShortcut);  // Delete is a key of the viewer too
    connect(remove, &QAction::triggered, this, &NeedlePanel::DeleteSelected);
    m_pList->addAction(remove);
    m_pList->setContextMenuPolicy(Qt::ActionsContextMenu);
}

void NeedlePanel::Arrange() {
    auto* const load = new QPushButton(tr("Load..."));
    load->setObjectName("needleLoad");
    m_pDelete->setObjectName("needleDelete");
    m_pDeleteAll->setObjectName("needleDeleteAll");
    m_pSave->setObjectName("needleSave");
    connect(m_pDelete, &QPushButton::clicked, this, &NeedlePanel::DeleteSelected);
    connect(m_pDeleteAll, &QPushButton::clicked, this, &NeedlePanel::DeleteAll);
    connect(m_pSave, &QPushButton::clicked, this, &NeedlePanel::SaveWanted);
    connect(load, &QPushButton::clicked, this, &NeedlePanel::LoadWanted);
    auto* const buttons = new QHBoxLayout;
    for (QPushButton* const button : {m_pDelete, m_pDeleteAll, m_pSave, load}) buttons->addWidget(button);
    auto* const column = new QVBoxLayout(this);
    column->addWidget(m_pCreate);
    column->addWidget(m_pShow);
    column->addWidget(m_pText);
    column->addWidget(m_pList, 1);
    column->addLayout(buttons);
    column->addLayout(MakeLook());
}

void NeedlePanel::SetViewer(KV_ScenePane::_DKV_ScenePane* methods) {
    m_pMethods = methods;
    setEnabled(methods != nullptr);
    if (methods == nullptr) {
        const QSignalBlocker quiet(m_pList);
        m_pList->clear();
        m_rows.clear();
        m_selected.reset();
        m_bCreating = false;
    }
    FollowCount();
}

// ---- what the user does

void NeedlePanel::SwitchCreation(bool on) {
    if (m_pMethods == nullptr) return;
    m_bCreating = on;
    {
        const QSignalBlocker quiet(m_pCreate);
        m_pCreate->setChecked(on);
    }
    m_pMethods->SetNeedlePickingMode(Variant(on));
    if (on) {
        m_pShow->setChecked(true);  // a needle that is created must be seen
        FollowScene();
    }
    ShowMouseHint();
}

void NeedlePanel::SwitchDrawing(bool on) {
    if (m_pMethods == nullptr) return;
    m_pMethods->SetNeedleDrawingMode(Variant(on));
    m_pMethods->PerformInvalidate();
}

void NeedlePanel::ChangeLimit(int limit) {
    if (limit == m_nLimit) return;  // Return was pressed: the box reports that always
    m_nLimit = limit;
    if (m_pMethods != nullptr) m_pMethods->SetMaxNumberOfNeedles(limit);
    FollowCount();
}

double NeedlePanel::SceneDiagonal() const {
    if (m_pMethods == nullptr) return 0;
    std::vector<int> objects(static_cast<std::size_t>(std::max<int>(m_pMethods->GetNumObjects(), 0)));
    std::iota(objects.begin(), objects.end(), 0);
    return ::SceneDiagonal(*m_pMethods, objects);
}

void NeedlePanel::FitSizes(double diagonal) {
    if (!(diagonal > 0) || !std::isfinite(diagonal)) return;
    const NeedleLook start;
    for (const auto& [box, size] : m_vSizes) {
        const QSignalBlocker quiet(box);  // one call for all sizes
        box->setValue(Rounded(static_cast<double>(start.*size) * diagonal / kStartDiagonal));
        m_look.*size = static_cast<float>(box->value());
    }
    SetNeedleLook(*m_pMethods, m_look);
}

void NeedlePanel::FollowScene() {
    if (m_pMethods != nullptr && !m_bSizesChosen && m_rows.empty()) FitSizes(SceneDiagonal());
}

void NeedlePanel::SelectInViewer() {
    if (m_pMethods == nullptr) return;
    const QList<QTreeWidgetItem*> selected = m_pList->selectedItems();
    if (selected.isEmpty())
        m_pMethods->DeselectAllNeedles();
    else
        m_pMethods->SelectNeedle(selected.front()->data(kId, Qt::UserRole).toInt());
}

void NeedlePanel::DeleteSelected() {
    if (m_pMethods != nullptr && m_selected) (void)m_pMethods->DeleteNeedle(*m_selected);
}

void NeedlePanel::DeleteAll() {
    const QString question = tr("Delete all %1 needles? Needles that are not saved are lost.").arg(m_rows.size());
    constexpr auto kAnswers = QMessageBox::Yes | QMessageBox::No;
    if (QMessageBox::question(this, tr("Delete all needles"), question, kAnswers, QMessageBox::No) != QMessageBox::Yes)
        return;
    if (m_pMethods == nullptr) return;    // lost while the question was open
    const PaintBlock block(*m_pMethods);  // each deletion would draw a frame
    m_pMethods->DeleteNeedles();
}

std::vector<NeedleMark> NeedlePanel::Marks() const {
    std::vector<NeedleMark> marks;
    for (int i = 0; m_pMethods != nullptr && i < m_pList->topLevelItemCount(); ++i) {
        NeedleMark mark;
        mark.id = m_pList->topLevelItem(i)->data(kId, Qt::UserRole).toInt();
        std::array<float, 6> p{};
        if (!GetPositions(*m_pMethods, mark.id, &p)) continue;
        std::copy_n(p.begin(), 3, mark.pin.begin());
        std::copy_n(p.begin() + 3, 3, mark.head.begin());
        mark.look = m_rows.at(mark.id).look;
        marks.push_back(mark);
    }
    return marks;
}

bool NeedlePanel::HaveUnsaved() const {
    const std::vector<NeedleMark> marks = Marks();
    return !marks.empty() && marks != m_vSaved;
}

std::vector<std::int32_t> NeedlePanel::Place(const std::vector<NeedleMark>& marks) {
    std::vector<std::int32_t> inUse = PlaceNeedles(*m_pMethods, marks, m_look, &m_nLimit);
    for (const NeedleMark& mark : marks) {
        const auto row = m_rows.find(mark.id);
        if (row != m_rows.end() && std::ranges::find(inUse, mark.id) == inUse.end()) row->second.look = mark.look;
    }
    m_pShow->setChecked(true);
    m_pMethods->PerformInvalidate();
    FollowCount();
    return inUse;
}

// ---- what happened in the viewer

void NeedlePanel::OnCreated(int id) {
    if (m_pMethods == nullptr) return;
    std::array<float, 6> p{};
    if (m_rows.contains(id) || !GetPositions(*m_pMethods, id, &p)) {
        WarnOfLimit(LimitReachedText(m_nLimit));
        return;
    }
    const QSignalBlocker quiet(m_pList);
    auto* const item = new QTreeWidgetItem(m_pList);
    item->setText(kId, QString::number(id));
    item->setData(kId, Qt::UserRole, id);
    const Row row{item, m_look};
    m_rows[id] = row;
    ShowPosition(id, row);
    FollowCount();
}

void NeedlePanel::OnDeleted(int id) {
    const auto row = m_rows.find(id);
    if (row == m_rows.end()) return;
    {
        const QSignalBlocker quiet(m_pList);  // the list would select the next row
        delete row->second.item;
    }
    m_rows.erase(row);
    if (m_selected == id) m_selected.reset();  // a lowered limit deletes without deselecting
    ShowSelection();
    FollowCount();
}

void NeedlePanel::OnSelected(int id) {
    m_selected = id;
    ShowSelection();
}

void NeedlePanel::OnDeselected(int id) {
    if (m_selected == id) m_selected.reset();
    ShowSelection();
}

void NeedlePanel::OnInput() {
    if (m_pMethods == nullptr || !m_selected) return;
    const auto row = m_rows.find(*m_selected);
    if (row != m_rows.end()) ShowPosition(*m_selected, row->second);
}

void NeedlePanel::ShowSelection() {
    const QSignalBlocker quiet(m_pList);
    const auto row = m_selected ? m_rows.find(*m_selected) : m_rows.end();
    m_pList->setCurrentItem(row != m_rows.end() ? row->second.item : nullptr);
    m_pDelete->setEnabled(row != m_rows.end());
}

void NeedlePanel::ShowPosition(int id, const Row& row) const {
    std::array<float, 6> p{};
    if (!GetPositions(*m_pMethods, id, &p)) return;
    const QSignalBlocker quiet(m_pList);
    row.item->setText(kPin, PositionText(p.data()));
    row.item->setText(kHead, PositionText(p.data() + 3));
}

void NeedlePanel::ShowText(const QString& text, bool isWarning) {
    m_pText->setText(text);
    QFont font = m_pText->font();
    font.setBold(isWarning);
    m_pText->setFont(font);
}

void NeedlePanel::ShowMouseHint() {
    const QString text = m_bCreating ? MouseText() : QString();
    ShowText(text, false);
    emit Hint(text);
}

void NeedlePanel::WarnOfLimit(const QString& text) {
    ShowText(text, true);
    emit Hint(text);
}

void NeedlePanel::ReserveTextHeight() {
    QFont bold = m_pText->font();
    bold.setBold(true);  // as for warnings, which are the widest
    const QFontMetrics metrics(bold);
    int height = 0;
    for (const QString& text : {MouseText(), LimitReachedText(m_nLimit), LimitTooLowText(m_rows.size())}) {
        const QRect space(0, 0, m_pText->width(), 0);
        height = std::max(height, metrics.boundingRect(space, Qt::TextWordWrap, text).height());
    }
    m_pText->setFixedHeight(height);
}

void NeedlePanel::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    ReserveTextHeight();
}

void NeedlePanel::FollowCount() {
    const auto count = static_cast<int>(m_rows.size());
    const QSignalBlocker quiet(m_pLimit);
    m_pLimit->setMinimum(std::min(count, m_nLimit));
    m_pLimit->setMaximum(std::max(static_cast<int>(kMaxNeedlesInFile), m_nLimit));
    m_pLimit->setValue(m_nLimit);
    m_pDelete->setEnabled(m_selected.has_value());
    m_pDeleteAll->setEnabled(count > 0);
    m_pSave->setEnabled(count > 0);
    // A warning about the limit has become wrong.
    if (m_pText->font().bold() && count < m_nLimit) ShowMouseHint();
}
