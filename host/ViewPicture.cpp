// The viewer draws into a framebuffer of the size that SetSize() sets, whatever its window shows: for the picture it
// gets the size of the picture, while a copy of what the screen shows covers it (ViewerCover).
#include "ViewPicture.h"

#include <QCoreApplication>
#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string>

#include "GraphicsLimits.h"
#include "PaintBlock.h"
#include "PictureAlpha.h"
#include "ViewerCover.h"
#include "ViewerWidget.h"

namespace {

struct ViewPicture {
    Q_DECLARE_TR_FUNCTIONS(ViewPicture)
};

void SetBackground(KV_ScenePane::_DKV_ScenePane& methods, const std::array<std::int32_t, 4>& colors) {
    methods.SetBackgroundColorsFourCorners(colors[0], colors[1], colors[2], colors[3]);
}

void SetSize(KV_ScenePane::ScenePane& pane, QSize size, double scale) {
    pane.SetScale(scale);
    pane.Methods().SetSize(static_cast<std::int16_t>(size.width()), static_cast<std::int16_t>(size.height()));
}

/// Throws std::bad_alloc unless the viewer will have memory for a picture: once it runs out of it inside a frame, it
/// draws nothing any more. Two blocks of the size of the picture are enough, one to read into and the result.
void RequireMemoryFor(QSize size) {
    const auto pixels = static_cast<std::size_t>(size.width()) * static_cast<std::size_t>(size.height());
    const auto block = std::make_unique_for_overwrite<std::uint32_t[]>(2 * pixels);
    // A compiler may remove an allocation that nothing uses.
    static_cast<volatile std::uint32_t*>(block.get())[0] = 0;
}

/// The viewer as the picture needs it, for as long as this lives.
class PictureState {
public:
    PictureState(ViewerWidget& viewer, const PictureLook& look, const PictureHooks& hooks)
        : m_viewer(viewer), m_look(look), m_hooks(hooks) {}
    /// Apart from the constructor: what fails here is restored, too.
    void Enter() {
        const PaintBlock block(Methods());
        const QSize own = m_viewer.DeviceSize();
        // By the shorter sides, which have the same extent of the scene.
        const double growth = static_cast<double>(std::min(m_look.size.width(), m_look.size.height())) /
                              std::min(own.width(), own.height());
        if (m_look.size != own) SetSize(*m_viewer.Pane(), m_look.size, m_viewer.devicePixelRatioF() * growth);
        if (!m_look.hasDecorations) m_hooks.hideDecorations(true);
    }
    ~PictureState() {
        if (m_viewer.Pane() == nullptr) return;
        try {
            Restore();
            Methods().PerformRefresh();  // before the cover is removed
        } catch (...) {
            // The frame has failed, not the state: another one follows.
            if (m_viewer.Pane() != nullptr) Methods().PerformInvalidate();
        }
    }
    PictureState(const PictureState&) = delete;
    PictureState& operator=(const PictureState&) = delete;

    /// The frame on a background of one colour, or on the present one. @param color  0x00BBGGRR; -1 for the present one
    [[nodiscard]] KV_ScenePane::Picture Capture(std::int32_t color = -1) {
        if (color >= 0) {
            const PaintBlock block(Methods());
            SetBackground(Methods(), {color, color, color, color});
        }
        RequireMemoryFor(m_look.size);
        KV_ScenePane::Picture picture;
        const bool isTaken = m_viewer.Pane()->CapturePicture(&picture);
        // A message box of the viewer runs the event loop, where the viewer can be lost.
        if (m_viewer.Pane() == nullptr || !isTaken || QSize(picture.width, picture.height) != m_look.size)
            throw std::runtime_error(ViewPicture::tr("the viewer gave no picture of this size").toStdString());
        return picture;
    }

private:
    [[nodiscard]] KV_ScenePane::_DKV_ScenePane& Methods() const { return m_viewer.Pane()->Methods(); }
    void Restore() {
        const PaintBlock block(Methods());
        if (!m_look.hasDecorations) m_hooks.hideDecorations(false);
        if (m_look.isTransparent) SetBackground(Methods(), m_hooks.background());
        if (m_look.size != m_viewer.DeviceSize())
            SetSize(*m_viewer.Pane(), m_viewer.DeviceSize(), m_viewer.devicePixelRatioF());
    }

    ViewerWidget& m_viewer;
    const PictureLook& m_look;
    const PictureHooks& m_hooks;
};

}  // namespace

int LargestPictureSide(KV_ScenePane::ScenePane& pane) {
    constexpr int kLargestWindow = 32767, kEveryDriver = 2048;
    const auto limits = GraphicsLimitsOf(pane);
    return limits ? std::min(limits->largestSide, kLargestWindow) : kEveryDriver;
}

QString SizeRefusal(QSize size, int largestSide) {
    if (std::max(size.width(), size.height()) > largestSide)
        return ViewPicture::tr("a side is longer than the %1 pixels that the driver can draw").arg(largestSide);
    const std::int64_t pixels = std::int64_t{size.width()} * size.height();
    if (pixels > kMostPicturePixels)
        return ViewPicture::tr("the picture has more than %1 million pixels").arg(kMostPicturePixels / 1'000'000);
    return size.isEmpty() ? ViewPicture::tr("the picture has no pixel") : QString();
}

KV_ScenePane::Picture TakeViewPicture(ViewerWidget& viewer, const PictureLook& wanted, const PictureHooks& hooks) {
    PictureLook look = wanted;
    if (look.size.isEmpty()) look.size = viewer.DeviceSize();
    if (const QString refusal = SizeRefusal(look.size, LargestPictureSide(*viewer.Pane())); !refusal.isEmpty())
        throw std::runtime_error(refusal.toStdString());
    if (look.isTransparent && viewer.Pane()->Methods().IsAnimationRunning() != 0)
        throw std::runtime_error(
            ViewPicture::tr("a transparent picture needs a still scene: wait for the animation").toStdString());
    const ViewerCover cover(viewer);
    PictureState state(viewer, look, hooks);
    state.Enter();
    if (!look.isTransparent) return state.Capture();
    KV_ScenePane::Picture picture = state.Capture(0x000000);
    SetAlphaFrom(picture, state.Capture(0xFFFFFF));
    return picture;
}
