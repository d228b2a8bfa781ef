// The window of a viewer and its input, for programs in C.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "control/CInterfacePanes.h"
#include "control/RecordingViewer.h"
#include "platform/HostWindow.h"
#include "support/Wait.h"
#include "support/XvfbServer.h"

namespace {

TEST(KvWindow, IsReportedAsItIs) {
    RecordedPane recorded;
    EXPECT_EQ(kv_event_descriptor(recorded.pane), 17);
    EXPECT_EQ(kv_has_window(recorded.pane), 1);
    EXPECT_EQ(kv_native_window(recorded.pane), 0x1234567u);
    EXPECT_EQ(kv_set_scale(recorded.pane, 2.5), KV_DONE);
    EXPECT_EQ(recorded.viewer->scale, 2.5);
    EXPECT_EQ(kv_reparent(recorded.pane, 8, -1, 2), KV_DONE);
    EXPECT_EQ(kv_reparent(recorded.pane, 9, -1, 2), KV_FAILED);
    EXPECT_STREQ(kv_last_error(), "kv_reparent: 9 is not a window that this viewer can move into");
}

TEST(KvWindow, OffScreenHasNoNativeWindowAndWorkAfterAnInvalidation) {
    const Pane pane(KV_OFF_SCREEN);
    EXPECT_EQ(kv_has_window(pane), 1);
    EXPECT_EQ(kv_native_window(pane), 0u);
    const auto isReadable = [&] { return IsReadable(kv_event_descriptor(pane)); };
    while (isReadable()) ASSERT_EQ(kv_process_events(pane), KV_DONE);
    EXPECT_EQ(kv_invoke(pane, KV_PerformInvalidate, nullptr, 0, nullptr), KV_DONE);
    EXPECT_TRUE(isReadable());
    EXPECT_EQ(kv_process_events(pane), KV_DONE);
    EXPECT_FALSE(isReadable());
}

TEST(KvWindow, WithoutAPictureIsNone) {
    const Pane pane(KV_NO_PICTURE);
    EXPECT_EQ(kv_native_window(pane), 0u);
    EXPECT_EQ(kv_process_events(pane), KV_DONE);
}

TEST(KvWindow, IsAChildOfAWindowOfTheHostAndMovesToAnother) {
    XvfbServer::Shared();
    HostWindow host, other;
    kv_window_request request = Request(KV_CHILD);
    request.parent = host.Id();
    request.x = 30, request.y = 40;
    const Pane pane(request);
    WindowPlace place = host.PlaceOf(kv_native_window(pane));
    EXPECT_EQ(place.parent, host.Id());
    EXPECT_EQ(place.x, 30);
    EXPECT_EQ(place.y, 40);
    EXPECT_EQ(place.width, 100);
    EXPECT_EQ(place.height, 80);
    EXPECT_EQ(kv_reparent(pane, other.Id(), 5, 6), KV_DONE) << kv_last_error();
    place = other.PlaceOf(kv_native_window(pane));
    EXPECT_EQ(place.parent, other.Id());
    EXPECT_EQ(place.x, 5);
    EXPECT_EQ(kv_reparent(pane, 0, 0, 0), KV_FAILED);
}

TEST(KvWindow, AtTheTopHasItsTitle) {
    XvfbServer::Shared();
    HostWindow host;
    kv_window_request request = Request(KV_TOP_LEVEL);
    request.title = "sc\xC3\xA4n of C";
    const Pane pane(request);
    EXPECT_EQ(host.TextProperty(kv_native_window(pane), "_NET_WM_NAME"), "sc\xC3\xA4n of C");
}

TEST(KvInput, IsPassedOnAsItIs) {
    RecordedPane recorded;
    for (std::int32_t kind = KV_MOUSE_MOVE; kind <= KV_MOUSE_WHEEL; ++kind)
        EXPECT_EQ(kv_send_mouse(recorded.pane, kind, KV_MOUSE_LEFT | KV_MOUSE_CTRL, -3, 4, -120), KV_DONE);
    ASSERT_EQ(recorded.viewer->mouse.size(), 9u);
    EXPECT_EQ(recorded.viewer->mouse[8].kind, KV_ScenePane::MouseInput::Kind::Wheel);
    EXPECT_EQ(recorded.viewer->mouse[8].flags, 0x09u);
    EXPECT_EQ(recorded.viewer->mouse[8].x, -3);
    EXPECT_EQ(recorded.viewer->mouse[8].y, 4);
    EXPECT_EQ(recorded.viewer->mouse[8].delta, -120);
    EXPECT_EQ(kv_send_key(recorded.pane, 0, 65, 2, 0x4000), KV_DONE);
    ASSERT_EQ(recorded.viewer->keys.size(), 1u);
    EXPECT_FALSE(recorded.viewer->keys[0].isDown);
    EXPECT_EQ(recorded.viewer->keys[0].nChar, 65);
    EXPECT_EQ(recorded.viewer->keys[0].nRepCnt, 2);
    EXPECT_EQ(recorded.viewer->keys[0].nFlags, 0x4000);
}

TEST(KvInput, OfAnUnknownKindIsRefused) {
    RecordedPane recorded;
    for (const std::int32_t kind : {-1, 9, INT32_MAX}) {
        EXPECT_EQ(kv_send_mouse(recorded.pane, kind, 0, 0, 0, 0), KV_BAD_ARGUMENTS);
        EXPECT_EQ(kv_last_error(),
                  "kv_send_mouse: kind must be KV_MOUSE_MOVE to KV_MOUSE_WHEEL, 0 to 8, not " + std::to_string(kind));
    }
    EXPECT_TRUE(recorded.viewer->mouse.empty());
}

TEST(KvInput, OfAKeyFiresTheEvent) {
    const Pane pane(KV_OFF_SCREEN);
    std::vector<std::int32_t> ids;
    Handler handler = [&](std::int32_t id) {
        ids.push_back(id);
        return 0;
    };
    ConnectHandler(pane, handler);
    EXPECT_EQ(kv_send_key(pane, 1, 65, 1, 0), KV_DONE);
    EXPECT_EQ(kv_send_key(pane, 0, 65, 1, 0), KV_DONE);
    EXPECT_EQ(ids, std::vector<std::int32_t>{KV_EVENT_CustomKeyDown}) << "of the press";
}

}  // namespace
