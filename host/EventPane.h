// The log of the events that the viewer fired.
#pragma once
#include <QWidget>

class MessagePane;

/// The text of the log with a switch for view events and a button that clears it.
class EventPane : public QWidget {
    Q_OBJECT
public:
    explicit EventPane(QWidget* parent = nullptr);
    /// Appends a line; of more than a thousand the oldest is dropped.
    void AddLine(const QString& line);
    void Clear();
    [[nodiscard]] QString Text() const;

signals:
    /// The user switched the events about changes of the view on or off: one for each step of a drag.
    void TracingWanted(bool on);

private:
    MessagePane* m_pLines;
};
