// The needles of the viewer: switches, the look of new ones, their list, and the buttons for deletion and files.
#pragma once
#include <QWidget>
#include <cstdint>
#include <map>
#include <optional>
#include <vector>

#include "KV_ScenePane/_DKV_ScenePane.h"
#include "NeedleFile.h"

class ColorButton;
class QCheckBox;
class QDoubleSpinBox;
class QFormLayout;
class QLabel;
class QPushButton;
class QSpinBox;
class QTreeWidget;
class QTreeWidgetItem;

/// Follows the viewer by its events. Its first state is that of a new viewer: no needles, both switches off.
class NeedlePanel : public QWidget {
    Q_OBJECT
public:
    enum Column { kId, kPin, kHead, kColumnCount };

    explicit NeedlePanel(QWidget* parent = nullptr);
    /// @param methods  of the viewer, which must outlive the panel or be replaced by null; null disables the panel and
    ///                 empties its list
    void SetViewer(KV_ScenePane::_DKV_ScenePane* methods);

    /// All needles in the order of the viewer's list, with their present positions and the looks they were created
    /// with.
    [[nodiscard]] std::vector<NeedleMark> Marks() const;
    /// Adds needles to the viewer and shows needles; the limit grows as necessary. Not without a viewer.
    /// @return the ids that were in use already; those needles are as they were
    [[nodiscard]] std::vector<std::int32_t> Place(const std::vector<NeedleMark>& marks);
    /// Suggests sizes that suit the scene, unless the user has chosen sizes or there are needles already.
    void FollowScene();
    /// Whether the mouse creates and selects needles.
    [[nodiscard]] bool IsCreating() const { return m_bCreating; }
    /// Switches that in the viewer too. Emits no CreationWanted().
    void SwitchCreation(bool on);
    /// There are needles, and they are not those of the last SetSaved().
    [[nodiscard]] bool HaveUnsaved() const;
    /// The present needles are in files.
    void SetSaved() { m_vSaved = Marks(); }

    // What happened in the viewer.
    /// @param id  -1 also when the mouse could not create a needle because of the limit
    void OnCreated(int id);
    void OnDeleted(int id);
    void OnSelected(int id);
    void OnDeselected(int id);
    /// The mouse may have moved the head of the selected needle, which no event reports.
    void OnInput();

protected:
    void resizeEvent(QResizeEvent* event) override;

signals:
    /// The user asked for the dialog of a file.
    void SaveWanted();
    void LoadWanted();
    /// The user asked for SwitchCreation().
    void CreationWanted(bool on);
    /// What the user can do now, or why something did not happen.
    void Hint(const QString& text);

private:
    struct Row {
        QTreeWidgetItem* item = nullptr;
        NeedleLook look;
    };

    void MakeSwitches();
    QFormLayout* MakeLook();
    void MakeList();
    void Arrange();
    QDoubleSpinBox* MakeSize(const QString& name, const QString& title, const QString& tip, float NeedleLook::*size);
    ColorButton* MakeColor(const QString& name, const QString& title, std::int32_t NeedleLook::*color);
    void SwitchDrawing(bool on);
    void ChangeLimit(int limit);
    /// Sizes for a scene whose box has this diagonal.
    void FitSizes(double diagonal);
    /// Of the box around all objects; 0 without one.
    [[nodiscard]] double SceneDiagonal() const;
    void SelectInViewer();
    void DeleteSelected();
    void DeleteAll();
    /// The list's selection becomes that of the viewer. Reports nothing to the viewer.
    void ShowSelection();
    void ShowPosition(int id, const Row& row) const;
    void ShowText(const QString& text, bool isWarning);
    /// What the mouse does now, here and in the status bar.
    void ShowMouseHint();
    void WarnOfLimit(const QString& text);
    /// The label has the height of its longest text: the controls below it stay where they are.
    void ReserveTextHeight();
    /// What is enabled and the range of the limit follow the number of needles.
    void FollowCount();

    KV_ScenePane::_DKV_ScenePane* m_pMethods = nullptr;
    NeedleLook m_look;  // of the needles that the viewer creates now
    std::int32_t m_nLimit = kStartNeedleLimit;
    bool m_bSizesChosen = false;  // by the user: no suggestion replaces them
    bool m_bCreating = false;
    std::vector<NeedleMark> m_vSaved;  // all needles as SetSaved() found them
    std::map<int, Row> m_rows;         // by id
    std::optional<int> m_selected;     // in the viewer
    std::vector<std::pair<QDoubleSpinBox*, float NeedleLook::*>> m_vSizes;
    QCheckBox *m_pCreate, *m_pShow;
    QSpinBox* m_pLimit;
    QLabel* m_pText;
    QTreeWidget* m_pList;
    QPushButton *m_pDelete, *m_pDeleteAll, *m_pSave;
};
