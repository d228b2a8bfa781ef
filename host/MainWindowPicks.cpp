// Points that the user picks on objects: each gets a sphere in the viewer and a row in the pane.
#include <QClipboard>
#include <QGuiApplication>
#include <QMenu>
#include <QMessageBox>
#include <QScopedValueRollback>
#include <QStatusBar>
#include <algorithm>
#include <cmath>
#include <limits>

#include "DecorationPanel.h"
#include "EventPane.h"
#include "ImportProgress.h"
#include "MainWindow.h"
#include "NeedlePanel.h"
#include "ObjectCentring.h"
#include "ObjectList.h"
#include "PaintBlock.h"
#include "SceneReport.h"
#include "StatusLine.h"
#include "ViewerWidget.h"

namespace {

double Distance(const PickedPoint& a, const PickedPoint& b) {
    const auto side = [&](std::size_t axis) {
        return static_cast<double>(a.point[axis]) - static_cast<double>(b.point[axis]);
    };
    return std::hypot(side(0), side(1), side(2));
}

}  // namespace

void MainWindow::MakePickPanel() {
    m_pPicks = new PickPanel;
    connect(m_pPicks, &PickPanel::PlacingWanted, this,
            [this](bool on) { AskForPickMode(on ? KV_ScenePane::PickModePoints : KV_ScenePane::PickModeOff); });
    connect(m_pPicks, &PickPanel::RadiusChanged, this, &MainWindow::FitPickRadius);
    connect(m_pPicks, &PickPanel::RemovalWanted, this, &MainWindow::RemovePickPoints);
    connect(m_pPicks, &PickPanel::ClearingWanted, this, &MainWindow::ClearPickPoints);
    connect(m_pPicks, &PickPanel::MoveWanted, this, &MainWindow::MovePickPoint);
    connect(m_pPicks, &PickPanel::CopyWanted, this, &MainWindow::CopyPickPoints);
    connect(m_pPicks, &PickPanel::DistanceCopyWanted, this, &MainWindow::CopyPickDistance);
    // At once: the pane is equal to the viewer whenever the user can use either.
    connect(m_pViewer, &ViewerWidget::ObjectPicked, this, &MainWindow::OnObjectPicked);
    connect(m_pViewer, &ViewerWidget::PickPointsChanged, this, &MainWindow::OnPickPointsChanged);
    // Queued: the viewer ends the drag of the press first.
    connect(m_pViewer, &ViewerWidget::RightClicked, this, &MainWindow::ShowMenuAt, Qt::QueuedConnection);
    connect(this, &MainWindow::ImportFinished, this, &MainWindow::FollowImport);
}

void MainWindow::MakePickActions(QMenu& menu) {
    menu.addSeparator();
    m_pCopyDistance =
        menu.addAction(tr("Copy &distance of the last two picks"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_C), this,
                       &MainWindow::CopyPickDistance);
    m_pCancelMove = menu.addAction(tr("Ca&ncel the move of a point"), QKeySequence(Qt::Key_Escape), this,
                                   [this] { MovePickPoint(-1); });
    m_pCopyDistance->setEnabled(false);
    m_pCancelMove->setEnabled(false);
}

void MainWindow::AskForPickMode(KV_ScenePane::PickMode mode) {
    if (Pane() == nullptr) return;
    if (Pane()->Methods().GetPickMode() == mode || AskAboutPickPoints())
        ChoosePickMode(mode);
    else
        ShowPickMode();
}

void MainWindow::ChoosePickMode(KV_ScenePane::PickMode mode) {
    if (Pane() == nullptr) return;
    // The present mode again would remove all pick points.
    if (Pane()->Methods().GetPickMode() != mode) Pane()->Methods().SetPickMode(mode);
    Pane()->Methods().PerformInvalidate();  // the cross is drawn in one mode only
    if (IsPicking(mode) && m_pNeedles->IsCreating()) {
        m_pNeedles->SwitchCreation(false);
        statusBar()->showMessage(tr("A double click picks points now and creates no needles."));
    }
    ShowPickMode();
}

bool MainWindow::AskAboutPickPoints() {
    if (m_vPickPoints.size() < 2) return true;
    const QString question = tr("Another pick mode removes all %1 points. Change the mode?").arg(m_vPickPoints.size());
    constexpr auto kAnswers = QMessageBox::Yes | QMessageBox::No;
    return QMessageBox::question(this, tr("Change the pick mode"), question, kAnswers, QMessageBox::No) ==
               QMessageBox::Yes &&
           Pane() != nullptr;  // it may be lost while the question is open
}

