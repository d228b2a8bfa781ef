// The tools are actions, which the menu shows, too.
#include "CutToolBar.h"

#include <QAction>
#include <QLabel>
#include <QMenu>
#include <QSpinBox>
#include <QToolButton>
#include <iterator>

#include "ColorButton.h"
#include "CutIcons.h"
#include "ToolAction.h"

namespace {

struct Way {
    const char* name;
    QKeyCombination keys;
    const char* text;
    const char* tip;
};

// In the order of SegmentationMode. The letters are those of outside, inside and visible; Shift draws freehand.
const Way kWays[] = {
    {"cutPolygonOutside", Qt::Key_O, QT_TRANSLATE_NOOP("CutToolBar", "Polygon: cut &outside"),
     QT_TRANSLATE_NOOP("CutToolBar", "removes what lies outside a polygon")},
    {"cutPolygonInside", Qt::Key_I, QT_TRANSLATE_NOOP("CutToolBar", "Polygon: cut &inside"),
     QT_TRANSLATE_NOOP("CutToolBar", "removes what lies inside a polygon, also what is hidden there")},
    {"cutPolygonVisible", Qt::Key_V, QT_TRANSLATE_NOOP("CutToolBar", "Polygon: cut what is &visible inside"),
     QT_TRANSLATE_NOOP("CutToolBar", "removes only the front surface inside a polygon")},
    {"cutFreehandOutside", Qt::SHIFT | Qt::Key_O, QT_TRANSLATE_NOOP("CutToolBar", "Freehand: cut o&utside"),
     QT_TRANSLATE_NOOP("CutToolBar", "removes what lies outside a line that you draw")},
    {"cutFreehandInside", Qt::SHIFT | Qt::Key_I, QT_TRANSLATE_NOOP("CutToolBar", "Freehand: cut i&nside"),
     QT_TRANSLATE_NOOP("CutToolBar", "removes what lies inside a line that you draw, also what is hidden there")},
    {"cutFreehandVisible", Qt::SHIFT | Qt::Key_V,
     QT_TRANSLATE_NOOP("CutToolBar", "Freehand: cut what is vi&sible inside"),
     QT_TRANSLATE_NOOP("CutToolBar", "removes only the front surface inside a line that you draw")},
};

QString UndoText(int steps, int deletedObjects) {
    if (deletedObjects > 0) return CutToolBar::tr("Un&do deletion (%1)").arg(deletedObjects);
    return steps > 0 ? CutToolBar::tr("Un&do cut (%1)").arg(steps) : CutToolBar::tr("Un&do");
}

}  // namespace

CutToolBar::CutToolBar(const LassoSettings& settings, QWidget* parent) : QToolBar(parent), m_settings(settings) {
    setObjectName("cuts");
    setWindowTitle(tr("Cut tools"));
    setIconSize({kToolIconSide, kToolIconSide});
    MakeWays();
    MakeCommands();
    addSeparator();
    addWidget(new QLabel(tr("Freehand tint:")));
    // Not "inside" and "outside": the viewer exchanges the two tints for the ways that cut outside.
    MakeTint("Inside", tr("Removed"), tr("what the cut will remove"), &LassoSettings::insideColor,
             &LassoSettings::insideOpacity);
    MakeTint("Outside", tr("Kept"), tr("what the cut will keep"), &LassoSettings::outsideColor,
             &LassoSettings::outsideOpacity);
    Show({});
}

void CutToolBar::MakeWays() {
    for (int i = 0; i < static_cast<int>(std::size(kWays)); ++i) {
        const auto way = static_cast<KV_ScenePane::SegmentationMode>(i);
        const Way& row = kWays[i];
        QAction* const action = MakeToolAction(this, row.name, CutWayIcon(way), tr(row.text), row.keys, tr(row.tip));
        action->setCheckable(true);
        // The check mark follows the viewer in Show(). A second click on the way that runs cancels it.
        connect(action, &QAction::triggered, this, [this, way](bool checked) {
            if (checked)
                emit WayWanted(way);
            else
                emit CancelWanted();
        });
        m_ways.push_back(action);
        if (way == KV_ScenePane::FreehandOutside) addSeparator();
        addAction(action);
    }
    addSeparator();
}

