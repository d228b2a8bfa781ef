// Pieces of whole lines: the lines of all pieces are counted first, so that the number of the first record of each is
// known; then each piece is parsed, straight into the vertices and triangles.
#include "io/PlyTextLines.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "base/HugePages.h"
#include "base/ParallelTasks.h"
#include "io/StreamNumber.h"
#include "io/TextTokens.h"

namespace {

constexpr std::uint32_t kWhite = 0xFFFFFFFF;

bool IsBlank(char c) { return c != '\n' && IsTokenSpace(c); }

/// Moves from token to token within a line.
class LineWalk {
public:
    LineWalk(const char* at, const char* end) : m_pAt(at), m_pEnd(end) { SkipBlanks(); }
    [[nodiscard]] const char* At() const { return m_pAt; }

    // Each returns false at the end of the line and where the token is not as expected.
    bool Skip() {
        if (m_pAt == m_pEnd || *m_pAt == '\n') return false;
        EndToken();
        return true;
    }
    bool Read(int& value) {
        // Other control characters belong to a token, but numbers skip them like white space.
        if (m_pAt == m_pEnd || static_cast<unsigned char>(*m_pAt) <= ' ') return false;
        return MoveTo(ReadStreamInt(m_pAt, m_pEnd, value));
    }
    bool Read(float& value) {
        if (m_pAt == m_pEnd || static_cast<unsigned char>(*m_pAt) <= ' ') return false;
        return MoveTo(ReadStreamFloat(m_pAt, m_pEnd, value));
    }
    bool EndLine() {
        if (m_pAt == m_pEnd) return true;
        if (*m_pAt != '\n') return false;
        ++m_pAt;
        SkipBlanks();
        return true;
    }

private:
    /// @param end  of the number; null when there is none
    bool MoveTo(const char* end) {
        if (end == nullptr) return false;
        m_pAt = end;
        EndToken();
        return true;
    }
    /// What follows a number in its token is ignored.
    void EndToken() {
        while (m_pAt != m_pEnd && !IsTokenSpace(*m_pAt)) ++m_pAt;
        SkipBlanks();
    }
    void SkipBlanks() {
        while (m_pAt != m_pEnd && IsBlank(*m_pAt)) ++m_pAt;
    }

