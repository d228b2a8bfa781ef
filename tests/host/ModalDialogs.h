// Answers a modal dialog from inside its own event loop.
#pragma once
#include <QApplication>
#include <QTimer>
#include <functional>

/// Looks for a modal dialog of a kind and answers the first that comes. Lives as long as one may come.
template <class Dialog>
class DialogAnswer {
public:
    explicit DialogAnswer(std::function<void(Dialog&)> answer) {
        QObject::connect(&m_timer, &QTimer::timeout, &m_timer, [this, answer = std::move(answer)] {
            auto* const dialog = qobject_cast<Dialog*>(QApplication::activeModalWidget());
            if (dialog == nullptr) return;
            m_timer.stop();
            m_bCame = true;
            answer(*dialog);
        });
        m_timer.start(10);
    }
    [[nodiscard]] bool Came() const { return m_bCame; }

private:
    QTimer m_timer;
    bool m_bCame = false;
};
