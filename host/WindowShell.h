// What a window has whatever it shows: its place on the screen, panes that are opened and hidden, full screen, and the
// menu of recent files.
#pragma once
#include <QByteArray>
#include <QObject>
#include <QPointer>
#include <QStringList>
#include <optional>
#include <set>
#include <string>
#include <vector>

class QAction;
class QDockWidget;
class QMainWindow;
class QMenu;
struct WindowPlace;

/// Serves one window, from its constructor to its end. The panes and tool bars of the window need object names.
class WindowShell : public QObject {
    Q_OBJECT
public:
    explicit WindowShell(QMainWindow& window);

    // Actions for the menus; their keys work wherever they are placed.
    [[nodiscard]] QAction* FullScreenAction() const { return m_pFullScreen; }
    /// Hides all panes; the second time it opens those that were open, at their sizes.
    [[nodiscard]] QAction* HidePanesAction() const { return m_pHidePanes; }
    /// Fills the menu whenever it is opened.
    void MakeRecentMenu(QMenu& menu);

    /// Gives the window the place and the panes of its last end. Once, when it has all panes, tool bars and actions,
    /// and before it is shown. Panes that are hidden now are those that a first start does not show.
    void Restore();
    /// Stores place and panes for the next start.
    void Store();
    /// Place and panes as at a first start, at once.
    void Reset();
    /// The user opens this file by its name, not with a folder. @param file  path in bytes
    void NoteWanted(const std::string& file) { m_vWanted.insert(file); }
    /// Puts the files of NoteWanted() among these into the menu of recent files. @param files  that added something
    void NoteAdded(const std::vector<std::string>& files);
    /// Puts paths that were opened into the menu of recent files. @param files  in bytes
    void NoteOpened(const std::vector<std::string>& files);
    /// Opens a pane without moving the keyboard focus. While all panes are hidden it waits for their return.
    void OpenPane(QDockWidget& pane);

signals:
    /// The user chose a recent file. @param file  path in bytes
    void OpenWanted(const std::string& file);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void FillRecentMenu(QMenu& menu);
    void StoreOpened();
    void HidePanes(bool hide);
    void ShowFullScreen(bool on);
    /// Escape leaves full screen unless something else uses the key.
    void EnableLeave();
    /// Size and corner of the last end, or the size of a first start.
    void Place(const std::optional<WindowPlace>& last);
    /// The frame is known once the window is on the screen: the whole of it moves into the available area.
    void KeepInside();
    /// Panes get the width that their contents need, and at most two fifths of the window's on each side.
    void FitPanes();
    [[nodiscard]] QList<QDockWidget*> Panes() const;

    QMainWindow& m_window;
    QAction *m_pFullScreen, *m_pLeave, *m_pHidePanes;
    QList<QPointer<QAction>> m_escapes;     // other actions of the Escape key
    QByteArray m_firstPanes;                // of a first start
    QByteArray m_panesBefore;               // while all panes are hidden: the state to return to
    QList<QPointer<QDockWidget>> m_toOpen;  // then
    std::vector<std::string> m_vOpened;     // not stored yet
    std::set<std::string> m_vWanted;        // by name, and not added yet
    bool m_bPlaced = false;                 // the frame was looked at
    bool m_bFitsPanes = true;               // their widths are not those that the user chose in a window of this size
};
