// The order in which EGL displays are tried.
#include "platform/EglCandidates.h"

#include <algorithm>
#include <cstddef>

#include "KV_ScenePane/ScenePane.h"

namespace {

using KV_ScenePane::WindowRequest;

struct NumberedDevice {
    int number = 0;
    const EglDevice* device = nullptr;
};

/// The hardware devices in EGL's order. A device whose file came before has the number of that one.
std::vector<NumberedDevice> NumberHardware(const EglOffers& offers) {
    std::vector<NumberedDevice> numbered;
    int next = 0;
    for (const EglDevice& device : offers.devices) {
        if (device.software) continue;
        const auto same = std::find_if(numbered.begin(), numbered.end(), [&](const NumberedDevice& known) {
            return !device.file.empty() && known.device->file == device.file;
        });
        numbered.push_back({same == numbered.end() ? next++ : same->number, &device});
    }
    return numbered;
}

EglCandidate HardwareCandidate(const NumberedDevice& numbered) {
    std::string name = "graphics device " + std::to_string(numbered.number);
    if (!numbered.device->file.empty()) name.append(", ").append(numbered.device->file);
    return {EglCandidate::Source::HardwareDevice, numbered.device->handle, name};
}

void AddSoftwareDevices(const EglOffers& offers, std::vector<EglCandidate>& candidates) {
    for (const EglDevice& device : offers.devices)
        if (device.software)
            candidates.push_back({EglCandidate::Source::SoftwareDevice, device.handle, "software device"});
}

}  // namespace

std::vector<EglCandidate> OrderEglCandidates(const EglOffers& offers, int gpu) {
    const EglCandidate surfaceless{EglCandidate::Source::Surfaceless, nullptr, "surfaceless display"};
    const EglCandidate defaultDisplay{EglCandidate::Source::DefaultDisplay, nullptr, "default display"};
    std::vector<EglCandidate> candidates;
    if (gpu == WindowRequest::kSoftware) {
        AddSoftwareDevices(offers, candidates);
        if (offers.surfaceless) candidates.push_back(surfaceless);
        return candidates;
    }
    for (const NumberedDevice& numbered : NumberHardware(offers))
        if (gpu == WindowRequest::kAnyGpu || gpu == numbered.number) candidates.push_back(HardwareCandidate(numbered));
    if (gpu != WindowRequest::kAnyGpu) return candidates;
    const bool softwareOnly = offers.listsDevices && candidates.empty();
    if (!softwareOnly) candidates.push_back(defaultDisplay);
    if (offers.surfaceless) candidates.push_back(surfaceless);
    AddSoftwareDevices(offers, candidates);
    if (softwareOnly) candidates.push_back(defaultDisplay);
    return candidates;
}

int CountHardwareDevices(const EglOffers& offers) {
    int count = 0;
    for (const NumberedDevice& numbered : NumberHardware(offers)) count = std::max(count, numbered.number + 1);
    return count;
}

int ChooseEglCandidate(const std::vector<EglCandidate>& candidates,
                       const std::function<EglFit(const EglCandidate&)>& fitOf) {
    int firstDisplay = -1;
    for (std::size_t i = 0; i < candidates.size(); ++i) {
        const EglFit fit = fitOf(candidates[i]);
        if (fit == EglFit::Version) return static_cast<int>(i);
        if (fit == EglFit::Display && firstDisplay < 0) firstDisplay = static_cast<int>(i);
    }
    return firstDisplay;
}