    const char* m_pAt;
    const char* m_pEnd;
};

/// What a token of a vertex line is.
enum class Token : std::uint8_t { kOther, kX, kY, kZ, kRed, kGreen, kBlue, kAlpha };

/// The form of the two kinds of lines.
struct Layout {
    std::vector<Token> vertexTokens;
    std::size_t vertices = 0, triangles = 0;
    bool hasColors = false;
};

/// None where the header announces anything but vertices and then triangles.
std::optional<Layout> LayoutOf(const CPLYFile& file) {
    if (file.GetFormat() != CPLYFile::kAscii || file.m_vElements.size() != 2) return {};
    const auto& vertex = static_cast<const Element&>(*file.m_vElements[0]);
    const auto& face = static_cast<const Element&>(*file.m_vElements[1]);
    if (vertex.m_sName != "vertex" || face.m_sName != "face") return {};
    if (vertex.m_iCount <= 0 || face.m_iCount <= 0 || vertex.HasLists()) return {};
    if (face.m_vItems.size() != 1 || !face.HasLists()) return {};
    if (!face.HasProperty("vertex_indices") && !face.HasProperty("vertex_index")) return {};

    Layout layout{std::vector<Token>(vertex.m_vItems.size(), Token::kOther), static_cast<std::size_t>(vertex.m_iCount),
                  static_cast<std::size_t>(face.m_iCount), vertex.HasProperty("red")};
    // Of several properties of one name the first one counts.
    const auto find = [&](const char* name, Token token) {
        const auto found =
            std::ranges::find_if(vertex.m_vItems, [&](const auto& item) { return item->m_sName == name; });
        if (found == vertex.m_vItems.end()) return false;
        layout.vertexTokens[static_cast<std::size_t>(found - vertex.m_vItems.begin())] = token;
        return true;
    };
    if (!find("x", Token::kX) || !find("y", Token::kY) || !find("z", Token::kZ)) return {};
    if (!layout.hasColors) return layout;
    if (!find("red", Token::kRed) || !find("green", Token::kGreen) || !find("blue", Token::kBlue)) return {};
    find("alpha", Token::kAlpha);
    return layout;
}

bool ReadVertex(LineWalk& walk, const std::vector<Token>& tokens, Vertex& vertex) {
    const auto readByte = [&](unsigned shift) {
        int value = 0;
        if (!walk.Read(value)) return false;
        const auto low = static_cast<std::uint32_t>(value) & 0xFF;
        vertex.color = (vertex.color & ~(std::uint32_t{0xFF} << shift)) | low << shift;
        return true;
    };
    const auto read = [&](Token token) {
        switch (token) {
            case Token::kX:
                return walk.Read(vertex.x);
            case Token::kY:
                return walk.Read(vertex.y);
            case Token::kZ:
                return walk.Read(vertex.z);
            case Token::kRed:
                return readByte(16);
            case Token::kGreen:
                return readByte(8);
            case Token::kBlue:
                return readByte(0);
            case Token::kAlpha:
                return readByte(24);
            case Token::kOther:
                break;
        }
        return walk.Skip();
    };
    for (const Token token : tokens)
        if (!read(token)) return false;
    return walk.EndLine();
}

bool ReadTriangle(LineWalk& walk, Triangle& triangle) {
    int members = 0;
    if (!walk.Read(members) || members != 3) return false;
    for (std::int32_t& index : triangle.v)
        if (!walk.Read(index)) return false;
    return walk.EndLine();
}

/// Counted in bytes for 128 characters, which cannot overflow: the compiler then uses the full width of its vectors.
std::size_t CountLineFeeds(const char* at, const char* end) {
    std::size_t count = 0;
    while (at != end) {
        const char* const last = at + std::min<std::ptrdiff_t>(128, end - at);
        std::uint8_t part = 0;
        for (; at != last; ++at) part = static_cast<std::uint8_t>(part + (*at == '\n' ? 1 : 0));
        count += part;
    }
    return count;
}

/// Whole lines of the text, and the records of the file that are in them.
struct Piece {
    const char* begin = nullptr;
    const char* end = nullptr;
    std::size_t firstRecord = 0, endRecord = 0;
};

/// The text in pieces of about @p size bytes, without the numbers of the records.
std::vector<Piece> Split(std::string_view text, std::size_t size) {
    std::vector<Piece> pieces;
    while (!text.empty()) {
        const std::size_t feed = text.size() <= size ? std::string_view::npos : text.find('\n', size);
        const std::size_t length = feed == std::string_view::npos ? text.size() : feed + 1;
        pieces.push_back({.begin = text.data(), .end = text.data() + length});
        text.remove_prefix(length);
    }
    return pieces;
}

/// Numbers the records of all pieces. The text ends with a token.
/// @return their sum
std::size_t NumberRecords(std::vector<Piece>& pieces, unsigned threads) {
    RunTasks(pieces.size(), threads,
             [&](std::size_t i) { pieces[i].endRecord = CountLineFeeds(pieces[i].begin, pieces[i].end); });
    pieces.back().endRecord += 1;  // the last line has no line feed
    std::size_t records = 0;
    for (Piece& piece : pieces) {
        piece.firstRecord = records;
        records = piece.endRecord += records;
    }
    return records;
}

/// The vertices and triangles of the first @p records records: zeros are written there just before the values are,
/// while the memory is in the cache.
void GrowTo(PlyMeshData& mesh, const Layout& layout, std::size_t records) {
    const std::size_t vertices = std::min(records, layout.vertices);
    mesh.m_pVertices->resize(vertices, {.color = kWhite});
    mesh.m_pTriangles->resize(records - vertices);
}

bool ReadPiece(const Piece& piece, const char* textEnd, const Layout& layout, Vertex* vertices, Triangle* triangles) {
    LineWalk walk(piece.begin, textEnd);
    std::size_t record = piece.firstRecord;
    for (const std::size_t end = std::min(piece.endRecord, layout.vertices); record < end; ++record)
        if (!ReadVertex(walk, layout.vertexTokens, vertices[record])) return false;
    for (; record < piece.endRecord; ++record)
        if (!ReadTriangle(walk, triangles[record - layout.vertices])) return false;
    return true;
}

}  // namespace

bool ReadPlyTextLines(const CPLYFile& file, std::string_view data, unsigned threads, PlyMeshData& mesh) {
    const std::optional<Layout> layout = LayoutOf(file);
    if (!layout) return false;
    // From the first token to the end of the last one.
    constexpr std::string_view kSpaces = " \t\r\n";
    const std::size_t first = data.find_first_not_of(kSpaces);
    if (first == std::string_view::npos) return false;
    const std::string_view text = data.substr(first, data.find_last_not_of(kSpaces) + 1 - first);
    // Every token has a character and one after it: memory stays in proportion to the text, whatever the counts are.
    const std::size_t vertexBytes = 2 * layout->vertexTokens.size(), triangleBytes = 8;
    if (layout->vertices > (text.size() + 1) / vertexBytes || layout->triangles > (text.size() + 1) / triangleBytes)
        return false;
    constexpr std::size_t kMinBytes = 500'000;  // per thread; below this its start costs more than it saves
    threads = ThreadsFor(text.size(), kMinBytes, threads);

    constexpr std::size_t kPiece = 256 * 1024;
    std::vector<Piece> pieces = Split(text, kPiece);
    const std::size_t records = NumberRecords(pieces, threads);
    if (records != layout->vertices + layout->triangles) return false;
    ReserveInHugePages(*mesh.m_pVertices, layout->vertices);
    ReserveInHugePages(*mesh.m_pTriangles, layout->triangles);
    Vertex* const vertices = mesh.m_pVertices->data();
    Triangle* const triangles = mesh.m_pTriangles->data();
    std::mutex mutex;
    std::size_t begun = 0;
    std::atomic<bool> isRead = true;
    RunTasks(pieces.size(), threads, [&](std::size_t) {
        std::size_t i = 0;
        {
            const std::lock_guard lock(mutex);  // the arrays grow in the order of the pieces
            i = begun++;
            GrowTo(mesh, *layout, pieces[i].endRecord);
        }
        if (!isRead) return;
        if (!ReadPiece(pieces[i], text.data() + text.size(), *layout, vertices, triangles)) isRead = false;
    });
    mesh.m_bHasColors = layout->hasColors;
    return isRead;
}
