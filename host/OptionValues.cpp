// Numbers are read by std::from_chars, whose result does not depend on the locale.
#include "OptionValues.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>
#include <span>
#include <type_traits>
#include <utility>
#include <vector>

#include "FileTypes.h"
#include "ModeNames.h"
#include "PictureFile.h"

namespace {

constexpr int kMaxSide = 16384;  // the largest drawing area that common drivers accept, pixels
/// Of a drawing area. Mesa's software drawing makes no larger one of two sides of at most 16384 (measured with llvmpipe
/// of Mesa 22.3.6: 16384 x 8192 is drawn, 16384 x 8193 is refused).
constexpr int kMaxPixels = 1 << 27;
constexpr int kMaxSamples = 32;
constexpr int kMaxSkip = 32767;  // the viewer's skip value has 16 bits
constexpr int kMaxGpu = 31;

/// The whole of @p text as a number; empty for any other text, also for a number with something after it.
template <class Number>
std::optional<Number> WholeNumber(std::string_view text, int base = 10) {
    Number value{};
    const char* const end = text.data() + text.size();
    std::from_chars_result result{};
    if constexpr (std::is_floating_point_v<Number>) {
        result = std::from_chars(text.data(), end, value);
    } else {
        result = std::from_chars(text.data(), end, value, base);
    }
    if (result.ec != std::errc() || result.ptr != end) return std::nullopt;
    return value;
}

std::optional<int> IntegerIn(std::string_view text, int smallest, int largest) {
    const auto value = WholeNumber<int>(text);
    return value && *value >= smallest && *value <= largest ? value : std::nullopt;
}

/// RRGGBB as 0x00BBGGRR.
std::optional<std::int32_t> ColorIn(std::string_view text) {
    // from_chars accepts a minus sign, which is no digit of a colour.
    if (text.size() != 6 || text.front() == '-') return std::nullopt;
    const auto rgb = WholeNumber<std::int32_t>(text, 16);
    if (!rgb) return std::nullopt;
    return ((*rgb & 0xFF) << 16) | (*rgb & 0xFF00) | (*rgb >> 16);
}

/// The position of a name, or a number that is one.
std::optional<int> NumberOrName(std::string_view text, std::span<const std::string_view> names) {
    const auto found = std::ranges::find(names, text);
    if (found != names.end()) return static_cast<int>(found - names.begin());
    return IntegerIn(text, 0, static_cast<int>(names.size()) - 1);
}

/// A finite number. One that is too small for a float is 0; one that is too small for a double is refused, as
/// std::from_chars does not report on which side a number is out of range.
std::optional<float> FiniteNumber(std::string_view text) {
    const auto number = WholeNumber<float>(text);
    if (number) return std::isfinite(*number) ? number : std::nullopt;
    const auto wide = WholeNumber<double>(text);
    return wide && std::abs(*wide) < 1.0 ? std::optional(0.0f) : std::nullopt;
}

}  // namespace

bool ReadPicturePath(std::string_view text, HostOptions& options) {
    if (text != kStandardOutput && (text.starts_with('-') || !PictureFormatOf(text))) return false;
    options.picturePath = text;
    return true;
}

bool ReadExportPath(std::string_view text, HostOptions& options) {
    if (text.empty() || text.starts_with('-')) return false;
    options.exportPath = text;
    return true;
}

bool ReadSavedTransforms(std::string_view text, HostOptions& options) {
    if (text.starts_with('-') || ExtensionOf(text) != "json") return false;
    options.savedTransforms = text;
    return true;
}

bool ReadSize(std::string_view text, HostOptions& options) {
    const std::size_t cross = text.find('x');
    if (cross == std::string_view::npos) return false;
    const auto width = IntegerIn(text.substr(0, cross), 1, kMaxSide);
    const auto height = IntegerIn(text.substr(cross + 1), 1, kMaxSide);
    if (!width || !height || *width > kMaxPixels / *height) return false;
    options.width = *width;
    options.height = *height;
    return true;
}

bool ReadView(std::string_view text, HostOptions& options) {
    const auto view = NumberOrName(text, kViewNames);
    if (view) options.view = static_cast<KV_ScenePane::ViewMode>(*view);
    return view.has_value();
}

