// The persisted properties of the viewer in the window: the property page, the menus that set them too, what is kept
// for the next start, and the about box. Their only place is the viewer; everything here follows it.
#include <QMenu>
#include <QMenuBar>
#include <QStatusBar>
#include <utility>

#include "AboutDialog.h"
#include "MainWindow.h"
#include "MessagePane.h"
#include "PropertyDialog.h"
#include "ReducedDrawing.h"
#include "Settings.h"
#include "TranslatedText.h"
#include "ViewerWidget.h"

void MainWindow::LoadProperties() {
    KV_ScenePane::ScenePane& pane = *Pane();
    if (const std::optional<std::string> store = StoredProperties()) {
        const DebugCapture sameReason;  // the message has it, with what it means for the user
        std::string reason;
        if (!pane.LoadProperties(*store, &reason)) {
            const QString text = tr("%1. The properties of the viewer have their default values. What is stored stays; "
                                    "change a property in Render > Properties to replace it.")
                                     .arg(TranslatedText(reason));
            m_pMessages->AddProblem(text);
            statusBar()->showMessage(text);
        }
    }
    m_nStoredDrawMode = pane.Methods().GetDrawMode();
    if (m_options.drawMode) pane.Methods().SetDrawMode(static_cast<std::int16_t>(*m_options.drawMode));
    // From here on the viewer is modified when the user has changed something: the mode of the command line is not
    // stored, and a store that was refused stays until then, perhaps for a newer version of this program.
    (void)pane.SaveProperties(KV_ScenePane::PropertyFormat::Text);
    m_pReducing->SetViewer(&pane);
    FollowProperties();
}

void MainWindow::FollowProperties() {
    if (Pane() == nullptr) return;
    KV_ScenePane::_DKV_ScenePane& methods = Pane()->Methods();
    const std::int16_t mode = methods.GetDrawMode();
    if (m_options.drawMode && *m_options.drawMode != mode) m_options.drawMode.reset();
    if (std::exchange(m_nFollowedDrawMode, mode) != mode) {
        for (qsizetype i = 0; i < m_drawModeActions.size(); ++i) m_drawModeActions[i]->setChecked(i == mode);
    }
    FollowShadows();
    StorePropertiesIfChanged();
    if (m_pReducing->IsOn()) return;  // the property is for the drag only
    m_pReducing->Follow();
    if (m_pProperties != nullptr) m_pProperties->Follow();
}

// At once and not with a delay: changes are rare, and a later one may come from another window.
void MainWindow::StorePropertiesIfChanged() {
    if (Pane() == nullptr || !Pane()->IsModified()) return;
    m_pReducing->End();
    constexpr auto kFormat = KV_ScenePane::PropertyFormat::Text;
    if (!m_options.drawMode) return StoreProperties(Pane()->SaveProperties(kFormat));
    // The mode of the command line is for this window only. No frame is drawn in between.
    KV_ScenePane::_DKV_ScenePane& methods = Pane()->Methods();
    methods.SetDrawMode(m_nStoredDrawMode);
    StoreProperties(Pane()->SaveProperties(kFormat));
    methods.SetDrawMode(static_cast<std::int16_t>(*m_options.drawMode));
    (void)Pane()->SaveProperties(kFormat);
}

void MainWindow::ShowDrawMode(KV_ScenePane::DrawMode mode) {
    if (Pane() == nullptr) {
        m_options.drawMode = mode;
        return;
    }
    // A click on the mode of the command line makes it the user's.
    const bool isOfCommandLine = std::exchange(m_options.drawMode, std::nullopt).has_value();
    if (isOfCommandLine) Pane()->Methods().SetDrawMode(m_nStoredDrawMode);
    Pane()->Methods().SetDrawMode(static_cast<std::int16_t>(mode));
    FollowProperties();
}

void MainWindow::MakeReducedMenu(QMenu& menu) {
    m_pReducing = new ReducedDrawing(this);
    for (QAction* const action : m_pReducing->FillMenu(menu)) m_vViewerActions.push_back(action);
    connect(m_pReducing, &ReducedDrawing::AboutToStart, this, &MainWindow::StorePropertiesIfChanged);
    connect(m_pReducing, &ReducedDrawing::Chosen, this, &MainWindow::FollowProperties);
    connect(m_pViewer, &ViewerWidget::InputArrived, this, &MainWindow::ReduceDrag);
    connect(m_pViewer, &ViewerWidget::AboutToClose, m_pReducing, [this] { m_pReducing->SetViewer(nullptr); });
}

// Setting the property requests a repaint, which would be a full frame where the viewer does not count a drag: with the
// left button alone in the delayed scheme, during a lasso, and while the mouse moves nothing.
void MainWindow::ReduceDrag(const KV_ScenePane::MouseInput& input) {
    const bool isPlainLeft = (input.flags & ~KV_ScenePane::kMouseCtrl) == KV_ScenePane::kMouseLeft;
    const bool canDrag = m_pMouseMoves->isChecked() && !IsLassoRunning() &&
                         !(isPlainLeft && m_mouseScheme == MouseScheme::Delayed && !IsAligning());
    m_pReducing->See(input, canDrag);
}

void MainWindow::ShowProperties() {
    if (Pane() == nullptr) return;
    m_pReducing->End();  // the page shows what the user has chosen
    if (m_pProperties == nullptr) {
        m_pProperties = new PropertyDialog(this);
        m_pProperties->SetViewer(&Pane()->Methods());
        connect(m_pProperties, &PropertyDialog::Applied, this, &MainWindow::FollowProperties);
        EnableActions();
    }
    m_pProperties->ShowPage();
}

void MainWindow::MakeHelpMenu() {
    QMenu* const menu = menuBar()->addMenu(tr("&Help"));
    menu->addAction(tr("&Shortcuts"), QKeySequence::HelpContents, this, &MainWindow::ShowShortcuts);
    menu->addAction(tr("&About KV_ScenePane"), this, &MainWindow::ShowAbout);
}

void MainWindow::ShowAbout() {
    if (Pane() != nullptr) return Pane()->Methods().AboutBox();
    // Any viewer has the texts, also one that needs neither a window nor OpenGL.
    KV_ScenePane::WindowRequest request;
    request.kind = KV_ScenePane::WindowRequest::Kind::NoPicture;
    request.showAbout = [this](const KV_ScenePane::AboutText& text) { ShowAboutDialog(text, this); };
    std::string reason;
    if (const auto viewer = CreateScenePane(request, &reason))
        viewer->Methods().AboutBox();
    else
        ReportViewerFailure(TranslatedText(reason));
}
