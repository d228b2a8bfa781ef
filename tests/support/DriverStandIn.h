// A driver with faults and counters: a shared library between a program and OpenGL, GLX and EGL, also where the program
// fetches entry points through glXGetProcAddress(), glXGetProcAddressARB(), eglGetProcAddress() or dlsym(RTLD_DEFAULT).
// Without faults every call is passed on and counted.
//
// In a test: add STAND_IN to kv_test() (or target_link_libraries(NAME BEFORE PRIVATE kv::driver_stand_in)), which puts
// the library before those of OpenGL, and switch faults where they are needed:
//
//     const ScopedDriverFaults faults({.dropDepth = true});
//     viewer->PerformRefresh();
//     EXPECT_EQ(ReadDriverCounters().swaps, 1);
//
// With any program, by the environment, which is read once at the first call; with the address sanitizer its library
// comes first in LD_PRELOAD (g++ -print-file-name=libasan.so):
//
//     LD_PRELOAD=build/release/lib/libkv_driver_stand_in.so KV_STAND_IN_DROP_DEPTH=1 scenepane ...
//
//     KV_STAND_IN_DROP_DEPTH=1       KV_STAND_IN_GARBAGE_BACK_BUFFER=1   KV_STAND_IN_FAIL_UPLOAD=FIRST[:COUNT]
//     KV_STAND_IN_BLANK_MS=16.7      KV_STAND_IN_SWAP_CONTROL=EXT,MESA,SGI
//     KV_STAND_IN_REPORT=FILE        writes the counters there when the program ends
#pragma once
#include <cstdint>

/// What the driver does wrong; nothing by default.
struct DriverFaults {
    /// After each swap the depth of framebuffer 0 is kDroppedDepth everywhere.
    bool dropDepth = false;
    /// After each swap the back buffer of framebuffer 0 has the colour kGarbageColor everywhere.
    bool garbageBackBuffer = false;
    /// The upload of this number, counted from 1 after the faults were set, fails: GL_OUT_OF_MEMORY, and the buffer has
    /// no store. 0 for none.
    std::int32_t failUpload = 0;
    /// As many uploads fail in a row.
    std::int32_t failUploadCount = 1;
    /// A swap sleeps this long times the interval of its drawable, which is 1 until a program sets it. 0: no wait.
    /// While it is above 0 the stand-in reports the extensions below.
    double blankMs = 0;
    bool swapControlExt = true, swapControlMesa = true, swapControlSgi = true;
};

/// Since the faults were set last, or since the program started.
struct DriverCounters {
    std::int64_t swaps = 0;
    std::int64_t waits = 0;            ///< swaps that slept
    std::int64_t uploads = 0;          ///< glBufferData and its variants with a size above 0; failed ones count too
    std::int64_t failedUploads = 0;    ///< those that a fault made fail
    std::int64_t backBufferReads = 0;  ///< pixels read, copied or blitted while framebuffer 0 was bound for reading
    std::int64_t draws = 0;            ///< glDrawArrays, glDrawElements
    std::int64_t uniformLookUps = 0;   ///< glGetUniformLocation
    std::int64_t queries = 0;          ///< glGetBooleanv, glGetIntegerv, glGetFloatv, glGetDoublev, glIsEnabled
};

inline constexpr float kDroppedDepth = 0.25f;
inline constexpr std::uint8_t kGarbageColor[4] = {255, 0, 255, 255};

extern "C" {
/// Replaces the faults, and sets all counters and intervals to their start.
void KvSetDriverFaults(const DriverFaults* faults);
void KvReadDriverCounters(DriverCounters* counters);
}

inline DriverCounters ReadDriverCounters() {
    DriverCounters counters;
    KvReadDriverCounters(&counters);
    return counters;
}

/// The faults last as long as this object.
class ScopedDriverFaults {
public:
    explicit ScopedDriverFaults(const DriverFaults& faults) { KvSetDriverFaults(&faults); }
    ~ScopedDriverFaults() {
        const DriverFaults none;
        KvSetDriverFaults(&none);
    }
    ScopedDriverFaults(const ScopedDriverFaults&) = delete;
    ScopedDriverFaults& operator=(const ScopedDriverFaults&) = delete;
};
