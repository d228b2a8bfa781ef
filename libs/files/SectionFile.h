// The container that pcm and hps files share: a header, a table of sections with a checksum each, then the sections.
// docs/formats/pcm.md and hps.md describe both byte by byte. What a section holds is the business of each format, and
// so is the order of the checks, which decides the reason that a file with several defects is refused for.
#pragma once
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <span>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

struct XXH3_state_s;

namespace FileStorage {

static_assert(std::endian::native == std::endian::little, "numbers are copied between file and memory unchanged");

/// Why a file was refused or cannot be written.
class SectionFileError : public std::runtime_error {
public:
    /// @param reason  the rule that was broken, one text per rule
    /// @param detail  where, or by which value; appended to the reason by Explanation()
    explicit SectionFileError(const std::string& reason, std::string detail = {})
        : std::runtime_error(reason), m_sDetail(std::move(detail)) {}
    /// Reason and detail, for example "header is cut short at byte 100".
    [[nodiscard]] std::string Explanation() const { return what() + m_sDetail; }

private:
    std::string m_sDetail;
};

inline constexpr std::size_t kHeaderSize =
    32;                                        ///< magic (8), version (4), section count (4), fields of the format (16)
inline constexpr std::size_t kEntrySize = 24;  ///< id (4), attributes (4), size (8), checksum (8)
inline constexpr std::size_t kChecksumSize = 8;
inline constexpr std::uint32_t kMaxSections = 64;

/// The 16 bytes of the header that each format defines: std::bit_cast from and to its own struct.
using HeaderFields = std::array<std::byte, 16>;

/// What distinguishes one format from the other in the first 16 bytes.
struct SectionFormat {
    /// Its line ends and its end-of-text byte detect a transfer that converted the file as text.
    unsigned char magic[8];
    std::uint32_t version;
    const char* wrongMagic;  ///< reason for a file with another magic
};

/// One row of the table, as it is in the file.
struct SectionEntry {
    std::uint32_t id = 0;          ///< four characters, see SectionId()
    std::uint32_t attributes = 0;  ///< bits that each format defines
    std::uint64_t size = 0;        ///< of the section, bytes
    std::uint64_t checksum = 0;    ///< of the section's bytes
};
static_assert(sizeof(SectionEntry) == kEntrySize);

/// An id from its four characters, the first one in the lowest byte.
[[nodiscard]] constexpr std::uint32_t SectionId(const char (&name)[5]) {
    std::uint32_t id = 0;
    for (int i = 3; i >= 0; --i) id = (id << 8) | static_cast<unsigned char>(name[i]);
    return id;
}

/// XXH3 with 64 bits and seed 0.
[[nodiscard]] std::uint64_t Checksum(const void* bytes, std::size_t size);

/// The same checksum over bytes that arrive in several pieces.
class RunningChecksum {
public:
    RunningChecksum();
    ~RunningChecksum();
    RunningChecksum(const RunningChecksum&) = delete;
    RunningChecksum& operator=(const RunningChecksum&) = delete;
    void Add(const void* bytes, std::size_t size);
    /// Of all bytes added so far.
    [[nodiscard]] std::uint64_t Value() const;

private:
    struct Free {
        void operator()(XXH3_state_s* state) const;
    };
    std::unique_ptr<XXH3_state_s, Free> m_pState;
};

/// Size of header, table and the checksum of both: the offset of the first section.
[[nodiscard]] constexpr std::size_t HeadSize(std::uint32_t sectionCount) {
    return kHeaderSize + std::size_t{sectionCount} * kEntrySize + kChecksumSize;
}

// ---- reading; all functions throw SectionFileError

/// Checks magic, version and number of sections.
/// @return the number of sections, 1 to 64
[[nodiscard]] std::uint32_t CheckHeader(const SectionFormat& format, std::span<const std::byte, kHeaderSize> header);

[[nodiscard]] inline HeaderFields FieldsOf(std::span<const std::byte, kHeaderSize> header) {
    HeaderFields fields;
    std::memcpy(fields.data(), &header[kHeaderSize - fields.size()], fields.size());
    return fields;
}

/// Checks the checksum of header and table.
/// @param head  the first HeadSize(n) bytes of the file
/// @return the n entries in file order, not yet checked
[[nodiscard]] std::vector<SectionEntry> ReadTable(std::span<const std::byte> head);

/// Refuses an unknown section that readers must know, and a known one that an earlier entry has already.
/// @param neededBit  the bit of the attributes that says that readers must know the section
void CheckEntry(std::span<const SectionEntry> entries, std::size_t index, bool isKnown, std::uint32_t neededBit);

/// Computes the offsets of the sections, which follow one another without gaps up to the end of the file.
class SectionPlacer {
public:
    /// @param begin  offset of the first section, at most @p fileSize
    SectionPlacer(std::uint64_t begin, std::uint64_t fileSize) : m_uOffset(begin), m_uRest(fileSize - begin) {}
    /// @return the offset of the next section; refuses one that reaches beyond the end of the file
    [[nodiscard]] std::uint64_t Place(const SectionEntry& entry);
    /// Refuses bytes after the last section.
    void ExpectEnd() const;

private:
    std::uint64_t m_uOffset, m_uRest;
};

/// " (CONF at byte 168)", for the detail of an error; without the id where it is not four printable characters.
[[nodiscard]] std::string SectionPlace(std::uint32_t id, std::uint64_t offset);

// ---- writing

/// Header, table and their checksum: the bytes before the first section.
/// @param entries  at most 64, in the order of the sections in the file
[[nodiscard]] std::vector<std::byte> BuildHead(const SectionFormat& format, const HeaderFields& fields,
                                               std::span<const SectionEntry> entries);

}  // namespace FileStorage
