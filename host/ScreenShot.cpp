// The viewer reports the size of its screenshot first, then writes the pixels into memory of the host.
#include "ScreenShot.h"

// CaptureScreenShot() trusts the host that the memory is large enough for that size.
KV_ScenePane::Picture TakeScreenShot(KV_ScenePane::_DKV_ScenePane& methods) {
    std::int32_t width = 0, height = 0;
    methods.GetScreenShotResolution(&width, &height);
    if (width < 1 || height < 1) return {};  // the viewer reports no size
    KV_ScenePane::Picture picture{width, height, {}};
    picture.pixels.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    methods.CaptureScreenShot(picture.pixels.data());
    return picture;
}
