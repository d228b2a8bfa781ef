// The property page of the viewer in the look of the desktop.
#pragma once
#include <QDialog>
#include <vector>

#include "KV_ScenePane/PropertyPage.h"

class QDialogButtonBox;
class QFormLayout;
class QTabWidget;

/// Not modal: the scene can be looked at, and changed by the menus, while it is open. It writes to the viewer when the
/// user accepts or applies. A property that changes elsewhere is shown, unless the user has changed its control.
class PropertyDialog : public QDialog {
    Q_OBJECT
public:
    explicit PropertyDialog(QWidget* parent = nullptr);
    /// @param methods  of the viewer, which must outlive the dialog or be replaced by null; null closes the dialog
    void SetViewer(KV_ScenePane::_DKV_ScenePane* methods);
    /// Shows the properties of the viewer, or brings the dialog to the front if it is open. Not without a viewer.
    void ShowPage();
    /// Reads the viewer, while the dialog is open.
    void Follow();
    /// While false the dialog can only be cancelled.
    void SetUsable(bool on);

    void accept() override;

signals:
    /// What the user changed was written to the viewer.
    void Applied();

private:
    struct Control {
        const KV_ScenePane::PropertyPageControl& description;
        QWidget* widget;  // a QComboBox or a QCheckBox, by the kind
    };

    void AddControl(QFormLayout& form, const KV_ScenePane::PropertyPageControl& description);
    /// The controls as values of the page.
    [[nodiscard]] KV_ScenePane::CKV_ScenePanePropPage Edited() const;
    /// A control shows something else than the viewer has.
    [[nodiscard]] bool IsChanged() const;
    void Apply();
    void EnableButtons();

    KV_ScenePane::_DKV_ScenePane* m_pMethods = nullptr;
    KV_ScenePane::CKV_ScenePanePropPage m_viewerPage;  // the properties of the viewer as last read
    bool m_bUsable = true;
    std::vector<Control> m_vControls;  // in the order of the page
    QTabWidget* m_pTabs;
    QDialogButtonBox* m_pButtons;
};
