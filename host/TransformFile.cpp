// Reader and writer of files of transforms, and the search for the entry of each object.
#include "TransformFile.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <map>
#include <utility>

#include "JsonFile.h"

namespace {

constexpr const char* kKind = "transforms";
constexpr int kVersion = 1;
constexpr std::size_t kMaxNameLength = 4096;  // bytes; no system opens a longer path

/// @throws std::runtime_error unless the matrix is a rigid motion: the viewer would replace any other by one
void CheckMatrix(const Matrix4& m) {
    for (const float value : m)
        if (!std::isfinite(value)) throw std::runtime_error("a number is not finite");
    for (std::size_t i = 0; i < 4; ++i)
        if (std::abs(m[12 + i] - (i == 3 ? 1.0 : 0.0)) > kRotationTolerance)
            throw std::runtime_error("the last row is not 0 0 0 1");
    const auto at = [&](std::size_t row, std::size_t column) { return static_cast<double>(m[4 * row + column]); };
    for (std::size_t i = 0; i < 3; ++i) {
        for (std::size_t k = 0; k < 3; ++k) {
            const double product = at(0, i) * at(0, k) + at(1, i) * at(1, k) + at(2, i) * at(2, k);
            if (!(std::abs(product - (i == k ? 1.0 : 0.0)) <= kRotationTolerance))
                throw std::runtime_error("not a rotation: the columns must have the length 1 and be perpendicular");
        }
    }
    const double determinant = at(0, 0) * (at(1, 1) * at(2, 2) - at(1, 2) * at(2, 1)) -
                               at(0, 1) * (at(1, 0) * at(2, 2) - at(1, 2) * at(2, 0)) +
                               at(0, 2) * (at(1, 0) * at(2, 1) - at(1, 1) * at(2, 0));
    if (determinant < 0) throw std::runtime_error("a reflection, not a rotation");
    for (const std::size_t i : {3, 7, 11})
        if (std::abs(m[i]) > kMaxTranslation) throw std::runtime_error("the translation is too large");
}

Matrix4 ToMatrix(const QJsonValue& value) {
    const QJsonArray numbers = ToArray(value);
    Matrix4 matrix{};
    if (static_cast<std::size_t>(numbers.size()) != matrix.size()) throw std::runtime_error("not 16 numbers");
    for (std::size_t i = 0; i < matrix.size(); ++i) matrix[i] = ToFloat(numbers[static_cast<qsizetype>(i)]);
    CheckMatrix(matrix);
    std::copy_n(std::array{0.0f, 0.0f, 0.0f, 1.0f}.begin(), 4, matrix.begin() + 12);
    return matrix;
}

/// A name that open() receives as it is in the file.
const std::string& CheckedName(const std::string& name) {
    if (name.empty()) throw std::runtime_error("the file name is empty");
    if (name.size() > kMaxNameLength) throw std::runtime_error("the file name is too long");
    if (name.find('\0') != std::string::npos) throw std::runtime_error("the file name has a zero byte");
    return name;
}

StoredTransform ReadEntry(const QJsonValue& entry) {
    if (!entry.isObject()) throw std::runtime_error("not an object");
    const QJsonObject object = entry.toObject();
    StoredTransform transform;
    ReadKey(object, "file", true, [&](const QJsonValue& value) { transform.file = CheckedName(ToText(value)); });
    ReadKey(object, "transform", true, [&](const QJsonValue& value) { transform.matrix = ToMatrix(value); });
    return transform;
}

std::filesystem::path Absolute(const std::filesystem::path& path) {
    std::error_code error;  // of a current folder that was deleted
    const std::filesystem::path absolute = std::filesystem::absolute(path, error);
    return (error ? path : absolute).lexically_normal();
}

std::filesystem::path FolderOf(const std::string& transformFile) { return Absolute(transformFile).parent_path(); }

/// @throws std::runtime_error
std::string JsonEntry(const StoredTransform& transform, const std::filesystem::path& folder) {
    if (transform.file.empty()) throw std::runtime_error("the file name is empty");
    const std::filesystem::path path = Absolute(transform.file);
    const std::filesystem::path relative = path.lexically_relative(folder);
    CheckMatrix(transform.matrix);
    std::string json = "{\"file\": ";
    json += JsonString(CheckedName((relative.empty() ? path : relative).string())) + ", \"transform\": [";
    for (const float value : transform.matrix) json.append(json.back() == '[' ? "" : ", ").append(JsonDouble(value));
    return json + "]}";
}

/// Positions in a list of the files of one path, rising.
using Positions = std::vector<std::size_t>;
using Groups = std::map<std::filesystem::path, Positions>;

/// Gives the first object the first entry, and so on.
void Pair(const Positions& entries, const Positions& objects, TransformMatch& match) {
    for (std::size_t i = 0; i < std::min(entries.size(), objects.size()); ++i)
        match.entryOfObject[objects[i]] = entries[i];
}

/// By file name; null for a name that groups of several paths have.
std::map<std::filesystem::path, const Positions*> ByName(const Groups& groups) {
    std::map<std::filesystem::path, const Positions*> byName;
    for (const auto& [path, positions] : groups) {
        const auto [at, isNew] = byName.emplace(path.filename(), &positions);
        if (!isNew) at->second = nullptr;
    }
    return byName;
}

/// Pairs the groups of equal paths and takes them out of both.
void PairEqualPaths(Groups& entries, Groups& objects, TransformMatch& match) {
    for (auto at = entries.begin(); at != entries.end();) {
        const auto object = objects.find(at->first);
        if (object == objects.end()) {
            ++at;
            continue;
        }
        Pair(at->second, object->second, match);
        objects.erase(object);
        at = entries.erase(at);
    }
}

void PairUniqueNames(const Groups& entries, const Groups& objects, TransformMatch& match) {
    const auto objectsByName = ByName(objects);
    for (const auto& [name, positions] : ByName(entries)) {
        const auto object = objectsByName.find(name);
        if (positions != nullptr && object != objectsByName.end() && object->second != nullptr)
            Pair(*positions, *object->second, match);
    }
}

/// "a, b, c and 5 more"
std::string NameList(const std::vector<std::string>& names) {
    constexpr std::size_t kShown = 3;
    std::string text;
    for (std::size_t i = 0; i < std::min(names.size(), kShown); ++i) text.append(i == 0 ? "" : ", ").append(names[i]);
    if (names.size() > kShown) text += " and " + std::to_string(names.size() - kShown) + " more";
    return text;
}

std::vector<std::string> UnusedNames(const TransformMatch& match, std::span<const StoredTransform> entries) {
    std::vector<std::string> names;
    names.reserve(match.unusedEntries.size());
    for (const std::size_t i : match.unusedEntries) names.push_back(entries[i].file);
    return names;
}

std::vector<std::string> ObjectsWithout(const TransformMatch& match, std::span<const std::string> objectFiles) {
    std::vector<std::string> names;
    for (std::size_t i = 0; i < objectFiles.size(); ++i)
        if (!match.entryOfObject[i]) names.push_back(objectFiles[i]);
    return names;
}

}  // namespace

