// The three forms of data after the header of io/PcdHeader.h. Binary points go through io/PointRecords.h, compressed
// ones have their fields one after the other, each for all points.
#include "io/PcdFile.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "io/LzfInput.h"
#include "io/PcdHeader.h"
#include "io/PointCollector.h"
#include "io/PointRecords.h"
#include "io/StreamNumber.h"
#include "io/TextBlocks.h"

namespace {
using KV_ScenePane::PointCloud;

bool IsSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

PointCloud ReadBinary(ByteInput& input, const PcdHeader& header, ReadProgress& progress) {
    PointLayout layout;
    for (std::size_t i = 0; i < 3; ++i) {
        const PcdField& field = header.fields[header.xyz[i]];
        layout.xyz[i] = {NumberTypeOf(field), static_cast<std::size_t>(field.offset)};
    }
    if (header.hasColors) {
        layout.form = ColorForm::kPacked;
        layout.colors[0].offset = static_cast<std::size_t>(header.fields[header.color].offset);
    }
    return ReadPointRecords(input, header.dataOffset, static_cast<std::size_t>(header.pointBytes), header.points,
                            layout, header.holes, progress);
}

constexpr double kCheckPart = 0.3;  // of the whole time that checking compressed data needs, for the progress

/// Compressed data: sizes of both forms, then the compressed bytes.
class CompressedReader {
public:
    CompressedReader(ByteInput& input, const PcdHeader& header, ReadProgress& progress)
        : m_rInput(input), m_rHeader(header), m_rProgress(progress) {}
    PointCloud Read();

private:
    [[nodiscard]] std::uint64_t CheckSizes();
    void CheckData(std::uint64_t compressed);
    void ReadField(LzfInput& data, std::size_t index);

    ByteInput& m_rInput;
    const PcdHeader& m_rHeader;
    ReadProgress& m_rProgress;
    PointCloud m_cloud;
    std::vector<std::byte> m_vPiece = std::vector<std::byte>(std::size_t{1} << 16);  ///< a multiple of all widths
    std::uint64_t m_uBytes = 0;                                                      ///< of all points, decompressed
    std::uint64_t m_uDone = 0;                                                       ///< of these, converted
};

/// @return number of compressed bytes
std::uint64_t CompressedReader::CheckSizes() {
    std::uint32_t sizes[2] = {};  // compressed, decompressed
    m_rInput.Seek(m_rHeader.dataOffset);
    if (m_rInput.Read(sizes, sizeof sizes) < sizeof sizes) throw FileReadError("the file ends before its points");
    const std::uint64_t there = m_rInput.Size() - std::min(m_rInput.Size(), m_rHeader.dataOffset + sizeof sizes);
    if (sizes[0] > there)
        throw FileReadError("the file announces " + std::to_string(sizes[0]) + " compressed bytes and has " +
                            std::to_string(there));
    RequireSpace(m_rHeader.points, sizes[1] / m_rHeader.pointBytes);
    if (sizes[1] != m_rHeader.points * m_rHeader.pointBytes)
        throw FileReadError("the decompressed size is " + std::to_string(sizes[1]) +
                            " bytes and not that of the points");
    if (sizes[1] > LzfInput::LargestSize(sizes[0])) throw FileReadError("the compressed data is cut short");
    m_uBytes = sizes[1];
    return sizes[0];
}

/// Decompresses everything once without keeping it, so that a small damaged file does not allocate large arrays.
void CompressedReader::CheckData(std::uint64_t compressed) {
    LzfInput data(m_rInput, compressed);
    for (std::uint64_t done = 0; done < m_uBytes;) {
        const auto bytes = static_cast<std::size_t>(std::min<std::uint64_t>(m_uBytes - done, m_vPiece.size()));
        data.Read(m_vPiece.data(), bytes);
        done += bytes;
        m_rProgress.Report(kCheckPart * static_cast<double>(done) / static_cast<double>(m_uBytes), kCheckPart);
    }
    if (!data.AtEnd()) throw FileReadError("the compressed data is longer than the points");
}

PointCloud CompressedReader::Read() {
    const std::uint64_t compressed = CheckSizes();
    CheckData(compressed);
    m_rInput.Seek(m_rHeader.dataOffset + 2 * sizeof(std::uint32_t));
    LzfInput data(m_rInput, compressed);
    m_cloud.xyz.resize(3 * m_rHeader.points);
    if (m_rHeader.hasColors) m_cloud.colors.resize(3 * m_rHeader.points);
    for (std::size_t i = 0; i < m_rHeader.fields.size(); ++i) ReadField(data, i);
    const std::size_t kept = KeepFinitePoints(m_cloud.xyz, m_cloud.colors, m_rHeader.holes, 0);
    if (kept == 0) throw FileReadError("the file holds no points");
    m_cloud.xyz.resize(3 * kept);
    if (m_rHeader.hasColors) m_cloud.colors.resize(3 * kept);
    return std::move(m_cloud);
}

/// The values of one field for all points, which have no gaps.
void CompressedReader::ReadField(LzfInput& data, std::size_t index) {
    const PcdField& field = m_rHeader.fields[index];
    const auto& xyz = m_rHeader.xyz;
    const auto axis = static_cast<std::size_t>(std::ranges::find(xyz, index) - std::begin(xyz));
    std::size_t done = 0;  // points
    for (std::uint64_t left = field.Bytes() * m_rHeader.points; left > 0;) {
        const auto bytes = static_cast<std::size_t>(std::min<std::uint64_t>(left, m_vPiece.size()));
        data.Read(m_vPiece.data(), bytes);
        const std::size_t values = bytes / field.width;
        if (axis < 3)
            ConvertColumn(NumberTypeOf(field), m_vPiece.data(), field.width, values, &m_cloud.xyz[3 * done + axis]);
        else if (m_rHeader.hasColors && index == m_rHeader.color)
            UnpackColors(m_vPiece.data(), field.width, values, &m_cloud.colors[3 * done]);
        done += values;
        left -= bytes;
        m_uDone += bytes;
        m_rProgress.Report(kCheckPart + (1 - kCheckPart) * static_cast<double>(m_uDone) / static_cast<double>(m_uBytes),
                           1 - kCheckPart);
    }
}

/// Text: one point per line, the values of the fields separated by white space.
class TextReader {
public:
    TextReader(ByteInput& input, const PcdHeader& header, ReadProgress& progress);
    PointCloud Read();

private:
    /// What is done with a value of each point.
    enum Use : unsigned char { kX, kY, kZ, kColor, kIgnored };

