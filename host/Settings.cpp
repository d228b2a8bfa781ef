// The keys of the settings file and their start values.
#include "Settings.h"

#include <QStringList>
#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

namespace {

constexpr const char* kSmoothEdges = "view/smoothEdges";  // of older versions, which had 0 or 4 samples
constexpr const char* kSamples = "view/samples";

// The numbers of a plane are one value: a part of another plane would be a plane that nobody has set.
constexpr const char* kClipOn = "clip/on";
constexpr const char* kClipShown = "clip/shown";
constexpr const char* kClipMoved = "clip/moved";
constexpr const char* kClipPlane = "clip/plane";  // centre, normal
constexpr const char* kClipColor = "clip/color";
constexpr const char* kClipHandleColor = "clip/handleColor";
constexpr const char* kClipOutlineColor = "clip/outlineColor";

constexpr const char* kLassoInsideColor = "lasso/insideColor";
constexpr const char* kLassoInsideOpacity = "lasso/insideOpacity";
constexpr const char* kLassoOutsideColor = "lasso/outsideColor";
constexpr const char* kLassoOutsideOpacity = "lasso/outsideOpacity";

constexpr const char* kProperties = "viewer/properties";

constexpr const char* kReducedAutomatically = "view/reducedAutomatically";

constexpr const char* kMouseScheme = "view/mouseScheme";
constexpr const char* kRotation = "view/rotation";
constexpr const char* kBackground = "view/background";  // four colours
constexpr const char* kPointSize = "view/pointSize";

constexpr const char* kSkip = "import/skip";
constexpr const char* kConfidence = "import/confidence";
constexpr const char* kScanColor = "import/color";

/// Qt itself reads every text but a few as true.
bool ReadBool(const QSettings& stored, const char* key, bool otherwise) {
    const QString text = stored.value(key).toString();
    if (text == "true") return true;
    return text == "false" ? false : otherwise;
}

/// @param highest  of the valid numbers; the lowest one is 0
int ReadNumber(const QSettings& stored, const char* key, int highest, int otherwise) {
    bool isNumber = false;
    const int number = stored.value(key).toInt(&isNumber);
    return isNumber && number >= 0 && number <= highest ? number : otherwise;
}

std::int32_t ReadColor(const QSettings& stored, const char* key, std::int32_t otherwise) {
    return ReadNumber(stored, key, 0xFFFFFF, otherwise);
}

int ReadPercent(const QSettings& stored, const char* key, int otherwise) {
    return ReadNumber(stored, key, 100, otherwise);
}

/// Centre, then normal; nothing unless all six numbers are finite and the normal has a direction.
std::optional<std::array<float, 6>> ReadPlane(const QSettings& stored) {
    const QStringList texts = stored.value(kClipPlane).toStringList();
    std::array<float, 6> plane{};
    if (texts.size() != static_cast<qsizetype>(plane.size())) return std::nullopt;
    for (std::size_t i = 0; i < plane.size(); ++i) {
        bool isNumber = false;
        plane[i] = texts[static_cast<qsizetype>(i)].toFloat(&isNumber);  // out of the range of a float: no number
        if (!isNumber || !std::isfinite(plane[i])) return std::nullopt;
    }
    const bool hasDirection = std::any_of(plane.begin() + 3, plane.end(), [](float part) { return part != 0.0f; });
    return hasDirection ? std::optional(plane) : std::nullopt;
}

/// @param otherwise  for a text that is no finite number
float ReadFloat(const QSettings& stored, const char* key, float otherwise) {
    bool isNumber = false;
    const float number = stored.value(key).toFloat(&isNumber);
    return isNumber && std::isfinite(number) ? number : otherwise;
}

/// Nothing unless all four are colours.
std::optional<std::array<std::int32_t, 4>> ReadBackground(const QSettings& stored) {
    const QStringList texts = stored.value(kBackground).toStringList();
    std::array<std::int32_t, 4> colors{};
    if (texts.size() != static_cast<qsizetype>(colors.size())) return std::nullopt;
    for (std::size_t i = 0; i < colors.size(); ++i) {
        bool isNumber = false;
        colors[i] = texts[static_cast<qsizetype>(i)].toInt(&isNumber);
        if (!isNumber || colors[i] < 0 || colors[i] > 0xFFFFFF) return std::nullopt;
    }
    return colors;
}

}  // namespace

QSettings OpenSettings() { return QSettings("scenepane", "scenepane"); }

void ForgetSettings() { OpenSettings().clear(); }

int StoredSamples() {
    const QSettings stored = OpenSettings();
    const int otherwise = ReadBool(stored, kSmoothEdges, true) ? kSmoothSamples : 0;
    const int samples = ReadNumber(stored, kSamples, 8, otherwise);
    return samples == 0 || samples == 2 || samples == 4 || samples == 8 ? samples : otherwise;
}

void StoreSamples(int samples) { OpenSettings().setValue(kSamples, samples); }

