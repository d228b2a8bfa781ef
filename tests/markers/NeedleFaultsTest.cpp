// Needles whose frame reports short graphics memory: the reader of that line belongs to the host and may call any
// method, before the method fires its event. DriverStandIn.h makes the upload fail.
#include "markers/NeedleHelp.h"
#include "support/DriverStandIn.h"

namespace {

class NeedleFrameReports : public testing::Test {
protected:
    NeedleFrameReports() {
        pane->Connect(&events);
        pane->CreateNeedle(1, 0, 0, 0, 0, 0, 0);
        events.Take();
    }
    /// Runs @p call, in whose frame an object has no memory; @p host runs in the report of that.
    void Run(const std::function<void()>& call, const std::function<void()>& host) {
        AddMesh(*pane, {{-9, -9, 0, 0, 0, 1}, {9, -9, 0, 0, 0, 1}, {0, 9, 0, 0, 0, 1}}, {Triangle{{0, 1, 2}}});
        const ScopedDriverFaults faults({.failUpload = 1});
        int reports = 0;
        KV_ScenePane::SetDebugOutputSink([&](std::string_view) {
            if (++reports == 1) host();
        });
        call();
        KV_ScenePane::SetDebugOutputSink({});
        EXPECT_GE(reports, 1);
    }
    OffscreenControl pane;
    NeedleEvents events;
};

TEST_F(NeedleFrameReports, MayDeleteTheNeedleThatWasJustCreated) {
    Run([&] { EXPECT_NE(pane->CreateNeedle(5, 0, 0, 0, 1, 1, 1), 0); }, [&] { pane->DeleteNeedle(5); });
    EXPECT_EQ(events.Take(), EventList{"Deleted 5"}) << "no creation of a needle that is gone";
    EXPECT_EQ(IdsOf(*pane), Ids{1});
}

TEST_F(NeedleFrameReports, MayCreateTheNeedleAgainThatWasJustDeleted) {
    Run([&] { EXPECT_NE(pane->DeleteNeedle(1), 0); }, [&] { pane->CreateNeedle(1, 0, 0, 0, 1, 1, 1); });
    EXPECT_EQ(events.Take(), EventList{"Created 1"}) << "no deletion of a needle that is there";
    EXPECT_EQ(IdsOf(*pane), Ids{1});
}

TEST_F(NeedleFrameReports, MayDeleteTheNeedleThatIsBeingDeleted) {
    Run([&] { EXPECT_NE(pane->DeleteNeedle(1), 0); }, [&] { EXPECT_EQ(pane->DeleteNeedle(1), 0); });
    EXPECT_EQ(events.Take(), EventList{"Deleted 1"});
}

TEST_F(NeedleFrameReports, MayDeleteEachNeedleOfACreationOfMany) {
    const std::int32_t ids[] = {10, 11};
    const float at[6] = {};
    Run([&] { EXPECT_NE(pane->CreateNeedles(2, ids, at, at), 0); }, [&] { pane->DeleteNeedles(); });
    EXPECT_EQ(events.Take(), (EventList{"Deleted 1", "Deleted 10", "Created 11"}));
    EXPECT_EQ(IdsOf(*pane), Ids{11});
}

}  // namespace
