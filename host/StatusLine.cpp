// Parts of a status bar that share its width: each has its text, and Arrange() decides how much of it is
// shown.
#include "StatusLine.h"

#include <QAction>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QPainter>
#include <QSizeGrip>
#include <QStyleOption>
#include <QTimer>
#include <QToolButton>
#include <algorithm>
#include <limits>

#include "ToolTip.h"

namespace {

constexpr int kOfferMs = 20'000;
constexpr int kMargin = 8;           // pixels, of a label
constexpr int kMessageLetters = 30;  // what the parts at the right leave to the message where they can

QLabel* NamedLabel(const char* name) {
    auto* const label = new QLabel;
    label->setObjectName(name);
    label->setTextFormat(Qt::PlainText);  // file names may hold what looks like tags
    label->setMinimumWidth(1);            // the window can become narrower: the text follows
    return label;
}

int WidthOf(const QLabel& label, const QString& text) {
    return text.isEmpty() ? 0 : label.fontMetrics().horizontalAdvance(text) + kMargin;
}

/// A plural has an int.
int Plural(std::int64_t number) {
    return static_cast<int>(std::min<std::int64_t>(number, std::numeric_limits<int>::max()));
}

}  // namespace

StatusLine::StatusLine(QWidget* parent) : QStatusBar(parent) {
    m_pOfferEnd = new QTimer(this);
    m_pOfferEnd->setSingleShot(true);
    m_pOfferEnd->setInterval(kOfferMs);
    connect(m_pOfferEnd, &QTimer::timeout, this, &StatusLine::WithdrawUndo);
    MakeUndo();
    m_pFailures = new QToolButton;
    m_pFailures->setObjectName("failedFiles");
    m_pFailures->setAutoRaise(true);
    m_pFailures->setToolTip(tr("Show the messages about these files"));
    connect(m_pFailures, &QToolButton::clicked, this, &StatusLine::FailuresWanted);
    addPermanentWidget(m_pFailures);
    m_pFailures->hide();
    MakePick();
    m_pScene = NamedLabel("sceneCounts");
    m_pFrame = NamedLabel("frameTime");
    m_pFrame->setToolTip(tr("Time to draw the last frame"));
    for (QLabel* const label : {m_pScene, m_pFrame}) addPermanentWidget(label);
    // The tool tip has what the bar has no space for.
    connect(this, &QStatusBar::messageChanged, this, [this](const QString& text) { setToolTip(PlainToolTip(text)); });
    ShowScene({});
    ShowFrameTime(0);
}

void StatusLine::MakeUndo() {
    m_pUndo = new QWidget;
    m_pUndo->setObjectName("undoOffer");
    auto* const row = new QHBoxLayout(m_pUndo);
    row->setContentsMargins(0, 0, 0, 0);
    m_pOffer = NamedLabel("undoOfferText");
    auto* const button = new QToolButton;
    button->setObjectName("undoOfferButton");
    button->setText(tr("Undo"));
    connect(button, &QToolButton::clicked, this, &StatusLine::UndoWanted);
    row->addWidget(m_pOffer);
    row->addWidget(button);
    addPermanentWidget(m_pUndo);
    m_pUndo->hide();
}

void StatusLine::MakePick() {
    m_pPick = NamedLabel("lastPick");
    m_pPick->setTextInteractionFlags(Qt::TextSelectableByMouse);
    m_pCopy = new QToolButton;
    m_pCopy->setObjectName("copyLastPick");
    m_pCopy->setAutoRaise(true);
    m_pCopy->setText(tr("Copy"));
    m_pCopy->setToolTip(tr("Copy the coordinates of the last pick"));
    connect(m_pCopy, &QToolButton::clicked, this, &StatusLine::PointCopyWanted);
    auto* const point = new QAction(tr("Copy the &coordinates"), this);
    point->setObjectName("copyLastPickAction");
    connect(point, &QAction::triggered, this, &StatusLine::PointCopyWanted);
    m_pCopyDistance = new QAction(tr("Copy the &distance"), this);
    m_pCopyDistance->setObjectName("copyLastDistanceAction");
    connect(m_pCopyDistance, &QAction::triggered, this, &StatusLine::DistanceCopyWanted);
    m_pPick->addActions({point, m_pCopyDistance});
    m_pPick->setContextMenuPolicy(Qt::ActionsContextMenu);
    addPermanentWidget(m_pPick);
    addPermanentWidget(m_pCopy);
    m_pPick->hide();
    m_pCopy->hide();
}

void StatusLine::ShowScene(const Scene& scene) {
    m_scene = scene;
    m_pScene->setToolTip(SceneText(false));
    Arrange();
}

void StatusLine::ShowFrameTime(double seconds) {
    const double ms = 1000.0 * seconds;
    if (!(ms > 0))
        m_frameText.clear();
    else if (ms < 1000)
        m_frameText = tr("%1 ms").arg(QLocale().toString(ms, 'f', ms < 10 ? 1 : 0));
    else
        m_frameText = tr("%1 s").arg(QLocale().toString(seconds, 'f', 1));
    Arrange();
}

