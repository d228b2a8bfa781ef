// Text and JSON of a scene, of picks and of an alignment. Numbers are written by std::to_chars, whose result does not
// depend on the locale.
#include "SceneReport.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <span>
#include <utility>

#include "CutOption.h"
#include "FileLook.h"
#include "JsonText.h"
#include "KV_ScenePane/PathText.h"
#include "options/TerminalText.h"

namespace {

using ProgramOptions::TerminalText;

/// Lower-case hexadecimal digits with leading zeros.
std::string HexText(std::uint32_t value, int digits) {
    std::string text;
    for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4) text += "0123456789abcdef"[(value >> shift) & 0xF];
    return text;
}

/// JSON has no NaN and no infinity.
std::string JsonNumber(float value) { return std::isfinite(value) ? NumberText(value) : "null"; }

/// @param comma  between two numbers
std::string JsonNumbers(std::span<const float> values, const char* comma = ", ") {
    std::string json = "[";
    for (const float value : values) json += (json.size() > 1 ? comma : "") + JsonNumber(value);
    return json + ']';
}

std::string JsonObject(const ObjectReport& object) {
    const bool hasPosition = HasPosition(object);
    return "{\"file\": " + JsonString(object.file) + ", \"index\": " + std::to_string(object.index) +
           ", \"name\": " + JsonString(object.name) + ", \"vertices\": " + std::to_string(object.vertices) +
           ", \"triangles\": " + std::to_string(object.triangles) +
           ", \"box\": " + (hasPosition ? JsonNumbers(object.box) : "null") +
           ", \"center\": " + (hasPosition ? JsonNumbers(object.center) : "null") + ", \"color\": \"" +
           ColorText(object.color) + "\", \"hasVertexColors\": " + (object.hasVertexColors ? "true" : "false") +
           ", \"transform\": " + JsonNumbers(object.transform) + '}';
}

std::string JsonPoints(const PointsReport& points) {
    return "{\"file\": " + JsonString(points.file) + ", \"count\": " + std::to_string(points.count) +
           ", \"box\": " + JsonNumbers(points.box) + ", \"hasColors\": " + (points.hasColors ? "true" : "false") + '}';
}

/// A JSON array with one element per line.
template <class Element, class ToJson>
std::string JsonLines(const std::vector<Element>& elements, ToJson toJson) {
    std::string json = "[";
    for (const Element& element : elements) json += (json.size() > 1 ? ",\n  " : "\n  ") + toJson(element);
    return json + (elements.empty() ? "]" : "\n]");
}

/// Each number after a blank.
std::string TextNumbers(std::span<const float> values) {
    std::string text;
    for (const float value : values) text += ' ' + NumberText(value);
    return text;
}

/// The axes of a box, one line each.
std::string TextBox(std::span<const float> box) {
    std::string text = "  box         x " + TextNumbers(box.subspan(0, 2)) + '\n';
    text += "              y " + TextNumbers(box.subspan(2, 2)) + '\n';
    return text + "              z " + TextNumbers(box.subspan(4, 2)) + '\n';
}

std::string TextPoints(const PointsReport& points) {
    return TerminalText(points.file) + "\n  points         " + std::to_string(points.count) + '\n' +
           TextBox(points.box) + "  colors         " + (points.hasColors ? "yes" : "no") + '\n';
}

/// One object for a reader: its file, then one indented line per property.
std::string TextObject(const ObjectReport& object) {
    std::string text = TerminalText(object.file) + '\n';
    text += "  index          " + std::to_string(object.index) + '\n';
    text += "  name           " + TerminalText(KV_ScenePane::PathBytes(object.name)) + '\n';
    text += "  vertices       " + std::to_string(object.vertices) + '\n';
    text += "  triangles      " + std::to_string(object.triangles) + '\n';
    if (HasPosition(object)) {
        text += TextBox(object.box);
        text += "  center        " + TextNumbers(object.center) + '\n';
    } else {
        text += "  box            none: no finite coordinates\n";
    }
    text += "  color          " + ColorText(object.color) + '\n';
    text += std::string("  vertex colors  ") + (object.hasVertexColors ? "yes" : "no") + '\n';
    // The first of the four rows has the label.
    const std::span transform(object.transform);
    for (std::size_t row = 0; row < 4; ++row)
        text +=
            (row == 0 ? "  transform     " : "                ") + TextNumbers(transform.subspan(4 * row, 4)) + '\n';
    return text;
}

/// Empty for a height that was not found.
std::string RuleName(const ClipReport& clip) {
    if (!clip.height.found) return {};
    switch (clip.height.kind) {
        case KV_ScenePane::HeightFromAllPoints:
            return "all points";
        case KV_ScenePane::HeightFlatSpot:
            return "flat spot";
        case KV_ScenePane::HeightCurvedSpot:
            return "curved spot";
        case KV_ScenePane::HeightNotDecided:
            break;
    }
    return {};
}

