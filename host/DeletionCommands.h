// Deleted objects, as long as they can be restored.
#pragma once
#include <QObject>
#include <vector>

#include "KV_ScenePane/ScenePane.h"

class ObjectList;

/// A deleted object stays in the viewer, hidden, and in the list as a removed one, until it is restored or its deletion
/// is final. Deletions and cuts have one order: the newer of both is taken back first.
class DeletionCommands : public QObject {
    Q_OBJECT
public:
    /// @param objects  of the viewer
    DeletionCommands(ObjectList& objects, QObject* parent);
    /// Forgets all deletions; emits nothing. @param viewer  must outlive this or be replaced by null
    void SetViewer(KV_ScenePane::ScenePane* viewer);

    /// One step, which Undo() takes back. @param objects  others than those of the list, and removed ones, are ignored
    void Delete(const std::vector<int>& objects);
    /// There is a deletion, and no cut was made since.
    [[nodiscard]] bool CanUndo() const;
    /// The objects that Undo() would restore; 0 when it cannot.
    [[nodiscard]] int UndoCount() const;
    /// Restores the objects of the newest deletion, with the visibility that their check marks have, and selects them.
    void Undo();
    /// All objects that are deleted and can be restored, in ascending order.
    [[nodiscard]] std::vector<int> Deleted() const;
    /// The deletions are final, or the scene is empty.
    void Clear();

signals:
    /// Objects were deleted or restored, or the deletions were forgotten.
    void Changed();
    /// These objects are in the scene again. Emitted before Changed(); painting is blocked.
    void Restored(const std::vector<int>& objects);

private:
    struct Step {
        std::vector<int> ids;  ///< ObjectRow::id
        int cuts = 0;          ///< undo steps of the viewer at the deletion
    };

    ObjectList& m_objects;
    KV_ScenePane::ScenePane* m_pViewer = nullptr;
    std::vector<Step> m_vSteps;  // the newest last
};
