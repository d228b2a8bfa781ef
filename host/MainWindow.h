// The window of the host: the viewer in the middle, around it menus, the list of objects and panes.
#pragma once
#include <QMainWindow>
#include <QPoint>
#include <QPointer>
#include <QTextCursor>
#include <array>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "CommandLine.h"
#include "DebugCapture.h"
#include "KV_ScenePane/ScenePane.h"
#include "MouseScheme.h"
#include "PickPanel.h"
#include "PointsJob.h"
#include "Settings.h"

class AlignCommands;
class AlignHint;
class AlignToolBar;
class AnimationPanel;
class ClipPanel;
class CutCommands;
class CutToolBar;
class DecorationPanel;
class DeletionCommands;
class EventPane;
class ImportJob;
class ImportProgress;
class LogoPanel;
class MainToolBar;
class MarkerPanel;
class MessagePane;
class NeedlePanel;
class ObjectColors;
class ObjectCommands;
class ObjectList;
class PictureCommands;
class PropertyDialog;
class QDockWidget;
class QLabel;
class QMenu;
class QStackedWidget;
class QTimer;
class ReducedDrawing;
class ResidualPanel;
class ScenePreparation;
class StatusLine;
class ShortcutDialog;
class TransformCommands;
class TransformPanel;
class ViewNote;
class ViewerWidget;
class WindowShell;
enum class AlignWay;
struct AlignOutcome;
struct NeedleMark;
struct ViewNoteState;

/// Owns the viewer, through its widget, and the import that runs. On the thread of Qt only.
class MainWindow : public QMainWindow {
    Q_OBJECT
public:
    /// @param options  first values of the view and the imports; its files are opened once the viewer exists
    explicit MainWindow(const HostOptions& options, QWidget* parent = nullptr);
    ~MainWindow() override;

    /// Imports the files (paths in bytes) in order. They wait while there is no viewer yet, another import runs or a
    /// lasso is drawn. For point files among them a dialog asks how to show their points, once for all.
    void OpenFiles(const std::vector<std::string>& files);
    /// Adds each file (paths in bytes) as a set of free points. They wait like those of OpenFiles().
    void ImportPointFiles(const std::vector<std::string>& files, const PointsLook& look);
    /// Adds the polylines of each file (paths in bytes) and shows all lines. They wait while there is no viewer yet.
    void ImportLineFiles(const std::vector<std::string>& files);
    /// While files are read: no further file is started, those in progress are finished and added. While new objects
    /// are prepared for the picture: those that are not shown yet stay hidden.
    void CancelImport();
    /// From the start of an import until its last new object was shown.
    [[nodiscard]] bool IsImporting() const { return IsReading() || m_pPreparation != nullptr; }
    /// Every file opened so far has added what it holds.
    [[nodiscard]] bool HaveAllFilesAdded() const {
        return m_nFilesNotAdded == 0 && m_vWaitingFiles.empty() && m_vWaitingPoints.empty() &&
               m_unaskedPoints.files.empty() && !m_bAsksForPoints;
    }

    /// Null before the window is shown, and when the viewer was refused or lost its window.
    [[nodiscard]] KV_ScenePane::ScenePane* Pane() const;
    [[nodiscard]] ObjectList& Objects() const { return *m_pObjects; }
    [[nodiscard]] MessagePane& Messages() const { return *m_pMessages; }
    [[nodiscard]] EventPane& Events() const { return *m_pEvents; }
    [[nodiscard]] LogoPanel& Logo() const { return *m_pLogo; }
    [[nodiscard]] NeedlePanel& Needles() const { return *m_pNeedles; }
    [[nodiscard]] MarkerPanel& Markers() const { return *m_pMarkers; }
    [[nodiscard]] ClipPanel& Clip() const { return *m_pClip; }
    [[nodiscard]] CutCommands& Cuts() const { return *m_pCuts; }
    [[nodiscard]] AlignCommands& Alignments() const { return *m_pAligns; }
    [[nodiscard]] PictureCommands& Pictures() const { return *m_pPictures; }
    [[nodiscard]] TransformCommands& Transforms() const { return *m_pTransforms; }
    [[nodiscard]] DeletionCommands& Deletions() const { return *m_pDeletions; }
    [[nodiscard]] ReducedDrawing& Reducing() const { return *m_pReducing; }

signals:
    /// The objects are in the list and the messages in their pane. Files that waited are started afterwards.
    void ImportFinished();
    /// A file added nothing, or not all that it holds.
    /// @param file    path in bytes
    /// @param reason  one line without the file's name
    void FileFailed(const std::string& file, const std::string& reason);

public slots:
    // All of these but ShowAbout() do nothing without a viewer. What is set by ShowView(), ShowDrawMode() and
    // ShowShadows() before there is one is applied to it later.

