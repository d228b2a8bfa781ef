// Pairs of points in a text file, for an alignment: docs/formats/pairs.md.
#pragma once
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "KV_ScenePane/Alignment.h"

/// Bytes. A larger file is refused before it is read.
inline constexpr std::size_t kMaxPairFileSize = 16 * 1024 * 1024;

/// Reads pairs from text: one per line, of six numbers (moving point, fixed point) or twelve (moving point, its normal,
/// fixed point, its normal), the same count on all lines. A single pair needs twelve, with normals other than 0. Any
/// thread.
/// @param pairs   receives those of the file, at least one; unchanged on failure
/// @param reason  receives one line that names the line of the file and the cause; unchanged on success
/// @throws std::bad_alloc; memory is bounded by the length of the text
[[nodiscard]] bool ParsePairs(std::string_view text, std::vector<KV_ScenePane::AlignmentPair>* pairs,
                              std::string* reason);

/// ParsePairs() of a regular file.
/// @param path  in bytes
/// @throws std::bad_alloc
[[nodiscard]] bool ReadPairFile(const std::string& path, std::vector<KV_ScenePane::AlignmentPair>* pairs,
                                std::string* reason);