void MainWindow::ShowPickMode() {
    if (Pane() == nullptr) return;
    const std::int16_t mode = Pane()->Methods().GetPickMode();
    const int choice = mode == KV_ScenePane::PickModeCross ? 2 : IsPicking(mode) ? 1 : 0;
    m_pickActions[choice]->setChecked(true);
    m_pDecorations->ShowCross(mode == KV_ScenePane::PickModeCross);
    m_pPicks->ShowPlacing(mode == KV_ScenePane::PickModePoints);
}

void MainWindow::OnObjectPicked(int object, float x, float y, float z) {
    if (Pane() == nullptr) return;
    const PickedPoint pick{{x, y, z}, object, NameOfObject(object)};
    m_pEvents->AddLine(tr("    object %1").arg(ObjectText(pick)));
    if (m_vLastPicks.size() == 2) m_vLastPicks.erase(m_vLastPicks.begin());
    m_vLastPicks.push_back(pick);
    KV_ScenePane::_DKV_ScenePane& methods = Pane()->Methods();
    if (methods.GetPickMode() == KV_ScenePane::PickModePoints) {
        if (m_nPointToMove >= 0) {
            const int moved = m_nPointToMove;
            MovePickPoint(-1);
            m_vPickPoints[static_cast<std::size_t>(moved)] = pick;
            methods.MovePickPointSphere(moved, x, y, z);
            FollowPickPoints();  // no event reports a move
        } else {
            m_vPickPoints.push_back(pick);  // the list is made from it in the event of the next line
            methods.AddPickPointSphere(x, y, z, m_pPicks->Color());
        }
    }
    ShowLastPick();
}

void MainWindow::OnPickPointsChanged() {
    if (m_bRemovesPickPoints) return;  // once for all of them
    MovePickPoint(-1);                 // its number may be that of another point now
    FollowPickPoints();
    if (m_vPickPoints.empty()) ForgetLastPicks();  // also after a change of the mode, whatever it was before
}

void MainWindow::FollowPickPoints() {
    if (m_pPickMenu != nullptr) m_pPickMenu->close();  // its number may be that of another point now
    const std::int32_t count = Pane() != nullptr ? Pane()->Methods().GetNumberOfPickPointSpheres() : 0;
    m_vPickPoints.resize(static_cast<std::size_t>(count));
    for (std::int32_t i = 0; i < count; ++i) {
        std::array<float, 3>& point = m_vPickPoints[static_cast<std::size_t>(i)].point;
        Pane()->Methods().GetPickPointSphereCoords(i, &point[0], &point[1], &point[2]);
    }
    m_pPicks->ShowPoints(m_vPickPoints);
}

void MainWindow::RenumberPicks(const std::vector<int>& newIndex) {
    for (std::vector<PickedPoint>* const picks : {&m_vPickPoints, &m_vLastPicks}) {
        for (PickedPoint& pick : *picks) {
            if (pick.object < 0) continue;
            const auto object = static_cast<std::size_t>(pick.object);
            pick.object = object < newIndex.size() ? newIndex[object] : -1;
        }
    }
    MarkDeletedPicks();
}

void MainWindow::MarkDeletedPicks() {
    for (std::vector<PickedPoint>* const picks : {&m_vPickPoints, &m_vLastPicks}) {
        for (PickedPoint& pick : *picks) pick.isDeleted = m_pObjects->IsRemoved(pick.object);
    }
    FollowPickPoints();
    ShowLastPick();
    FitPickRadius();
}

void MainWindow::FollowImport() {
    for (std::vector<PickedPoint>* const picks : {&m_vPickPoints, &m_vLastPicks}) {
        for (PickedPoint& pick : *picks) {
            if (pick.name.isEmpty()) pick.name = NameOfObject(pick.object);
        }
    }
    FollowPickPoints();
    ShowLastPick();
    FitPickRadius();
}

void MainWindow::RemovePickPoints(const std::vector<int>& points) {
    if (Pane() == nullptr) return;
    KV_ScenePane::_DKV_ScenePane& methods = Pane()->Methods();
    const PaintBlock block(methods);  // one frame for all points
    const std::int32_t before = methods.GetNumberOfPickPointSpheres();
    {
        const QScopedValueRollback removing(m_bRemovesPickPoints, true);
        // From the last one: a removal changes the numbers of the points after it.
        for (auto point = points.rbegin(); point != points.rend(); ++point) {
            if (*point < 0 || *point >= methods.GetNumberOfPickPointSpheres()) continue;
            m_vPickPoints.erase(m_vPickPoints.begin() + *point);
            methods.RemovePickPointSphere(*point);
        }
    }
    if (methods.GetNumberOfPickPointSpheres() != before) OnPickPointsChanged();
    methods.PerformInvalidate();
}

