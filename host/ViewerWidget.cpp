// The four parts of an embedding: a native widget, the viewer as a child of its window, a notifier on the descriptor of
// the viewer, and the size of the widget passed on.
#include "ViewerWidget.h"

#include <poll.h>
#include <xcb/xcb.h>

#include <QEvent>
#include <QGuiApplication>
#include <QMessageBox>
#include <QScreen>
#include <QSocketNotifier>
#include <QWindow>
#include <algorithm>
#include <cmath>
#include <utility>

#include "AboutDialog.h"
#include "CaughtError.h"
#include "TranslatedText.h"
#include "ViewerStartNotice.h"

namespace {

using KV_ScenePane::MouseInput;

constexpr std::int32_t kKeyWasDown = 1 << 14;  // of CustomKeyDown's flags: the press is a repeat of a held key

/// Whether the viewer may place its clip plane at the data by this.
bool AsksForClipPlacement(const MouseInput& input) {
    const bool isItsButton = input.kind == MouseInput::Kind::DoubleClick || input.kind == MouseInput::Kind::MiddleDown;
    return isItsButton && (input.flags & KV_ScenePane::kMouseCtrl) != 0;
}

bool IsReadable(int descriptor) {
    pollfd entry{descriptor, POLLIN, 0};
    return poll(&entry, 1, 0) > 0;
}

}  // namespace

ViewerWidget::ViewerWidget(QSize wantedSize, int samples, QWidget* parent)
    : QWidget(parent), m_wantedSize(wantedSize), m_nSamples(samples) {
    // A native window for the viewer to be a child of, but none for the ancestors of the widget.
    setAttribute(Qt::WA_NativeWindow);
    setAttribute(Qt::WA_DontCreateNativeAncestors);
    // Qt must not paint below the viewer: it would flicker.
    setAttribute(Qt::WA_PaintOnScreen);
    setAttribute(Qt::WA_NoSystemBackground);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMinimumSize(64, 64);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
}

ViewerWidget::~ViewerWidget() { Close(); }

QSize ViewerWidget::sizeHint() const { return (QSizeF(m_wantedSize) / devicePixelRatioF()).toSize(); }

bool ViewerWidget::event(QEvent* event) {
    if (event->type() == QEvent::WinIdChange || event->type() == QEvent::ParentChange) FollowWindow();
    return QWidget::event(event);
}

void ViewerWidget::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    if (!m_bOpened) Open();
}

void ViewerWidget::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    FollowSize();
}

void ViewerWidget::CustomKeyDown(std::int32_t nChar, std::int32_t nRepCnt, std::int32_t nFlags) {
    EventFormatter::CustomKeyDown(nChar, nRepCnt, nFlags);
    // The event comes some time after the press: modifiers may have been released since.
    m_held.Press(nChar);
    if ((nFlags & kKeyWasDown) != 0) return;
    emit KeyPressed(nChar, m_held.With(QGuiApplication::queryKeyboardModifiers()));
}

void ViewerWidget::NeedleCreated(std::int32_t id) {
    EventFormatter::NeedleCreated(id);
    emit NeedleWasCreated(id);
}

void ViewerWidget::NeedleDeleted(std::int32_t id) {
    EventFormatter::NeedleDeleted(id);
    emit NeedleWasDeleted(id);
}

void ViewerWidget::NeedleSelected(std::int32_t id) {
    EventFormatter::NeedleSelected(id);
    emit NeedleWasSelected(id);
}

void ViewerWidget::NeedleDeselected(std::int32_t id) {
    EventFormatter::NeedleDeselected(id);
    emit NeedleWasDeselected(id);
}

void ViewerWidget::SelectObjCoords(std::int16_t idx, float px, float py, float pz, std::int32_t shiftModifiers,
                                   std::int32_t mouseX, std::int32_t mouseY) {
    EventFormatter::SelectObjCoords(idx, px, py, pz, shiftModifiers, mouseX, mouseY);
    if (!std::exchange(m_bPressHasPicked, true)) emit ObjectPicked(idx, px, py, pz);
}