void StatusLine::ShowPick(const QString& text, bool hasDistance) {
    m_pick = text;
    m_pCopyDistance->setEnabled(hasDistance);
    m_pPick->setToolTip(PlainToolTip(text));  // readable where the window is too narrow
    m_pPick->setVisible(!text.isEmpty());
    m_pCopy->setVisible(!text.isEmpty());
    Arrange();
}

void StatusLine::ShowFailures(int files) {
    m_pFailures->setText(tr("%Ln file(s) failed", nullptr, files));
    m_pFailures->setVisible(files > 0);
    Arrange();
}

void StatusLine::OfferUndo(const QString& text) {
    m_offer = text;
    m_pOffer->setToolTip(PlainToolTip(text));
    m_pUndo->show();
    m_pOfferEnd->start();
    Arrange();
}

void StatusLine::WithdrawUndo() {
    m_pOfferEnd->stop();
    m_pUndo->hide();
}

QString StatusLine::SceneText(bool isShort) const {
    const QLocale locale;
    const bool isWhole = m_scene.shownObjects == m_scene.objects;
    const QString objects =
        isWhole ? tr("%Ln object(s)", nullptr, m_scene.objects)
                : tr("%1 of %Ln object(s)", nullptr, m_scene.objects).arg(locale.toString(m_scene.shownObjects));
    if (isShort || m_scene.objects == 0) return objects;
    const int count = Plural(m_scene.triangles);
    const QString triangles = m_scene.shownTriangles == m_scene.triangles
                                  ? tr("%Ln triangle(s)", nullptr, count)
                                  : tr("%1 of %Ln triangle(s)", nullptr, count)
                                        .arg(locale.toString(static_cast<qlonglong>(m_scene.shownTriangles)));
    return tr("%1, %2", "objects, triangles").arg(objects, triangles);
}

// ---- the width

int StatusLine::FixedWidth() const {
    int width = m_pCopy->isHidden() ? 0 : m_pCopy->sizeHint().width();
    for (const QWidget* const part : findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
        const bool adapts = part == m_pPick || part == m_pCopy || part == m_pScene || part == m_pFrame;
        if (!part->isHidden() && !adapts && part != m_pUndo) width += part->sizeHint().width() + kMargin;
    }
    if (m_pUndo->isHidden()) return width;
    return width + m_pUndo->sizeHint().width() - m_pOffer->sizeHint().width();
}

void StatusLine::Arrange() {
    constexpr int kLeastLetters = 12;  // of a text that is elided
    const int letter = fontMetrics().averageCharWidth(), least = kLeastLetters * letter;
    int left = width() - FixedWidth() - kMessageLetters * letter;
    // At most so much of the pick and of the offer, whatever else is shown: the message keeps its part.
    const int most = std::max(width() * 2 / 5, least);
    const auto elide = [&](QLabel& label, const QString& text, Qt::TextElideMode mode, int space) {
        const int given = std::clamp(space, least, most);
        label.setMaximumWidth(given);
        label.setText(label.fontMetrics().elidedText(text, mode, given - kMargin));
        return std::min(WidthOf(label, text), given);
    };
    if (!m_pUndo->isHidden()) left -= elide(*m_pOffer, m_offer, Qt::ElideMiddle, left);
    const QString whole = SceneText(false), brief = SceneText(true);
    const int frame = WidthOf(*m_pFrame, m_frameText);
    const int pick = m_pPick->isHidden() ? 0 : std::min(WidthOf(*m_pPick, m_pick), most);
    const int leastPick = std::min(pick, 2 * least);
    // The frame time goes first, then the triangles, then the objects.
    const bool hasBrief = left >= leastPick + WidthOf(*m_pScene, brief);
    const bool hasWhole = left >= leastPick + WidthOf(*m_pScene, whole);
    const QString scene = hasWhole ? whole : hasBrief ? brief : QString();
    left -= WidthOf(*m_pScene, scene);
    const bool hasFrame = left >= leastPick + frame;
    if (hasFrame) left -= frame;
    m_pScene->setText(scene);
    m_pScene->setVisible(!scene.isEmpty());
    m_pFrame->setText(hasFrame ? m_frameText : QString());
    m_pFrame->setVisible(hasFrame && !m_frameText.isEmpty());
    // The start is left out: numbers are at the end.
    if (!m_pPick->isHidden()) elide(*m_pPick, m_pick, Qt::ElideLeft, left);
}

bool StatusLine::event(QEvent* event) {
    // Also when the window has shown or hidden a part that it has added.
    if (event->type() == QEvent::LayoutRequest || event->type() == QEvent::Resize) Arrange();
    return QStatusBar::event(event);
}

QRect StatusLine::MessageRect() const {
    int right = width();
    for (const QWidget* const part : findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) {
        if (part->isVisible()) right = std::min(right, part->x());
    }
    return QRect(0, 0, right, height()).adjusted(kMargin, 0, -kMargin, 0);
}

void StatusLine::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    QStyleOption option;
    option.initFrom(this);
    style()->drawPrimitive(QStyle::PE_PanelStatusBar, &option, &painter, this);
    if (currentMessage().isEmpty()) return;
    const QRect rect = MessageRect();
    painter.setPen(palette().windowText().color());
    painter.drawText(rect, Qt::AlignLeading | Qt::AlignVCenter | Qt::TextSingleLine,
                     fontMetrics().elidedText(currentMessage(), Qt::ElideMiddle, rect.width()));
}
