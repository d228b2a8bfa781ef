#include "random/RandomRun.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <sstream>

#include "KV_ScenePane/DebugOutput.h"
#include "control/ScenePaneCtrl.h"

namespace {

// A window that is drawn quickly.
constexpr int kWidth = 96, kHeight = 72;

const AutomationMethod& MethodNamed(std::string_view name) {
    for (const AutomationMethod& method : AutomationMethods())
        if (method.name == name) return method;
    throw std::logic_error("no method " + std::string(name));
}

std::string Text(const AutomationValue& value) {
    std::ostringstream text;
    text.precision(9);
    if (const auto* i16 = std::get_if<std::int16_t>(&value)) text << *i16;
    if (const auto* i32 = std::get_if<std::int32_t>(&value)) text << *i32;
    if (const auto* f32 = std::get_if<float>(&value)) text << *f32 << 'f';
    if (const auto* wide = std::get_if<const wchar_t*>(&value)) {
        text << '"';
        for (const wchar_t* letter = *wide; letter != nullptr && *letter != 0; ++letter)
            text << static_cast<char>(*letter < 128 ? *letter : L'?');
        text << '"';
    }
    if (const auto* pointer = std::get_if<void*>(&value)) text << (*pointer == nullptr ? "null" : "array");
    if (std::holds_alternative<std::monostate>(value)) text << "nothing";
    return text.str();
}

std::string Text(const std::string& name, const std::vector<double>& arguments) {
    std::ostringstream text;
    text.precision(9);
    text << name << '(';
    for (std::size_t i = 0; i < arguments.size(); ++i) text << (i == 0 ? "" : ", ") << arguments[i];
    text << ')';
    return text.str();
}

/// Numbers of one event within the rounding of floats.
bool IsSame(const ExpectedEvent& expected, const Event& actual) {
    if (expected.name != actual.name || expected.arguments.size() != actual.arguments.size()) return false;
    for (std::size_t i = 0; i < expected.arguments.size(); ++i) {
        const double a = expected.arguments[i], b = actual.arguments[i];
        if (!std::isnan(a) && !(std::abs(a - b) <= 1e-4 * (1 + std::abs(a)))) return false;
    }
    return true;
}

const std::vector<CallRow>& AllRows() {
    static const std::vector<CallRow> rows = [] {
        std::vector<CallRow> all;
        for (const auto& part : {SceneCalls(), ImportCalls(), MarkerCalls(), ViewCalls(), SettingCalls(),
                                 InteractionCalls(), OtherSteps()})
            all.insert(all.end(), part.begin(), part.end());
        return all;
    }();
    return rows;
}

KV_ScenePane::WindowRequest RequestOf(bool hasPicture) {
    using Kind = KV_ScenePane::WindowRequest::Kind;
    KV_ScenePane::WindowRequest request;
    request.kind = hasPicture ? Kind::OffScreen : Kind::NoPicture;
    request.width = kWidth;
    request.height = kHeight;
    request.gpu = KV_ScenePane::WindowRequest::kSoftware;
    return request;
}

}  // namespace

RandomRun::RandomRun(std::uint64_t seed, const std::filesystem::path& filesFolder) : random(seed), folder(filesFolder) {
    KV_ScenePane::SetDebugOutputSink([](std::string_view) {});
    model.hasPicture = random.Chance(0.85);
    const KV_ScenePane::WindowRequest request = RequestOf(model.hasPicture);
    viewer = random.Chance(0.4) ? MakeCViewer(request) : MakeDirectViewer(request);
    if (viewer == nullptr) throw Mismatch("no viewer");
    viewer->Control()->m_pfnCounter = FakeCounter;
    BeginCall("start");
    model.view.sizeKnown = model.hasPicture;
    model.view.width = kWidth, model.view.height = kHeight;
    viewer->TakeEvents();
}

// Later runs start with a registry that is not started.
RandomRun::~RandomRun() {
    if (viewer != nullptr)
        for (; registryStarts > 0; --registryStarts) viewer->Invoke(MethodNamed("FinalizeKVReg").id, {});
    viewer.reset();
    KV_ScenePane::SetDebugOutputSink({});
}

// By weight; now and then the method that was called least, so that none is left out.
void RandomRun::Step() {
    const std::vector<CallRow>& rows = AllRows();
    if (random.Chance(1.0 / 64)) {
        const auto least =
            std::ranges::min_element(rows, {}, [this](const CallRow& row) { return choices[row.method]; });
        ++choices[least->method];
        return least->make(*this);
    }
    static const double total = [&] {
        double sum = 0;
        for (const CallRow& row : rows) sum += row.weight;
        return sum;
    }();
    double at = random.Fraction() * total;
    for (const CallRow& row : rows) {
        at -= row.weight;
        if (at >= 0) continue;
        ++choices[row.method];
        return row.make(*this);
    }
}

AutomationValue RandomRun::Call(const char* method, std::vector<AutomationValue> arguments, const Expected& expected) {
    const AutomationMethod& row = MethodNamed(method);
    std::string text = std::string(method) + "(";
    for (std::size_t i = 0; i < arguments.size(); ++i) text.append(i == 0 ? "" : ", ").append(Text(arguments[i]));
    BeginCall(text + ")");
    ++callCounts[method];
    const Outcome outcome = viewer->Invoke(row.id, arguments);
    Require(outcome.status == AutomationStatus::Done, "the call was refused");
    Require(!outcome.failed || expected.failure != Expected::Never, "the call failed: " + outcome.text);
    Require(outcome.failed || expected.failure != Expected::Always, "the call did not fail");
    if (expected.result && !outcome.failed && outcome.result != *expected.result)
        Fail("result " + Text(outcome.result) + " in place of " + Text(*expected.result));
    if (!expected.anyEvents) CompareEvents();
    return outcome.result;
}

void RandomRun::CompareEvents() {
    const std::vector<Event> actual = viewer->TakeEvents();
    const std::vector<ExpectedEvent> expected = std::exchange(model.events, {});
    bool same = actual.size() == expected.size();
    for (std::size_t i = 0; same && i < actual.size(); ++i) same = IsSame(expected[i], actual[i]);
    if (same) return;
    std::string text = "events:";
    for (const Event& event : actual) text += " " + Text(event.name, event.arguments);
    text += "\nin place of:";
    for (const ExpectedEvent& event : expected) text += " " + Text(event.name, event.arguments);
    Fail(text);
}

void RandomRun::Fail(const std::string& what) const { throw Mismatch(m_lastCall + ": " + what); }

void RandomRun::RequireNear(double expected, double actual, double tolerance, const std::string& what) const {
    if (std::abs(expected - actual) <= tolerance) return;
    Fail(what + " is " + std::to_string(actual) + " in place of " + std::to_string(expected));
}

// ---- arguments

std::optional<std::int16_t> RandomRun::SomeObject() {
    if (model.objects.empty()) return std::nullopt;
    return static_cast<std::int16_t>(random.Index(model.objects.size()));
}

std::int16_t RandomRun::AnyObjectIndex() {
    const auto index = SomeObject();
    return index && random.Chance(0.8) ? *index : random.WildShort();
}

float RandomRun::Coordinate() { return random.Chance(0.97) ? random.Float(-60.0f, 60.0f) : random.WildFloat(); }
