// Reader and writer of needle files, and the way of their needles into a viewer.
#include "NeedleFile.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <stdexcept>

#include "JsonFile.h"
#include "PaintBlock.h"
#include "SceneReport.h"

namespace {

constexpr std::string_view kFormat = "scenepane needles";
constexpr const char* kKind = "needles";
constexpr int kVersion = 1;

/// Where a key of an entry is stored; exactly one of the pointers is set.
struct Field {
    const char* key;
    std::array<float, 3> NeedleMark::*position = nullptr;
    float NeedleLook::*size = nullptr;
    std::int32_t NeedleLook::*color = nullptr;
    bool isNeeded = false;
    bool canBeNegative = true;
};

/// In the order in which they are written, after the id.
constexpr Field kFields[] = {
    {"pin", &NeedleMark::pin, nullptr, nullptr, true},
    {"head", &NeedleMark::head, nullptr, nullptr, true},
    {"headRadius", nullptr, &NeedleLook::headRadius, nullptr, false, false},
    {"headColor", nullptr, nullptr, &NeedleLook::headColor},
    {"pinSize", nullptr, &NeedleLook::pinSize, nullptr, false, false},
    {"pinColor", nullptr, nullptr, &NeedleLook::pinColor},
    {"hitPointRadius", nullptr, &NeedleLook::hitPointRadius, nullptr},
    {"hitPointColor", nullptr, nullptr, &NeedleLook::hitPointColor},
    {"headSelectionColor", nullptr, nullptr, &NeedleLook::headSelectionColor},
};

float CheckedSize(const Field& field, float size) {
    if (size < 0 && !field.canBeNegative) throw std::runtime_error("the size is negative");
    return size;
}

float ToSize(const Field& field, const QJsonValue& value) { return CheckedSize(field, ToFloat(value)); }

std::int32_t ToId(const QJsonValue& value) {
    const double number = ToNumber(value);
    using Limits = std::numeric_limits<std::int32_t>;
    if (std::trunc(number) != number || number < Limits::min() || number > Limits::max())
        throw std::runtime_error("not a whole number of 32 bits");
    return static_cast<std::int32_t>(number);
}

std::array<float, 3> ToPosition(const QJsonValue& value) {
    const QJsonArray numbers = ToArray(value);
    if (numbers.size() != 3) throw std::runtime_error("not 3 numbers");
    return {ToFloat(numbers[0]), ToFloat(numbers[1]), ToFloat(numbers[2])};
}

/// "#RRGGBB". @return 0x00BBGGRR
std::int32_t ToColor(const QJsonValue& value) {
    const std::string text = ToText(value);
    unsigned rgb = 0;
    const char* const end = text.data() + text.size();
    const bool isColor =
        text.size() == 7 && text[0] == '#' && std::from_chars(text.data() + 1, end, rgb, 16).ptr == end;
    if (!isColor) throw std::runtime_error("not a colour like \"#00FF00\"");
    return static_cast<std::int32_t>((rgb >> 16) | (rgb & 0xFF00) | ((rgb & 0xFF) << 16));
}

NeedleMark ReadEntry(const QJsonValue& entry) {
    if (!entry.isObject()) throw std::runtime_error("not an object");
    const QJsonObject object = entry.toObject();
    NeedleMark mark;
    ReadKey(object, "id", true, [&](const QJsonValue& value) { mark.id = ToId(value); });
    for (const Field& field : kFields) {
        ReadKey(object, field.key, field.isNeeded, [&](const QJsonValue& value) {
            if (field.position != nullptr) mark.*field.position = ToPosition(value);
            if (field.size != nullptr) mark.look.*field.size = ToSize(field, value);
            if (field.color != nullptr) mark.look.*field.color = ToColor(value);
        });
    }
    return mark;
}

void CheckIds(const std::vector<NeedleMark>& marks) {
    std::vector<std::int32_t> ids(marks.size());
    std::ranges::transform(marks, ids.begin(), &NeedleMark::id);
    std::ranges::sort(ids);
    const auto twice = std::ranges::adjacent_find(ids);
    if (twice != ids.end()) throw std::runtime_error("two needles have the id " + std::to_string(*twice));
}

std::string JsonNeedle(const NeedleMark& mark) {
    std::string json = "{\"id\": " + std::to_string(mark.id);
    for (const Field& field : kFields) {
        json.append(", \"").append(field.key).append("\": ");
        if (field.position != nullptr) {
            const auto& [x, y, z] = mark.*field.position;
            json += '[' + JsonDouble(x) + ", " + JsonDouble(y) + ", " + JsonDouble(z) + ']';
        }
        if (field.size != nullptr) json += JsonDouble(CheckedSize(field, mark.look.*field.size));
        if (field.color != nullptr) json += "\"#" + ColorText(mark.look.*field.color) + '"';
    }
    return json + '}';
}

/// @throws std::runtime_error that names the needle that cannot be written
std::string JsonOf(const std::vector<NeedleMark>& marks) {
    if (marks.size() > kMaxNeedlesInFile) throw std::runtime_error("there are too many needles");
    std::string json = "{\"format\": \"";
    json.append(kFormat).append("\", \"version\": ").append(std::to_string(kVersion)).append(", \"needles\": [");
    for (const NeedleMark& mark : marks) {
        json += &mark == marks.data() ? "\n  " : ",\n  ";
        At("needle " + std::to_string(mark.id), [&] { json += JsonNeedle(mark); });
    }
    return json + "\n]}\n";
}

bool HasNeedle(KV_ScenePane::_DKV_ScenePane& methods, std::int32_t id) {
    std::array<float, 6> p{};
    return methods.GetNeedle(id, &p[0], &p[1], &p[2], &p[3], &p[4], &p[5]) != KV_ScenePane::kVariantFalse;
}

}  // namespace

