// Reader and writer of needle files, and the way of their needles into a viewer.
#include "NeedleFile.h"

#include <sys/stat.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <stdexcept>
#include <system_error>

#include "JsonText.h"
#include "PaintBlock.h"
#include "SceneFile.h"
#include "SceneReport.h"
#include "files/AtomicFile.h"
#include "files/RegularFile.h"

namespace {

constexpr std::string_view kFormat = "scenepane needles";
constexpr int kVersion = 1;

/// Where a key of an entry is stored; exactly one of the pointers is set.
struct Field {
    std::string_view key;
    std::array<float, 3> NeedleMark::*position = nullptr;
    float NeedleLook::*size = nullptr;
    std::int32_t NeedleLook::*color = nullptr;
    bool isNeeded = false;
};

/// In the order in which they are written, after the id.
constexpr Field kFields[] = {
    {"pin", &NeedleMark::pin, nullptr, nullptr, true},
    {"head", &NeedleMark::head, nullptr, nullptr, true},
    {"headRadius", nullptr, &NeedleLook::headRadius, nullptr},
    {"headColor", nullptr, nullptr, &NeedleLook::headColor},
    {"pinSize", nullptr, &NeedleLook::pinSize, nullptr},
    {"pinColor", nullptr, nullptr, &NeedleLook::pinColor},
    {"hitPointRadius", nullptr, &NeedleLook::hitPointRadius, nullptr},
    {"hitPointColor", nullptr, nullptr, &NeedleLook::hitPointColor},
    {"headSelectionColor", nullptr, nullptr, &NeedleLook::headSelectionColor},
};

float ReadFloat(JsonText& json) {
    const auto value = static_cast<float>(json.ReadNumber());
    if (!std::isfinite(value)) throw std::runtime_error("the number is out of range");
    return value;
}

std::int32_t ReadId(JsonText& json) {
    const double value = json.ReadNumber();
    using Limits = std::numeric_limits<std::int32_t>;
    if (std::trunc(value) != value || value < Limits::min() || value > Limits::max())
        throw std::runtime_error("not a whole number of 32 bits");
    return static_cast<std::int32_t>(value);
}

std::array<float, 3> ReadPosition(JsonText& json) {
    std::array<float, 3> position{};
    std::size_t count = 0;
    json.ReadArray([&] {
        if (count == position.size()) throw std::runtime_error("there are more than 3 numbers");
        position[count++] = ReadFloat(json);
    });
    if (count != position.size()) throw std::runtime_error("there are fewer than 3 numbers");
    return position;
}

/// "#RRGGBB". @return 0x00BBGGRR
std::int32_t ReadColor(JsonText& json) {
    const std::string text = json.ReadString();
    unsigned rgb = 0;
    const char* const end = text.data() + text.size();
    const bool isColor =
        text.size() == 7 && text[0] == '#' && std::from_chars(text.data() + 1, end, rgb, 16).ptr == end;
    if (!isColor) throw std::runtime_error("not a colour like \"#00FF00\"");
    return static_cast<std::int32_t>((rgb >> 16) | (rgb & 0xFF00) | ((rgb & 0xFF) << 16));
}

void ReadField(JsonText& json, const Field& field, NeedleMark* mark) {
    if (field.position != nullptr) mark->*field.position = ReadPosition(json);
    if (field.size != nullptr) mark->look.*field.size = ReadFloat(json);
    if (field.color != nullptr) mark->look.*field.color = ReadColor(json);
}

/// The reader of one file. Where it is when it throws is where the fault is.
class NeedleReader {
public:
    explicit NeedleReader(std::string_view text) : m_json(text) {}

    std::vector<NeedleMark> Read() {
        try {
            ReadFile();
        } catch (const std::runtime_error& error) {
            throw std::runtime_error(Place() + error.what());
        }
        return std::move(m_marks);
    }

private:
    void ReadFile() {
        bool hasFormat = false, hasVersion = false, hasNeedles = false;
        m_json.ReadObject([&](const std::string& key) {
            m_key = key;
            if (key == "format") {
                ReadOnce(&hasFormat);
                if (m_json.ReadString() != kFormat) throw std::runtime_error("not a file of needles");
            } else if (key == "version") {
                ReadOnce(&hasVersion);
                if (m_json.ReadNumber() != kVersion) throw std::runtime_error("an unknown version");
            } else if (key == "needles") {
                ReadOnce(&hasNeedles);
                m_json.ReadArray([this] { ReadEntry(); });
                m_entry = 0;
            } else {
                m_json.SkipValue();
            }
            m_key.clear();
        });
        m_json.ExpectEnd();
        Need(hasFormat, "format");
        Need(hasVersion, "version");
        Need(hasNeedles, "needles");
        CheckIds();
    }

    void ReadEntry() {
        ++m_entry;
        m_key.clear();
        if (m_entry > kMaxNeedlesInFile) throw std::runtime_error("there are too many needles");
        NeedleMark mark;
        bool hasId = false;
        std::array<bool, std::size(kFields)> has{};
        m_json.ReadObject([&](const std::string& key) {
            m_key = key;
            const auto* const field = std::ranges::find(kFields, key, &Field::key);
            if (key == "id") {
                ReadOnce(&hasId);
                mark.id = ReadId(m_json);
            } else if (field != std::end(kFields)) {
                ReadOnce(&has[static_cast<std::size_t>(field - kFields)]);
                ReadField(m_json, *field, &mark);
            } else {
                m_json.SkipValue();
            }
            m_key.clear();
        });
        Need(hasId, "id");
        for (std::size_t i = 0; i < has.size(); ++i) Need(has[i] || !kFields[i].isNeeded, kFields[i].key);
        m_marks.push_back(mark);
    }

