// Pictures of the view: their commands, and what is hidden for a picture without decorations.
#include <QMenu>
#include <algorithm>
#include <array>

#include "ClipPanel.h"
#include "DecorationPanel.h"
#include "GraphicsLimits.h"
#include "LogoPanel.h"
#include "MainWindow.h"
#include "ObjectCommands.h"
#include "PictureCommands.h"
#include "Settings.h"
#include "ToolAction.h"
#include "ViewerWidget.h"

namespace {

using KV_ScenePane::kVariantFalse;
using KV_ScenePane::kVariantTrue;

/// Most drivers have no more than the last one.
constexpr std::array kSampleCounts = {0, 2, 4, 8};

/// @param samples  one of kSampleCounts
int PositionOf(int samples) {
    return static_cast<int>(std::ranges::find(kSampleCounts, samples) - kSampleCounts.begin());
}

}  // namespace

void MainWindow::MakePictures() {
    PictureHooks hooks;
    hooks.background = [this] { return m_nBackground; };
    hooks.hideDecorations = [this](bool isHidden) { HideDecorations(isHidden); };
    m_pPictures = new PictureCommands(*m_pViewer, std::move(hooks), *this);
    connect(m_pPictures, &PictureCommands::Reported, this, &MainWindow::Report);
    connect(m_pPictures, &PictureCommands::Failed, this, &MainWindow::ReportFailure);
}

void MainWindow::MakePictureActions(QMenu& menu) {
    const auto add = [&](const char* name, const QString& text, const QKeySequence& keys, const QString& tip,
                         void (PictureCommands::*run)()) {
        QAction* const action = menu.addAction(text, keys, m_pPictures, run);
        action->setObjectName(name);
        SetToolTips(*action, tip);
        m_vFileActions.push_back(action);
    };
    add("savePicture", tr("Save &view as picture..."), QKeySequence(Qt::CTRL | Qt::Key_S),
        tr("what the window shows, at any size, also without decorations or background"),
        &PictureCommands::AskForPicture);
    add("copyPicture", tr("Cop&y picture"), QKeySequence(Qt::CTRL | Qt::ALT | Qt::Key_C),
        tr("what the window shows, as last chosen under Save view as picture"),
        qOverload<>(&PictureCommands::CopyPicture));
}

void MainWindow::MakeSamplesMenu(QMenu& menu) {
    QStringList texts;
    for (const int samples : kSampleCounts)
        texts << (samples == 0 ? tr("No smoothing") : tr("%1 samples per pixel").arg(samples));
    const QList<QAction*> actions = AddChoices(menu, texts, PositionOf(StoredSamples()), [](int choice) {
        StoreSamples(kSampleCounts.at(static_cast<std::size_t>(choice)));
    });
    for (std::size_t i = 0; i < kSampleCounts.size(); ++i)
        actions[static_cast<qsizetype>(i)]->setObjectName(QStringLiteral("samples%1").arg(kSampleCounts.at(i)));
    menu.addSeparator();
    // No command: what is drawn now is known when the menu opens.
    QAction* const present = menu.addAction(QString());
    present->setObjectName("presentSamples");
    present->setEnabled(false);
    connect(&menu, &QMenu::aboutToShow, present, [this, actions, present] {
        actions.at(PositionOf(StoredSamples()))->setChecked(true);  // a reset has changed it
        present->setText(SamplesText());
    });
}

QString MainWindow::SamplesText() const {
    const auto limits = Pane() == nullptr ? std::nullopt : GraphicsLimitsOf(*Pane());
    if (!limits) return tr("From the next start");
    const QString drawn = limits->samples == 0 ? tr("Now: off") : tr("Now: %n sample(s)", nullptr, limits->samples);
    if (limits->samples != m_viewerSamples)
        return tr("%1, the driver does not have %2; a choice counts from the next start")
            .arg(drawn)
            .arg(m_viewerSamples);
    return tr("%1; a choice counts from the next start").arg(drawn);
}

void MainWindow::HideDecorations(bool isHidden) {
    if (Pane() == nullptr) return;
    KV_ScenePane::_DKV_ScenePane& methods = Pane()->Methods();
    m_pDecorations->HideInViewer(isHidden);
    m_pLogo->HideInViewer(isHidden);
    m_pClip->HideInViewer(isHidden);
    m_pObjectCommands->SuspendOutline(isHidden);
    if (isHidden) {
        m_bNeedlesOfView = methods.GetNeedleDrawingMode() != kVariantFalse;
        m_bLinesOfView = methods.GetLine3DDrawingMode() != kVariantFalse;
        methods.SetPickRadius(0);  // of the spheres; another pick mode would delete them
    } else {
        FitPickRadius();
    }
    if (m_bNeedlesOfView) methods.SetNeedleDrawingMode(isHidden ? kVariantFalse : kVariantTrue);
    if (m_bLinesOfView) methods.SetLine3DDrawingMode(isHidden ? kVariantFalse : kVariantTrue);
    if (!isHidden) m_bNeedlesOfView = m_bLinesOfView = false;
}
