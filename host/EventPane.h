// The events of the viewer as they fire.
#pragma once
#include <QWidget>

class MessagePane;

class EventPane : public QWidget {
    Q_OBJECT
public:
    explicit EventPane(QWidget* parent = nullptr);
    /// Adds a line below the others; the oldest go when there are many.
    void AddLine(const QString& line);
    void Clear();
    [[nodiscard]] QString Text() const;

signals:
    /// Whether the viewer shall report how its view changes: an event for each step of a drag.
    void TracingWanted(bool on);

private:
    MessagePane* m_pLines;
};
