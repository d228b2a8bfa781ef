// The progress of an import in the status bar: text, bar and Cancel.
#pragma once
#include <QWidget>

class QAction;
class QLabel;
class QProgressBar;

/// Hidden while nothing runs. Not a dialog: one above the scene would have the viewer draw a frame when it closes,
/// which can take as long as the import. The status bar has its height also while it is hidden.
class ImportProgress : public QWidget {
    Q_OBJECT
public:
    explicit ImportProgress(QWidget* parent = nullptr);

    /// Shows itself with the first step. @param steps  of the work, at least 1
    void Begin(int steps);
    /// @param text  shortened in the middle when it is long
    void ShowText(const QString& text);
    void SetValue(int value);
    /// Shows and paints another text for work that blocks the thread, until Resume() or the next ShowText().
    void Interrupt(const QString& text);
    /// Shows the text before Interrupt() again.
    void Resume();
    /// Paints what was changed, for work that blocks the thread.
    void PaintNow();
    /// Hides itself.
    void End();
    /// Escape cancels unless something else uses it.
    void LeaveEscape(bool isUsed);

signals:
    /// By the user.
    void Cancelled();

private:
    void ShowShortened(const QString& text);
    void EnableEscape();

    bool m_bRunning = false, m_bEscapeUsed = false;
    QString m_strText;
    QLabel* m_pText = nullptr;
    QProgressBar* m_pBar = nullptr;
    QAction* m_pEscape = nullptr;
};
