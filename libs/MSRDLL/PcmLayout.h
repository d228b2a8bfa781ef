// The numbers of the pcm format, as docs/formats/pcm.md tells them byte by byte. Shared by reader and writer.
#pragma once
#include <xxhash.h>

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <memory>
#include <new>

namespace MsrStorage::PcmLayout {

static_assert(std::endian::native == std::endian::little, "values are moved between file and memory as they stand");

/// The line ends and the end-of-text byte in it show damage by a transfer that took the file for text.
inline constexpr unsigned char kMagic[8] = {'K', 'V', 'P', 'C', 'M', '\r', '\n', 0x1A};
inline constexpr std::uint32_t kVersion = 1;
inline constexpr std::size_t kHeaderSize = 32;  ///< magic, version, section count, width, height, file size
inline constexpr std::size_t kEntrySize = 24;   ///< id, encoding, flags, size, checksum
inline constexpr std::size_t kChecksumSize = 8;
inline constexpr std::uint32_t kMaxSections = 64;

constexpr std::uint32_t SectionId(const char (&name)[5]) {
    std::uint32_t id = 0;
    for (int i = 3; i >= 0; --i) id = (id << 8) | static_cast<unsigned char>(name[i]);
    return id;
}
inline constexpr std::uint32_t kCoverage = SectionId("COVR");
inline constexpr std::uint32_t kPoints = SectionId("XYZ ");
inline constexpr std::uint32_t kConfidence = SectionId("CONF");
inline constexpr std::uint32_t kClassification = SectionId("CLAS");
inline constexpr std::uint32_t kColors = SectionId("COLR");
inline constexpr std::uint32_t kTrafo = SectionId("TRAF");
inline constexpr std::uint32_t kKnownSections[] = {kCoverage, kPoints, kConfidence, kClassification, kColors, kTrafo};

inline bool IsKnown(std::uint32_t id) {
    return std::find(std::begin(kKnownSections), std::end(kKnownSections), id) != std::end(kKnownSections);
}

/// How the values of a section are stored.
enum Encoding : std::uint16_t {
    kDense = 0,     ///< one value a pixel
    kConstant = 1,  ///< one value for all pixels
    kSparse = 2,    ///< the value of the pixels that are not covered, then the values of the covered ones
};

inline constexpr std::uint16_t kNeeded = 1;  ///< flag: who does not know this section must refuse the file

struct Entry {
    std::uint32_t id = 0;
    std::uint16_t encoding = kDense;
    std::uint16_t flags = 0;
    std::uint64_t size = 0;
    std::uint64_t checksum = 0;
};

template <class T>
T Load(const std::byte* from) {
    T value;
    std::memcpy(&value, from, sizeof value);
    return value;
}

template <class T>
void Store(std::byte* to, T value) {
    std::memcpy(to, &value, sizeof value);
}

inline std::uint64_t Checksum(const void* bytes, std::size_t size) { return XXH3_64bits(bytes, size); }

/// The same checksum over bytes that come in pieces.
class RunningChecksum {
public:
    RunningChecksum() : m_pState(XXH3_createState()) {
        if (!m_pState) throw std::bad_alloc();
        XXH3_64bits_reset(m_pState.get());
    }
    void Add(const void* bytes, std::size_t size) { XXH3_64bits_update(m_pState.get(), bytes, size); }
    [[nodiscard]] std::uint64_t Value() const { return XXH3_64bits_digest(m_pState.get()); }

private:
    struct Free {
        void operator()(XXH3_state_t* state) const { XXH3_freeState(state); }
    };
    std::unique_ptr<XXH3_state_t, Free> m_pState;
};

/// Bytes that the grid of a file takes in memory.
inline std::uint64_t DecodedSize(std::uint64_t pixels, bool hasColors) {
    return pixels *
           (3 * sizeof(float) + sizeof(float) + sizeof(std::uint8_t) + (hasColors ? sizeof(std::uint32_t) : 0));
}

}  // namespace MsrStorage::PcmLayout
