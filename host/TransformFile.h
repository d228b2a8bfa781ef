// Transforms of scans as a JSON file: docs/formats/transforms.md.
#pragma once
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "KV_ScenePane/_DKV_ScenePane.h"

/// 4 x 4, row by row, sensor to world frame, scene units; last row 0, 0, 0, 1. As GetTrafoOfScan() returns it.
using Matrix4 = std::array<float, 16>;

/// The transform of one object.
struct StoredTransform {
    /// In bytes. Read from a file: as written there, absolute or relative to the folder of that file. To be written:
    /// the path that the object was opened with.
    std::string file;
    Matrix4 matrix{};
    bool operator==(const StoredTransform&) const = default;
};

/// A file with more is neither read nor written.
inline constexpr std::size_t kMaxTransformsInFile = 10'000;
/// Bytes. A larger file is refused before it is read, and not written: the tree of a parsed text can be 80 times
/// larger.
inline constexpr std::size_t kMaxTransformFileSize = 8 * 1024 * 1024;
/// Largest difference of any element of R transposed times R from the identity, R being the rotation that is read.
inline constexpr double kRotationTolerance = 1e-5;
/// Largest amount of a translation along an axis that is read, scene units.
inline constexpr float kMaxTranslation = 1e9f;

/// Reads the content of a file of transforms. Only rigid motions are accepted, because the viewer would replace
/// anything else by one without a message.
/// @throws std::runtime_error with one line of text: the line of a text that is not JSON, otherwise the entry (from 1)
///         and the key
[[nodiscard]] std::vector<StoredTransform> ParseTransforms(std::string_view text);

/// Reads a whole file of transforms, which may have been damaged or written by anybody.
/// @param path        in bytes
/// @param transforms  receives the entries in the order of the file; unchanged after a failure
/// @param reason      receives why it was refused, one line in English without the file's name; unchanged after a
///                    success
[[nodiscard]] bool ReadTransformFile(const std::string& path, std::vector<StoredTransform>* transforms,
                                     std::string* reason);

/// The content of a file of transforms. Names are relative to its folder; numbers are read back as the same floats.
/// @param path  of the file, in bytes
/// @throws std::runtime_error with one line of text for what would not be read again
[[nodiscard]] std::string TransformFileText(const std::string& path, const std::vector<StoredTransform>& transforms);

/// Replaces a file by TransformFileText(), as a whole or not at all.
/// @param path    in bytes
/// @param reason  receives why nothing was written, in English; unchanged after a success. One reason is a transform
///                that would not be read again
[[nodiscard]] bool WriteTransformFile(const std::string& path, const std::vector<StoredTransform>& transforms,
                                      std::string* reason);

/// The absolute path of an entry.
/// @param transformFile  path of the file that the entry was read from
/// @param file           StoredTransform::file of the entry
[[nodiscard]] std::string StoredPath(const std::string& transformFile, const std::string& file);

/// Which entry belongs to which object.
struct TransformMatch {
    /// Per object the position of its entry; empty for an object without one.
    std::vector<std::optional<std::size_t>> entryOfObject;
    /// Positions of the entries without an object, rising.
    std::vector<std::size_t> unusedEntries;

    /// Whether any object has an entry.
    [[nodiscard]] bool HasAny() const;
};

/// Finds the entry of each object. An entry belongs to the object that was opened from the same path. Where no object
/// has the path of an entry, its file name alone decides, unless entries or objects that are left have that name in
/// different folders. Of a file that was opened several times the first object gets the first entry of
/// that file, and so on. Paths are compared as text, after "." and ".." are taken out of them; no file is looked at.
/// @param transformFile  path of the file that the entries were read from
/// @param objectFiles    per object the path that it was opened with; empty for an object without a file
[[nodiscard]] TransformMatch MatchTransforms(const std::string& transformFile, std::span<const StoredTransform> entries,
                                             std::span<const std::string> objectFiles);

/// At most two lines: the entries without an object, and the objects without an entry. Of each the first names.
[[nodiscard]] std::vector<std::string> UnmatchedLines(const TransformMatch& match,
                                                      std::span<const StoredTransform> entries,
                                                      std::span<const std::string> objectFiles);

/// One line about the objects without an entry: their first names, and those of the entries without an object, one of
/// which may be meant. Empty when each object has an entry.
[[nodiscard]] std::string MissingTransformsLine(const TransformMatch& match, std::span<const StoredTransform> entries,
                                                std::span<const std::string> objectFiles);

/// GetTrafoOfScan(). @return empty for a bad index
[[nodiscard]] std::optional<Matrix4> TransformOf(KV_ScenePane::_DKV_ScenePane& methods, std::int16_t object);
/// SetTrafoOfScan(), which replaces the present transform and draws a frame: block painting for several of them.
void SetTransformOf(KV_ScenePane::_DKV_ScenePane& methods, std::int16_t object, const Matrix4& matrix);
