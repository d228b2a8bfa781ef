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
#include "Settings.h"

void MainWindow::LoadProperties() {
    KV_ScenePane::ScenePane& pane = *Pane();
    if (const std::optional<std::string> store = StoredProperties()) {
        const DebugCapture sameReason;  // the message has it, with what it means for the user
        std::string reason;
        if (!pane.LoadProperties(*store, &reason)) {
            const QString text = tr("%1. The properties of the viewer have their default values. What is stored stays; "
                                    "change a property in View > Properties to replace it.")
                                     .arg(QString::fromStdString(reason));
            m_pMessages->AddText(text);
            statusBar()->showMessage(text);
        }
    }
    m_nStoredDrawMode = pane.Methods().GetDrawMode();
    if (m_options.drawMode) pane.Methods().SetDrawMode(static_cast<std::int16_t>(*m_options.drawMode));
    // From here on the viewer is modified when the user has changed something: the mode of the command line is not
    // stored, and a store that was refused stays until then, perhaps for a newer version of this program.
    (void)pane.SaveProperties(KV_ScenePane::PropertyFormat::Text);
    FollowProperties();
}

void MainWindow::FollowProperties() {
    if (Pane() == nullptr) return;
    KV_ScenePane::_DKV_ScenePane& methods = Pane()->Methods();
    const std::int16_t mode = methods.GetDrawMode();
    if (m_options.drawMode && *m_options.drawMode != mode) m_options.drawMode.reset();
    if (std::exchange(m_nFollowedDrawMode, mode) != mode) {
        for (qsizetype i = 0; i < m_drawModeActions.size(); ++i) m_drawModeActions[i]->setChecked(i == mode);
        ShowShadowHint();
    }
    m_pReduced->setChecked(methods.GetMoveReduced() != KV_ScenePane::kVariantFalse);
    if (m_pProperties != nullptr) m_pProperties->Follow();
    StorePropertiesIfChanged();
}

// At once and not with a delay: changes are rare, and a later one may come from another window.
void MainWindow::StorePropertiesIfChanged() {
    if (Pane() == nullptr || !Pane()->IsModified()) return;
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

void MainWindow::ReduceWhileMoving(bool on) {
    if (Pane() == nullptr) return;
    Pane()->Methods().SetMoveReduced(on ? KV_ScenePane::kVariantTrue : KV_ScenePane::kVariantFalse);
    FollowProperties();
}

void MainWindow::ShowProperties() {
    if (Pane() == nullptr) return;
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
        ReportViewerFailure(QString::fromStdString(reason));
}
