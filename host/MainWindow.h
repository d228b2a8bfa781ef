// The window of the host: the viewer in the middle, menus, the list of objects and the messages around it.
#pragma once
#include <QMainWindow>
#include <array>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "CommandLine.h"
#include "DebugCapture.h"
#include "KV_ScenePane/ScenePane.h"

class AnimationPanel;
class DecorationPanel;
class EventPane;
class ImportJob;
class LogoPanel;
class MessagePane;
class ObjectList;
class QActionGroup;
class QDockWidget;
class QLabel;
class QProgressDialog;
class QStackedWidget;
class ViewerWidget;

/// What the buttons of the mouse do.
enum class MouseScheme {
    Normal,   ///< left turns, right moves
    Flipped,  ///< left moves, right turns
    Delayed   ///< right turns, right with left moves; a press waits for the second button
};

/// Two of the modes that SetPickMode takes: in the one a click picks nothing, in the other the centre cross shows.
inline constexpr int kPickModeOff = 0, kPickModeCross = 1;

class MainWindow : public QMainWindow {
    Q_OBJECT
public:
    /// @param options  start values of the view and the imports; its files are opened once the viewer is there
    explicit MainWindow(const HostOptions& options, QWidget* parent = nullptr);
    ~MainWindow() override;

    /// Imports the files in order; they wait while there is no viewer yet or an import runs.
    void OpenFiles(const std::vector<std::string>& files);
    void CancelImport();
    [[nodiscard]] bool IsImporting() const { return m_pJob != nullptr; }
    /// Every file opened so far has added an object.
    [[nodiscard]] bool HaveAllFilesAdded() const { return m_nFilesNotAdded == 0 && m_vWaitingFiles.empty(); }

    /// Null without a viewer.
    [[nodiscard]] KV_ScenePane::ScenePane* Pane() const;
    [[nodiscard]] ObjectList& Objects() const { return *m_pObjects; }
    [[nodiscard]] MessagePane& Messages() const { return *m_pMessages; }
    [[nodiscard]] EventPane& Events() const { return *m_pEvents; }
    [[nodiscard]] LogoPanel& Logo() const { return *m_pLogo; }

signals:
    void ImportFinished();
    /// A file has added nothing. @param file  bytes  @param reason  one line without the file's name
    void FileFailed(const std::string& file, const std::string& reason);

public slots:
    void ClearScene();
    void ShowView(int mode);
    void ShowDrawMode(int mode);
    void ShowShadows(bool on);
    /// @param colors  0x00BBGGRR: top left, top right, bottom left, bottom right
    void ShowBackground(const std::array<std::int32_t, 4>& colors);
    void ShowPointSize(float pixels);
    /// @param mode  about the horizontal, the vertical, the viewing axis, or free: 0 to 3
    void ChooseRotation(int mode);
    void ChooseMouseScheme(MouseScheme scheme);
    void AllowMouse(bool on);
    void ChoosePickMode(int mode);
    void ReduceWhileMoving(bool on);
    /// Writes the screenshot of the whole scene as PNG, with a message. False when it cannot be written.
    bool SaveScreenShot(const std::string& path);
    /// Writes an object of the list as a ply, stl or hps file, with a message. False when it was not written.
    bool ExportObjectTo(int index, const std::string& path);
    void ShowObject(int index, bool visible);
    void ColorObject(int index, std::int32_t packed);
    void DeleteObject(int index);
    /// For the imports to come.
    void SetImportSettings(const ImportSettings& settings) { m_options.import = settings; }

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // ---- MainWindow.cpp
    void MakeCentre();
    void OnViewerReady();
    void OnViewerRefused(const QString& reason);
    void EnableActions();
    void TellOfShadows();
    [[nodiscard]] bool HaveObjects() const;

    // ---- MainWindowPanels.cpp
    void MakeDocks();
    QDockWidget* AddDock(const QString& title, const QString& name, QWidget* widget, Qt::DockWidgetArea area);
    void HandViewerToPanels();

    // ---- MainWindowInput.cpp
    void MakeInputMenus(QMenu& menu);
    void RunShortcut(int key, Qt::KeyboardModifiers modifiers);
    void KeepPlainKeysWithInputs();

    // ---- MainWindowImport.cpp
    void OpenWaitingFiles();
    void StartImport(const std::vector<std::string>& files);
    void OnImportFinished();
    void ReportResults();
    void ListNewObjects();

    // ---- MainWindowExport.cpp
    void AskForExport();
    /// The object that the user means: the one of the current row, or the only one. -1 when there is none such.
    [[nodiscard]] int SelectedObject() const;

    // ---- MainWindowMenus.cpp
    void MakeMenus();
    void MakeFileMenu();
    void MakeViewMenu();
    void MakeImportMenu();
    /// Actions of which one is checked. @return them, in the order of their names
    QList<QAction*> AddModeActions(QMenu& menu, const char* const* names, int count, int checked,
                                   const std::function<void(int)>& choose);
    QAction* AddSwitch(QMenu& menu, const QString& text, bool checked, const std::function<void(bool)>& choose);
    void AskForFiles();
    void AskForScreenShot();
    void AskForBackground();
    void AskForPointSize();
    void AskForSkip();
    void AskForConfidence();
    void AskForScanColor();

    HostOptions m_options;  // of the command line, then as the menus changed them
    std::array<std::int32_t, 4> m_nBackground;
    float m_fPointSize = 2.0f;
    QStackedWidget* m_pCentre = nullptr;
    ViewerWidget* m_pViewer = nullptr;
    QLabel* m_pRefusal = nullptr;
    ObjectList* m_pObjects = nullptr;
    MessagePane* m_pMessages = nullptr;
    EventPane* m_pEvents = nullptr;
    DecorationPanel* m_pDecorations = nullptr;
    LogoPanel* m_pLogo = nullptr;
    AnimationPanel* m_pAnimation = nullptr;
    std::vector<QAction*> m_vViewerActions;  // have no sense without a viewer
    QList<QAction*> m_pickActions;           // in the order of the modes
    std::vector<QAction*> m_vIdleActions;    // must wait for the end of an import
    ImportJob* m_pJob = nullptr;             // the import that runs
    std::unique_ptr<QProgressDialog> m_pProgress;
    std::vector<std::string> m_vWaitingFiles;
    std::size_t m_nFilesNotAdded = 0;
    std::unique_ptr<DebugRouter> m_pRouter;  // goes before the message pane does
};
