// Connectivity coding by shared edges: most triangles share an edge with one of the triangles just before them. A code
// names the edge by its age, the rotation of the corners and the source of the third corner. Encoder and decoder update
// the same state after each triangle.
#include "HpsFacets.h"

#include <algorithm>

namespace KvComponents::Hps {

namespace {

/// Source of the corner opposite to the shared edge.
enum Third : std::uint32_t {
    kHighest,   ///< one above the highest index so far: a mesh whose vertices are in the order of their use
    kNext,      ///< Last() + 1: grids, row by row
    kPrevious,  ///< Last() - 1
    kRecent,    ///< the third corner of one of the recent edges: the end of a fan
    kFar,       ///< Last() plus a signed residual
    kThirdCount
};

constexpr std::uint32_t kEdgeCount = 16;  ///< recent edges that a code can name
constexpr std::uint32_t kTurnCount = 3;
constexpr std::uint32_t kIsolated = kEdgeCount * kTurnCount * kThirdCount;  ///< code of a triangle without a known edge
static_assert(kIsolated < 256);

/// Planes of the numbers that a code alone does not determine.
enum Plane : std::size_t { kFarPlane, kFirstPlane, kSecondPlane, kThirdPlane, kPlaneCount };

struct Edge {
    std::uint32_t from, to;  ///< in the direction of the neighbour triangle, if both have the same orientation
    std::uint32_t third;     ///< the opposite corner in the triangle that the edge is from
};

/// What encoder and decoder know before each triangle.
class State {
public:
    explicit State(std::uint32_t vertexCount, RawArray<Introduction>& introductions)
        : m_uVertexCount(vertexCount), m_introductions(introductions), m_isKnown(vertexCount), m_uLatest(vertexCount) {
        // The vertex count is no vertex, so that these placeholders match no edge of a triangle.
        for (std::uint32_t age = 0; age < kEdgeCount; ++age) m_from[age] = m_to[age] = m_third[age] = vertexCount;
    }

    /// @param age  0 is the youngest edge; counted modulo kEdgeCount
    [[nodiscard]] Edge EdgeAt(std::uint32_t age) const {
        const std::uint32_t at = (m_uNewest - age) % kEdgeCount;
        return {m_from[at], m_to[at], m_third[at]};
    }
    /// One above the highest vertex introduced so far.
    [[nodiscard]] std::uint32_t Highest() const { return m_uHighest; }
    /// The latest third corner by kNext, kPrevious or kFar, or of a triangle without a known edge.
    [[nodiscard]] std::uint32_t Last() const { return m_uLast; }
    /// The first corner of the latest triangle without a known edge.
    [[nodiscard]] std::uint32_t First() const { return m_uFirst; }

    /// After a triangle on the edge of that age.
    void UpdateShared(std::uint32_t age, Third kind, std::uint32_t third) {
        const Edge edge = EdgeAt(age);
        if (kind == kNext || kind == kPrevious || kind == kFar) m_uLast = third;
        Introduce(third, edge.from, edge.to, edge.third);
        Remember({edge.from, third, edge.to});
        Remember({third, edge.to, edge.from});
    }

    /// After a triangle without a known edge.
    void UpdateIsolated(const std::uint32_t* corners) {
        m_uFirst = corners[0];
        m_uLast = corners[2];
        Introduce(corners[0], m_uLatest, m_uLatest, m_uLatest);
        Introduce(corners[1], corners[0], corners[0], corners[0]);
        Introduce(corners[2], corners[1], corners[1], corners[1]);
        Remember({corners[1], corners[0], corners[2]});
        Remember({corners[2], corners[1], corners[0]});
        Remember({corners[0], corners[2], corners[1]});
    }

    [[nodiscard]] std::size_t IntroducedCount() const { return m_uIntroduced; }

    /// After the last triangle: the vertices that no triangle uses.
    void IntroduceRest() {
        for (std::uint32_t v = 0; v < m_uVertexCount; ++v) Introduce(v, m_uLatest, m_uLatest, m_uLatest);
    }

private:
    /// Notes a vertex at its first use, with the parents of its prediction. Others, and indices that are no vertex, are
    /// ignored.
    void Introduce(std::uint32_t vertex, std::uint32_t a, std::uint32_t b, std::uint32_t c) {
        if (vertex >= m_uVertexCount || m_isKnown[vertex]) return;
        m_isKnown[vertex] = 1;
        m_introductions[m_uIntroduced++] = {vertex, a, b, c};
        m_uLatest = vertex;
        if (vertex >= m_uHighest) m_uHighest = vertex + 1;
    }
    void Remember(const Edge& edge) {
        const std::uint32_t at = ++m_uNewest % kEdgeCount;
        m_from[at] = edge.from;
        m_to[at] = edge.to;
        m_third[at] = edge.third;
    }

