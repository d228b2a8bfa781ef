// The lines that imports and the viewer have for the user.
#pragma once
#include <QPlainTextEdit>
#include <string_view>

class MessagePane : public QPlainTextEdit {
    Q_OBJECT
public:
    explicit MessagePane(QWidget* parent = nullptr);
    /// Adds one line or several. On the thread of the window only.
    void AddText(const QString& text);
    /// AddText() on the thread of the window, soon; from any thread.
    void AddTextLater(std::string_view utf8);
    /// A few lines high; the user makes it larger.
    [[nodiscard]] QSize sizeHint() const override;
};
