// The viewer inside a Qt widget: its window is a child of the widget's own native window.
#pragma once
#include <QWidget>
#include <memory>
#include <string>

#include "EventFormatter.h"
#include "KV_ScenePane/ScenePane.h"
#include "KeyShortcut.h"
#include "RegistryStart.h"

class QSocketNotifier;

class ViewerWidget : public QWidget, private EventFormatter {
    Q_OBJECT
public:
    /// @param wantedSize  of the drawing area, in pixels of the device
    explicit ViewerWidget(QSize wantedSize, QWidget* parent = nullptr);
    ~ViewerWidget() override;

    /// Null before the widget was shown for the first time, and when the viewer was refused or lost its window.
    [[nodiscard]] KV_ScenePane::ScenePane* Pane() const { return m_pPane.get(); }

    [[nodiscard]] QSize sizeHint() const override;
    /// There is nothing that Qt could paint: the viewer covers the widget.
    [[nodiscard]] QPaintEngine* paintEngine() const override { return nullptr; }

signals:
    void Ready();
    /// There is no viewer, or not any more.
    void Refused(const QString& reason);
    /// An event of the viewer, as one line; emitted inside the call or the input that caused it.
    void EventFired(const QString& line);
    /// A key went down while the viewer had the keyboard; a key code as the viewer's events have it.
    void KeyPressed(int key, Qt::KeyboardModifiers modifiers);
    /// The viewer has handled what waited; input may have changed its state.
    void Handled();

protected:
    bool event(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void CustomKeyDown(std::int32_t nChar, std::int32_t nRepCnt, std::int32_t nFlags) override;
    void Tell(const std::string& line) override;
    void Open();
    void Close();
    void HandleEvents();
    void FollowWindow();
    void ShowMessage(const std::string& text);
    [[nodiscard]] QSize DeviceSize() const;

    const QSize m_wantedSize;
    bool m_bOpened = false;  // one attempt only: what was refused once will be refused again
    HeldModifiers m_held;
    std::string m_strMessages;  // shown by the viewer while it is made; they say why it was refused
    std::unique_ptr<KV_ScenePane::ScenePane> m_pPane;
    std::unique_ptr<RegistryStart> m_pRegistry;  // of the viewer, as long as there is one
    std::unique_ptr<QSocketNotifier> m_pNotifier;
};
