// The result of the last alignment by points: the residual of each pair.
#pragma once
#include <QWidget>

#include "KV_ScenePane/Alignment.h"

class QLabel;
class QPushButton;
class QTreeWidget;

/// Per pair a line with number, residual and both points, with tabs between them, below a line of titles; last the root
/// mean square. Numbers read back as the same floats, whatever the locale; no residual without a transform.
[[nodiscard]] QString ResidualText(const KV_ScenePane::AlignmentResult& result);

/// Shows what the window passes to it; it calls no viewer.
class ResidualPanel : public QWidget {
    Q_OBJECT
public:
    enum Column { kPair, kResidual, kMoving, kFixed, kColumnCount };

    explicit ResidualPanel(QWidget* parent = nullptr);
    /// @param summary  one sentence
    void Show(const KV_ScenePane::AlignmentResult& result, const QString& summary);
    /// The objects of the result are gone or somewhere else.
    void Clear();
    /// Low: the list of objects beside the viewer needs the height. The user can resize the pane.
    [[nodiscard]] QSize sizeHint() const override;

private:
    KV_ScenePane::AlignmentResult m_result;
    QLabel* m_pSummary;
    QTreeWidget* m_pList;
    QPushButton* m_pCopy;
};
