// What the operator can do in each phase of an alignment, above the viewer.
#pragma once
#include <QFrame>
#include <QString>
#include <QStringList>

#include "AlignProgress.h"
#include "MouseScheme.h"

class QLabel;

/// What the hint depends on.
struct AlignHintState {
    AlignProgress progress;
    MouseScheme scheme = MouseScheme::Normal;
    bool isPlaneShown = false;  ///< Ctrl then drags the clip plane
    QString moving = {};        ///< ObjectNames() of those that move
    bool hasColors = false;     ///< an object has colours of its own, which are not dimmed
    bool operator==(const AlignHintState&) const = default;
};

/// Both are empty without an alignment.
struct AlignHintText {
    QString task;  ///< what the mouse does now, with the number of points
    QString keys;
};
[[nodiscard]] AlignHintText HintOf(const AlignHintState& state);

/// Three names at most, long ones shortened, and how many more there are.
[[nodiscard]] QString ObjectNames(const QStringList& names);

/// Hidden without an alignment. Its height is the same for the whole of one: the viewer below must not change its size
/// between two clicks.
class AlignHint : public QFrame {
    Q_OBJECT
public:
    explicit AlignHint(QWidget* parent = nullptr);
    void Show(const AlignHintState& state);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    /// Makes both lines high enough for each phase of the alignment.
    void FitHeight();

    AlignHintState m_state;
    QLabel *m_pTask, *m_pKeys;
};
