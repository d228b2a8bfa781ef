// Saving and loading the persisted properties of a control. The stores themselves: io/PropExchangeTest.cpp.
#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>

#include "control/ScenePaneHandle.h"
#include "io/PropExchange.h"
#include "support/ControlFixture.h"

namespace {

using KV_ScenePane::PropertyFormat;

constexpr PropertyFormat kFormats[] = {PropertyFormat::Text, PropertyFormat::Binary};
const std::string kNewer = "KV_ScenePane properties 2.0\nDrawMode=1\n";
const std::string kDamaged = "KV_ScenePane properties 1.0\nDrawMosaic=1\nDrawMode=one\n";
const char* const kDamagedReason =
    "The store of properties is damaged: line 3: DrawMode is not a number from -32768 to 32767";

void Set(CKV_ScenePaneCtrl& control, bool mosaic, std::int16_t mode, bool reduced) {
    control.SetDrawMosaic(mosaic ? -1 : 0);
    control.SetDrawMode(mode);
    control.SetMoveReduced(reduced ? -1 : 0);
}

void ExpectProperties(CKV_ScenePaneCtrl& control, bool mosaic, std::int16_t mode, bool reduced) {
    EXPECT_EQ(control.GetDrawMosaic(), mosaic ? -1 : 0);
    EXPECT_EQ(control.GetDrawMode(), mode);
    EXPECT_EQ(control.GetMoveReduced(), reduced ? -1 : 0);
}

/// What the control exchanges: version, names, and its own values.
class Recorder final : public PropExchange {
public:
    std::string steps;
    void ExchangeVersion(PropVersion current) override {
        steps += std::to_string(current.major) + "." + std::to_string(current.minor);
    }
    void ExchangeBool(std::string_view name, bool& value, bool) override {
        steps.append(" ").append(name).append(value ? "=true" : "=false");
    }
    void ExchangeShort(std::string_view name, std::int16_t& value, std::int16_t) override {
        steps.append(" ").append(name).append("=").append(std::to_string(value));
    }
    void Finish() override { steps += " end"; }
};

TEST(PersistedProperties, GetTheirStartValuesFromAnExchangeWithoutAStore) {
    EXPECT_EQ(RenderState().m_nDrawMode, 0) << "the member's own start value is another one";
    NoPictureControl c;
    ExpectProperties(*c, false, 3, false);
    Set(*c, true, 5, true);
    StartValueExchange startValues;
    c->DoPropExchange(startValues);
    ExpectProperties(*c, false, 3, false);
}

TEST(PersistedProperties, AreExchangedInTheirOrderAfterTheVersion) {
    NoPictureControl c;
    Set(*c, true, -9, false);
    Recorder recorder;
    c->DoPropExchange(recorder);
    EXPECT_EQ(recorder.steps, "1.0 DrawMosaic=true DrawMode=-9 MoveReduced=false end");
    EXPECT_TRUE(c->m_bModified) << "an exchange alone is no save";
}

TEST(PersistedProperties, AreAsBeforeAfterAnExchangeThatThrows) {
    NoPictureControl c;
    Set(*c, false, 5, true);
    EXPECT_THROW(c->DoPropExchange(*OpenPropertyStore(kDamaged)), PropertyStoreError);
    ExpectProperties(*c, false, 5, true);
}

TEST(PersistedProperties, ComeBackFromAStoreOfEitherFormat) {
    for (const PropertyFormat format : kFormats)
        for (const int mode : {0, 1, 2, 3, 4, 5, 6, 7, 8, -1, -32768, 32767})
            for (const bool flag : {false, true}) {
                NoPictureControl from, to;
                Set(*from, flag, static_cast<std::int16_t>(mode), !flag);
                std::string reason = "untouched";
                EXPECT_TRUE(to->LoadProperties(from->SaveProperties(format), &reason));
                EXPECT_EQ(reason, "untouched");
                ExpectProperties(*to, flag, static_cast<std::int16_t>(mode), !flag);
            }
}

TEST(PersistedProperties, AreAllThatAStoreHas) {
    NoPictureControl c;
    c->SetRotationMode(1);
    c->SetCrossColor(0x123456);
    c->SetScanSkipVal(4);
    const std::string text = c->SaveProperties(PropertyFormat::Text);
    EXPECT_EQ(text, "KV_ScenePane properties 1.0\nDrawMosaic=0\nDrawMode=3\nMoveReduced=0\n");
    EXPECT_TRUE(c->LoadProperties(text, nullptr));
    EXPECT_EQ(c->m_nRotationMode, 1);
    EXPECT_EQ(c->GetCrossColor(), 0x123456);
    EXPECT_EQ(c->GetScanSkipVal(), 4);
}

// A format that is no value of the enumeration, as a host in another language may pass it.
TEST(PersistedProperties, AreSavedAsTextInAnUnknownFormat) {
    NoPictureControl c;
    EXPECT_EQ(c->SaveProperties(static_cast<PropertyFormat>(9)), c->SaveProperties(PropertyFormat::Text));
}

TEST(PersistedProperties, AreNotModifiedAfterASaveOrALoad) {
    for (const PropertyFormat format : kFormats) {
        NoPictureControl c;
        EXPECT_FALSE(c->m_bModified);
        c->SetDrawMode(1);
        EXPECT_TRUE(c->m_bModified);
        const std::string store = c->SaveProperties(format);
        EXPECT_FALSE(c->m_bModified);
        c->SetDrawMode(2);
        EXPECT_TRUE(c->LoadProperties(store, nullptr));
        EXPECT_FALSE(c->m_bModified);
        EXPECT_EQ(c->GetDrawMode(), 1);
        c->SetDrawMode(2);
        EXPECT_FALSE(c->LoadProperties("", nullptr));
        EXPECT_FALSE(c->m_bModified);
        c->SetMoveReduced(-1);
        EXPECT_TRUE(c->m_bModified);
    }
}

TEST(PersistedProperties, RepaintOnceWhenALoadHasChangedThem) {
    const std::string all = "KV_ScenePane properties 1.0\nDrawMosaic=1\nDrawMode=6\nMoveReduced=1\n";
    NoPictureControl c;
    const auto repaintsOfLoading = [&](const std::string& store) {
        c.window->Forget();
        (void)c->LoadProperties(store, nullptr);
        EXPECT_EQ(c.window->refreshes, 0);
        EXPECT_EQ(c.window->invalidates, 0);
        return c.window->eraseInvalidates;
    };
    EXPECT_EQ(repaintsOfLoading(all), 1);
    EXPECT_EQ(repaintsOfLoading(all), 0) << "the same properties again";
    EXPECT_EQ(repaintsOfLoading("KV_ScenePane properties 1.0\nDrawMosaic=1\nDrawMode=6\n"), 1) << "one of them";
    EXPECT_EQ(repaintsOfLoading(kDamaged), 1) << "to the start values";
    EXPECT_EQ(repaintsOfLoading(kDamaged), 0) << "the start values again";
    (void)c->SaveProperties(PropertyFormat::Binary);
    EXPECT_EQ(c.window->eraseInvalidates, 0);
}

TEST(PersistedProperties, HaveTheirStartValuesAfterARefusedStoreAndTheReasonIsReported) {
    NoPictureControl c;
    const auto refused = [&](const std::string& store) {
        Set(*c, true, 6, true);
        c.debugOutput.Clear();
        std::string reason;
        EXPECT_FALSE(c->LoadProperties(store, &reason));
        ExpectProperties(*c, false, 3, false);
        EXPECT_EQ(c.debugOutput.Text(), "CKV_ScenePaneCtrl::LoadProperties(): " + reason + "\n");
        return reason;
    };
    EXPECT_EQ(refused(kDamaged), kDamagedReason);
    EXPECT_EQ(
        refused(kNewer),
        "The properties were stored by a newer version of the viewer: their version is 2.0, and this one reads 1.0");
    EXPECT_EQ(refused(""), "There is no store of properties in this text or file");
    EXPECT_EQ(refused(std::string(65537, ' ')), "The store of properties is larger than 64 KiB");
    std::string binary = c->SaveProperties(PropertyFormat::Binary);
    binary[13] = 1;
    EXPECT_EQ(refused(binary), "The store of properties is damaged: its checksum is wrong");
    EXPECT_FALSE(c->LoadProperties(kDamaged, nullptr)) << "the reason is not asked for";
}

TEST(PersistedProperties, HaveTheirStartValuesWhenTheSinkOfTheReasonThrows) {
    NoPictureControl c;
    Set(*c, true, 6, true);
    KV_ScenePane::SetDebugOutputSink([](std::string_view) { throw std::runtime_error("sink"); });
    std::string reason;
    EXPECT_THROW((void)c->LoadProperties(kDamaged, &reason), std::runtime_error);
    KV_ScenePane::SetDebugOutputSink({});
    EXPECT_EQ(reason, kDamagedReason);
    ExpectProperties(*c, false, 3, false);
    EXPECT_FALSE(c->m_bModified);
}

TEST(PersistedProperties, OfADrawingControlShowInTheNextFrame) {
    OffscreenControl c(60, 40);
    AddMesh(*c, {{-1, -1, 0}, {1, -1, 0}, {0, 1, 0}}, {Triangle{{0, 1, 2}}});
    c->CenterView();
    const auto middle = [&] {
        KV_ScenePane::Picture picture;
        EXPECT_TRUE(c->CapturePicture(&picture));
        return picture.pixels.at(20 * 60 + 30);
    };
    c->SetDrawMode(KV_ScenePane::DrawModeNothing);
    const std::uint32_t background = middle();
    EXPECT_TRUE(c->LoadProperties("KV_ScenePane properties 1.0\n", nullptr));
    EXPECT_NE(middle(), background) << "the start value of the draw mode shows the triangle";
}

TEST(PersistedProperties, ArePassedOnByTheHandleOfTheHost) {
    KV_ScenePane::WindowRequest request;
    request.kind = KV_ScenePane::WindowRequest::Kind::NoPicture;
    const CapturedDebugOutput output;
    const auto pane = KV_ScenePane::CreateScenePane(request, nullptr);
    ASSERT_NE(pane, nullptr);
    EXPECT_FALSE(pane->IsModified());
    pane->Methods().SetDrawMode(7);
    EXPECT_TRUE(pane->IsModified());
    const std::string store = pane->SaveProperties(PropertyFormat::Binary);
    EXPECT_FALSE(pane->IsModified());
    pane->Methods().SetDrawMode(1);
    EXPECT_TRUE(pane->LoadProperties(store, nullptr));
    EXPECT_EQ(pane->Methods().GetDrawMode(), 7);
    std::string reason;
    EXPECT_FALSE(pane->LoadProperties(kDamaged, &reason));
    EXPECT_EQ(reason, kDamagedReason);
    EXPECT_EQ(pane->Methods().GetDrawMode(), 3);
}

}  // namespace
