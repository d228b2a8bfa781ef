// Line by line; the first line with numbers decides whether the pairs have normals.
#include "PairFile.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "NumberLines.h"
#include "files/RegularFile.h"

namespace {

using KV_ScenePane::AlignmentPair;

constexpr std::size_t kWithoutNormals = 6, kWithNormals = 12;

/// Collects the pairs of a text whose lines it receives in order.
class PairCollector {
public:
    /// @param line  without its end and without a comment
    /// @throws LineError
    void AddLine(std::string_view line) {
        m_numbers.clear();
        AppendNumbers(line, m_numbers);
        const std::size_t count = m_numbers.size();
        if (count == 0) return;
        if (count != kWithoutNormals && count != kWithNormals)
            throw LineError(NumberCount(count) + ", not six or twelve for a pair of points");
        if (m_count == 0) m_count = count;
        if (count != m_count)
            throw LineError(NumberCount(count) + ", not " + std::to_string(m_count) + " as in the lines before");
        m_pairs.push_back(PairOf(m_numbers));
    }

    /// What is wrong with the pairs as a whole; empty when they are enough.
    [[nodiscard]] std::string Lack() const {
        if (m_pairs.empty()) return "no pairs of points";
        if (m_pairs.size() == 1 && m_count == kWithoutNormals)
            return "a single pair needs twelve numbers: moving point, its normal, fixed point, its normal";
        return {};
    }

    /// Whether a normal of a single pair has no direction.
    [[nodiscard]] bool LacksNormal() const {
        const auto isZero = [](const float(&normal)[3]) { return std::ranges::all_of(normal, std::logical_not()); };
        return m_pairs.size() == 1 && (isZero(m_pairs.front().moving.normal) || isZero(m_pairs.front().fixed.normal));
    }

    [[nodiscard]] std::vector<AlignmentPair>& Pairs() { return m_pairs; }

private:
    static AlignmentPair PairOf(const std::vector<float>& numbers) {
        AlignmentPair pair;
        auto at = numbers.begin();
        for (KV_ScenePane::AlignmentPoint* const point : {&pair.moving, &pair.fixed}) {
            for (float& value : point->point) value = *at++;
            if (numbers.size() == kWithoutNormals) continue;
            for (float& value : point->normal) value = *at++;
        }
        return pair;
    }

    std::size_t m_count = 0;       ///< numbers per line; 0 before the first line with numbers
    std::vector<float> m_numbers;  ///< of the present line
    std::vector<AlignmentPair> m_pairs;
};

/// Refuses the first line with numbers.
void RefuseNormals(std::string_view line) {
    if (!WithoutBlanks(line).empty()) throw LineError("a single pair needs both normals, and one has the length 0");
}

}  // namespace

bool ParsePairs(std::string_view text, std::vector<AlignmentPair>* pairs, std::string* reason) {
    PairCollector collector;
    const auto addLine = [&](std::string_view line) { collector.AddLine(line); };
    if (!ForEachLine(
            text, addLine, [] {}, reason))
        return false;
    if (std::string lack = collector.Lack(); !lack.empty()) {
        *reason = std::move(lack);
        return false;
    }
    // Only the whole text shows that a pair is the only one: its line is looked for again.
    if (collector.LacksNormal())
        return ForEachLine(
            text, RefuseNormals, [] {}, reason);
    *pairs = std::move(collector.Pairs());
    return true;
}

bool ReadPairFile(const std::string& path, std::vector<AlignmentPair>* pairs, std::string* reason) {
    try {
        const FileStorage::RegularFile file(path);
        if (file.Size() > kMaxPairFileSize) {
            *reason = "is too large for a file of pairs";
            return false;
        }
        const std::vector<std::byte> bytes = file.ReadWhole();
        return ParsePairs({reinterpret_cast<const char*>(bytes.data()), bytes.size()}, pairs, reason);
    } catch (const FileStorage::FileAccessError& error) {
        *reason = error.what();
        return false;
    }
}
