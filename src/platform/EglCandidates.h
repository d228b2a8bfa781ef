// Which EGL displays are tried for off-screen drawing, and in which order: a plain decision over lists, without EGL.
#pragma once
#include <functional>
#include <string>
#include <vector>

/// A device that EGL lists.
struct EglDevice {
    void* handle = nullptr;  ///< EGLDeviceEXT
    bool software = false;   ///< draws on the processor
    std::string file;        ///< its device file, such as /dev/dri/card0; may be empty
};

/// What the EGL of this machine can be asked for.
struct EglOffers {
    bool listsDevices = false;  ///< false: @c devices is empty because there is no way to ask
    std::vector<EglDevice> devices;
    bool surfaceless = false;  ///< has a display of no window system
};

/// A display that may draw OpenGL without a window.
struct EglCandidate {
    enum class Source { HardwareDevice, DefaultDisplay, Surfaceless, SoftwareDevice };
    Source source = Source::DefaultDisplay;
    void* device = nullptr;  ///< EGLDeviceEXT of the two device sources
    std::string name;        ///< for a report to the user

    bool operator==(const EglCandidate&) const = default;
};

/// The candidates for WindowRequest::gpu, the first to try first.
///
/// Any: the hardware devices in EGL's order, the default display, the surfaceless one, the software devices. Where EGL
/// lists devices and none is hardware, the default display is the last one: it can only be software as well, and to ask
/// it connects to a display server and makes libraries complain on standard error when there is none.
/// Number N: hardware device N. Devices with the same device file are one, which two drivers offer.
/// Software: the software devices, then the surfaceless display, which the caller still has to check.
[[nodiscard]] std::vector<EglCandidate> OrderEglCandidates(const EglOffers& offers, int gpu);

/// How many hardware devices there are to number.
[[nodiscard]] int CountHardwareDevices(const EglOffers& offers);

/// What a candidate turned out to be.
enum class EglFit {
    None,     ///< draws no OpenGL without a window
    Display,  ///< draws, but not with the requested format and version
    Version   ///< has all that was requested
};

/// The position of the first candidate that is a Version, else of the first Display, else -1. The candidates after the
/// first Version are not asked: asking loads a driver.
[[nodiscard]] int ChooseEglCandidate(const std::vector<EglCandidate>& candidates,
                                     const std::function<EglFit(const EglCandidate&)>& fitOf);