    std::uint32_t m_uVertexCount;
    RawArray<Introduction>& m_introductions;
    std::vector<std::uint8_t> m_isKnown;
    std::uint32_t m_uLatest;  ///< the vertex introduced last; at first the origin, whose number is the vertex count
    std::size_t m_uIntroduced = 0;
    // The edges as one array per member: the processor forwards a store to a following load without a stall only when
    // both have the same width.
    std::uint32_t m_from[kEdgeCount], m_to[kEdgeCount], m_third[kEdgeCount];
    std::uint32_t m_uNewest = 0;
    std::uint32_t m_uHighest = 0, m_uLast = 0, m_uFirst = 0;
};

/// @return the age of the youngest edge whose third corner is @p third; kEdgeCount when there is none
std::uint32_t AgeOfThird(const State& state, std::uint32_t third) {
    std::uint32_t age = 0;
    while (age < kEdgeCount && state.EdgeAt(age).third != third) ++age;
    return age;
}

/// Encodes triangle by triangle, in the order of the mesh.
class Encoder {
public:
    Encoder(std::uint32_t vertexCount, std::size_t triangleCount, RawArray<Introduction>& introductions)
        : m_state(vertexCount, introductions), m_numbers(kPlaneCount) {
        m_codes.reserve(triangleCount);
    }

    /// @param corners  the three vertices of the next triangle
    void Add(const std::uint32_t* corners) {
        // The youngest edge that the triangle has, in one of its three rotations.
        for (std::uint32_t age = 0; age < kEdgeCount; ++age) {
            const Edge edge = m_state.EdgeAt(age);
            for (std::uint32_t turn = 0; turn < kTurnCount; ++turn) {
                if (edge.from == corners[turn] && edge.to == corners[(turn + 1) % 3])
                    return AddOnEdge(age, turn, corners[(turn + 2) % 3]);
            }
        }
        // No known edge: all three corners as residuals.
        m_codes.push_back(static_cast<std::uint8_t>(kIsolated));
        m_numbers.Put(kFirstPlane, ZigzagEncode(corners[0] - m_state.First()));
        m_numbers.Put(kSecondPlane, ZigzagEncode(corners[1] - corners[0]));
        m_numbers.Put(kThirdPlane, ZigzagEncode(corners[2] - corners[1]));
        m_state.UpdateIsolated(corners);
    }

    [[nodiscard]] ByteVector Finish() {
        m_state.IntroduceRest();
        ByteVector bytes;
        AppendBlock(bytes, std::as_bytes(std::span(m_codes)), Redundancy::kMatches);
        m_numbers.Append(bytes);
        return bytes;
    }

private:
    void AddOnEdge(std::uint32_t age, std::uint32_t turn, std::uint32_t third) {
        // From the cheapest source to the most expensive one; only the last two need a number.
        Third kind = kFar;
        if (third == m_state.Highest()) {
            kind = kHighest;
        } else if (third == m_state.Last() + 1) {
            kind = kNext;
        } else if (third == m_state.Last() - 1) {
            kind = kPrevious;
        } else if (const std::uint32_t thirdAge = AgeOfThird(m_state, third); thirdAge < kEdgeCount) {
            kind = kRecent;
            m_numbers.Put(kFarPlane, thirdAge);
        } else {
            m_numbers.Put(kFarPlane, ZigzagEncode(third - m_state.Last()));
        }
        m_codes.push_back(static_cast<std::uint8_t>((age * kTurnCount + turn) * kThirdCount + kind));
        m_state.UpdateShared(age, kind, third);
    }

    State m_state;
    std::vector<std::uint8_t> m_codes;
    NumberWriter m_numbers;
};

/// Decodes triangle by triangle, and updates the state as the encoder did.
class Decoder {
public:
    Decoder(State& state, NumberReader& numbers) : m_state(state), m_numbers(numbers) {}