std::vector<NeedleMark> ParseNeedles(std::string_view text) {
    const QJsonObject file = ParseJsonObject(text, kKind);
    ReadKey(file, "format", true, [](const QJsonValue& value) {
        if (ToText(value) != kFormat) throw std::runtime_error("not a file of needles");
    });
    ReadKey(file, "version", true, [](const QJsonValue& value) {
        if (ToNumber(value) != kVersion) throw std::runtime_error("an unknown version");
    });
    QJsonArray entries;
    ReadKey(file, "needles", true, [&](const QJsonValue& value) { entries = ToArray(value); });
    if (static_cast<std::size_t>(entries.size()) > kMaxNeedlesInFile)
        throw std::runtime_error("there are too many needles");
    std::vector<NeedleMark> marks;
    for (qsizetype i = 0; i < entries.size(); ++i)
        At("entry " + std::to_string(i + 1), [&] { marks.push_back(ReadEntry(entries[i])); });
    CheckIds(marks);
    return marks;
}

bool ReadNeedleFile(const std::string& path, std::vector<NeedleMark>* marks, std::string* reason) {
    try {
        *marks = ParseNeedles(ReadJsonFile(path, kMaxNeedleFileSize, kKind));
        return true;
    } catch (const std::runtime_error& error) {
        *reason = error.what();
    }
    return false;
}

bool WriteNeedleFile(const std::string& path, const std::vector<NeedleMark>& marks, std::string* reason) {
    return WriteJsonFile(
        path, [&] { return JsonOf(marks); }, reason);
}

void SetNeedleLook(KV_ScenePane::_DKV_ScenePane& methods, const NeedleLook& look) {
    methods.SetNeedleRenderParameters(look.length, look.headRadius, look.headColor, look.pinSize, look.pinColor,
                                      look.hitPointRadius, look.hitPointColor, look.headSelectionColor);
}

std::vector<std::int32_t> PlaceNeedles(KV_ScenePane::_DKV_ScenePane& methods, const std::vector<NeedleMark>& marks,
                                       const NeedleLook& look, std::int32_t* limit) {
    const PaintBlock block(methods);  // each new needle would draw a frame
    std::vector<std::int32_t> inUse;
    for (const NeedleMark& mark : marks) {
        if (HasNeedle(methods, mark.id)) inUse.push_back(mark.id);
    }
    const std::int64_t needed = methods.GetNumberOfNeedles() + static_cast<std::int64_t>(marks.size()) -
                                static_cast<std::int64_t>(inUse.size());
    if (needed > *limit) {
        *limit = static_cast<std::int32_t>(std::min<std::int64_t>(needed, std::numeric_limits<std::int32_t>::max()));
        methods.SetMaxNumberOfNeedles(*limit);
    }
    for (const NeedleMark& mark : marks) {
        if (std::ranges::find(inUse, mark.id) != inUse.end()) continue;
        SetNeedleLook(methods, mark.look);
        (void)methods.CreateNeedle(mark.id, mark.pin[0], mark.pin[1], mark.pin[2], mark.head[0], mark.head[1],
                                   mark.head[2]);
    }
    SetNeedleLook(methods, look);
    return inUse;
}