ClipSettings StoredClip() {
    const QSettings stored = OpenSettings();
    ClipSettings clip;
    clip.shown = ReadBool(stored, kClipShown, clip.shown);
    if (const auto plane = ReadPlane(stored)) {
        std::copy_n(plane->begin(), 3, clip.center.begin());
        std::copy_n(plane->begin() + 3, 3, clip.normal.begin());
        clip.moved = ReadBool(stored, kClipMoved, clip.moved);
        clip.on = ReadBool(stored, kClipOn, clip.on);
    }
    clip.color = ReadColor(stored, kClipColor, clip.color);
    clip.handleColor = ReadColor(stored, kClipHandleColor, clip.handleColor);
    clip.outlineColor = ReadColor(stored, kClipOutlineColor, clip.outlineColor);
    return clip;
}

void StoreClip(const ClipSettings& clip) {
    QSettings stored = OpenSettings();
    stored.setValue(kClipOn, clip.on);
    stored.setValue(kClipShown, clip.shown);
    stored.setValue(kClipMoved, clip.moved);
    QStringList plane;
    for (const auto& part : {clip.center, clip.normal}) {
        for (const float value : part) plane << QString::number(value, 'g', 9);  // reads back as the same float
    }
    stored.setValue(kClipPlane, plane);
    stored.setValue(kClipColor, clip.color);
    stored.setValue(kClipHandleColor, clip.handleColor);
    stored.setValue(kClipOutlineColor, clip.outlineColor);
}

LassoSettings StoredLasso() {
    const QSettings stored = OpenSettings();
    LassoSettings lasso;
    lasso.insideColor = ReadColor(stored, kLassoInsideColor, lasso.insideColor);
    lasso.insideOpacity = ReadPercent(stored, kLassoInsideOpacity, lasso.insideOpacity);
    lasso.outsideColor = ReadColor(stored, kLassoOutsideColor, lasso.outsideColor);
    lasso.outsideOpacity = ReadPercent(stored, kLassoOutsideOpacity, lasso.outsideOpacity);
    return lasso;
}

void StoreLasso(const LassoSettings& lasso) {
    QSettings stored = OpenSettings();
    stored.setValue(kLassoInsideColor, lasso.insideColor);
    stored.setValue(kLassoInsideOpacity, lasso.insideOpacity);
    stored.setValue(kLassoOutsideColor, lasso.outsideColor);
    stored.setValue(kLassoOutsideOpacity, lasso.outsideOpacity);
}

std::optional<std::string> StoredProperties() {
    const QSettings stored = OpenSettings();
    if (!stored.contains(kProperties)) return std::nullopt;
    // A text that was changed by hand may read as a list.
    return stored.value(kProperties).toStringList().join(',').toStdString();
}

void StoreProperties(const std::string& store) { OpenSettings().setValue(kProperties, QString::fromStdString(store)); }

bool IsReducedAutomatically() { return ReadBool(OpenSettings(), kReducedAutomatically, true); }

void StoreReducedAutomatically(bool on) { OpenSettings().setValue(kReducedAutomatically, on); }

ViewSettings StoredView() {
    const QSettings stored = OpenSettings();
    ViewSettings view;
    constexpr int kLastScheme = static_cast<int>(MouseScheme::Delayed);
    view.mouse = static_cast<MouseScheme>(ReadNumber(stored, kMouseScheme, kLastScheme, static_cast<int>(view.mouse)));
    view.rotation =
        static_cast<KV_ScenePane::RotationMode>(ReadNumber(stored, kRotation, KV_ScenePane::RotateFree, view.rotation));
    view.background = ReadBackground(stored).value_or(view.background);
    const float size = ReadFloat(stored, kPointSize, view.pointSize);
    if (size >= kMinPointSize && size <= kMaxPointSize) view.pointSize = size;
    return view;
}

void StoreMouseScheme(MouseScheme scheme) { OpenSettings().setValue(kMouseScheme, static_cast<int>(scheme)); }

void StoreRotation(KV_ScenePane::RotationMode mode) { OpenSettings().setValue(kRotation, static_cast<int>(mode)); }

void StoreBackground(const std::array<std::int32_t, 4>& colors) {
    QStringList texts;
    for (const std::int32_t color : colors) texts << QString::number(color);
    OpenSettings().setValue(kBackground, texts);
}

void StorePointSize(float pixels) { OpenSettings().setValue(kPointSize, QString::number(pixels, 'g', 9)); }

ImportSettings StoredImport() {
    const QSettings stored = OpenSettings();
    ImportSettings settings;
    const int skip = ReadNumber(stored, kSkip, std::numeric_limits<std::int16_t>::max(), settings.skip);
    if (skip > 0) settings.skip = static_cast<std::int16_t>(skip);
    settings.confidence = ReadFloat(stored, kConfidence, settings.confidence);
    settings.color = ReadColor(stored, kScanColor, settings.color);
    return settings;
}

void StoreSkip(std::int16_t skip) { OpenSettings().setValue(kSkip, skip); }

void StoreConfidence(float limit) { OpenSettings().setValue(kConfidence, QString::number(limit, 'g', 9)); }

void StoreScanColor(std::int32_t color) { OpenSettings().setValue(kScanColor, color); }