std::string TextClip(const ClipReport& clip) {
    const std::string rule = RuleName(clip);
    std::string text = "clip plane\n";
    text += "  height         " + NumberText(clip.height.height) + '\n';
    text += "  rule           " + (rule.empty() ? "none, no height was found" : rule) + '\n';
    text += "  center        " + TextNumbers(clip.center) + '\n';
    text += "  normal        " + TextNumbers(clip.normal) + '\n';
    return text;
}

// Without blanks, as a pick.
std::string JsonClip(const ClipReport& clip) {
    const std::string rule = RuleName(clip);
    std::string json = std::string("{\"found\":") + (clip.height.found ? "true" : "false");
    json += ",\"height\":" + JsonNumber(clip.height.height);
    if (!rule.empty()) json += ",\"rule\":\"" + rule + '"';
    json += ",\"center\":" + JsonNumbers(clip.center, ",");
    json += ",\"normal\":" + JsonNumbers(clip.normal, ",");
    return json + '}';
}

std::string TextCuts(const std::vector<CutReport>& cuts) {
    std::string text = "cuts\n";
    for (const CutReport& cut : cuts) {
        std::string name(LassoModeName(cut.mode));
        name.resize(std::max<std::size_t>(name.size(), 16), ' ');
        text += "  " + name + (cut.hasChanged ? " changed an object\n" : " changed nothing\n");
    }
    return text;
}

// Without blanks, as a pick.
std::string JsonCuts(const std::vector<CutReport>& cuts) {
    std::string json = "[";
    for (const CutReport& cut : cuts) {
        json += json.size() > 1 ? ",{\"mode\":\"" : "{\"mode\":\"";
        json.append(LassoModeName(cut.mode)).append(cut.hasChanged ? "\",\"changed\":true}" : "\",\"changed\":false}");
    }
    return json + ']';
}

// Without blanks: one line for a script, however many picks.
std::string JsonPick(const PickReport& pick) {
    std::string json = "{\"x\":" + std::to_string(pick.x) + ",\"y\":" + std::to_string(pick.y) + ",\"object\":";
    if (!pick.hit) return json + "-1}";
    return json + std::to_string(pick.hit->object) + ",\"file\":" + JsonString(pick.file) +
           ",\"triangle\":" + std::to_string(pick.hit->triangle) + ",\"point\":" + JsonNumbers(pick.hit->point, ",") +
           ",\"distance\":" + JsonNumber(pick.hit->distance) + '}';
}

}  // namespace

bool IsBox(const std::array<float, 6>& box) { return box[0] <= box[1] && box[2] <= box[3] && box[4] <= box[5]; }

bool HasPosition(const ObjectReport& object) { return object.vertices == 0 || IsBox(object.box); }

ObjectReport ReportObject(KV_ScenePane::ScenePane& pane, std::int16_t index, std::string file) {
    // Name and vertex colours come from GetObjectInfo(): the automation interface has no methods for them.
    ObjectReport object;
    object.file = std::move(file);
    object.index = index;
    KV_ScenePane::ObjectInfo info;
    if (pane.GetObjectInfo(index, &info)) {
        object.name = info.name;
        object.hasVertexColors = info.hasVertexColors;
    }
    // A mesh with an image comes from a temporary ply file, whose objects the viewer gives no name.
    if (object.name.empty() && LookAt(object.file) == FileLook::Process)
        object.name = KV_ScenePane::WidePath(object.file);
    KV_ScenePane::_DKV_ScenePane& methods = pane.Methods();
    methods.GetMeshDataSize(index, &object.vertices, &object.triangles);
    auto& box = object.box;
    methods.GetObjectBoundingBox(index, &box[0], &box[1], &box[2], &box[3], &box[4], &box[5]);
    methods.GetObjectCenter(index, &object.center[0], &object.center[1], &object.center[2]);
    object.color = methods.GetObjectColor(index);
    auto& t = object.transform;
    methods.GetTrafoOfScan(index, &t[0], &t[1], &t[2], &t[3], &t[4], &t[5], &t[6], &t[7], &t[8], &t[9], &t[10], &t[11],
                           &t[12], &t[13], &t[14], &t[15]);
    for (float& element : t) element += 0.0f;  // 0 for -0
    return object;
}

PointsReport ReportPoints(const KV_ScenePane::PointCloud& cloud, std::string file) {
    PointsReport report{std::move(file), cloud.xyz.size() / 3, !cloud.colors.empty(), {}};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        report.box[2 * axis] = report.box[2 * axis + 1] = cloud.xyz[axis];
        for (std::size_t i = axis; i < cloud.xyz.size(); i += 3) {
            report.box[2 * axis] = std::min(report.box[2 * axis], cloud.xyz[i]);
            report.box[2 * axis + 1] = std::max(report.box[2 * axis + 1], cloud.xyz[i]);
        }
    }
    return report;
}

