// Any bytes as a text of pairs of points: refused in one line, or finite pairs in proportion to the file, which are
// read as the same pairs after they were written as text.
#include <charconv>
#include <cmath>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "PairFile.h"
#include "Require.h"

namespace {

using KV_ScenePane::AlignmentPair;

/// Twelve numbers per line.
std::string TextOf(const std::vector<AlignmentPair>& pairs) {
    std::string text;
    for (const AlignmentPair& pair : pairs) {
        for (const auto* const point : {&pair.moving, &pair.fixed}) {
            for (const auto* const values : {&point->point, &point->normal}) {
                for (const float value : *values) {
                    Require(std::isfinite(value));
                    char digits[64];
                    text.append(digits, std::to_chars(digits, digits + sizeof digits, value).ptr).append(", ");
                }
            }
        }
        text += '\n';
    }
    return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::vector<AlignmentPair> pairs, back;
    std::string reason;
    if (!ParsePairs({reinterpret_cast<const char*>(data), size}, &pairs, &reason)) {
        Require(pairs.empty() && !reason.empty() && reason.find('\n') == std::string::npos);
        return 0;
    }
    // A line of six numbers has eleven characters at least, and a line feed unless it is the last one.
    Require(!pairs.empty() && pairs.size() <= (size + 1) / 12 && reason.empty());
    Require(ParsePairs(TextOf(pairs), &back, &reason) && back.size() == pairs.size());
    Require(std::memcmp(back.data(), pairs.data(), pairs.size() * sizeof(AlignmentPair)) == 0);
    return 0;
}
