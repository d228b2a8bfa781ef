// Answers a modal dialog from inside its own event loop.
#pragma once
#include <QApplication>
#include <QTimer>
#include <functional>

/// Answers the first modal dialog of this class that is shown during its lifetime.
template <class Dialog>
class DialogAnswer {
public:
    explicit DialogAnswer(std::function<void(Dialog&)> answer) {
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this, answer = std::move(answer)] {
            auto* const dialog = qobject_cast<Dialog*>(QApplication::activeModalWidget());
            if (dialog == nullptr) return;
            m_timer.stop();
            m_bWasShown = true;
            answer(*dialog);
        });
        m_timer.start(10);
    }
    [[nodiscard]] bool WasShown() const { return m_bWasShown; }

private:
    QTimer m_timer;
    bool m_bWasShown = false;
};
