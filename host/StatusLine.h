// The status bar of the window.
#pragma once
#include <QStatusBar>
#include <cstdint>

class QAction;
class QLabel;
class QTimer;
class QToolButton;

/// Messages at the left, as in any status bar, elided where they do not fit. At the right what is always shown: the
/// last pick, the scene and the time of a frame; and, while there is any, the number of failed files and an offer to
/// undo. In a narrow window the parts at the right are shorter, or hidden.
class StatusLine : public QStatusBar {
    Q_OBJECT
public:
    struct Scene {
        int shownObjects = 0, objects = 0;
        std::int64_t shownTriangles = 0, triangles = 0;
    };

    explicit StatusLine(QWidget* parent = nullptr);

    void ShowScene(const Scene& scene);
    /// @param seconds  of the last frame; 0 before the first one: nothing is shown
    void ShowFrameTime(double seconds);
    /// @param text         of the last pick; empty without one
    /// @param hasDistance  there were two picks
    void ShowPick(const QString& text, bool hasDistance);
    /// @param files  0 hides the counter
    void ShowFailures(int files);
    /// Shows the text with a button, which emits UndoWanted(), until WithdrawUndo() or for a while.
    void OfferUndo(const QString& text);
    void WithdrawUndo();

signals:
    // What the user asked for.
    void UndoWanted();
    /// The counter of failed files was pressed.
    void FailuresWanted();
    void PointCopyWanted();
    void DistanceCopyWanted();

protected:
    bool event(QEvent* event) override;
    /// As the base class, but a message that is too long ends with an ellipsis in its middle.
    void paintEvent(QPaintEvent* event) override;

private:
    void MakeUndo();
    void MakePick();
    /// Gives each part its space, those of less importance what is left.
    void Arrange();
    /// Of what is shown at the right and does not adapt itself to the width, pixels.
    [[nodiscard]] int FixedWidth() const;
    [[nodiscard]] QString SceneText(bool isShort) const;
    /// Of the left part, where the message is.
    [[nodiscard]] QRect MessageRect() const;

    Scene m_scene;
    QString m_pick, m_offer, m_frameText;  // whole texts; labels may show less
    QWidget* m_pUndo = nullptr;
    QLabel *m_pOffer = nullptr, *m_pPick = nullptr, *m_pScene = nullptr, *m_pFrame = nullptr;
    QToolButton *m_pFailures = nullptr, *m_pCopy = nullptr;
    QAction* m_pCopyDistance = nullptr;
    QTimer* m_pOfferEnd = nullptr;
};
