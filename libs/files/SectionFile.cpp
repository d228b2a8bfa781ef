// Parser and writer of header and table. All sums are checked by subtraction, since a size from a file can wrap them.
#include "files/SectionFile.h"

#include <xxhash.h>

#include <algorithm>
#include <new>

namespace FileStorage {

std::uint64_t Checksum(const void* bytes, std::size_t size) { return XXH3_64bits(bytes, size); }

RunningChecksum::RunningChecksum() : m_pState(XXH3_createState()) {
    if (!m_pState) throw std::bad_alloc();
    XXH3_64bits_reset(m_pState.get());
}
RunningChecksum::~RunningChecksum() = default;
void RunningChecksum::Add(const void* bytes, std::size_t size) { XXH3_64bits_update(m_pState.get(), bytes, size); }
std::uint64_t RunningChecksum::Value() const { return XXH3_64bits_digest(m_pState.get()); }
void RunningChecksum::Free::operator()(XXH3_state_s* state) const { XXH3_freeState(state); }

namespace {

template <class T>
T Load(const std::byte* from) {
    T value;
    std::memcpy(&value, from, sizeof value);
    return value;
}

template <class T>
std::byte* Store(std::byte* to, const T& value) {
    std::memcpy(to, &value, sizeof value);
    return to + sizeof value;
}

}  // namespace

std::uint32_t CheckHeader(const SectionFormat& format, std::span<const std::byte, kHeaderSize> header) {
    if (std::memcmp(header.data(), format.magic, sizeof format.magic) != 0) throw SectionFileError(format.wrongMagic);
    const auto version = Load<std::uint32_t>(&header[8]);
    if (version != format.version)
        throw SectionFileError("of a version that is not known here", " (" + std::to_string(version) + ")");
    const auto count = Load<std::uint32_t>(&header[12]);
    if (count == 0 || count > kMaxSections)
        throw SectionFileError("impossible number of sections", " (" + std::to_string(count) + ")");
    return count;
}

std::vector<SectionEntry> ReadTable(std::span<const std::byte> head) {
    const std::size_t tableEnd = head.size() - kChecksumSize;
    if (Checksum(head.data(), tableEnd) != Load<std::uint64_t>(&head[tableEnd]))
        throw SectionFileError("header is damaged");
    std::vector<SectionEntry> entries((tableEnd - kHeaderSize) / kEntrySize);
    std::memcpy(entries.data(), &head[kHeaderSize], entries.size() * kEntrySize);
    return entries;
}

void CheckEntry(std::span<const SectionEntry> entries, std::size_t index, bool isKnown, std::uint32_t neededBit) {
    const SectionEntry& entry = entries[index];
    if (!isKnown) {
        if (entry.attributes & neededBit)
            throw SectionFileError("needs a section that this version does not know",
                                   " (entry " + std::to_string(index) + " of the table)");
        return;
    }
    const auto earlier = entries.first(index);
    if (std::any_of(earlier.begin(), earlier.end(), [&](const SectionEntry& e) { return e.id == entry.id; }))
        throw SectionFileError("a section stands twice", " (entry " + std::to_string(index) + " of the table)");
}

std::uint64_t SectionPlacer::Place(const SectionEntry& entry) {
    if (entry.size > m_uRest)
        throw SectionFileError("a section is longer than the file", SectionPlace(entry.id, m_uOffset));
    const std::uint64_t offset = m_uOffset;
    m_uOffset += entry.size;
    m_uRest -= entry.size;
    return offset;
}

void SectionPlacer::ExpectEnd() const {
    if (m_uRest != 0)
        throw SectionFileError("bytes that belong to no section", " (from byte " + std::to_string(m_uOffset) + ")");
}

std::string SectionPlace(std::uint32_t id, std::uint64_t offset) {
    std::string name(sizeof id, '\0');
    std::memcpy(name.data(), &id, sizeof id);
    const auto isPrintable = [](char c) { return c >= ' ' && c <= '~'; };
    if (!std::all_of(name.begin(), name.end(), isPrintable)) name.clear();
    while (!name.empty() && name.back() == ' ') name.pop_back();  // "XYZ " is padded to four characters
    if (!name.empty()) name += ' ';
    return " (" + name + "at byte " + std::to_string(offset) + ")";
}

std::vector<std::byte> BuildHead(const SectionFormat& format, const HeaderFields& fields,
                                 std::span<const SectionEntry> entries) {
    const auto count = static_cast<std::uint32_t>(entries.size());
    std::vector<std::byte> head(HeadSize(count));
    std::byte* to = Store(head.data(), format.magic);
    to = Store(to, format.version);
    to = Store(to, count);
    to = Store(to, fields);
    for (const SectionEntry& entry : entries) to = Store(to, entry);
    Store(to, Checksum(head.data(), head.size() - kChecksumSize));
    return head;
}

}  // namespace FileStorage
