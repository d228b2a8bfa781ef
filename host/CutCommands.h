// What the tools of cuts do: a lasso from its start to its end, undo, and the save with its questions.
#pragma once
#include <QObject>
#include <functional>
#include <optional>
#include <vector>

#include "CutLedger.h"
#include "KV_ScenePane/ScenePane.h"
#include "ObjectList.h"
#include "Settings.h"

/// Calls the viewer; the list of objects follows each cut and each undo. Cuts of an object are unsaved until they are
/// in its pcm file, taken back, or the object is deleted; those of an object from another file until it is exported.
class CutCommands : public QObject {
    Q_OBJECT
public:
    using Way = KV_ScenePane::SegmentationMode;

    /// @param objects  of the viewer, row by row
    /// @param window   parent of the questions; owns this
    CutCommands(ObjectList& objects, const LassoSettings& lasso, QWidget* window);
    /// @param viewer  must outlive this or be replaced by null
    void SetViewer(KV_ScenePane::ScenePane* viewer);
    /// @param confidence  of the last import: the viewer's confidence filter
    void SetConfidence(float confidence) { m_fConfidence = confidence; }
    void SetClipping(std::function<bool()> isClipping) { m_isClipping = std::move(isClipping); }
    /// For the lassos that follow.
    void SetColors(const LassoSettings& lasso);

    /// Of the lasso that is drawn.
    [[nodiscard]] std::optional<Way> RunningWay() const { return m_way; }
    [[nodiscard]] int UndoSteps() const;
    [[nodiscard]] bool HaveUnsaved() const;
    /// @param index  of an object in the list
    [[nodiscard]] bool IsUnsaved(int index) const;

    // What the user does. Nothing happens without a viewer.
    /// Another lasso that runs is cancelled before.
    void Start(Way way);
    void Cancel();
    void Undo();
    /// Asks, writes the files and shows what was done. A lasso that runs is cancelled before.
    /// @return whether all cuts that a file can hold are in their files
    bool Save();
    /// Asks about unsaved cuts before they are lost.
    /// @param title  what the user wants to do
    /// @return whether it can be done
    bool AskAboutUnsaved(const QString& title);

    // What happened.
    /// A cut will be applied; the viewer still has the objects of before.
    void OnCutAboutToApply();
    /// @param objects  -1: nothing was cut
    void OnLassoEnded(int objects);
    void OnExported(int index);
    void OnSceneCleared();

signals:
    /// A lasso was started or has ended, or the cuts, the undo steps or what is saved have changed.
    void Changed();
    /// A save will write the cuts of the objects that are in the viewer then.
    void AboutToWrite();
    /// A cut or an undo will replace objects; the viewer still has those of before.
    void AboutToReplaceObjects();
    /// The list shows the objects after a cut or an undo. Painting is blocked during an undo.
    /// @param newIndex  of each object of before; -1 when it is gone
    void ObjectsReplaced(const std::vector<int>& newIndex);
    /// What the user must know, one or several lines. The last one is a summary.
    void Report(const QString& text);

private:
    using Entries = std::vector<KV_ScenePane::CutSaveEntry>;

    /// The plan of a save; files of objects without a name are those of the list. Of a deleted object it saves nothing.
    [[nodiscard]] Entries Plan() const;
    void NameFiles(Entries& entries) const;
    /// The objects of the list, as the plan describes them. A deleted one has no id and nothing to save.
    [[nodiscard]] std::vector<CutObject> Objects(const Entries& plan) const;
    /// @param canSave  receives whether a save writes one of them
    [[nodiscard]] QStringList UnsavedLines(const Entries& plan, bool* canSave) const;
    /// What a save removes beside the cuts and cannot be taken back, as sentences.
    [[nodiscard]] QString SaveNote() const;
    /// Asks, unless nothing can be written.
    [[nodiscard]] bool AskToWrite(const Entries& plan);
    /// Says so and returns true when an object is moved or was cut while it was.
    bool RefuseMoved(const Entries& plan);
    /// Without a question.
    bool Write();
    /// Keeps what was written and what the viewer has lost. @param plan  of before @return advice about what failed
    QStringList KeepResults(const Entries& plan, const Entries& results);
    /// @param plan  of before
    bool ReportSave(const Entries& plan, const Entries& results);
    /// What can be done about an earlier save that has failed and is not repeated; empty when there is none.
    [[nodiscard]] QString FailedBefore(const CutObject& object) const;

    /// Shows these rows with what the viewer has now.
    void ShowObjects(std::vector<ObjectRow> rows);
    /// After an undo and before the ledger follows it: what became of the objects. @param before  the rows before it
    [[nodiscard]] QString UndoText(const std::vector<ObjectRow>& before) const;
    /// Asks, if objects were opened after the newest cut: taking it back removes them. @return whether it can be done
    [[nodiscard]] bool AskToUndo();
    /// Rows of the viewer's newest undo step, with the check marks that each object has now.
    [[nodiscard]] std::vector<ObjectRow> TakeStep();
    /// Deletes what was deleted before the cut that was taken back, and for good since. @param before  the undo
    void DropDeleted(std::vector<ObjectRow>* rows, const std::vector<ObjectRow>& before);
    void ApplyColors();

    ObjectList& m_objects;
    QWidget* const m_pWindow;
    KV_ScenePane::ScenePane* m_pViewer = nullptr;
    LassoSettings m_lasso;
    float m_fConfidence = 0.0f;
    std::function<bool()> m_isClipping = [] { return false; };
    std::optional<Way> m_way;
    std::vector<std::vector<ObjectRow>> m_vSteps;  // the rows of each undo step of the viewer
    CutLedger m_ledger;
};