    [[nodiscard]] const char* ReadLine(const char* at, const char* end);
    [[nodiscard]] const char* ReadPoint(const char* at, const char* end);
    [[nodiscard]] float ReadCoordinate(std::string_view word) const;
    [[nodiscard]] std::uint32_t ReadColor(std::string_view word) const;
    void AddBlock();
    [[noreturn]] void Fail(const std::string& reason) const {
        throw FileReadError("line " + std::to_string(m_uLine) + ": " + reason);
    }

    ByteInput& m_rInput;
    const PcdHeader& m_rHeader;
    ReadProgress& m_rProgress;
    std::vector<Use> m_vUses;
    std::uint64_t m_uLine;
    std::uint64_t m_uPoints = 0;
    PointCollector m_points;
    std::size_t m_uBlock = 0;  ///< points in the block of the collector
};

/// The points of the header, which must fit: a value has at least one character and white space after it.
std::uint64_t CheckedPoints(ByteInput& input, const PcdHeader& header) {
    const std::uint64_t rest = input.Size() - std::min(input.Size(), header.dataOffset);
    RequireSpace(header.points, (rest + 1) / (2 * header.pointValues));
    return header.points;
}

TextReader::TextReader(ByteInput& input, const PcdHeader& header, ReadProgress& progress)
    : m_rInput(input),
      m_rHeader(header),
      m_rProgress(progress),
      m_uLine(header.lines),
      m_points(CheckedPoints(input, header), header.hasColors, header.holes) {
    if (header.points == 0) return;
    m_vUses.assign(static_cast<std::size_t>(header.pointValues), kIgnored);
    for (std::size_t i = 0; i < 3; ++i) m_vUses[header.fields[header.xyz[i]].position] = static_cast<Use>(i);
    if (header.hasColors) m_vUses[header.fields[header.color].position] = kColor;
}

PointCloud TextReader::Read() {
    TextBlocks blocks(m_rInput, m_rHeader.dataOffset, TextBlocks::Cut::kAfterLine);
    for (std::string_view block = blocks.Next(); !block.empty(); block = blocks.Next()) {
        const char* at = block.data();
        const char* const end = at + block.size();
        while (at != end) {
            ++m_uLine;
            if (block.back() != '\n')
                Fail("the line is longer than " + std::to_string(TextBlocks::kBlock) + " characters");
            at = ReadLine(at, end);
        }
        m_rProgress.Report(blocks.Part());
    }
    if (m_uPoints < m_rHeader.points)
        throw FileReadError("the file announces " + std::to_string(m_rHeader.points) + " points and has " +
                            std::to_string(m_uPoints));
    AddBlock();
    return m_points.Finish();
}

/// @return start of the next line
const char* TextReader::ReadLine(const char* at, const char* end) {
    while (*at != '\n' && IsSpace(*at)) ++at;
    if (*at == '\n') return at + 1;
    if (*at == '#') return std::find(at, end, '\n') + 1;
    if (m_uPoints == m_rHeader.points)
        Fail("there are more points than the " + std::to_string(m_rHeader.points) + " that the header announces");
    at = ReadPoint(at, end);
    ++m_uPoints;
    if (++m_uBlock == PointCollector::kBlock) AddBlock();
    return at;
}

const char* TextReader::ReadPoint(const char* at, const char* end) {
    float* const xyz = m_points.Xyz() + 3 * m_uBlock;
    for (std::size_t i = 0; i < m_vUses.size(); ++i) {
        while (*at != '\n' && IsSpace(*at)) ++at;
        if (*at == '\n') Fail("expected " + std::to_string(m_vUses.size()) + " values, found " + std::to_string(i));
        const Use use = m_vUses[i];
        // the usual number at once; a word that is anything else is read with more care
        const char* after = use < kColor ? ReadStreamFloat(at, end, xyz[use]) : nullptr;
        if (after == nullptr || !IsSpace(*after)) {
            after = std::find_if(at, end, IsSpace);
            const std::string_view word(at, static_cast<std::size_t>(after - at));
            if (use < kColor) xyz[use] = ReadCoordinate(word);
            if (use == kColor) {
                const std::uint32_t packed = ReadColor(word);
                UnpackColors(reinterpret_cast<const std::byte*>(&packed), 0, 1, m_points.Colors() + 3 * m_uBlock);
            }
        }
        at = after;
    }
    while (*at != '\n' && IsSpace(*at)) ++at;
    if (*at != '\n') Fail("expected " + std::to_string(m_vUses.size()) + " values, found more");
    return at + 1;
}

/// A word that is no usual number: NaN, which can be part of a hole, or a fault.
float TextReader::ReadCoordinate(std::string_view word) const {
    float value = 0;
    const auto [end, fault] = std::from_chars(word.data(), word.data() + word.size(), value);
    if (fault != std::errc{} || end != word.data() + word.size() || !std::isnan(value)) Fail(NumberFault(word));
    return std::numeric_limits<float>::quiet_NaN();
}

/// A packed colour: the number itself, or a float whose bits are that number. Programs write a whole number also for
/// a field of type F.
std::uint32_t TextReader::ReadColor(std::string_view word) const {
    const char* const last = word.data() + word.size();
    std::int64_t whole = 0;
    const auto [end, fault] = std::from_chars(word.data(), last, whole);
    if (fault == std::errc{} && end == last) {
        if (whole < std::numeric_limits<std::int32_t>::min() || whole > std::numeric_limits<std::uint32_t>::max())
            Fail("colour " + Quoted(word) + " does not fit 32 bits");
        return static_cast<std::uint32_t>(whole);
    }
    float value = 0;
    if (m_rHeader.fields[m_rHeader.color].type != 'F' || ReadStreamFloat(word.data(), last, value) != last)
        Fail("colour " + NumberFault(word));
    return std::bit_cast<std::uint32_t>(value);
}

void TextReader::AddBlock() {
    m_points.Add(m_uBlock);
    m_uBlock = 0;
}
}  // namespace

PointCloud ReadPcd(ByteInput& input, ReadProgress& progress) {
    const PcdHeader header = ReadPcdHeader(input);
    switch (header.data) {
        case PcdHeader::Data::kText:
            return TextReader(input, header, progress).Read();
        case PcdHeader::Data::kBinary:
            return ReadBinary(input, header, progress);
        default:
            return CompressedReader(input, header, progress).Read();
    }
}