std::vector<StoredTransform> ParseTransforms(std::string_view text) {
    const QJsonObject file = ParseJsonObject(text, kKind);
    ReadKey(file, "version", false, [](const QJsonValue& value) {
        if (ToNumber(value) != kVersion) throw std::runtime_error("an unknown version");
    });
    QJsonArray entries;
    ReadKey(file, "scans", true, [&](const QJsonValue& value) { entries = ToArray(value); });
    if (static_cast<std::size_t>(entries.size()) > kMaxTransformsInFile)
        throw std::runtime_error("there are too many transforms");
    std::vector<StoredTransform> transforms;
    transforms.reserve(static_cast<std::size_t>(entries.size()));
    for (qsizetype i = 0; i < entries.size(); ++i)
        At("entry " + std::to_string(i + 1), [&] { transforms.push_back(ReadEntry(entries[i])); });
    return transforms;
}

std::string TransformFileText(const std::string& path, const std::vector<StoredTransform>& transforms) {
    if (transforms.size() > kMaxTransformsInFile) throw std::runtime_error("there are too many transforms");
    const std::filesystem::path folder = FolderOf(path);
    std::string json = "{\"version\": " + std::to_string(kVersion) + ", \"scans\": [";
    for (const StoredTransform& transform : transforms) {
        json += &transform == transforms.data() ? "\n  " : ",\n  ";
        At(transform.file, [&] { json += JsonEntry(transform, folder); });
    }
    json += "\n]}\n";
    if (json.size() > kMaxTransformFileSize) throw std::runtime_error("the file would be too large");
    return json;
}

