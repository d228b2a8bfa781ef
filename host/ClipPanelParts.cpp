// The controls of the panel of the clip plane and their arrangement.
#include <QApplication>
#include <QCheckBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <algorithm>
#include <limits>

#include "ClipPanel.h"
#include "ColorButton.h"
#include "NumberBox.h"

namespace {

constexpr int kDecimals = 6;
constexpr double kMaxCenter = std::numeric_limits<float>::max();  // every position of the viewer
constexpr double kMaxNormal = 1e6;                                // of any length: only the direction counts
constexpr int kMinFieldWidth = 90;                                // pixels, about ten digits

constexpr const char* kAxes[] = {"X", "Y", "Z"};

NumberBox* MakeNumber(const QString& name, const QString& title, const QString& tip, double limit, double step) {
    auto* const box = new NumberBox;
    box->setObjectName(name);
    box->setAccessibleName(title);
    box->setToolTip(tip);
    box->setDecimals(kDecimals);
    box->setRange(-limit, limit);
    box->setSingleStep(step);
    // The width that Qt asks for is that of the longest possible number.
    box->setMinimumWidth(kMinFieldWidth);
    box->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    return box;
}

QPushButton* MakeButton(const QString& text, const QString& name, const QString& tip) {
    auto* const button = new QPushButton(text);
    button->setObjectName(name);
    button->setToolTip(tip);
    return button;
}

}  // namespace

ClipPanel::ClipPanel(const ClipSettings& settings, QWidget* parent)
    : QWidget(parent),
      m_settings(settings),
      m_pOn(new QCheckBox(tr("Clip the scene"))),
      m_pShown(new QCheckBox(tr("Show the plane"))),
      m_pText(new QLabel) {
    MakeSwitches();
    Arrange();
    ShowSettings();
    setEnabled(false);
}

void ClipPanel::MakeSwitches() {
    m_pOn->setObjectName("clipOn");
    m_pOn->setToolTip(
        tr("What lies on the side away from the normal is cut off. A plane that you have not moved is placed at the "
           "data; one that you "
           "have moved stays where it is, also at the next start."));
    connect(m_pOn, &QCheckBox::toggled, this, &ClipPanel::SwitchClipping);
    m_pShown->setObjectName("clipShown");
    m_pShown->setToolTip(tr("A hidden plane clips as well, but mouse and keys do not move it."));
    connect(m_pShown, &QCheckBox::toggled, this, &ClipPanel::SwitchPlane);
    m_pText->setObjectName("clipText");
    m_pText->setTextFormat(Qt::PlainText);  // it holds texts of the viewer
    m_pText->setWordWrap(true);
    m_pText->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    // What is below does not move when a text appears.
    m_pText->setMinimumHeight(3 * m_pText->fontMetrics().lineSpacing());
}

QLayout* ClipPanel::MakeNumbers() {
    const QString centerTip = tr("A point of the plane, scene units. The plane moves while you type.");
    const QString normalTip =
        tr("Objects are kept on the side that it points to. Any length: it is scaled to 1 when you leave the fields or "
           "press Return.");
    auto* const grid = new QGridLayout;
    grid->addWidget(new QLabel(tr("Centre")), 0, 1);
    grid->addWidget(new QLabel(tr("Normal, to the side that is kept")), 0, 2);
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const QString name = kAxes[axis];
        const int row = static_cast<int>(axis) + 1;
        auto* const center = MakeNumber("clipCenter" + name, tr("Centre %1").arg(name), centerTip, kMaxCenter, 1.0);
        connect(center, &NumberBox::valueChanged, this, [this, axis](double value) { EditCenter(axis, value); });
        auto* const normal = MakeNumber("clipNormal" + name, tr("Normal %1").arg(name), normalTip, kMaxNormal, 0.1);
        connect(normal, &NumberBox::valueChanged, this, &ClipPanel::EditNormal);
        connect(normal, &NumberBox::editingFinished, this, [this, normal] {
            // From one of the three to another: the normal is not complete yet.
            const QWidget* const focused = QApplication::focusWidget();
            const bool isWithin =
                focused != normal && std::find(m_vNormal.begin(), m_vNormal.end(), focused) != m_vNormal.end();
            if (!isWithin) EndNormalEdit();
        });
        m_vCenter.push_back(center);
        m_vNormal.push_back(normal);
        grid->addWidget(new QLabel(name), row, 0);
        grid->addWidget(center, row, 1);
        grid->addWidget(normal, row, 2);
    }
    grid->setColumnStretch(1, 1);
    grid->setColumnStretch(2, 1);
    return grid;
}