ClipReport ReportClip(KV_ScenePane::ScenePane& pane) {
    ClipReport clip;
    clip.height = pane.GetClipHeight();
    auto& [x, y, z] = clip.center;
    auto& [normalX, normalY, normalZ] = clip.normal;
    pane.Methods().GetClipPlane(&x, &y, &z, &normalX, &normalY, &normalZ);
    return clip;
}

std::string ReportText(const SceneReport& report) {
    std::string text;
    for (const ObjectReport& object : report.objects) text += TextObject(object);
    for (const PointsReport& points : report.points) text += TextPoints(points);
    for (const FailedFile& failed : report.failed)
        text += TerminalText(failed.file) + "\n  nothing added: " + failed.reason + '\n';
    for (const FileWarning& warning : report.warnings)
        text += TerminalText(warning.file) + "\n  warning: " + warning.text + '\n';
    if (report.clip) text += TextClip(*report.clip);
    if (!report.cuts.empty()) text += TextCuts(report.cuts);
    return text;
}

std::string ReportJson(const SceneReport& report) {
    const auto failure = [](const FailedFile& failed) {
        return "{\"file\": " + JsonString(failed.file) + ", \"reason\": " + JsonString(failed.reason) + '}';
    };
    const auto warned = [](const FileWarning& warning) {
        return "{\"file\": " + JsonString(warning.file) + ", \"text\": " + JsonString(warning.text) + '}';
    };
    return "{\"objects\": " + JsonLines(report.objects, JsonObject) +
           ",\n\"failed\": " + JsonLines(report.failed, failure) +
           ",\n\"warnings\": " + JsonLines(report.warnings, warned) +
           ",\n\"points\": " + JsonLines(report.points, JsonPoints) +
           (report.clip ? ",\n\"clip\":" + JsonClip(*report.clip) : "") +
           (report.cuts.empty() ? "" : ",\n\"cuts\":" + JsonCuts(report.cuts)) + "}\n";
}

std::string PickText(const std::vector<PickReport>& picks) {
    std::string text;
    for (const PickReport& pick : picks) {
        text += std::to_string(pick.x) + ',' + std::to_string(pick.y) + '\n';
        if (!pick.hit) {
            text += "  nothing\n";
            continue;
        }
        text += "  object         " + std::to_string(pick.hit->object) + '\n';
        text += "  file           " + TerminalText(pick.file) + '\n';
        text += "  triangle       " + std::to_string(pick.hit->triangle) + '\n';
        text += "  point         " + TextNumbers(pick.hit->point) + '\n';
        text += "  distance      " + TextNumbers({&pick.hit->distance, 1}) + '\n';
    }
    return text;
}

std::string PickJson(const std::vector<PickReport>& picks) {
    std::string json = "{\"picks\":[";
    for (const PickReport& pick : picks) json.append(&pick == picks.data() ? "" : ",").append(JsonPick(pick));
    return json + "]}\n";
}

std::string AlignmentText(const KV_ScenePane::AlignmentResult& result) {
    const auto number = [](double value) { return JsonDouble(value); };
    std::string text;
    for (std::size_t row = 0; row < 4; ++row) {
        text += row == 0 ? "transform     " : "              ";
        for (std::size_t column = 0; column < 4; ++column) text += ' ' + number(result.transform[4 * row + column]);
        text += '\n';
    }
    for (std::size_t i = 0; i < result.residuals.size(); ++i) {
        std::string label = "residual " + std::to_string(i + 1);
        label.resize(std::max<std::size_t>(label.size() + 1, 15), ' ');
        text += label + number(result.residuals[i]) + '\n';
    }
    return text + "rms            " + number(result.rms) + '\n';
}

std::string AlignmentJson(const KV_ScenePane::AlignmentResult& result) {
    const auto array = [](std::span<const double> values) {
        std::string json = "[";
        for (const double value : values) json.append(json.size() > 1 ? "," : "").append(JsonDouble(value));
        return json + ']';
    };
    return "{\"transform\":" + array(result.transform) + ",\"residuals\":" + array(result.residuals) +
           ",\"rms\":" + JsonDouble(result.rms) + "}\n";
}

std::string ColorText(std::int32_t color) {
    const auto c = static_cast<std::uint32_t>(color);
    // 0x00BBGGRR to 0x00RRGGBB.
    const std::uint32_t rgb = ((c & 0xFF) << 16) | (c & 0xFF00) | ((c >> 16) & 0xFF);
    std::string text = HexText(rgb, 6);
    for (char& digit : text) {
        if (digit >= 'a') digit = static_cast<char>(digit - 'a' + 'A');
    }
    return text;
}

std::string NumberText(float value) {
    char digits[32];
    const auto result = std::to_chars(digits, digits + sizeof digits, value);
    return {digits, result.ptr};
}