    static void ReadOnce(bool* wasRead) {
        if (*wasRead) throw std::runtime_error("occurs twice");
        *wasRead = true;
    }

    void Need(bool isThere, std::string_view key) {
        if (isThere) return;
        m_key = key;
        throw std::runtime_error("is missing");
    }

    void CheckIds() {
        std::vector<std::int32_t> ids;
        for (const NeedleMark& mark : m_marks) ids.push_back(mark.id);
        std::ranges::sort(ids);
        const auto twice = std::ranges::adjacent_find(ids);
        if (twice != ids.end()) throw std::runtime_error("two needles have the id " + std::to_string(*twice));
    }

    /// "line 4, entry 2, key "pin": ".
    [[nodiscard]] std::string Place() const {
        std::string place = "line " + std::to_string(m_json.Line());
        if (m_entry != 0) place += ", entry " + std::to_string(m_entry);
        if (!m_key.empty()) place += ", key \"" + PrintableKey() + '"';
        return place + ": ";
    }

    /// Short and without control characters, because the reason is one line.
    [[nodiscard]] std::string PrintableKey() const {
        std::string key = m_key.substr(0, 40);
        std::ranges::replace_if(
            key, [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; }, '?');
        return key;
    }

    JsonText m_json;
    std::vector<NeedleMark> m_marks;
    std::size_t m_entry = 0;  // from 1; 0 outside the entries
    std::string m_key;        // whose value is read; empty between the keys
};

/// The shortest text of the number as a double: other readers of JSON read doubles, and their floats are these bits.
std::string JsonNumber(float value) {
    if (!std::isfinite(value)) throw std::runtime_error("a number is not finite");
    std::array<char, 32> text{};
    char* const end = std::to_chars(text.begin(), text.end(), static_cast<double>(value)).ptr;
    return {text.data(), end};
}

std::string JsonNeedle(const NeedleMark& mark) {
    std::string json = "{\"id\": " + std::to_string(mark.id);
    for (const Field& field : kFields) {
        json.append(", \"").append(field.key).append("\": ");
        if (field.position != nullptr) {
            const auto& [x, y, z] = mark.*field.position;
            json += '[' + JsonNumber(x) + ", " + JsonNumber(y) + ", " + JsonNumber(z) + ']';
        }
        if (field.size != nullptr) json += JsonNumber(mark.look.*field.size);
        if (field.color != nullptr) json += "\"#" + ColorText(mark.look.*field.color) + '"';
    }
    return json + '}';
}

/// @throws std::runtime_error that names the needle that cannot be written
std::string JsonFile(const std::vector<NeedleMark>& marks) {
    if (marks.size() > kMaxNeedlesInFile) throw std::runtime_error("there are too many needles");
    std::string json = "{\"format\": \"";
    json.append(kFormat).append("\", \"version\": ").append(std::to_string(kVersion)).append(", \"needles\": [");
    for (const NeedleMark& mark : marks) {
        try {
            json.append(&mark == marks.data() ? "\n  " : ",\n  ").append(JsonNeedle(mark));
        } catch (const std::runtime_error& error) {
            throw std::runtime_error("needle " + std::to_string(mark.id) + ": " + error.what());
        }
    }
    return json + "\n]}\n";
}

std::string ReadWholeFile(const std::string& path) {
    const FileStorage::RegularFile file(path);
    if (file.Size() > kMaxNeedleFileSize) throw std::runtime_error("the file is too large for a file of needles");
    const std::vector<std::byte> bytes = file.ReadWhole();
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

bool HasNeedle(KV_ScenePane::_DKV_ScenePane& methods, std::int32_t id) {
    std::array<float, 6> p{};
    return methods.GetNeedle(id, &p[0], &p[1], &p[2], &p[3], &p[4], &p[5]) != KV_ScenePane::kVariantFalse;
}

}  // namespace

std::vector<NeedleMark> ParseNeedles(std::string_view text) { return NeedleReader(text).Read(); }

bool ReadNeedleFile(const std::string& path, std::vector<NeedleMark>* marks, std::string* reason) {
    try {
        *marks = ParseNeedles(ReadWholeFile(path));
        return true;
    } catch (const std::runtime_error& error) {
        *reason = error.what();
    }
    return false;
}

bool WriteNeedleFile(const std::string& path, const std::vector<NeedleMark>& marks, std::string* reason) {
    try {
        const std::string json = JsonFile(marks);
        FileStorage::AtomicFile file(path);
        file.WriteAt(0, json.data(), json.size());
        file.Commit();
        return true;
    } catch (const std::system_error& error) {
        // Folder or file: the error number alone does not say which of them is the cause.
        const std::string refusal = WriteRefusal(path);
        *reason = refusal.empty() ? strerrordesc_np(error.code().value()) : refusal;
    } catch (const std::runtime_error& error) {
        *reason = error.what();
    }
    return false;
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