void CutToolBar::MakeCommands() {
    m_pCancel = MakeToolAction(this, "cutCancel", CutCancelIcon(), tr("&Cancel the lasso"), Qt::Key_Escape,
                               tr("ends the lasso without a cut"));
    connect(m_pCancel, &QAction::triggered, this, &CutToolBar::CancelWanted);
    m_pUndo = MakeToolAction(this, "cutUndo", CutUndoIcon(), UndoText(0, 0), Qt::CTRL | Qt::Key_Z,
                             tr("takes the last cut or the last deletion back; files that were saved stay cut"));
    connect(m_pUndo, &QAction::triggered, this, &CutToolBar::UndoWanted);
    m_pSave = MakeToolAction(this, "cutSave", CutSaveIcon(), tr("Save c&uts..."), Qt::CTRL | Qt::SHIFT | Qt::Key_S,
                             tr("writes all cuts and the clip plane into the pcm files of the objects"));
    connect(m_pSave, &QAction::triggered, this, &CutToolBar::SaveWanted);
    addActions({m_pCancel, m_pUndo, m_pSave});
    // The number of steps is in the text. What is beside it stays where it is while the number grows.
    auto* const undo = static_cast<QToolButton*>(widgetForAction(m_pUndo));
    undo->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_pUndo->setText(UndoText(0, 99));
    undo->setMinimumWidth(undo->sizeHint().width());
}

void CutToolBar::MakeTint(const QString& name, const QString& title, const QString& part,
                          std::int32_t LassoSettings::*color, int LassoSettings::*opacity) {
    addWidget(new QLabel(" " + title + " "));
    auto* const button = new ColorButton(m_settings.*color);
    button->setObjectName("lassoColor" + name);
    button->SetName(tr("Freehand lasso: colour of %1. From the next lasso on").arg(part));
    connect(button, &ColorButton::ColorChosen, this, [this, color](std::int32_t packed) {
        m_settings.*color = packed;
        emit ColorsChanged();
    });
    addWidget(button);
    auto* const box = new QSpinBox;
    box->setObjectName("lassoOpacity" + name);
    box->setAccessibleName(tr("Freehand lasso: opacity of %1").arg(part));
    box->setToolTip(
        tr("Freehand lasso: opacity of %1, from 0 invisible to 100 opaque. From the next lasso on").arg(part));
    box->setRange(0, 100);
    box->setSingleStep(5);
    box->setSuffix(" %");
    box->setValue(m_settings.*opacity);
    connect(box, &QSpinBox::valueChanged, this, [this, opacity](int percent) {
        m_settings.*opacity = percent;
        emit ColorsChanged();
    });
    addWidget(box);
}

void CutToolBar::FillMenu(QMenu& menu) const {
    menu.addActions(m_ways.mid(0, 3));
    menu.addSeparator();
    menu.addActions(m_ways.mid(3));
    menu.addSeparator();
    menu.addAction(m_pCancel);
}

void CutToolBar::FillEditMenu(QMenu& menu) const { menu.addAction(m_pUndo); }

void CutToolBar::FillFileMenu(QMenu& menu) const { menu.addAction(m_pSave); }

void CutToolBar::Show(const CutToolState& state) {
    for (int i = 0; i < m_ways.size(); ++i) {
        m_ways[i]->setEnabled(state.canCut);
        m_ways[i]->setChecked(state.way == static_cast<KV_ScenePane::SegmentationMode>(i));
    }
    const bool isIdle = state.canCut && !state.way;
    m_pCancel->setEnabled(state.way.has_value());
    m_pUndo->setEnabled(isIdle && state.undoSteps + state.deletedObjects > 0);
    m_pUndo->setText(UndoText(state.undoSteps, state.deletedObjects));
    m_pSave->setEnabled(isIdle);
}
