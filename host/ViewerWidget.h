// A Qt widget that contains the viewer: its window is a child of the native window of the widget.
#pragma once
#include <QWidget>
#include <memory>
#include <string>

#include "ClickWatch.h"
#include "EventFormatter.h"
#include "KV_ScenePane/ScenePane.h"
#include "KeyShortcut.h"
#include "RegistryStart.h"

class QSocketNotifier;

/// The viewer is created when the widget is shown for the first time and closed with the widget.
class ViewerWidget : public QWidget, private EventFormatter {
    Q_OBJECT
public:
    /// @param wantedSize  of the drawing area, device pixels; becomes the size hint
    /// @param samples     per pixel, to smooth edges; none where the driver does not have as many
    explicit ViewerWidget(QSize wantedSize, int samples = 0, QWidget* parent = nullptr);
    ~ViewerWidget() override;

    /// Null before the widget is shown for the first time, and when the viewer was refused or lost its window.
    [[nodiscard]] KV_ScenePane::ScenePane* Pane() const { return m_pPane.get(); }
    /// Size of the widget in device pixels, 1 to 32767 each.
    [[nodiscard]] QSize DeviceSize() const;
    /// While a lasso or an alignment runs all presses belong to it: the second press of a double click, too, which the
    /// viewer would use to fit the view, pick or create a needle, and a right click opens no menu.
    /// @param ignoresDoubles  the second press of a double click does nothing: no point is picked twice
    void SetTakesPresses(bool on, bool ignoresDoubles = false);
    /// Gives the viewer the keyboard, as a press of the mouse in it does.
    void TakeKeyboard();

    [[nodiscard]] QSize sizeHint() const override;
    /// None: the window of the viewer covers the widget, so that Qt has nothing to paint.
    [[nodiscard]] QPaintEngine* paintEngine() const override { return nullptr; }

signals:
    /// The viewer exists.
    void Ready();
    /// There is no viewer, or no longer one. @param reason  for a user
    void Refused(const QString& reason);
    /// The viewer is destroyed when this returns: what still calls it must end in a slot that is connected directly.
    /// Pane() is null already.
    void AboutToClose();
    /// An event of the viewer, as one line; emitted during the call or the input that caused it.
    void EventFired(const QString& line);
    /// A key went down while the viewer had the keyboard; not for its repeats while it is held. @param key  a key code
    /// of the viewer's events
    void KeyPressed(int key, Qt::KeyboardModifiers modifiers);
    // The events about needles, during the call or the input that caused them, after their line.
    void NeedleWasCreated(int id);
    void NeedleWasDeleted(int id);
    void NeedleWasSelected(int id);
    void NeedleWasDeselected(int id);
    /// A point on an object was picked. Emitted after the line of the event, once per press of the left button: where a
    /// press picks, the viewer picks again for the double click that it begins.
    void ObjectPicked(int object, float x, float y, float z);
    /// Pick-point spheres were added, removed or cleared.
    void PickPointsChanged();
    /// The right button was clicked: pressed and released at one place. Emitted before the viewer handles the release,
    /// so a menu must be shown later. @param pixel  of the drawing area of the viewer
    void RightClicked(QPoint pixel);
    /// The same for the left button, without Ctrl and Shift. A double click emits it once.
    void LeftClicked(QPoint pixel);
    /// A cut will be applied; the viewer still has the objects of before.
    void CutAboutToApply();
    /// An alignment has ended.
    void AlignmentEnded();
    /// A lasso has ended. @param objects  in the list of the viewer; -1 when nothing was cut
    void LassoEnded(int objects);
    /// An input by which the viewer places a visible clip plane at the data: a double click with Ctrl, or with Ctrl a
    /// press of the middle button. Emitted before the viewer handles it, which may be in a later call.
    void ClipPlacementAsked();
    /// A mouse input, before the viewer handles or ignores it.
    void InputArrived(const KV_ScenePane::MouseInput& input);
    /// The viewer threw an exception while it handled an input or drew a frame; the former was not finished.
    /// @param reason  one line
    void Failed(const QString& reason);
    /// The viewer has handled its pending events; input may have changed its state.
    void Handled();

protected:
    bool event(QEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void SelectObjCoords(std::int16_t idx, float px, float py, float pz, std::int32_t shiftModifiers,
                         std::int32_t mouseX, std::int32_t mouseY) override;
    void CustomKeyDown(std::int32_t nChar, std::int32_t nRepCnt, std::int32_t nFlags) override;
    void PickPointCountChanged(std::int32_t newCount) override;
    void SegmentationDone(std::int16_t numObj) override;
    void CutMaskApplied(std::int64_t addr) override;
    void AlignmentDone() override;
    void NeedleCreated(std::int32_t id) override;
    void NeedleDeleted(std::int32_t id) override;
    void NeedleSelected(std::int32_t id) override;
    void NeedleDeselected(std::int32_t id) override;
    void ReportLine(const std::string& line) override;
    /// Sees the input before the viewer. @return whether the viewer must ignore it
    bool FilterMouse(const KV_ScenePane::MouseInput& input);
    /// Creates the viewer. Emits Ready() or Refused().
    void Open();
    void Close();
    /// The descriptor of the viewer is readable.
    void HandleEvents();
    /// Moves the viewer into the current native window of the widget.
    void FollowWindow();
    /// Passes on the size and the scale of the widget, which may have moved to a screen of another density.
    void FollowSize();
    /// Follows the screen of the current native window.
    void WatchScreen();
    /// A message of the viewer that the user must see.
    void ShowMessage(const std::string& text);

    const QSize m_wantedSize;
    const int m_nSamples;
    bool m_bOpened = false;  // one attempt only: the reason of a refusal does not go away by itself
    bool m_bTakesPresses = false;
    bool m_bIgnoresDoubles = false;
    HeldModifiers m_held;
    ClickWatch m_rightClicks{ClickWatch::Button::Right}, m_leftClicks{ClickWatch::Button::Left};
    std::string m_strFailure;        // of the last ProcessEvents(); empty when it threw nothing
    bool m_bPressHasPicked = false;  // the last press of the left button, or the double click that it began
    std::string m_strMessages;       // shown by the viewer while it was created: the reason of a refusal
    std::unique_ptr<KV_ScenePane::ScenePane> m_pPane;
    std::unique_ptr<RegistryStart> m_pRegistry;  // keeps the component registry of the viewer started
    std::unique_ptr<QSocketNotifier> m_pNotifier;
};