bool ReadViews(std::string_view text, HostOptions& options) {
    std::vector<KV_ScenePane::ViewMode> views;
    if (text == "all") {
        for (std::size_t i = 0; i < kViewNames.size(); ++i) views.push_back(static_cast<KV_ScenePane::ViewMode>(i));
    } else {
        // The last name ends with the text: one more comma is no part of a list.
        for (std::size_t end = 0; end != std::string_view::npos;) {
            end = text.find(',');
            const auto view = NumberOrName(text.substr(0, end), kViewNames);
            if (!view) return false;
            views.push_back(static_cast<KV_ScenePane::ViewMode>(*view));
            if (std::ranges::count(views, views.back()) > 1) return false;  // both pictures would have the same name
            if (end != std::string_view::npos) text.remove_prefix(end + 1);
        }
    }
    options.views = std::move(views);
    return true;
}

bool ReadDrawMode(std::string_view text, HostOptions& options) {
    const auto mode = NumberOrName(text, kDrawModeNames);
    if (mode) options.drawMode = static_cast<KV_ScenePane::DrawMode>(*mode);
    return mode.has_value();
}

bool ReadBackground(std::string_view text, HostOptions& options) {
    const std::size_t comma = text.find(',');
    const auto top = ColorIn(text.substr(0, comma));
    const auto bottom = comma == std::string_view::npos ? top : ColorIn(text.substr(comma + 1));
    if (!top || !bottom) return false;
    options.background = {*top, *bottom};
    return true;
}

bool ReadSamples(std::string_view text, HostOptions& options) {
    const auto samples = IntegerIn(text, 0, kMaxSamples);
    if (samples) options.samples = *samples;
    return samples.has_value();
}

bool ReadPointSize(std::string_view text, HostOptions& options) {
    const auto size = WholeNumber<float>(text);
    if (!size || !(*size > 0.0f && *size <= 1000.0f)) return false;
    options.pointSize = size;
    return true;
}

bool ReadZoom(std::string_view text, HostOptions& options) {
    const auto zoom = WholeNumber<float>(text);
    if (!zoom || !(*zoom >= 0.1f && *zoom <= 10.0f)) return false;
    options.zoom = *zoom;
    return true;
}

bool ReadSkip(std::string_view text, HostOptions& options) {
    const auto skip = IntegerIn(text, 1, kMaxSkip);
    if (skip) options.import.skip = static_cast<std::int16_t>(*skip);
    options.given.skip = skip.has_value();
    return skip.has_value();
}

bool ReadConfidence(std::string_view text, HostOptions& options) {
    const auto confidence = WholeNumber<float>(text);
    if (!confidence || !std::isfinite(*confidence)) return false;
    options.import.confidence = *confidence;
    options.given.confidence = true;
    return true;
}

bool ReadColor(std::string_view text, HostOptions& options) {
    const auto color = ColorIn(text);
    if (!color && text != "auto") return false;
    // Of several the last one counts.
    options.import.color = color.value_or(ImportSettings{}.color);
    options.usesPalette = !color;
    options.given.color = color.has_value();
    return true;
}

bool ReadClip(std::string_view text, HostOptions& options) {
    std::array<float, 6> numbers{};
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        // The last number ends with the text: one more comma is no part of a number.
        const std::size_t end = i + 1 < numbers.size() ? std::min(text.find(','), text.size()) : text.size();
        const auto number = FiniteNumber(text.substr(0, end));
        if (!number) return false;
        numbers[i] = *number;
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    const auto& [cx, cy, cz, nx, ny, nz] = numbers;
    if (nx == 0.0f && ny == 0.0f && nz == 0.0f) return false;
    options.clip = ClipPlane{{cx, cy, cz}, {nx, ny, nz}};
    return true;
}

bool ReadGpu(std::string_view text, HostOptions& options) {
    const auto number = IntegerIn(text, 0, kMaxGpu);
    if (!number && text != "software") return false;
    options.gpu = number ? *number : KV_ScenePane::WindowRequest::kSoftware;
    return true;
}

bool ReadPick(std::string_view text, HostOptions& options) {
    const std::size_t comma = text.find(',');
    if (comma == std::string_view::npos) return false;
    const auto x = IntegerIn(text.substr(0, comma), 0, kMaxSide - 1);
    const auto y = IntegerIn(text.substr(comma + 1), 0, kMaxSide - 1);
    if (!x || !y) return false;
    options.picks.push_back({*x, *y});
    return true;
}

bool ReadCut(std::string_view text, HostOptions& options) {
    auto lasso = ParseLasso(text);
    auto* const cut = std::get_if<LassoCut>(&lasso);
    if (cut != nullptr) options.cuts.push_back(std::move(*cut));
    return cut != nullptr;
}

std::string CutError(std::string_view text) {
    const auto lasso = ParseLasso(text);
    const auto* const error = std::get_if<LassoError>(&lasso);
    return error == nullptr ? std::string() : error->text;
}
