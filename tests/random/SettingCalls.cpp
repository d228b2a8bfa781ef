// Random calls that store a setting or request a frame.
#include <array>

#include "random/RandomRun.h"

namespace {

std::int16_t SomeSwitch(Random& random) { return random.Chance(0.5) ? random.Short(0, 1) : random.WildShort(); }

float SomeFraction(Random& random) { return random.Chance(0.8) ? random.Float(0, 1) : random.WildFloat(); }

template <typename Member, typename Value>
void Store(RandomRun& run, const char* method, Member Model::*member, Value value) {
    run.model.*member = value;
    run.Call(method, {value});
}

void SetCrossColor(RandomRun& run) { Store(run, "SetCrossColor", &Model::crossColor, run.random.WildInt()); }
void GetCrossColor(RandomRun& run) { run.Call("GetCrossColor", {}, {.result = run.model.crossColor}); }
void GetPickMode(RandomRun& run) { run.Call("GetPickMode", {}, {.result = run.model.pickMode}); }
void SetScanSkipVal(RandomRun& run) {
    Store(run, "SetScanSkipVal", &Model::skip,
          run.random.Chance(0.8) ? run.random.Short(1, 2) : run.random.WildShort());
}
void GetScanSkipVal(RandomRun& run) { run.Call("GetScanSkipVal", {}, {.result = run.model.skip}); }
void SetConfidenceFilter(RandomRun& run) {
    Store(run, "SetConfidenceFilter", &Model::confidence,
          run.random.Chance(0.8) ? run.random.Float(0, 1) : run.random.WildFloat());
}
void SetShadowMode(RandomRun& run) {
    const std::int16_t mode = SomeSwitch(run.random);
    run.model.shadows = mode == 1;
    run.Call("SetShadowMode", {mode});
}
void GetShadowMode(RandomRun& run) {
    run.Call("GetShadowMode", {}, {.result = run.model.shadows ? std::int16_t{1} : std::int16_t{0}});
}
void SetAllowEmptyObjects(RandomRun& run) {
    const std::int16_t allow = SomeSwitch(run.random);
    run.model.allowEmpty = allow != 0;
    run.Call("SetAllowEmptyObjects", {allow});
}
// Mostly short: pictures are part of what is tried out.
void BlockPaintEvents(RandomRun& run) {
    const std::int16_t block = run.random.Chance(0.75) ? std::int16_t{0} : run.random.WildShort();
    run.model.blocked = block != 0;
    run.Call("BlockPaintEvents", {block});
}

template <const char* Method>
void WithSwitch(RandomRun& run) {
    run.Call(Method, {SomeSwitch(run.random)});
}
template <const char* Method>
void WithColor(RandomRun& run) {
    run.Call(Method, {run.random.WildInt()});
}
template <const char* Method>
void WithoutArguments(RandomRun& run) {
    run.Call(Method, {});
}
constexpr char kShowLightingArrow[] = "ShowLightingArrow", kShowAxes[] = "ShowAxes", kSetArrowAngle[] = "SetArrowAngle",
               kSetRotationMode[] = "SetRotationMode", kSetArrowColor[] = "SetArrowColor",
               kPerformRefresh[] = "PerformRefresh", kPerformInvalidate[] = "PerformInvalidate",
               kRemoved[] = "SetMeshFilename_Removed", kAboutBox[] = "AboutBox";

void FlipMouseButtons(RandomRun& run) { Store(run, "FlipMouseButtons", &Model::flip, SomeSwitch(run.random)); }
void AllowMouseInteraction(RandomRun& run) {
    Store(run, "AllowMouseInteraction", &Model::allowMouse,
          run.random.Chance(0.8) ? std::int16_t{1} : run.random.WildShort());
}
void SetIGDRotation(RandomRun& run) {
    Store(run, "SetIGDRotation", &Model::igd, run.random.Chance(0.8) ? std::int16_t{0} : run.random.WildShort());
}

void SetBackgroundColors(RandomRun& run) {
    run.Call("SetBackgroundColors", {run.random.WildInt(), run.random.WildInt()});
}
void SetBackgroundColorsFourCorners(RandomRun& run) {
    Random& random = run.random;
    run.Call("SetBackgroundColorsFourCorners",
             {random.WildInt(), random.WildInt(), random.WildInt(), random.WildInt()});
}
void SetReflection(RandomRun& run) { run.Call("SetReflection", {SomeFraction(run.random), SomeFraction(run.random)}); }
void SetShadowColor(RandomRun& run) {
    run.Call("SetShadowColor", {SomeFraction(run.random), SomeFraction(run.random), SomeFraction(run.random)});
}
void SetPickRadius(RandomRun& run) {
    run.Call("SetPickRadius", {run.random.Chance(0.8) ? run.random.Float(0, 20) : run.random.WildFloat()});
}
void SetPointCloudRenderPointSize(RandomRun& run) {
    run.Call("SetPointCloudRenderPointSize",
             {run.random.Chance(0.8) ? run.random.Float(0.5f, 5.0f) : run.random.WildFloat()});
}

void SetHpsSourceApp(RandomRun& run) {
    static constexpr const wchar_t* kTexts[] = {L"host", L"", L"a name with blanks", L"\x4e2d\x6587", nullptr};
    run.Call("SetHpsSourceApp",
             {kTexts[run.random.Index(std::size(kTexts))], kTexts[run.random.Index(std::size(kTexts))]});
}

void GetScreenShotResolution(RandomRun& run) {
    std::array<std::int32_t, 2> size{};
    run.CallWithOutputs("GetScreenShotResolution", {}, size);
    run.Require(size[0] == 2048 && size[1] == 2048, "another size");
}

// Written to the last word, and not beyond it.
void CaptureScreenShot(RandomRun& run) {
    constexpr std::size_t kPixels = std::size_t{2048} * 2048;
    run.screenShot.assign(kPixels + 1, 0x12345678);
    run.Call("CaptureScreenShot", {static_cast<void*>(run.screenShot.data())});
    run.Require(run.screenShot[kPixels] == 0x12345678, "a word beyond the picture was written");
    run.Require(run.model.hasPicture || (run.screenShot[0] == 0 && run.screenShot[kPixels - 1] == 0), "not all zero");
}

void InitializeKVReg(RandomRun& run) {
    ++run.registryStarts;
    run.Call("InitializeKVReg", {});
}

// One stop more than starts is ignored.
void FinalizeKVReg(RandomRun& run) {
    run.registryStarts = std::max(run.registryStarts - 1, 0);
    run.Call("FinalizeKVReg", {});
}

constexpr CallRow kRows[] = {{"SetCrossColor", 0.5, SetCrossColor},
                             {"GetCrossColor", 0.5, GetCrossColor},
                             {"GetPickMode", 0.5, GetPickMode},
                             {"SetScanSkipVal", 0.4, SetScanSkipVal},
                             {"GetScanSkipVal", 0.5, GetScanSkipVal},
                             {"SetConfidenceFilter", 0.4, SetConfidenceFilter},
                             {"SetShadowMode", 0.5, SetShadowMode},
                             {"GetShadowMode", 0.5, GetShadowMode},
                             {"SetAllowEmptyObjects", 0.4, SetAllowEmptyObjects},
                             {"BlockPaintEvents", 1, BlockPaintEvents},
                             {"ShowLightingArrow", 0.5, WithSwitch<kShowLightingArrow>},
                             {"ShowAxes", 0.5, WithSwitch<kShowAxes>},
                             {"SetArrowAngle", 0.5, WithSwitch<kSetArrowAngle>},
                             {"SetRotationMode", 0.5, WithSwitch<kSetRotationMode>},
                             {"SetArrowColor", 0.5, WithColor<kSetArrowColor>},
                             {"PerformRefresh", 1, WithoutArguments<kPerformRefresh>},
                             {"PerformInvalidate", 1, WithoutArguments<kPerformInvalidate>},
                             {"SetMeshFilename_Removed", 0.3, WithoutArguments<kRemoved>},
                             {"AboutBox", 0.3, WithoutArguments<kAboutBox>},
                             {"FlipMouseButtons", 0.4, FlipMouseButtons},
                             {"AllowMouseInteraction", 0.4, AllowMouseInteraction},
                             {"SetIGDRotation", 0.4, SetIGDRotation},
                             {"SetBackgroundColors", 0.5, SetBackgroundColors},
                             {"SetBackgroundColorsFourCorners", 0.5, SetBackgroundColorsFourCorners},
                             {"SetReflection", 0.5, SetReflection},
                             {"SetShadowColor", 0.5, SetShadowColor},
                             {"SetPickRadius", 0.5, SetPickRadius},
                             {"SetPointCloudRenderPointSize", 0.5, SetPointCloudRenderPointSize},
                             {"SetHpsSourceApp", 0.3, SetHpsSourceApp},
                             {"GetScreenShotResolution", 0.3, GetScreenShotResolution},
                             {"CaptureScreenShot", 0.01, CaptureScreenShot},
                             {"InitializeKVReg", 0.4, InitializeKVReg},
                             {"FinalizeKVReg", 0.3, FinalizeKVReg}};

}  // namespace

std::span<const CallRow> SettingCalls() { return kRows; }