    /// Removes all objects, free points and lines, not during an import. The chosen view is kept.
    void ClearScene();
    void ShowView(KV_ScenePane::ViewMode mode);
    /// With a viewer the mode is stored for the next start; one that is set before counts for this window only.
    void ShowDrawMode(KV_ScenePane::DrawMode mode);
    void ShowShadows(bool on);
    /// @param colors  0x00BBGGRR: top left, top right, bottom left, bottom right
    void ShowBackground(const std::array<std::int32_t, 4>& colors);
    void ShowPointSize(float pixels);
    void ChooseRotation(KV_ScenePane::RotationMode mode);
    void ChooseMouseScheme(MouseScheme scheme);
    /// Whether drags and the wheel change the view.
    void AllowMouse(bool on);
    /// Removes all pick points when it is another mode; a mode that picks switches the needles of the mouse off.
    void ChoosePickMode(KV_ScenePane::PickMode mode);
    /// Writes the screenshot of the whole scene as a PNG file and adds a message about it.
    /// @param path  in bytes
    /// @return whether it was written
    bool SaveScreenShot(const std::string& path);
    /// Writes an object of the list as a file of the type that its extension names and adds a message about it.
    /// @param path  in bytes
    /// @return whether it was written; false during an import and for an index outside the list
    bool ExportObjectTo(int index, const std::string& path);
    /// Removes points of the pane and their spheres. @param points  from 0 in ascending order; others are ignored
    void RemovePickPoints(const std::vector<int>& points);
    void ClearPickPoints();
    /// The next pick moves this point instead of placing one. @param point  from 0; -1: no point is to be moved any
    /// more
    void MovePickPoint(int point);
    /// Copies a line of x, y, z with tabs between them per point. @param points  as for RemovePickPoints()
    void CopyPickPoints(const std::vector<int>& points);
    /// Copies the distance of the last two picks, when there were two.
    void CopyPickDistance();
    void ShowObject(int index, bool visible);
    void ColorObject(int index, std::int32_t packed);
    /// Deletes objects in a way that Undo() takes back, until the next import or save. Not during an import.
    /// @param indices  in ascending order
    void RemoveObjects(const std::vector<int>& indices);
    /// Takes the last cut back or the last deletion, whichever is newer.
    void Undo();
    /// The deletion is final. Not during an import.
    void DeleteObject(int index);
    /// Copies x, y, z of the last pick with tabs between them, when there was one.
    void CopyLastPick();
    /// @param id  of a set of free points
    void ShowPoints(int id, bool visible);
    /// The viewer keeps the graphics memory of the set until its window closes. @param id  of a set of free points
    void DeletePoints(int id);
    void ShowLines(bool on);
    /// Writes all needles as a file and adds a message about it.
    /// @param path  in bytes
    /// @return whether it was written
    bool SaveNeedles(const std::string& path);
    /// Adds the needles of a file, shows needles and adds a message about it. The limit of needles grows as necessary.
    /// @param path  in bytes
    /// @param failure  receives why the file, or a part of it, was not added: one line, empty when all of it was
    /// @return whether the file has needles and was read, also when the ids of some were in use
    bool LoadNeedles(const std::string& path, std::string* failure = nullptr);
    /// Writes the transforms of all objects as a file and adds a message about it. What the file had of scans that are
    /// not open stays in it.
    /// @param path  in bytes
    /// @return whether it was written
    bool SaveTransforms(const std::string& path);
    /// Sets the transforms of a file, as one change that can be taken back, and adds messages about it. Not during an
    /// import or an alignment.
    /// @param path     in bytes
    /// @param failure  receives why no object has got one, unless it is null
    /// @return whether an object has got a transform
    bool LoadTransforms(const std::string& path, std::string* failure = nullptr);
    /// Opens the property page, which does not block the window.
    void ShowProperties();
    /// Shows the about box of the viewer, and returns when it was closed. It has one without a viewer, too.
    void ShowAbout();
    /// For the imports that follow.
    void SetImportSettings(const ImportSettings& settings);
    /// Forgets everything that is remembered for the next start. This window looks like one of a first start, but for
    /// what only a start can change.
    void ResetSettings();

protected:
    void closeEvent(QCloseEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    /// What the mouse is used for in the viewer.
    enum class MouseUse { View, Lasso, Alignment };

    // ---- MainWindow.cpp
    /// The viewer widget, and the label that replaces it when the viewer is refused.
    void MakeCentre();
    void OnViewerReady();
    void OnViewerRefused(const QString& reason);
    /// Ends the import that runs.
    void StopImport();
    /// Enables what can be used now: with a viewer or without, during an import or not.
    void EnableActions();
    [[nodiscard]] bool HaveObjects() const;
    /// Adds one message per line; the last line is shown in the status bar, too.
    void Report(const QString& text);
    /// Opens the messages, too.
    void ReportFailure(const QString& text);
    void ShowBackgroundNow();

    // ---- MainWindowPanels.cpp
    void MakeDocks();
    /// @param name  the object name, by which Qt identifies the dock; not shown
    QDockWidget* AddDock(const QString& title, const QString& name, QWidget* widget, Qt::DockWidgetArea area);
    /// Gives the panels, which call the viewer directly, the viewer, or null when there is none any more.
    void PassViewerToPanels();

    // ---- MainWindowShell.cpp
    /// What the last window has stored, before panes and menus are made.
    void ReadStoredView();
    /// Called last: it reads all panes, tool bars and actions.
    void MakeShell();
    /// Passes what was stored to the viewer.
    void RestoreView();
    /// The status bar says which points an import leaves out.
    void ShowImportNote();
    /// Asks, and names what is lost.
    void AskToReset();
    /// Each folder among the paths is replaced by the files in it. @param paths  in bytes
    [[nodiscard]] std::vector<std::string> WithFilesOfFolders(const std::vector<std::string>& paths);
    /// Opens the pane that holds the widget.
    void OpenPaneOf(QWidget& content);

    // ---- MainWindowNeedles.cpp
    /// The panel and its connections to the viewer.
    void MakeNeedlePanel();
    // Each of these shows a dialog for the file.
    /// @return whether the needles were saved
    bool AskForNeedleFileToSave();
    void AskForNeedleFileToLoad();
    /// Adds the needles that were read from a file, with a message. @return the numbers that were in use, as a text
    QString PlaceNeedlesOf(const QString& file, const std::vector<NeedleMark>& marks);
    /// Picks and needles would both act on a double click: the needles of the mouse switch picks off.
    void ChooseNeedleCreation(bool on);
    /// Asks about needles that are not saved. @return whether the window can be closed
    bool AskAboutNeedles();

    // ---- MainWindowClip.cpp
    /// The panel of the clip plane and its connections.
    void MakeClipPanel();
    void MakeClipMenu(QMenu& menu);
    /// Menu, status bar and settings follow the panel.
    void FollowClip();
    /// Writes the clip plane to the settings, if it has changed.
    void StoreClipIfChanged();
    /// The viewer threw: an input was not finished, and its repaint may be missing.
    void ReportViewerFailure(const QString& reason);

    // ---- MainWindowCut.cpp
    /// The tools of cuts, what they do, and their connections.
    void MakeCuts();
    /// Tools, title, status bar and what can be used follow the lasso and the cuts.
    void FollowCuts();
    /// Picks and clip plane follow the objects of a cut or an undo.
    /// @param newIndex  of each object of before; -1 when it is gone
    void FollowReplacedObjects(const std::vector<int>& newIndex);
    [[nodiscard]] bool IsLassoRunning() const;

    // ---- MainWindowDelete.cpp
    void MakeDeletions();
    /// What a deletion loses that is in no file; empty when there is nothing.
    [[nodiscard]] QString LossText(const std::vector<int>& indices) const;
    /// Picks, clip plane, title, status bar and what can be used follow a deletion that can be undone, or its undo.
    void FollowDeletions();
    /// What is deleted cannot be restored any more: the viewer deletes it.
    void FinishDeletions();
    /// @param indices  in ascending order
    void DeleteObjects(const std::vector<int>& indices);
    /// What the scene has, and what of it is not saved, one line each.
    [[nodiscard]] QStringList ClearingLines() const;
    [[nodiscard]] QStringList UnsavedLines() const;
    /// For the user: asks, unless the scene is empty.
    void AskToClear();

    // ---- MainWindowStatus.cpp
    /// Before all other parts: they add theirs to the status bar.
    void MakeStatus();
    /// The status bar follows the frames of the viewer.
    void FollowFrames();
    void ShowSceneCounts();
    /// Title and status bar follow what is open.
    void FollowFiles();
    /// A file has failed; its message is in the pane.
    void CountFailure(const std::string& file);
    /// Shows the message about the first of the files that were counted; they are not counted any more.
    void ShowFailures();

    // ---- MainWindowAlign.cpp
    /// The tools of alignments, what they do, the hint above the viewer, the pane of residuals, and their connections.
    void MakeAligns();
    /// What the operator must change in the window before an alignment can start; empty when it can.
    [[nodiscard]] QString ObstacleTo(AlignWay way) const;
    /// The hint and the pane of residuals are for another alignment.
    void PrepareAlign(AlignWay way);
    /// The space bar was pressed during an alignment: the status bar says what is missing before it continues.
    void SayWhySpaceDoesNothing();
    /// Tools and hint follow the alignment.
    void FollowAlign();
    /// An alignment has ended, with or without a movement.
    void OnAlignmentEnded(const AlignOutcome& outcome);
    [[nodiscard]] bool IsAligning() const;

    // ---- MainWindowInput.cpp
    /// A lasso or an alignment was started or has ended: it is the only use of the mouse while it runs.
    void FollowMouseUse();
    /// The viewer's other uses of the mouse end or begin again.
    void SuspendMouseUses();
    void ResumeMouseUses(MouseUse before);
    void ApplyMouseScheme();
    /// Neither a lasso nor an alignment runs: the scene may change.
    [[nodiscard]] bool IsMouseFree() const { return !IsLassoRunning() && !IsAligning(); }

    // ---- MainWindowTransforms.cpp
    /// What takes alignments back, the pane of the transform, and their connections.
    void MakeTransforms();
    /// Adds save and load of transforms to the file menu. m_pTakeBack can be added to any menu.
    void MakeTransformActions(QMenu& menu);
    /// Menu, title and pane follow the transforms.
    void FollowTransforms();
    /// The pane follows the current object.
    void ShowTransform();
    /// The title has a mark while something is not saved.
    void MarkUnsaved();
    /// Places the objects of the first import as the command line asked for.
    void LoadTransformsOfOptions();
    // Each of these shows a dialog for the file.
    /// @return whether the transforms were saved
    bool AskForTransformFileToSave();
    void AskForTransformFileToLoad();
    /// Asks about alignments that are not saved. @param title  what the user wants to do @return whether it can be done
    bool AskAboutTransforms(const QString& title);

    // ---- MainWindowProperties.cpp
    /// Sets the properties that the settings hold, then the render mode of the command line.
    void LoadProperties();
    /// Menus, dialog and settings follow the properties of the viewer, whatever has changed them.
    void FollowProperties();
    void StorePropertiesIfChanged();
    void MakeReducedMenu(QMenu& menu);
    /// An input, before the viewer handles it.
    void ReduceDrag(const KV_ScenePane::MouseInput& input);
    void MakeHelpMenu();

    // ---- MainWindowInput.cpp
    /// Adds rotation, mouse buttons and the switch of the mouse to the view menu.
    void MakeInputMenus(QMenu& menu);
    void MakePickMenu(QMenu& menu);
    /// Runs the action or opens the menu of a key that the viewer reported. @param key  a key code of the viewer's
    /// events
    void RunShortcut(int key, Qt::KeyboardModifiers modifiers);
    /// Keys without a modifier stay in the input that has the keyboard, also where they are shortcuts.
    void ReservePlainKeysForInputs();

    // ---- MainWindowView.cpp
    void MakeViewNote();
    [[nodiscard]] ViewNoteState NoteState() const;
    /// What shows no object together with shadows cannot be chosen. Follows the viewer, whoever has changed it.
    void FollowShadows();
    /// Opens the menu of a right click. @param pixel  of the drawing area of the viewer
    void ShowMenuAt(QPoint pixel);
    void FillViewMenu(QMenu& menu, QPoint pixel);
    /// Adds what concerns the object under the pointer.
    void AddObjectEntries(QMenu& menu, const KV_ScenePane::SurfacePoint& hit);
    void ShowShortcuts();

    // ---- MainWindowPicks.cpp
    void MakePickPanel();
    /// Adds what concerns picks to the menu of the pick modes.
    void MakePickActions(QMenu& menu);
    /// For the user: asks before pick points are lost.
    void AskForPickMode(KV_ScenePane::PickMode mode);
    /// Asks when another pick mode would remove several points. @return whether the mode can be changed
    bool AskAboutPickPoints();
    /// Menu and panels show the mode of the viewer.
    void ShowPickMode();
    void OnObjectPicked(int object, float x, float y, float z);
    void OnPickPointsChanged();
    /// Makes the pane equal to the pick-point spheres of the viewer.
    void FollowPickPoints();
    /// Picks on deleted objects are shown as such.
    void MarkDeletedPicks();
    /// @param newIndex  of each object of before; -1 when it is gone
    void RenumberPicks(const std::vector<int>& newIndex);
    /// Adds what concerns the pick-point sphere that is nearest to the pixel.
    /// @return whether picks place points, and there is one
    bool AddPickEntries(QMenu& menu, QPoint pixel);
    /// Names the objects that were picked before they were in the list, and fits the radius.
    void FollowImport();
    /// Sets the radius of the spheres by the size of the scene.
    void FitPickRadius();
    /// Shows the last pick and its distance from the one before.
    void ShowLastPick();
    /// Nothing is shown of the last picks any more.
    void ForgetLastPicks();
    /// Empties the pane: the viewer or its scene is gone.
    void ForgetPicks();
    /// Length between the last two picks, scene units, as NumberText(); empty before the second pick.
    [[nodiscard]] QString PickDistanceText() const;
    /// File of an object without its folders; empty while the import that has added it still runs.
    [[nodiscard]] QString NameOfObject(int object) const;

    // ---- MainWindowImport.cpp
    /// A file of points: the user is asked how they are shown.
    void AddUnaskedPoints(const std::string& file);
    /// Starts the import of the waiting files when it is possible now.
    void OpenWaitingFiles();
    /// Removes all files that wait, of every kind. @return their paths in bytes
    std::vector<std::string> TakeWaitingFiles();
    /// Reports each file that waits, once there will be no viewer any more that could open it.
    void DropWaitingFiles();
    /// For a file that was not opened because there is no viewer: a message, FileFailed() and the exit status.
    void ReportNoViewerFor(const std::string& file);
    /// For a file that an import was stopped before, by the user or with the viewer.
    void ReportNotStarted(const std::string& file);
    void MakeImportProgress();
    void StartImport(const std::vector<std::string>& files);
    [[nodiscard]] bool IsReading() const { return m_pJob != nullptr || m_pPointsJob != nullptr; }
    /// The status bar names the file. @param isBlocking  the window does not react while it is read
    void ShowReading(int file, bool isBlocking);
    /// Some files of the import are in the viewer.
    void OnFilesArrived();
    /// All files are in the viewer, or the import was cancelled: the picture is prepared from here on.
    void OnImportFinished();
    /// Makes the preparation of the pictures for an import that starts.
    void MakePreparation();
    /// The picture is complete, or its preparation was given up.
    void OnPicturePrepared();
    /// Draws a frame; a failure is reported.
    void DrawPicture();
    /// Adds the messages of the finished import, and emits FileFailed() for each file that added nothing.
    void ReportResults();
    /// Adds a row for each object that the import has added to the viewer since the last call.
    void ListNewObjects();
    /// Nothing of the object can be shown: it is hidden, with a message. @param file  path in bytes
    void HideWithoutPosition(int index, const std::string& file);

    // ---- MainWindowMarkers.cpp
    /// Adds the imports of points and lines to the file menu.
    void MakeMarkerActions(QMenu& menu);
    void AskForPointFiles();
    void AskForLineFiles();
    /// Shows the dialog for the point files whose look was not chosen yet; their import follows.
    void AskForPointsLook();
    /// @param accepted  the dialog was not cancelled
    void EndPointsDialog(const PointsRequest& request, bool accepted);
    /// Opens the points, lines and needles of the command line.
    void OpenMarkersOfOptions();
    /// Starts the import of the waiting point files when it is possible now.
    void OpenWaitingPoints();
    /// Connects the progress of the import of points.
    void FollowPointsProgress();
    void OnPointsImported();
    /// Adds the messages of the finished import of points, and a row for each new set.
    /// @return the number of new sets
    std::size_t ReportPoints();
    void DeleteAllPoints();
    /// For a file that added nothing: a message, FileFailed() and the exit status.
    void ReportFileFailure(const std::string& file, const std::string& reason);
    [[nodiscard]] bool IsSceneEmpty() const;

    // ---- MainWindowObjects.cpp
    /// @return the widget of the dock
    QWidget* MakeObjectPane();
    void MakeObjectCommands();
    /// Adds all commands of the list, which act on the selected objects.
    void MakeObjectActions(QMenu& menu);
    /// "Colour by object" and "One colour", which are among those of MakeObjectActions(), too.
    void MakeColorActions(QMenu& menu);
    void EnableObjectActions();
    void CentreOnObject(int index);
    /// The user has given the object another name.
    void FollowName(int index);
    /// A click with the left button, where nothing else is done with it. @param pixel  of the drawing area
    void SelectByClick(QPoint pixel);

    // ---- MainWindowPictures.cpp
    /// The commands of pictures and their connections; before the menus.
    void MakePictures();
    /// Adds save and copy of the view.
    void MakePictureActions(QMenu& menu);
    /// Fills the menu of the samples per pixel.
    void MakeSamplesMenu(QMenu& menu);
    /// What the driver draws with now, and when a choice counts.
    [[nodiscard]] QString SamplesText() const;
    /// Hides in the viewer what is drawn about the scene, or shows again what was shown. The panes stay.
    void HideDecorations(bool isHidden);

    // ---- MainWindowExport.cpp
    /// Shows the export dialog for the selected objects, or a message when none is selected.
    void AskForExport();
    /// For several objects: asks for a folder and a format, and before it overwrites files.
    void AskForExports(const std::vector<int>& indices);
    /// Adds a message per object. @param paths  as many as indices
    void ExportObjectsTo(const std::vector<int>& indices, const std::vector<QString>& paths);
    /// The object of the current row, or the only one of the list; -1 without either.
    [[nodiscard]] int SelectedObject() const;

    // ---- MainWindowMenus.cpp
    void MakeMenus();
    void MakeFileMenu();
    void MakeEditMenu();
    void MakeViewMenu();
    void MakeRenderMenu();
    void MakeToolsMenu();
    void MakePaneMenu();
    void MakeAppearanceMenu(QMenu& menu);
    /// A group of actions of which exactly one is checked.
    /// @param names   texts to be translated; the position of each is its mode
    /// @param choose  receives the mode of an action that was triggered
    /// @return the actions in the order of their names
    QList<QAction*> AddModeActions(QMenu& menu, const char* const* names, int count, int checked,
                                   const std::function<void(int)>& choose);
    /// A checkable action. @param choose  receives its new state
    QAction* AddSwitch(QMenu& menu, const QString& text, bool checked, const std::function<void(bool)>& choose);
    // Each of these shows a dialog and applies what the user accepted.
    void AskForFiles();
    void AskForScreenShot();
    void AskForBackground();
    void AskForPointSize();
    void AskForImportSettings();

    HostOptions m_options;                        // of the command line, then as the menus changed them
    std::array<std::int32_t, 4> m_nBackground{};  // 0x00BBGGRR: top left, top right, bottom left, bottom right
    float m_fPointSize = 2.0f;                    // pixels
    // Widgets belong to Qt: their parents delete them.
    QStackedWidget* m_pCentre = nullptr;
    ViewerWidget* m_pViewer = nullptr;
    QLabel* m_pRefusal = nullptr;
    ObjectList* m_pObjects = nullptr;
    ObjectColors* m_pColors = nullptr;
    ObjectCommands* m_pObjectCommands = nullptr;
    QAction *m_pColorByObject = nullptr, *m_pColorAsImported = nullptr;
    // Enabled while no import, lasso or alignment runs, and with a selected object or any object.
    std::vector<QAction*> m_vSelectionActions, m_vObjectActions;
    MessagePane* m_pMessages = nullptr;
    EventPane* m_pEvents = nullptr;
    DecorationPanel* m_pDecorations = nullptr;
    LogoPanel* m_pLogo = nullptr;
    AnimationPanel* m_pAnimation = nullptr;
    NeedlePanel* m_pNeedles = nullptr;
    MarkerPanel* m_pMarkers = nullptr;
    PickPanel* m_pPicks = nullptr;
    ClipPanel* m_pClip = nullptr;
    QAction *m_pClipOn = nullptr, *m_pClipShown = nullptr;
    CutCommands* m_pCuts = nullptr;
    CutToolBar* m_pCutTools = nullptr;
    TransformCommands* m_pTransforms = nullptr;
    TransformPanel* m_pTransform = nullptr;
    QAction *m_pTakeBack = nullptr, *m_pSaveTransforms = nullptr, *m_pLoadTransforms = nullptr;
    AlignCommands* m_pAligns = nullptr;
    AlignToolBar* m_pAlignTools = nullptr;
    AlignHint* m_pAlignHint = nullptr;  // above the viewer during an alignment
    QString m_alignedObjects;           // names for the hint
    bool m_bAlignsColored = false;      // an object of the scene has colours of its own
    ResidualPanel* m_pResiduals = nullptr;
    DeletionCommands* m_pDeletions = nullptr;
    StatusLine* m_pStatus = nullptr;
    QTimer* m_pFrameDelay = nullptr;  // runs while the status bar is older than the last frame
    std::uint64_t m_nFramesSeen = 0;  // of the viewer
    int m_nFailures = 0;              // files, since they were looked at
    QTextCursor m_firstFailure;       // where the message pane has the first of them
    PictureCommands* m_pPictures = nullptr;
    bool m_bNeedlesOfView = false, m_bLinesOfView = false;  // shown before HideDecorations()
    const int m_viewerSamples = StoredSamples();            // per pixel, as the viewer was asked for
    PropertyDialog* m_pProperties = nullptr;
    MainToolBar* m_pMainTools = nullptr;
    ViewNote* m_pNote = nullptr;
    ShortcutDialog* m_pShortcuts = nullptr;  // null before it was opened
    bool m_bShadowsApplied = false;          // the viewer has the shadows of the command line
    QAction *m_pOpen = nullptr, *m_pSavePicture = nullptr, *m_pFit = nullptr, *m_pBackground = nullptr;
    QAction* m_pShadows = nullptr;
    QMenu* m_pPanes = nullptr;          // "Panes and tool bars"
    QList<QAction*> m_viewActions;      // in the order of KV_ScenePane::ViewMode
    QList<QAction*> m_drawModeActions;  // in the order of KV_ScenePane::DrawMode
    ReducedDrawing* m_pReducing = nullptr;
    std::int16_t m_nFollowedDrawMode = -1;   // as FollowProperties() has seen it; -1 before
    std::int16_t m_nStoredDrawMode = 0;      // of the settings, while m_options.drawMode replaces it
    QAction* m_pMouseMoves = nullptr;        // "Mouse moves the scene"
    QLabel* m_pLassoHint = nullptr;          // in the status bar while a lasso is drawn
    MouseUse m_mouseUse = MouseUse::View;    // as FollowMouseUse() has seen it
    bool m_bNeedlesOfMouse = false;          // of the viewer, before the lasso or the alignment
    QLabel* m_pClipState = nullptr;          // in the status bar while objects are clipped
    ClipSettings m_storedClip;               // what the settings hold
    QTimer* m_pClipStorage = nullptr;        // runs while they are older than the panel
    QPointer<QMenu> m_pPickMenu;             // the one that is open; null without one
    QAction* m_pCopyDistance = nullptr;      // enabled after two picks
    QAction* m_pCancelMove = nullptr;        // enabled while a point is to be moved
    std::vector<PickedPoint> m_vPickPoints;  // as many as the viewer has spheres, and in their order
    std::vector<PickedPoint> m_vLastPicks;   // two at most, the last one at the end
    bool m_bRemovesPickPoints = false;       // in RemovePickPoints()
    int m_nPointToMove = -1;                 // by the next pick; -1 for none
    MouseScheme m_mouseScheme = MouseScheme::Normal;
    KV_ScenePane::RotationMode m_rotation = KV_ScenePane::RotateFree;
    QList<QAction*> m_rotationActions;    // in the order of KV_ScenePane::RotationMode
    QList<QAction*> m_schemeActions;      // in the order of MouseScheme
    QList<QAction*> m_appearanceActions;  // in the order of Appearance
    WindowShell* m_pShell = nullptr;
    QLabel* m_pImportNote = nullptr;             // in the status bar while imports leave points out
    std::vector<QAction*> m_vViewerActions;      // enabled with a viewer and without a lasso
    std::vector<QAction*> m_vFileActions;        // enabled with a viewer, without a lasso or an alignment
    std::vector<QAction*> m_vIdleActions;        // the same, and while no import runs
    QList<QAction*> m_pickActions;               // off, points, centre cross
    bool m_bRefused = false;                     // there will be no viewer any more
    ImportJob* m_pJob = nullptr;                 // the import that runs; null without one
    std::size_t m_nListedFiles = 0;              // of that import: their objects are in the list
    QString m_notShown;                          // message about its last object that cannot be shown
    ScenePreparation* m_pPreparation = nullptr;  // exists from the start of an import to its last frame
    ImportProgress* m_pProgress = nullptr;       // in the status bar
    std::vector<std::string> m_vWaitingFiles;    // paths in bytes
    // Point files. At most one import runs at a time, of points or of other files.
    PointsJob* m_pPointsJob = nullptr;            // the import that runs; null without one
    std::vector<PointsRequest> m_vWaitingPoints;  // in the order of their imports
    PointsRequest m_unaskedPoints;                // the next dialog is for them
    bool m_bAsksForPoints = false;                // the dialog is open
    PointsLook m_pointsLook;                      // as last chosen in the dialog
    std::size_t m_nFilesNotAdded = 0;             // of all imports so far, for the exit status
    std::unique_ptr<DebugRouter> m_pRouter;       // writes to the message pane, so it is destroyed before that
};