    /// @param corners  receives the three vertices of the next triangle; they can be invalid in a damaged file
    void Decode(std::uint8_t code, std::uint32_t* corners) {
        if (code >= kIsolated) {
            if (code != kIsolated) throw DamagedData("unknown code of a triangle");
            corners[0] = m_state.First() + ZigzagDecode(m_numbers.Read(kFirstPlane));
            corners[1] = corners[0] + ZigzagDecode(m_numbers.Read(kSecondPlane));
            corners[2] = corners[1] + ZigzagDecode(m_numbers.Read(kThirdPlane));
            m_state.UpdateIsolated(corners);
            return;
        }
        const auto kind = static_cast<Third>(code % kThirdCount);
        const std::uint32_t turn = code / kThirdCount % kTurnCount, age = code / kThirdCount / kTurnCount;
        const Edge edge = m_state.EdgeAt(age);
        const std::uint32_t third = ReadThird(kind);
        corners[turn] = edge.from;
        corners[turn == 2 ? 0 : turn + 1] = edge.to;
        corners[turn == 0 ? 2 : turn - 1] = third;
        m_state.UpdateShared(age, kind, third);
    }

private:
    [[nodiscard]] std::uint32_t ReadThird(Third kind) {
        switch (kind) {
            case kHighest:
                return m_state.Highest();
            case kNext:
                return m_state.Last() + 1;
            case kPrevious:
                return m_state.Last() - 1;
            case kRecent:
                return m_state.EdgeAt(m_numbers.Read(kFarPlane)).third;
            default:
                return m_state.Last() + ZigzagDecode(m_numbers.Read(kFarPlane));
        }
    }

    State& m_state;
    NumberReader& m_numbers;
};

}  // namespace

ByteVector EncodeFacets(std::span<const std::int32_t> indices, std::uint32_t vertexCount,
                        RawArray<Introduction>& introductions) {
    introductions = RawArray<Introduction>(vertexCount);
    Encoder encoder(vertexCount, indices.size() / 3, introductions);
    for (std::size_t i = 0; i + 2 < indices.size(); i += 3) {
        const std::uint32_t corners[3] = {static_cast<std::uint32_t>(indices[i]),
                                          static_cast<std::uint32_t>(indices[i + 1]),
                                          static_cast<std::uint32_t>(indices[i + 2])};
        encoder.Add(corners);
    }
    return encoder.Finish();
}

void IntroductionFeed::Publish(std::size_t count) {
    m_uState.store(count, std::memory_order_release);
    m_uState.notify_one();
}

void IntroductionFeed::End() {
    m_uState.fetch_or(kEnd, std::memory_order_release);
    m_uState.notify_one();
}

std::size_t IntroductionFeed::WaitForMore(std::size_t known) const {
    m_uState.wait(known, std::memory_order_acquire);
    return static_cast<std::size_t>(m_uState.load(std::memory_order_acquire) & ~kEnd);
}

void DecodeFacets(ByteSpan bytes, std::uint32_t triangleCount, Facets& facets, IntroductionFeed& feed) {
    // Entropy decoding: all codes, then all numbers.
    ByteReader from(bytes);
    const RawArray<std::byte> codes = ReadBlock(from, triangleCount);
    if (codes.size() - kBlockPadding != triangleCount) throw DamagedData("another number of triangles");
    NumberReader numbers(from, kPlaneCount, triangleCount);
    if (!from.Rest().empty()) throw DamagedData("bytes after the triangles");

    // Prediction: each triangle from the state after the previous one.
    const auto vertexCount = static_cast<std::uint32_t>(facets.introductions.size());
    facets.indices = RawArray<std::int32_t>(std::size_t{3} * triangleCount);
    State state(vertexCount, facets.introductions);
    Decoder decoder(state, numbers);
    constexpr std::size_t kBlock = 4096;  // triangles between two publications
    for (std::size_t first = 0; first < triangleCount; first += kBlock) {
        const std::size_t last = std::min<std::size_t>(triangleCount, first + kBlock);
        for (std::size_t i = first; i < last; ++i) {
            std::uint32_t corners[3];
            decoder.Decode(static_cast<std::uint8_t>(codes[i]), corners);
            std::memcpy(&facets.indices[3 * i], corners, sizeof corners);
            // A wrong index must not be used later; unsigned, so that negative ones are found too.
            const std::uint32_t highest = std::max({corners[0], corners[1], corners[2]});
            if (highest >= vertexCount && facets.firstBad == Facets::kNone) facets.firstBad = i;
        }
        // After a bad triangle the parents of an introduction can be wrong indices as well.
        if (facets.firstBad == Facets::kNone) feed.Publish(state.IntroducedCount());
    }
    numbers.ExpectEnd();
    if (facets.firstBad != Facets::kNone) return;
    state.IntroduceRest();
    feed.Publish(state.IntroducedCount());
}

Facets DecodeFacets(ByteSpan bytes, std::uint32_t vertexCount, std::uint32_t triangleCount) {
    Facets facets;
    facets.introductions = RawArray<Introduction>(vertexCount);
    IntroductionFeed unread;
    DecodeFacets(bytes, triangleCount, facets, unread);
    if (facets.firstBad != Facets::kNone) facets.introductions = {};
    return facets;
}

}  // namespace KvComponents::Hps
