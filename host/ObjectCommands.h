// What the commands of the list of objects do to the scene: show and hide, centre, and the outline of what is selected.
#pragma once
#include <QObject>
#include <QSize>
#include <functional>
#include <vector>

#include "KV_ScenePane/ScenePane.h"

class ObjectList;

/// On the thread of the viewer.
class ObjectCommands : public QObject {
    Q_OBJECT
public:
    /// Follows the selection of the list from here on.
    explicit ObjectCommands(ObjectList& objects, QObject* parent = nullptr);

    /// @param viewer  outlives this, or null is passed before it ends
    void SetViewer(KV_ScenePane::ScenePane* viewer);

    // Each requests one frame and emits VisibilityChanged() if an object has changed.
    void ShowSelected();
    void HideSelected();
    void ShowOnlySelected();
    void ShowAll();
    void InvertVisibility();

    /// Moves the middle of the object's box to the middle of the window. The directions of the view stay, and the
    /// magnification, unless the object would not fit.
    /// @param window  size of the drawing area
    void Centre(int index, QSize window);

    /// Shows the boxes of the selected objects, unless they are suspended. For a scene that has new objects, too.
    void FollowSelection();
    /// No box is shown: a lasso or an alignment runs.
    void SuspendOutline(bool on);
    /// Selects the object at a pixel of the drawing area; without one the selection is cleared.
    void SelectAt(int x, int y);

signals:
    void VisibilityChanged();

private:
    void SetVisible(const std::function<bool(int index)>& isVisible);

    ObjectList& m_objects;
    KV_ScenePane::ScenePane* m_pViewer = nullptr;
    std::vector<int> m_vOutlined;  // ids of the objects whose boxes are shown
    bool m_bSuspended = false;
};