QLayout* ClipPanel::MakeDirections() {
    auto* const row = new QHBoxLayout;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const QString name = kAxes[axis];
        auto* const button = MakeButton(
            "+" + name, "clipAlong" + name,
            tr("Turns the plane about its centre: the side of +%1 is kept. Flip keeps the other one.").arg(name));
        connect(button, &QPushButton::clicked, this, [this, axis] { AlignNormal(axis); });
        row->addWidget(button);
    }
    auto* const flip = MakeButton(tr("Flip"), "clipFlip", tr("Keeps the other side of the plane."));
    connect(flip, &QPushButton::clicked, this, &ClipPanel::Flip);
    row->addWidget(flip);
    for (int i = 0; i < row->count(); ++i) row->itemAt(i)->widget()->setMinimumWidth(0);
    return row;
}

QLayout* ClipPanel::MakeColors() {
    auto* const row = new QHBoxLayout;
    const auto add = [&](const QString& text, const QString& name, const QString& title,
                         std::int32_t ClipSettings::*color) {
        auto* const button = new ColorButton(m_settings.*color);
        button->setObjectName(name);
        button->SetName(title);
        connect(button, &ColorButton::ColorChosen, this, [this, color](std::int32_t packed) {
            m_settings.*color = packed;
            if (m_pViewer != nullptr) ApplyColors();
            emit Changed();
        });
        m_vColors.emplace_back(button, color);
        row->addWidget(new QLabel(text));
        row->addWidget(button);
    };
    add(tr("Plane"), "clipColor", tr("Colour of the clip plane"), &ClipSettings::color);
    add(tr("Handles"), "clipHandleColor", tr("Colour of the arrow and the balls"), &ClipSettings::handleColor);
    add(tr("Outline"), "clipOutlineColor", tr("Colour of the outline, and of the axis while the plane is tilted"),
        &ClipSettings::outlineColor);
    row->addStretch(1);
    return row;
}

void ClipPanel::Arrange() {
    auto* const place =
        MakeButton(tr("Place at data"), "clipPlace",
                   tr("Switches clipping on and puts a horizontal plane at a height found in the data."));
    connect(place, &QPushButton::clicked, this, &ClipPanel::PlaceAtData);
    auto* const reset = MakeButton(tr("Reset"), "clipReset",
                                   tr("Switches clipping off; position and colours become those of a first start."));
    connect(reset, &QPushButton::clicked, this, &ClipPanel::Reset);
    auto* const switches = new QHBoxLayout;
    switches->addWidget(m_pOn);
    switches->addWidget(m_pShown);
    auto* const buttons = new QHBoxLayout;
    buttons->addWidget(place);
    buttons->addWidget(reset);
    auto* const hint = new QLabel(tr(
        "In the view: drag the arrow to move the plane, a ball to tilt it; Ctrl with a rotating or moving drag turns "
        "or pushes it. Escape takes a handle's drag back. Up, Down: by 1. Ctrl + double click: place at data."));
    hint->setObjectName("clipHint");
    hint->setWordWrap(true);
    hint->setToolTip(
        tr("While the plane is shown. Ctrl with a drag that rotates the view turns the plane, with one that moves the "
           "view pushes it along its normal.\nUp and Down move it by 1 scene unit after a click in the view.\nWith "
           "delayed mouse buttons, Ctrl + middle click places the plane at the data as well; "
           "with flipped ones a double click does nothing."));
    auto* const column = new QVBoxLayout(this);
    column->addLayout(switches);
    column->addLayout(MakeNumbers());
    column->addLayout(MakeDirections());
    column->addLayout(buttons);
    column->addWidget(m_pText);
    column->addLayout(MakeColors());
    column->addWidget(hint);
    column->addStretch(1);
    for (std::size_t i = 0; i + 1 < 3; ++i) {  // the three of one vector follow each other
        setTabOrder(m_vCenter[i], m_vCenter[i + 1]);
        setTabOrder(m_vNormal[i], m_vNormal[i + 1]);
    }
}
