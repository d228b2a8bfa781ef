#include "platform/EglCandidates.h"

#include <gtest/gtest.h>

#include "KV_ScenePane/ScenePane.h"

namespace {

using KV_ScenePane::WindowRequest;
using Source = EglCandidate::Source;

// Addresses used as handles of devices.
char g_fast, g_slow, g_sameCard, g_processor;

EglDevice Hardware(char& device, const char* file) { return {&device, false, file}; }
EglDevice Software(char& device) { return {&device, true, ""}; }

/// Two cards, of which the first is offered by two drivers, and the processor.
EglOffers Workstation() {
    return {true,
            {Hardware(g_fast, "/dev/dri/card0"), Software(g_processor), Hardware(g_sameCard, "/dev/dri/card0"),
             Hardware(g_slow, "/dev/dri/card1")},
            true};
}
EglOffers Server() { return {true, {Software(g_processor)}, true}; }

std::vector<void*> Devices(const std::vector<EglCandidate>& candidates) {
    std::vector<void*> devices;
    for (const EglCandidate& candidate : candidates) devices.push_back(candidate.device);
    return devices;
}
std::vector<Source> Sources(const std::vector<EglCandidate>& candidates) {
    std::vector<Source> sources;
    for (const EglCandidate& candidate : candidates) sources.push_back(candidate.source);
    return sources;
}

TEST(OrderEglCandidates, AnyDeviceIsHardwareFirstThenTheDefaultDisplayThenSoftware) {
    const auto candidates = OrderEglCandidates(Workstation(), WindowRequest::kAnyGpu);
    EXPECT_EQ(Sources(candidates), (std::vector{Source::HardwareDevice, Source::HardwareDevice, Source::HardwareDevice,
                                                Source::DefaultDisplay, Source::Surfaceless, Source::SoftwareDevice}));
    EXPECT_EQ(Devices(candidates), (std::vector<void*>{&g_fast, &g_sameCard, &g_slow, nullptr, nullptr, &g_processor}));
    EXPECT_EQ(candidates[0].name, "graphics device 0, /dev/dri/card0");
    EXPECT_EQ(candidates[2].name, "graphics device 1, /dev/dri/card1");
    EXPECT_EQ(candidates[3].name, "default display");
    EXPECT_EQ(candidates[4].name, "surfaceless display");
    EXPECT_EQ(candidates[5].name, "software device");
}

TEST(OrderEglCandidates, WithoutHardwareTheDefaultDisplayIsAskedLast) {
    EXPECT_EQ(Sources(OrderEglCandidates(Server(), WindowRequest::kAnyGpu)),
              (std::vector{Source::Surfaceless, Source::SoftwareDevice, Source::DefaultDisplay}));
}

TEST(OrderEglCandidates, WithoutAListOfDevicesTheDefaultDisplayMayBeHardware) {
    EXPECT_EQ(Sources(OrderEglCandidates({false, {}, true}, WindowRequest::kAnyGpu)),
              (std::vector{Source::DefaultDisplay, Source::Surfaceless}));
    EXPECT_EQ(Sources(OrderEglCandidates({}, WindowRequest::kAnyGpu)), (std::vector{Source::DefaultDisplay}));
}

TEST(OrderEglCandidates, ANumberIsOneDeviceByAllItsDrivers) {
    EXPECT_EQ(Devices(OrderEglCandidates(Workstation(), 0)), (std::vector<void*>{&g_fast, &g_sameCard}));
    EXPECT_EQ(Devices(OrderEglCandidates(Workstation(), 1)), (std::vector<void*>{&g_slow}));
    for (const int number : {2, -3, 1000}) EXPECT_TRUE(OrderEglCandidates(Workstation(), number).empty()) << number;
    EXPECT_TRUE(OrderEglCandidates(Server(), 0).empty()) << "the processor has no number";
    EXPECT_EQ(CountHardwareDevices(Workstation()), 2);
    EXPECT_EQ(CountHardwareDevices(Server()), 0);
}

TEST(OrderEglCandidates, DevicesWithoutAFileAreDifferentOnes) {
    const EglOffers offers{true, {Hardware(g_fast, ""), Hardware(g_slow, "")}, false};
    EXPECT_EQ(Devices(OrderEglCandidates(offers, 1)), (std::vector<void*>{&g_slow}));
    EXPECT_EQ(OrderEglCandidates(offers, 1)[0].name, "graphics device 1");
}

TEST(OrderEglCandidates, SoftwareIsNeverADeviceOfHardware) {
    const auto candidates = OrderEglCandidates(Workstation(), WindowRequest::kSoftware);
    EXPECT_EQ(Sources(candidates), (std::vector{Source::SoftwareDevice, Source::Surfaceless}));
}

/// Answers as the table says, and records who was asked.
struct ScriptedFits {
    std::vector<EglFit> fits;
    std::vector<int> asked;

    int Choose() {
        std::vector<EglCandidate> candidates(fits.size());
        for (std::size_t i = 0; i < fits.size(); ++i) candidates[i].name = std::to_string(i);
        return ChooseEglCandidate(candidates, [this](const EglCandidate& candidate) {
            asked.push_back(std::stoi(candidate.name));
            return fits[static_cast<std::size_t>(asked.back())];
        });
    }
};

TEST(ChooseEglCandidate, StopsAtTheFirstThatHasTheVersion) {
    ScriptedFits script{{EglFit::None, EglFit::Version, EglFit::Version, EglFit::Display}, {}};
    EXPECT_EQ(script.Choose(), 1);
    EXPECT_EQ(script.asked, (std::vector{0, 1})) << "a driver was loaded in vain";
}

TEST(ChooseEglCandidate, PassesOverADeviceWithoutTheVersion) {
    ScriptedFits script{{EglFit::Display, EglFit::None, EglFit::Version}, {}};
    EXPECT_EQ(script.Choose(), 2);
}

TEST(ChooseEglCandidate, WithoutTheVersionTheFirstThatDrawsRefusesTheContext) {
    ScriptedFits script{{EglFit::None, EglFit::Display, EglFit::Display}, {}};
    EXPECT_EQ(script.Choose(), 1);
    EXPECT_EQ(script.asked, (std::vector{0, 1, 2}));
}

TEST(ChooseEglCandidate, ChoosesNoneWhenNoneDraws) {
    EXPECT_EQ((ScriptedFits{{EglFit::None, EglFit::None}, {}}.Choose()), -1);
    EXPECT_EQ((ScriptedFits{{}, {}}.Choose()), -1);
}

}  // namespace