bool ReadTransformFile(const std::string& path, std::vector<StoredTransform>* transforms, std::string* reason) {
    try {
        *transforms = ParseTransforms(ReadJsonFile(path, kMaxTransformFileSize, kKind));
        return true;
    } catch (const std::runtime_error& error) {
        *reason = error.what();
    }
    return false;
}

bool WriteTransformFile(const std::string& path, const std::vector<StoredTransform>& transforms, std::string* reason) {
    return WriteJsonFile(
        path, [&] { return TransformFileText(path, transforms); }, reason);
}

std::string StoredPath(const std::string& transformFile, const std::string& file) {
    return (FolderOf(transformFile) / file).lexically_normal().string();
}

bool TransformMatch::HasAny() const {
    return std::ranges::any_of(entryOfObject, [](const auto& entry) { return entry.has_value(); });
}

TransformMatch MatchTransforms(const std::string& transformFile, std::span<const StoredTransform> entries,
                               std::span<const std::string> objectFiles) {
    TransformMatch match;
    match.entryOfObject.resize(objectFiles.size());
    Groups entryGroups, objectGroups;
    for (std::size_t i = 0; i < entries.size(); ++i)
        entryGroups[StoredPath(transformFile, entries[i].file)].push_back(i);
    for (std::size_t i = 0; i < objectFiles.size(); ++i)
        if (!objectFiles[i].empty()) objectGroups[Absolute(objectFiles[i])].push_back(i);
    PairEqualPaths(entryGroups, objectGroups, match);
    PairUniqueNames(entryGroups, objectGroups, match);
    std::vector<bool> isUsed(entries.size());
    for (const auto& entry : match.entryOfObject)
        if (entry) isUsed[*entry] = true;
    for (std::size_t i = 0; i < entries.size(); ++i)
        if (!isUsed[i]) match.unusedEntries.push_back(i);
    return match;
}

std::vector<std::string> UnmatchedLines(const TransformMatch& match, std::span<const StoredTransform> entries,
                                        std::span<const std::string> objectFiles) {
    const std::vector<std::string> unused = UnusedNames(match, entries), without = ObjectsWithout(match, objectFiles);
    std::vector<std::string> lines;
    if (!unused.empty()) lines.push_back("transforms that belong to no open file: " + NameList(unused));
    if (!without.empty()) lines.push_back("no transform for " + NameList(without));
    return lines;
}

std::string MissingTransformsLine(const TransformMatch& match, std::span<const StoredTransform> entries,
                                  std::span<const std::string> objectFiles) {
    const std::vector<std::string> without = ObjectsWithout(match, objectFiles);
    if (without.empty()) return {};
    const std::vector<std::string> unused = UnusedNames(match, entries);
    return "no transform for " + NameList(without) + (unused.empty() ? "" : "; not used: " + NameList(unused));
}

std::optional<Matrix4> TransformOf(KV_ScenePane::_DKV_ScenePane& methods, std::int16_t object) {
    Matrix4 m{};
    const auto status = methods.GetTrafoOfScan(object, &m[0], &m[1], &m[2], &m[3], &m[4], &m[5], &m[6], &m[7], &m[8],
                                               &m[9], &m[10], &m[11], &m[12], &m[13], &m[14], &m[15]);
    return status == 0 ? std::optional(m) : std::nullopt;
}

void SetTransformOf(KV_ScenePane::_DKV_ScenePane& methods, std::int16_t object, const Matrix4& m) {
    methods.SetTrafoOfScan(object, m[0], m[1], m[2], m[3], m[4], m[5], m[6], m[7], m[8], m[9], m[10], m[11], m[12],
                           m[13], m[14], m[15]);
}
