// Cost of a call by id over the direct one, for methods that do next to nothing themselves.
//   Direct      the method of the abstract class, through the host's handle
//   ById        InvokeMethod() with arguments that are ready
//   FromC       kv_invoke() with arguments that are ready
//   FromCTagged the same; the arguments are filled in for every call, as a host does
#include <benchmark/benchmark.h>

#include <array>
#include <memory>
#include <stdexcept>
#include <vector>

#include "KV_ScenePane/kv_scenepane.h"
#include "PaneFixture.h"
#include "control/AutomationTable.h"

namespace {

/// A method with arguments in all three forms. The outputs of GetViewParams go to one place.
struct Subject {
    std::int32_t id;
    void (*direct)(KV_ScenePane::_DKV_ScenePane& methods, float* place);
};

template <std::size_t... I>
void GetViewParams(KV_ScenePane::_DKV_ScenePane& methods, float* place, std::index_sequence<I...>) {
    methods.GetViewParams((place + I)...);
}

const Subject kGetNumObjects = {KV_GetNumObjects,
                                [](auto& methods, float*) { benchmark::DoNotOptimize(methods.GetNumObjects()); }};
const Subject kSetArrowAngle = {KV_SetArrowAngle, [](auto& methods, float*) { methods.SetArrowAngle(0); }};
const Subject kSetTrafoOfScan = {
    KV_SetTrafoOfScan, [](auto& methods, float*) {
        // No object has this index: the method returns at once.
        benchmark::DoNotOptimize(methods.SetTrafoOfScan(0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0));
    }};
const Subject kGetViewParams = {KV_GetViewParams, [](auto& methods, float* place) {
                                    GetViewParams(methods, place, std::make_index_sequence<10>());
                                }};

/// Zeros, and @p place for outputs.
std::vector<AutomationValue> ArgumentsOf(std::int32_t id, float* place) {
    std::vector<AutomationValue> arguments;
    const std::string_view signature = FindMethod(id)->signature;
    for (const char code : signature.substr(1)) {
        if (code == 's')
            arguments.emplace_back(std::int16_t{0});
        else if (code == 'f')
            arguments.emplace_back(0.0f);
        else
            arguments.emplace_back(static_cast<void*>(place++));
    }
    return arguments;
}

void FillIn(std::string_view signature, float* place, kv_value* values) {
    for (std::size_t i = 1; i < signature.size(); ++i, ++values) {
        if (signature[i] == 's')
            values->type = KV_SHORT, values->as.i16 = 0;
        else if (signature[i] == 'f')
            values->type = KV_FLOAT, values->as.f32 = 0;
        else
            values->type = KV_POINTER, values->as.pointer = place++;
    }
}

void Direct(benchmark::State& state, const Subject& subject) {
    const auto pane = MakePaneWithoutOpenGl();
    std::array<float, 16> place{};
    for (auto _ : state) subject.direct(pane->Methods(), place.data());
}

void ById(benchmark::State& state, const Subject& subject) {
    const auto pane = MakePaneWithoutOpenGl();
    std::array<float, 16> place{};
    const std::vector<AutomationValue> arguments = ArgumentsOf(subject.id, place.data());
    AutomationValue result;
    for (auto _ : state)
        if (InvokeMethod(pane->Methods(), subject.id, arguments, &result) != AutomationStatus::Done)
            return state.SkipWithError("not done");
}

void CallFromC(benchmark::State& state, const Subject& subject, bool isTagged) {
    kv_window_request request;
    kv_window_request_init(&request);
    request.kind = KV_NO_PICTURE;
    const std::unique_ptr<kv_pane, decltype(&kv_destroy)> pane(kv_create(&request), &kv_destroy);
    if (pane == nullptr) return state.SkipWithError(kv_last_error());
    const std::string_view signature = FindMethod(subject.id)->signature;
    std::array<float, 16> place{};
    std::array<kv_value, 17> arguments{};
    FillIn(signature, place.data(), arguments.data());
    kv_value result;
    for (auto _ : state) {
        if (isTagged) FillIn(signature, place.data(), arguments.data());
        if (kv_invoke(pane.get(), subject.id, arguments.data(), signature.size() - 1, &result) != KV_DONE)
            return state.SkipWithError(kv_last_error());
    }
}
void FromC(benchmark::State& state, const Subject& subject) { CallFromC(state, subject, false); }
void FromCTagged(benchmark::State& state, const Subject& subject) { CallFromC(state, subject, true); }

#define KV_CALLS(name)                        \
    BENCHMARK_CAPTURE(Direct, name, k##name); \
    BENCHMARK_CAPTURE(ById, name, k##name);   \
    BENCHMARK_CAPTURE(FromC, name, k##name);  \
    BENCHMARK_CAPTURE(FromCTagged, name, k##name)

KV_CALLS(GetNumObjects);
KV_CALLS(SetArrowAngle);
KV_CALLS(SetTrafoOfScan);
KV_CALLS(GetViewParams);

}  // namespace

BENCHMARK_MAIN();
