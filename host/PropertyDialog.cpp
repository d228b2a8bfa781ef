// Labels, kinds and items of the controls come from the page itself; only the tips are the host's.
#include "PropertyDialog.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>
#include <algorithm>
#include <cassert>
#include <iterator>

namespace {

using KV_ScenePane::CKV_ScenePanePropPage;
using KV_ScenePane::PropertyPageControl;

QString Text(std::string_view utf8) { return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size())); }

// What a property does, by its name. A property without a row has no tip.
constexpr struct {
    std::string_view property;
    const char* tip;
} kTips[] = {
    {"DrawMode", QT_TRANSLATE_NOOP("PropertyDialog",
                                   "How objects are drawn.\nNothing is chosen while the window has a render mode "
                                   "that only the Render menu offers.")},
    {"DrawMosaic",
     QT_TRANSLATE_NOOP("PropertyDialog", "Kept and reported to programs only: it changes nothing in the picture.")},
    {"MoveReduced", QT_TRANSLATE_NOOP("PropertyDialog",
                                      "While a drag moves the view, objects are drawn as a tenth of their points.\n"
                                      "Bounding boxes stay.")},
};

QString TipOf(std::string_view property) {
    const auto* const row = std::ranges::find(kTips, property, [](const auto& tip) { return tip.property; });
    return row != std::end(kTips) ? PropertyDialog::tr(row->tip) : QString();
}

// The properties by their names.

std::int32_t ValueOf(const CKV_ScenePanePropPage& page, std::string_view property) {
    if (property == "DrawMode") return page.m_nDrawMode;
    if (property == "DrawMosaic") return page.m_bDrawMosaic ? 1 : 0;
    assert(property == "MoveReduced");
    return page.m_bMoveReduced ? 1 : 0;
}

void SetValue(CKV_ScenePanePropPage& page, std::string_view property, std::int32_t value) {
    if (property == "DrawMode")
        page.m_nDrawMode = value;
    else if (property == "DrawMosaic")
        page.m_bDrawMosaic = value != 0;
    else if (property == "MoveReduced")
        page.m_bMoveReduced = value != 0;
}

// The values of controls of both kinds.

std::int32_t ShownBy(const QWidget* widget) {
    const auto* const list = qobject_cast<const QComboBox*>(widget);
    return list != nullptr ? list->currentIndex() : static_cast<const QCheckBox*>(widget)->isChecked() ? 1 : 0;
}

void Show(QWidget* widget, std::int32_t value) {
    if (auto* const list = qobject_cast<QComboBox*>(widget))
        list->setCurrentIndex(value);
    else
        static_cast<QCheckBox*>(widget)->setChecked(value != 0);
}

}  // namespace

PropertyDialog::PropertyDialog(QWidget* parent)
    : QDialog(parent),
      m_pTabs(new QTabWidget),
      m_pButtons(new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel | QDialogButtonBox::Apply)) {
    setWindowTitle(tr("Properties"));
    auto* const page = new QWidget;
    auto* const form = new QFormLayout(page);
    m_pTabs->addTab(page, Text(CKV_ScenePanePropPage::kCaption));
    for (const PropertyPageControl& description : CKV_ScenePanePropPage::kControls) AddControl(*form, description);
    connect(m_pButtons, &QDialogButtonBox::accepted, this, &PropertyDialog::accept);
    connect(m_pButtons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_pButtons->button(QDialogButtonBox::Apply), &QPushButton::clicked, this, &PropertyDialog::Apply);
    auto* const column = new QVBoxLayout(this);
    column->addWidget(m_pTabs);
    column->addWidget(m_pButtons);
    EnableButtons();
}

void PropertyDialog::AddControl(QFormLayout& form, const PropertyPageControl& description) {
    QWidget* widget = nullptr;
    if (description.kind == PropertyPageControl::Kind::DropDown) {
        auto* const list = new QComboBox;
        for (const std::string_view item : description.items) list->addItem(Text(item));
        // The one drop-down is that of the render modes.
        list->setPlaceholderText(tr("(another mode, see the Render menu)"));
        connect(list, &QComboBox::currentIndexChanged, this, &PropertyDialog::EnableButtons);
        widget = list;
    } else {
        auto* const box = new QCheckBox;
        connect(box, &QCheckBox::toggled, this, &PropertyDialog::EnableButtons);
        widget = box;
    }
    Show(widget, description.start);
    widget->setObjectName(Text(description.property));
    widget->setToolTip(TipOf(description.property));
    form.addRow(Text(description.label), widget);
    form.labelForField(widget)->setToolTip(widget->toolTip());
    widget->setAccessibleName(Text(description.label));
    m_vControls.push_back({description, widget});
}

void PropertyDialog::SetViewer(KV_ScenePane::_DKV_ScenePane* methods) {
    m_pMethods = methods;
    if (methods == nullptr) reject();
}

void PropertyDialog::ShowPage() {
    if (m_pMethods == nullptr) return;
    if (!isVisible()) {
        m_viewerPage.Load(*m_pMethods);
        for (const Control& control : m_vControls)
            Show(control.widget, ValueOf(m_viewerPage, control.description.property));
        m_vControls.front().widget->setFocus();
    }
    EnableButtons();
    show();
    raise();
    activateWindow();
}

void PropertyDialog::Follow() {
    if (m_pMethods == nullptr || !isVisible()) return;
    const CKV_ScenePanePropPage before = m_viewerPage;
    m_viewerPage.Load(*m_pMethods);
    for (const auto& [description, widget] : m_vControls) {
        const bool isEdited = ShownBy(widget) != ValueOf(before, description.property);
        if (!isEdited) Show(widget, ValueOf(m_viewerPage, description.property));
    }
    EnableButtons();
}

void PropertyDialog::SetUsable(bool on) {
    m_bUsable = on;
    EnableButtons();
}

CKV_ScenePanePropPage PropertyDialog::Edited() const {
    CKV_ScenePanePropPage page;
    for (const auto& [description, widget] : m_vControls) SetValue(page, description.property, ShownBy(widget));
    return page;
}

bool PropertyDialog::IsChanged() const {
    return std::ranges::any_of(m_vControls, [this](const Control& control) {
        return ShownBy(control.widget) != ValueOf(m_viewerPage, control.description.property);
    });
}

void PropertyDialog::Apply() {
    if (m_pMethods == nullptr || !IsChanged()) return;
    Edited().Apply(*m_pMethods);  // a property that has this value already is not changed
    Follow();
    emit Applied();
}

void PropertyDialog::accept() {
    Apply();
    QDialog::accept();
}

void PropertyDialog::EnableButtons() {
    m_pTabs->setEnabled(m_bUsable);
    m_pButtons->button(QDialogButtonBox::Ok)->setEnabled(m_bUsable);
    m_pButtons->button(QDialogButtonBox::Apply)->setEnabled(m_bUsable && IsChanged());
}
