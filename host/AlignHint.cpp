// The texts of the hint, by the phase of the alignment and the scheme of the mouse.
#include "AlignHint.h"

#include <QLabel>
#include <QVBoxLayout>
#include <algorithm>
#include <vector>

namespace {

using KV_ScenePane::AlignmentPhase;

/// The objects of a phase, with the mark by which the viewer shows them.
QString Marked(const AlignHintState& state, const QString& objects) {
    return state.hasColors ? objects : AlignHint::tr("%1 (bright)").arg(objects);
}

QString HandTask(const AlignHintState& state) {
    const QString moving = Marked(state, state.moving);
    switch (state.scheme) {
        case MouseScheme::Flipped:
            return AlignHint::tr("Align by hand: the right button turns, the left button moves %1.").arg(moving);
        case MouseScheme::Delayed:
            return AlignHint::tr("Align by hand: the right button turns, with the left button or Shift it moves %1.")
                .arg(moving);
        case MouseScheme::Normal:
            break;
    }
    return AlignHint::tr("Align by hand: the left button turns, the right button moves %1.").arg(moving);
}

QString MovingTask(const AlignHintState& state) {
    const int points = state.progress.moving;
    const QString task =
        AlignHint::tr("Align by points: click points on what will move, %1").arg(Marked(state, state.moving));
    if (points == 0) return task + '.';
    return task + (points == 1 ? AlignHint::tr(": 1 point.") : AlignHint::tr(": %1 points.").arg(points));
}

QString FixedTask(const AlignHintState& state) {
    const int points = state.progress.fixed, wanted = state.progress.moving;
    const QString task =
        AlignHint::tr("Align by points: click the same points in the same order on %1: point %2 of %3.")
            .arg(Marked(state, AlignHint::tr("the objects that stay")), QString::number(points + 1),
                 QString::number(wanted));
    return points + 1 == wanted ? task + AlignHint::tr(" It ends the alignment.") : task;
}

QString TaskOf(const AlignHintState& state) {
    switch (state.progress.phase) {
        case AlignmentPhase::ByHand:
            return HandTask(state);
        case AlignmentPhase::PickMoving:
            return MovingTask(state);
        case AlignmentPhase::PickFixed:
            return FixedTask(state);
        case AlignmentPhase::Idle:
            break;
    }
    return {};
}

QString CtrlKey(const AlignHintState& state) {
    if (state.isPlaneShown) return AlignHint::tr("Ctrl and drag: the clip plane (hide it to drag the view)");
    return state.scheme == MouseScheme::Delayed ? AlignHint::tr("Ctrl and drag with the right button: the view")
                                                : AlignHint::tr("Ctrl and drag: the view");
}

QStringList KeysOf(const AlignHintState& state) {
    const AlignProgress& progress = state.progress;
    QStringList keys;
    switch (progress.phase) {
        case AlignmentPhase::Idle:
            return {};
        case AlignmentPhase::ByHand:
            keys << AlignHint::tr("Esc: finish");
            break;
        case AlignmentPhase::PickMoving:
            if (progress.moving > 0)
                keys << AlignHint::tr("Space: continue on the objects that stay")
                     << AlignHint::tr("Delete: drop the last point");
            keys << AlignHint::tr("Esc: end without moving");
            break;
        case AlignmentPhase::PickFixed:
            if (progress.fixed > 0) keys << AlignHint::tr("Delete: drop the last point");
            keys << AlignHint::tr("Esc: end without moving");
            break;
    }
    keys << CtrlKey(state);
    return keys;
}

constexpr int kMaxHeight = 1000;  // pixels: no limit to the lines of a text

/// One state per phase of the same alignment, with as long a text as it can have.
std::vector<AlignHintState> LongestHints(const AlignHintState& state) {
    if (state.progress.phase == AlignmentPhase::Idle || state.progress.phase == AlignmentPhase::ByHand) return {state};
    constexpr int kPoints = 99;
    AlignHintState moving = state, fixed = state;
    moving.progress = {AlignmentPhase::PickMoving, kPoints, 0};
    fixed.progress = {AlignmentPhase::PickFixed, kPoints, kPoints - 1};
    return {moving, fixed};
}

}  // namespace

QString ObjectNames(const QStringList& names) {
    constexpr int kShown = 3;
    constexpr qsizetype kStart = 14, kEnd = 10;  // characters of a long name
    QStringList shown;
    for (const QString& name : names.first(std::min<qsizetype>(names.size(), kShown)))
        shown << (name.size() > kStart + kEnd + 1 ? name.left(kStart) + QChar(0x2026) + name.right(kEnd) : name);
    const qsizetype more = names.size() - shown.size();
    const QString text = shown.join(", ");
    return more > 0 ? AlignHint::tr("%1 and %2 more").arg(text, QString::number(more)) : text;
}

AlignHintText HintOf(const AlignHintState& state) { return {TaskOf(state), KeysOf(state).join("   ·   ")}; }

AlignHint::AlignHint(QWidget* parent) : QFrame(parent), m_pTask(new QLabel), m_pKeys(new QLabel) {
    setObjectName("alignHint");
    setFrameShape(QFrame::StyledPanel);
    setAutoFillBackground(true);
    setBackgroundRole(QPalette::ToolTipBase);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(8, 3, 8, 3);
    column->setSpacing(1);
    for (QLabel* const label : {m_pTask, m_pKeys}) {
        label->setWordWrap(true);
        label->setTextFormat(Qt::PlainText);  // it has names of files
        label->setForegroundRole(QPalette::ToolTipText);
        column->addWidget(label);
    }
    m_pTask->setObjectName("alignTask");
    m_pKeys->setObjectName("alignKeys");
    QFont font = m_pTask->font();
    font.setBold(true);
    m_pTask->setFont(font);
    hide();
}

void AlignHint::Show(const AlignHintState& state) {
    m_state = state;
    const AlignHintText text = HintOf(state);
    m_pTask->setText(text.task);
    m_pKeys->setText(text.keys);
    FitHeight();
    setVisible(!text.task.isEmpty());
}

void AlignHint::resizeEvent(QResizeEvent* event) {
    QFrame::resizeEvent(event);
    FitHeight();
}

void AlignHint::FitHeight() {
    const QMargins margins = layout()->contentsMargins();
    const int width = contentsRect().width() - margins.left() - margins.right();
    const auto heightOf = [width](const QLabel& label, const QString& text) {
        return label.fontMetrics().boundingRect(QRect(0, 0, width, kMaxHeight), Qt::TextWordWrap, text).height();
    };
    int task = 0, keys = 0;
    for (const AlignHintState& state : LongestHints(m_state)) {
        const AlignHintText text = HintOf(state);
        task = std::max(task, heightOf(*m_pTask, text.task));
        keys = std::max(keys, heightOf(*m_pKeys, text.keys));
    }
    m_pTask->setMinimumHeight(task);
    m_pKeys->setMinimumHeight(keys);
}