void ViewerWidget::PickPointCountChanged(std::int32_t newCount) {
    EventFormatter::PickPointCountChanged(newCount);
    emit PickPointsChanged();
}

void ViewerWidget::SegmentationDone(std::int16_t numObj) {
    EventFormatter::SegmentationDone(numObj);
    emit LassoEnded(numObj);
}

void ViewerWidget::AlignmentDone() {
    EventFormatter::AlignmentDone();
    emit AlignmentEnded();
}

void ViewerWidget::CutMaskApplied(std::int64_t addr) {
    EventFormatter::CutMaskApplied(addr);
    emit CutAboutToApply();
}

void ViewerWidget::ReportLine(const std::string& line) { emit EventFired(QString::fromStdString(line)); }

void ViewerWidget::Open() {
    m_bOpened = true;                                // also when the viewer is refused
    if (QGuiApplication::platformName() != "xcb") {  // the number of a window of another platform is none of X11
        emit Refused(tr("the viewer needs X11, and Qt runs on \"%1\"").arg(QGuiApplication::platformName()));
        return;
    }
    KV_ScenePane::WindowRequest request;
    request.kind = KV_ScenePane::WindowRequest::Kind::Child;
    request.parent = winId();
    request.width = DeviceSize().width();
    request.height = DeviceSize().height();
    request.scale = devicePixelRatioF();
    request.samples = m_nSamples;
    request.showMessage = [this](const std::string& text) { ShowMessage(text); };
    request.showAbout = [this](const KV_ScenePane::AboutText& text) { ShowAboutDialog(text, window()); };
    std::string reason;
    {
        const ViewerStartNotice notice;
        m_pPane = CreateScenePane(request, &reason);
    }
    if (!m_pPane) {
        emit Refused(TranslatedText(PlainLines(reason.empty() ? m_strMessages : reason)));
        return;
    }
    m_pPane->Connect(this);
    m_pPane->SetMouseFilter([this](const MouseInput& input) { return FilterMouse(input); });
    m_pRegistry = std::make_unique<RegistryStart>(m_pPane->Methods());
    m_pNotifier = std::make_unique<QSocketNotifier>(m_pPane->EventDescriptor(), QSocketNotifier::Read);
    connect(m_pNotifier.get(), &QSocketNotifier::activated, this, &ViewerWidget::HandleEvents);
    WatchScreen();
    emit Ready();
}

bool ViewerWidget::FilterMouse(const MouseInput& input) {
    emit InputArrived(input);
    if (m_bTakesPresses) {
        if (input.kind != MouseInput::Kind::DoubleClick) return false;
        const bool picks = (input.flags & KV_ScenePane::kMouseCtrl) == 0;  // Ctrl drags the view
        if (m_bIgnoresDoubles && picks) return true;
        MouseInput press = input;
        press.kind = MouseInput::Kind::LeftDown;
        m_pPane->SendMouse(press);
        return true;
    }
    constexpr double kClickSlack = 3.0;  // pixels of a screen of plain density
    if (const std::optional<QPoint> pixel = m_rightClicks.See(input, kClickSlack * devicePixelRatioF()))
        emit RightClicked(*pixel);
    const bool isPlain = (input.flags & (KV_ScenePane::kMouseCtrl | KV_ScenePane::kMouseShift)) == 0;
    if (const std::optional<QPoint> pixel = m_leftClicks.See(input, kClickSlack * devicePixelRatioF());
        pixel && isPlain)
        emit LeftClicked(*pixel);
    // A double click comes as another kind of input, and may come before the pick of a press that is delayed.
    if (input.kind == MouseInput::Kind::LeftDown) m_bPressHasPicked = false;
    if (AsksForClipPlacement(input)) emit ClipPlacementAsked();
    return false;  // it only watches: the right button drags the view
}

