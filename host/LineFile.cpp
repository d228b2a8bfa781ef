// Line by line; the first line with numbers decides which of the two layouts the file has.
#include "LineFile.h"

#include <optional>
#include <stdexcept>
#include <utility>

#include "NumberLines.h"
#include "files/RegularFile.h"

namespace {

/// Collects the polylines of a text whose lines it receives in order.
class LineCollector {
public:
    /// @param line  without its end and without a comment
    /// @throws LineError
    void AddLine(std::string_view line) {
        m_numbers.clear();
        AppendNumbers(line, m_numbers);
        const std::size_t count = m_numbers.size();
        if (count == 0) return EndPolyline();
        if (!m_isPointPerLine) m_isPointPerLine = count == 3;
        if (*m_isPointPerLine) {
            if (count != 3) throw LineError(NumberCount(count) + ", not x y z as in the lines before");
            m_points.insert(m_points.end(), m_numbers.begin(), m_numbers.end());
        } else {
            if (count % 3 != 0) throw LineError(NumberCount(count) + ", not three for each point");
            if (count == 3) throw LineError("a polyline of one point");
            m_polylines.emplace_back(m_numbers.begin(), m_numbers.end());
        }
    }

    /// After a blank line and at the end of the text.
    void EndPolyline() {
        if (m_points.empty()) return;
        if (m_points.size() == 3) throw LineError("a polyline of one point ends here");
        m_polylines.emplace_back(m_points.begin(), m_points.end());
        m_points.clear();
    }

    [[nodiscard]] std::vector<Polyline>& Polylines() { return m_polylines; }

private:
    std::optional<bool> m_isPointPerLine;  ///< unknown before the first line with numbers
    Polyline m_numbers;                    ///< of the present line
    Polyline m_points;                     ///< of the present polyline, with one point per line
    std::vector<Polyline> m_polylines;
};

}  // namespace

bool ParseLines(std::string_view text, std::vector<Polyline>* polylines, std::string* reason) {
    LineCollector collector;
    // A line of a comment alone is no blank line: it separates nothing.
    const bool isRead = ForEachLine(
        text, [&](std::string_view line) { collector.AddLine(line); }, [&] { collector.EndPolyline(); }, reason);
    if (!isRead) return false;
    if (collector.Polylines().empty()) {
        *reason = "no polylines";
        return false;
    }
    *polylines = std::move(collector.Polylines());
    return true;
}

bool ReadLineFile(const std::string& path, std::vector<Polyline>* polylines, std::string* reason) {
    try {
        const std::vector<std::byte> bytes = FileStorage::RegularFile(path).ReadWhole();
        return ParseLines({reinterpret_cast<const char*>(bytes.data()), bytes.size()}, polylines, reason);
    } catch (const FileStorage::FileAccessError& error) {
        *reason = error.what();
        return false;
    } catch (const std::length_error&) {
        *reason = "is larger than memory";
        return false;
    }
}
