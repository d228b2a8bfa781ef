// The lines that imports and the viewer have for the user.
#pragma once
#include <QPlainTextEdit>
#include <string_view>

/// Shows its end while lines come in, unless the user has scrolled up from there.
class MessagePane : public QPlainTextEdit {
    Q_OBJECT
public:
    explicit MessagePane(QWidget* parent = nullptr);
    /// Adds one line or several. On the thread of the window only.
    void AddText(const QString& text);
    /// AddText() on the thread of the window, soon; from any thread.
    void AddTextLater(std::string_view utf8);
    /// Eight lines high; the user makes it larger.
    [[nodiscard]] QSize sizeHint() const override;

private:
    void ShowEnd();

    bool m_bFollows = true;  // the end was in sight when somebody last scrolled
};
