// The transforms of the objects: what an alignment changed is taken back, and the list shows where the objects are.
#pragma once
#include <QObject>
#include <map>
#include <optional>
#include <vector>

#include "KV_ScenePane/ScenePane.h"
#include "TransformLedger.h"

class ObjectList;

/// Calls the viewer. Every change of transforms is between Begin() and End(), in one call or, of an alignment by the
/// operator, in several.
class TransformCommands : public QObject {
    Q_OBJECT
public:
    /// @param objects  of the viewer, row by row
    TransformCommands(ObjectList& objects, QObject* parent);
    /// Emits nothing. @param viewer  must outlive this or be replaced by null
    void SetViewer(KV_ScenePane::ScenePane* viewer);

    // Around an alignment.
    /// Before it starts: remembers where all objects are.
    /// @param name  as a part of a sentence: "alignment by points"
    void Begin(const QString& name);
    /// After it, in AlignmentDone: one level more to take back, if an object has moved. The list follows.
    /// @return the number of objects that moved; 0 also without Begin()
    int End();
    /// Begin() was called and End() was not: nothing can be taken back or loaded now.
    [[nodiscard]] bool IsOpen() const { return m_ledger.IsOpen(); }

    /// Sets the transforms of before the newest change again.
    void TakeBack();
    [[nodiscard]] bool CanTakeBack() const;
    /// "Take back alignment by points (3 scans)".
    [[nodiscard]] QString TakeBackText() const;
    /// Sets transforms of rows of the list as one change that can be taken back, which a file has already.
    /// @param name  as for Begin()
    /// @return the number of objects that moved
    int Place(const QString& name, const std::map<int, Matrix4>& byRow);

    /// Of the object of a row; empty for a row that is not in the list.
    [[nodiscard]] std::optional<Matrix4> TransformOfRow(int row) const;
    /// Rows whose object has another transform than at its import, without deleted ones.
    [[nodiscard]] std::vector<int> MovedRows() const;
    /// Those of them whose transform is in no file.
    [[nodiscard]] std::vector<int> UnsavedRows() const;
    [[nodiscard]] bool HaveUnsaved() const { return !UnsavedRows().empty(); }
    /// A file has the present transforms of all rows.
    void OnSaved();

    // What happened.
    /// Objects will be replaced or deleted: remembers where they are.
    void Note();
    /// Objects were added, deleted or replaced: the list shows which of them are moved.
    void Follow();
    /// The list shows other generations of its objects, after a cut or its undo: they are placed where they were last.
    /// The caller blocks painting.
    void OnObjectsReplaced();
    void OnSceneCleared();

signals:
    /// Transforms, the levels, or what is saved have changed.
    void Changed();
    /// Objects are elsewhere since the last change.
    void ObjectsMoved();
    /// What the user must know: one line.
    void Report(const QString& text);

private:
    [[nodiscard]] TransformsById Now() const;
    /// Sets the transforms of the objects that are in the list. The caller blocks painting.
    void Set(const TransformsById& transforms);
    /// Boxes and marks of the list follow the viewer.
    void ShowInList();

    ObjectList& m_objects;
    KV_ScenePane::ScenePane* m_pViewer = nullptr;
    TransformLedger m_ledger;
};