void ViewerWidget::SetTakesPresses(bool on, bool ignoresDoubles) {
    m_bTakesPresses = on;
    m_bIgnoresDoubles = ignoresDoubles;
    m_rightClicks.Reset();  // the release of the press that cuts must not complete a click
    m_leftClicks.Reset();
}

// Not by Xlib, whose handler of errors ends the process when the window is not on the screen.
void ViewerWidget::TakeKeyboard() {
    setFocus();
    auto* const x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (!m_pPane || x11 == nullptr) return;
    xcb_set_input_focus(x11->connection(), XCB_INPUT_FOCUS_PARENT, static_cast<xcb_window_t>(m_pPane->NativeWindow()),
                        XCB_CURRENT_TIME);
    xcb_flush(x11->connection());
}

void ViewerWidget::Close() {
    if (m_pNotifier) {
        m_pNotifier->setEnabled(false);
        m_pNotifier.release()->deleteLater();  // not at once: this may be a call from its own signal
    }
    // Pane() is null from here on, so that nothing new is started with the viewer.
    const std::unique_ptr<KV_ScenePane::ScenePane> closing = std::move(m_pPane);
    if (!closing) return;
    closing->Connect(nullptr);
    emit AboutToClose();
    m_pRegistry.reset();
}

void ViewerWidget::HandleEvents() {
    std::string failure;
    try {
        m_pPane->ProcessEvents();
    } catch (...) {  // no exception may pass through Qt
        failure = TextOfCaughtError();
    }
    // Once: the viewer stays readable after an exception, and a frame that fails would fail in each call.
    if (std::exchange(m_strFailure, failure) != failure && !failure.empty()) emit Failed(TranslatedText(failure));
    if (!m_pPane) return;  // closed inside the call
    // Input that arrived while a frame was drawn is pending: its modifiers may be released by now. The query costs a
    // round trip to the X server: only when a modifier is remembered.
    if (m_held.AreRemembered() && !IsReadable(m_pPane->EventDescriptor()))
        m_held.Settle(QGuiApplication::queryKeyboardModifiers());
    // Another client, or the end of the parent, may have destroyed the viewer's window.
    if (m_pPane->HasWindow()) {
        emit Handled();
        return;
    }
    Close();
    emit Refused(tr("The viewer has lost its window."));
}

void ViewerWidget::FollowWindow() {
    // Qt may have made another native window for the widget, for example after a change of its parent: the viewer
    // moves.
    if (!m_pPane || internalWinId() == 0) return;
    if (m_pPane->Reparent(internalWinId(), 0, 0)) {
        WatchScreen();
        FollowSize();
        return;
    }
    Close();
    emit Refused(tr("The viewer could not follow the widget into its new window."));
}

void ViewerWidget::FollowSize() {
    if (!m_pPane) return;
    const QSize size = DeviceSize();
    // The viewer counts device pixels. SetSize() requests no repaint.
    m_pPane->SetScale(devicePixelRatioF());
    m_pPane->Methods().SetSize(static_cast<std::int16_t>(size.width()), static_cast<std::int16_t>(size.height()));
    m_pPane->Methods().PerformInvalidate();
}

void ViewerWidget::WatchScreen() {
    if (windowHandle() != nullptr)
        connect(windowHandle(), &QWindow::screenChanged, this, &ViewerWidget::FollowSize, Qt::UniqueConnection);
}

void ViewerWidget::ShowMessage(const std::string& text) {
    if (m_pPane) {
        QMessageBox::warning(this, tr("KV_ScenePane"), TranslatedText(PlainLines(text)));
    } else {
        m_strMessages += text;  // while the viewer is being created: shown with the refusal
    }
}

QSize ViewerWidget::DeviceSize() const {
    const auto pixels = [this](int length) {
        const auto scaled = static_cast<int>(std::lround(length * devicePixelRatioF()));
        return std::clamp(scaled, 1, 32767);  // the sizes of X have 16 bits, and 0 is none
    };
    return {pixels(width()), pixels(height())};
}
