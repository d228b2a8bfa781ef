// The messages of imports, exports and the viewer.
#pragma once
#include <QPlainTextEdit>
#include <string_view>

/// Read-only text that shows its end when a line is added, unless the user has scrolled up.
class MessagePane : public QPlainTextEdit {
    Q_OBJECT
public:
    explicit MessagePane(QWidget* parent = nullptr);
    /// Appends one line or several; empty lines are left out. On the thread of the window only.
    void AddText(const QString& text);
    /// The same for a text that the user should see: a failure, or a warning.
    void AddProblem(const QString& text);
    /// What was added last is a problem.
    void PointOut() { emit ProblemAdded(); }
    /// Queues an AddProblem() for the thread of the window. Any thread.
    void AddProblemLater(std::string_view utf8);
    /// Eight lines high; the user can resize the pane.
    [[nodiscard]] QSize sizeHint() const override;

signals:
    /// The last lines are a problem.
    void ProblemAdded();

private:
    /// Scrolls to the last line, which is followed from here on.
    void ShowEnd();

    bool m_bFollows = true;  // the end was visible after the last change of the scroll position
};
