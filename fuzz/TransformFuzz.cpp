// Any bytes as a file of transforms: refused in one line, or rigid motions in proportion to the file, which are read as
// the same entries after they were written, and each of which finds the object of its file.
#include <cmath>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "Require.h"
#include "TransformFile.h"

namespace {

constexpr const char* kPath = "/folder/transforms.json";

void RequireOneLine(const std::runtime_error& error) {
    const std::string reason = error.what();
    Require(!reason.empty() && reason.find('\n') == std::string::npos);
}

void RequireRigid(const Matrix4& m) {
    for (const float value : m) Require(std::isfinite(value) && std::abs(value) <= kMaxTranslation);
    for (std::size_t row = 0; row < 3; ++row)
        for (std::size_t column = 0; column < 3; ++column) Require(std::abs(m[4 * row + column]) < 1.0001f);
    Require(m[12] == 0 && m[13] == 0 && m[14] == 0 && m[15] == 1);
}

/// The entries with the paths that their objects were opened with.
std::vector<StoredTransform> Opened(std::vector<StoredTransform> entries) {
    for (StoredTransform& entry : entries) entry.file = StoredPath(kPath, entry.file);
    return entries;
}

void RequireSameAfterWriting(const std::vector<StoredTransform>& opened) {
    std::string text;
    try {
        text = TransformFileText(kPath, opened);
    } catch (const std::runtime_error& error) {
        // Only a name can grow, by the way to another folder.
        const std::string reason = error.what();
        Require(reason.ends_with("the file name is too long"));
        return;
    }
    Require(Opened(ParseTransforms(text)) == opened);
}

void RequireThatAllFindTheirObject(const std::vector<StoredTransform>& entries,
                                   const std::vector<StoredTransform>& opened) {
    std::vector<std::string> files;
    files.reserve(opened.size());
    for (const StoredTransform& entry : opened) files.push_back(entry.file);
    const TransformMatch match = MatchTransforms(kPath, entries, files);
    Require(match.unusedEntries.empty() && UnmatchedLines(match, entries, files).empty());
    for (std::size_t i = 0; i < files.size(); ++i) Require(match.entryOfObject[i] == i);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::vector<StoredTransform> entries;
    try {
        entries = ParseTransforms({reinterpret_cast<const char*>(data), size});
    } catch (const std::runtime_error& error) {
        RequireOneLine(error);
        return 0;
    }
    Require(entries.size() <= size / 32);  // of an entry: its keys and 16 numbers
    for (const StoredTransform& entry : entries) {
        Require(!entry.file.empty() && entry.file.find('\0') == std::string::npos);
        RequireRigid(entry.matrix);
    }
    const std::vector<StoredTransform> opened = Opened(entries);
    RequireSameAfterWriting(opened);
    RequireThatAllFindTheirObject(entries, opened);
    return 0;
}