void MainWindow::ClearPickPoints() {
    if (Pane() != nullptr) Pane()->Methods().ClearPickPointSpheres();
}

void MainWindow::MovePickPoint(int point) {
    if (point >= static_cast<int>(m_vPickPoints.size())) return;
    const bool ends = point < 0 && m_nPointToMove >= 0;
    m_nPointToMove = point;
    m_pPicks->ShowMoving(point);
    m_pCancelMove->setEnabled(point >= 0);
    m_pProgress->LeaveEscape(point >= 0);
    if (ends) statusBar()->clearMessage();
    if (point >= 0)
        statusBar()->showMessage((m_mouseScheme == MouseScheme::Delayed
                                      ? tr("Click an object to move point %1 there. Escape cancels.")
                                      : tr("Double click an object to move point %1 there. Escape cancels."))
                                     .arg(point + 1));
}

void MainWindow::CopyPickPoints(const std::vector<int>& points) {
    QString text;
    for (const int point : points) {
        if (point >= 0 && point < static_cast<int>(m_vPickPoints.size()))
            text += PointText(m_vPickPoints[static_cast<std::size_t>(point)], "\t") + '\n';
    }
    if (!text.isEmpty()) QGuiApplication::clipboard()->setText(text);
}

void MainWindow::CopyPickDistance() {
    const QString text = PickDistanceText();
    if (!text.isEmpty()) QGuiApplication::clipboard()->setText(text);
}

// The viewer names the nearest sphere at any distance, also one behind an object: the menu names the point, and the
// list shows it.
bool MainWindow::AddPickEntries(QMenu& menu, QPoint pixel) {
    if (Pane()->Methods().GetPickMode() != KV_ScenePane::PickModePoints) return false;
    const int point = Pane()->Methods().FindNearestPickPointSphere(pixel.x(), pixel.y());
    if (point < 0 || point >= static_cast<int>(m_vPickPoints.size())) return false;
    m_pPicks->SelectPoint(point);
    const PickedPoint& pick = m_vPickPoints[static_cast<std::size_t>(point)];
    const QString object = ShownObject(pick).replace('&', "&&");  // one alone marks a key
    menu.addAction(tr("Point %1 on %2").arg(QString::number(point + 1), object))->setEnabled(false);
    menu.addAction(tr("&Remove point %1").arg(point + 1), this, [this, point] { RemovePickPoints({point}); });
    if (m_nPointToMove >= 0)
        menu.addAction(m_pCancelMove);
    else
        menu.addAction(tr("&Move point %1 to the next pick").arg(point + 1), this,
                       [this, point] { MovePickPoint(point); });
    menu.addAction(tr("&Copy coordinates"), this, [this, point] { CopyPickPoints({point}); });
    menu.addAction(m_pCopyDistance);
    return true;
}

void MainWindow::FitPickRadius() {
    if (Pane() == nullptr) return;
    const double radius = SceneDiagonal(Pane()->Methods(), m_pObjects->PresentObjects()) * m_pPicks->RadiusOfDiagonal();
    if (!(radius > 0.0)) return;  // no scene: nothing can be picked
    constexpr double kLargest = std::numeric_limits<float>::max();
    Pane()->Methods().SetPickRadius(static_cast<float>(std::min(radius, kLargest)));
    if (!m_vPickPoints.empty()) Pane()->Methods().PerformInvalidate();
}

void MainWindow::ShowLastPick() {
    const QString distance = PickDistanceText();
    m_pPicks->ShowDistance(distance);
    m_pCopyDistance->setEnabled(!distance.isEmpty());
    QString text;
    if (!m_vLastPicks.empty()) {
        const PickedPoint& last = m_vLastPicks.back();
        const QString object = ShownObject(last), point = ShownPoint(last.point);
        text = distance.isEmpty()
                   ? tr("%1: %2 mm").arg(object, point)
                   : tr("%1: %2 mm, distance %3 mm")
                         .arg(object, point, ShownLength(Distance(m_vLastPicks.front(), m_vLastPicks.back())));
    }
    m_pStatus->ShowPick(text, !distance.isEmpty());
}

void MainWindow::ForgetLastPicks() {
    m_vLastPicks.clear();
    ShowLastPick();
}

void MainWindow::ForgetPicks() {
    MovePickPoint(-1);
    FollowPickPoints();
    ForgetLastPicks();
}

QString MainWindow::PickDistanceText() const {
    if (m_vLastPicks.size() < 2) return {};
    return QString::fromStdString(NumberText(static_cast<float>(Distance(m_vLastPicks[0], m_vLastPicks[1]))));
}

QString MainWindow::NameOfObject(int object) const { return m_pObjects->NameOf(object); }
