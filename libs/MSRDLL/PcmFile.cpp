// Reader of pcm files: header and table first, then each section directly into the array that the caller gets, without
// a second copy. The writer is PcmFileWrite.cpp.
#include "MSRDLL/PcmFile.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "MSRDLL/PcmLayout.h"
#include "files/HugePages.h"
#include "files/RegularFile.h"
#include "files/SectionFile.h"

namespace MsrStorage {
namespace {

using namespace PcmLayout;
using FileStorage::kHeaderSize;
using FileStorage::RunningChecksum;
using FileStorage::SectionEntry;
using FileStorage::SectionPlacer;

/// The bytes to be read: a file or memory.
class Source {
public:
    virtual ~Source() = default;
    [[nodiscard]] virtual std::uint64_t Size() const = 0;
    /// Copies exactly @p size bytes. @throws PcmError when there are fewer
    virtual void Read(std::uint64_t offset, std::byte* to, std::size_t size) const = 0;
};

class MemorySource final : public Source {
public:
    explicit MemorySource(std::span<const std::byte> bytes) : m_bytes(bytes) {}
    [[nodiscard]] std::uint64_t Size() const override { return m_bytes.size(); }
    void Read(std::uint64_t offset, std::byte* to, std::size_t size) const override {
        if (offset > m_bytes.size() || size > m_bytes.size() - offset) throw PcmError("file is cut short");
        if (size > 0) std::memcpy(to, m_bytes.data() + offset, size);
    }

private:
    std::span<const std::byte> m_bytes;
};

class FileSource final : public Source {
public:
    explicit FileSource(const std::string& path) try : m_file(path) {
    } catch (const FileStorage::FileAccessError& error) {
        throw PcmError(error.what());
    }
    [[nodiscard]] std::uint64_t Size() const override { return m_file.Size(); }
    void Read(std::uint64_t offset, std::byte* to, std::size_t size) const override {
        try {
            if (m_file.ReadAt(offset, to, size) != size) throw PcmError("file is cut short");
        } catch (const FileStorage::FileAccessError& error) {
            throw PcmError(error.what());
        }
    }

private:
    FileStorage::RegularFile m_file;
};

/// A table entry and the place of its section.
struct PlacedEntry : SectionEntry {
    std::uint64_t offset = 0;  ///< in the file; the table holds sizes only

    /// For the detail of an error.
    [[nodiscard]] std::string Place() const { return FileStorage::SectionPlace(id, offset); }
};

/// Header and table of a file, checked.
struct Table {
    int width = 0, height = 0;
    std::vector<PlacedEntry> entries;

    [[nodiscard]] std::uint64_t Pixels() const {
        return static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height);
    }
    /// @return null when there is no such section
    [[nodiscard]] const PlacedEntry* Find(std::uint32_t id) const {
        const auto found =
            std::find_if(entries.begin(), entries.end(), [&](const SectionEntry& e) { return e.id == id; });
        return found == entries.end() ? nullptr : &*found;
    }
    /// @throws PcmError when there is no such section
    [[nodiscard]] const PlacedEntry& Require(std::uint32_t id) const {
        const PlacedEntry* entry = Find(id);
        if (entry == nullptr) throw PcmError("a needed section is missing");
        return *entry;
    }
};

/// Computes the offsets of the sections and checks their ids and flags.
std::vector<PlacedEntry> PlaceSections(std::span<const SectionEntry> entries, std::uint64_t fileSize) {
    std::vector<PlacedEntry> placed;
    SectionPlacer placer(FileStorage::HeadSize(static_cast<std::uint32_t>(entries.size())), fileSize);
    for (std::size_t i = 0; i < entries.size(); ++i) {
        placed.push_back({entries[i], placer.Place(entries[i])});
        const bool isKnown = IsKnown(entries[i].id);
        FileStorage::CheckEntry(entries, i, isKnown, kNeededBit);
        if (isKnown && (FlagsOf(entries[i]) & ~kNeeded))
            throw PcmError("a section has flags that this version does not know", placed.back().Place());
    }
    placer.ExpectEnd();
    return placed;
}

/// Reads and checks header and table.
Table ReadTable(const Source& source) {
    const std::uint64_t fileSize = source.Size();
    const auto requireSize = [fileSize](std::size_t size) {
        if (fileSize < size) throw PcmError("header is cut short", " at byte " + std::to_string(fileSize));
    };
    // The fixed part first: it has the number of sections, and thus the size of the table.
    requireSize(FileStorage::HeadSize(0));
    std::vector<std::byte> head(kHeaderSize);
    source.Read(0, head.data(), kHeaderSize);
    const std::uint32_t count = FileStorage::CheckHeader(kFormat, std::span(head).first<kHeaderSize>());
    requireSize(FileStorage::HeadSize(count));
    head.resize(FileStorage::HeadSize(count));
    source.Read(kHeaderSize, &head[kHeaderSize], head.size() - kHeaderSize);
    const std::vector<SectionEntry> entries = FileStorage::ReadTable(head);

    const auto header = std::bit_cast<PcmHeader>(FileStorage::FieldsOf(std::span(head).first<kHeaderSize>()));
    const auto isPossible = [](std::uint32_t side) { return side >= 1 && side <= kPcmMaxSide; };
    if (!isPossible(header.width) || !isPossible(header.height)) throw PcmError("impossible grid size");
    if (header.fileSize != fileSize)
        throw PcmError("file has another length than it should",
                       " (" + std::to_string(fileSize) + " bytes, not " + std::to_string(header.fileSize) + ")");
    return {static_cast<int>(header.width), static_cast<int>(header.height), PlaceSections(entries, fileSize)};
}

/// Reads a section at once and checks it.
void ReadWhole(const Source& source, const PlacedEntry& entry, std::byte* to) {
    source.Read(entry.offset, to, entry.size);
    if (FileStorage::Checksum(to, entry.size) != entry.checksum) throw PcmError("a section is damaged", entry.Place());
}

/// The pixels whose values a sparse section stores: bit i of the words is pixel i.
struct Coverage {
    std::vector<std::uint64_t> words;  ///< empty when the file has no coverage
    std::uint64_t covered = 0;         ///< number of bits that are set
};

/// Reads and checks the coverage; empty when the file has none.
Coverage ReadCoverage(const Source& source, const Table& table) {
    Coverage coverage;
    const PlacedEntry* entry = table.Find(kCoverage);
    if (entry == nullptr) return coverage;
    const std::uint64_t pixels = table.Pixels();
    if (EncodingOf(*entry) != kDense || entry->size != (pixels + 7) / 8)
        throw PcmError("coverage has a wrong length", entry->Place());
    coverage.words.resize((pixels + 63) / 64);
    ReadWhole(source, *entry, reinterpret_cast<std::byte*>(coverage.words.data()));
    if (pixels % 64 != 0 && coverage.words.back() >> (pixels % 64) != 0) throw PcmError("coverage of no pixel");
    for (const std::uint64_t word : coverage.words) coverage.covered += static_cast<unsigned>(std::popcount(word));
    return coverage;
}

/// Refuses a section whose length is not what its encoding asks for.
void CheckLength(const Table& table, std::uint32_t id, std::uint64_t valueSize, const Coverage& coverage) {
    const PlacedEntry& entry = table.Require(id);
    if (EncodingOf(entry) == kSparse && coverage.words.empty()) throw PcmError("a needed section is missing");
    const std::uint64_t values = EncodingOf(entry) == kDense      ? table.Pixels()
                                 : EncodingOf(entry) == kConstant ? 1
                                 : EncodingOf(entry) == kSparse   ? 1 + coverage.covered
                                                                  : 0;  // an encoding of a later version
    if (values == 0 || entry.size != values * valueSize) throw PcmError("a section has a wrong length", entry.Place());
}

/// Expands a sparse section in place. The values of the covered pixels were read to the end of the grid; front to back,
/// each is moved to its pixel, and the pixels between get the background value. No value is overwritten before it is
/// moved: there are never more values left than pixels, so that the next value is at or after the next pixel.
/// @tparam kSize  bytes per value
template <std::size_t kSize>
class SparseExpander {
public:
    SparseExpander(std::byte* grid, std::uint64_t pixels, const Coverage& coverage, const std::byte* background)
        : m_coverage(coverage), m_pixels(pixels), m_to(grid), m_from(grid + (pixels - coverage.covered) * kSize) {
        for (std::size_t i = 0; i < kWordBits; ++i) std::memcpy(m_background + i * kSize, background, kSize);
    }

    /// Expands as many words of the coverage as the values read so far allow.
    /// @param end  after the last value that was read
    void Expand(const std::byte* end) {
        for (; m_word < m_coverage.words.size(); ++m_word) {
            const std::uint64_t bits = m_coverage.words[m_word];
            const auto values = static_cast<std::size_t>(std::popcount(bits));
            if (static_cast<std::size_t>(end - m_from) < values * kSize) return;
            const std::size_t count = std::min<std::uint64_t>(kWordBits, m_pixels - m_word * kWordBits);
            if (values == count) {
                std::memmove(m_to, m_from, count * kSize);
            } else if (values == 0) {
                std::memcpy(m_to, m_background, count * kSize);
            } else {
                ExpandWord(bits, count);
            }
            m_from += values * kSize;
            m_to += count * kSize;
        }
    }

private:
    static constexpr std::size_t kWordBits = 64;

    /// Holes are mostly larger than a word, which then has one or two changes between hole and value, and runs are
    /// copied fastest. Where holes are scattered, one value at a time is faster.
    void ExpandWord(std::uint64_t bits, std::size_t count) {
        constexpr int kMaxRunChanges = 12;
        if (std::popcount(bits ^ (bits << 1)) <= kMaxRunChanges) {
            ExpandRuns(bits, count);
        } else {
            ExpandBits(bits, count);
        }
    }

    /// Alternating runs of background and values.
    void ExpandRuns(std::uint64_t bits, std::size_t count) {
        const std::byte* from = m_from;
        std::byte* to = m_to;
        while (count > 0) {
            const std::size_t holes = std::min<std::size_t>(static_cast<unsigned>(std::countr_zero(bits)), count);
            std::memcpy(to, m_background, holes * kSize);
            to += holes * kSize;
            count -= holes;
            if (count == 0) return;
            bits >>= holes;
            const auto values = static_cast<std::size_t>(std::countr_one(bits));
            std::memmove(to, from, values * kSize);
            to += values * kSize;
            from += values * kSize;
            count -= values;
            bits >>= values;  // by less than 64: Expand() copies a word without holes itself
        }
    }

    /// Without a branch on the bit, which the processor could not predict.
    void ExpandBits(std::uint64_t bits, std::size_t count) {
        const std::byte* from = m_from;
        std::byte* to = m_to;
        for (std::size_t i = 0; i < count; ++i, bits >>= 1, to += kSize) {
            const std::byte* sources[2] = {m_background, from};
            std::byte value[kSize];
            std::memcpy(value, sources[bits & 1], kSize);
            std::memcpy(to, value, kSize);
            from += (bits & 1) * kSize;
        }
    }

    const Coverage& m_coverage;
    std::uint64_t m_pixels;
    std::byte* m_to;                            ///< next pixel to write
    const std::byte* m_from;                    ///< next value to move
    std::size_t m_word = 0;                     ///< next word of the coverage
    std::byte m_background[kWordBits * kSize];  ///< the background value, once per pixel of a word
};

/// Reads a dense or sparse section block by block. The checksum of a block is computed, and its values are expanded,
/// while the block is in the cache.
template <std::size_t kSize>
void ReadValues(const Source& source, const PlacedEntry& entry, std::byte* grid, std::uint64_t pixels,
                const Coverage& coverage) {
    RunningChecksum checksum;
    std::uint64_t offset = entry.offset;
    std::byte background[kSize] = {};
    const bool sparse = EncodingOf(entry) == kSparse;
    if (sparse) {
        source.Read(offset, background, kSize);
        checksum.Add(background, kSize);
        offset += kSize;
    }
    std::byte* at = grid + (sparse ? pixels - coverage.covered : 0) * kSize;
    std::byte* const end = grid + pixels * kSize;
    SparseExpander<kSize> expander(grid, pixels, coverage, background);
    while (at != end) {
        const std::size_t size = std::min<std::size_t>(kBlockSize, static_cast<std::size_t>(end - at));
        source.Read(offset, at, size);
        checksum.Add(at, size);
        at += size;
        offset += size;
        if (sparse) expander.Expand(at);
    }
    if (sparse) expander.Expand(end);  // the pixels after the last covered one
    if (checksum.Value() != entry.checksum) throw PcmError("a section is damaged", entry.Place());
}

/// An array that is not initialised, in huge pages.
template <class T>
std::unique_ptr<T[]> MakeArray(std::size_t count) {
    auto values = std::make_unique_for_overwrite<T[]>(count);
    FileStorage::AdviseHugePages(values.get(), count * sizeof(T));
    return values;
}

/// Reads one channel in any encoding.
/// @tparam kValues  elements of type T per pixel
template <std::size_t kValues, class T>
std::unique_ptr<T[]> ReadGrid(const Source& source, const Table& table, std::uint32_t id, const Coverage& coverage) {
    constexpr std::size_t kSize = kValues * sizeof(T);
    static_assert(kBlockSize % kSize == 0);
    const PlacedEntry& entry = table.Require(id);
    const std::uint64_t pixels = table.Pixels();
    auto values = MakeArray<T>(pixels * kValues);
    auto* grid = reinterpret_cast<std::byte*>(values.get());
    if (EncodingOf(entry) == kConstant) {
        std::byte value[kSize];
        ReadWhole(source, entry, value);
        for (std::uint64_t i = 0; i < pixels; ++i) std::memcpy(grid + i * kSize, value, kSize);
    } else {
        ReadValues<kSize>(source, entry, grid, pixels, coverage);
    }
    return values;
}

PcmMeasurement ReadFrom(const Source& source) {
    // All sizes are checked before memory for the grid is allocated.
    const Table table = ReadTable(source);
    const bool hasColors = table.Find(kColors) != nullptr;
    // Constant and sparse sections can announce a grid of any size in a few bytes.
    if (DecodedSize(table.Pixels(), hasColors) / kPcmMaxExpansion > source.Size()) {
        throw PcmError("grid is out of proportion to the file");
    }
    const Coverage coverage = ReadCoverage(source, table);
    CheckLength(table, kPoints, 3 * sizeof(float), coverage);
    CheckLength(table, kConfidence, sizeof(float), coverage);
    CheckLength(table, kClassification, sizeof(std::uint8_t), coverage);
    if (hasColors) CheckLength(table, kColors, sizeof(std::uint32_t), coverage);
    const PlacedEntry& trafo = table.Require(kTrafo);
    PcmMeasurement measurement;
    if (EncodingOf(trafo) != kDense || trafo.size != sizeof measurement.m_fTrafo) {
        throw PcmError("a section has a wrong length", trafo.Place());
    }

    // From here on only checksums can fail.
    ReadWhole(source, trafo, reinterpret_cast<std::byte*>(measurement.m_fTrafo.data()));
    measurement.m_pPoints = ReadGrid<3, float>(source, table, kPoints, coverage);
    measurement.m_pConfidence = ReadGrid<1, float>(source, table, kConfidence, coverage);
    measurement.m_pClassification = ReadGrid<1, std::uint8_t>(source, table, kClassification, coverage);
    if (hasColors) measurement.m_pColors = ReadGrid<1, std::uint32_t>(source, table, kColors, coverage);
    for (const PlacedEntry& entry : table.entries) {
        if (IsKnown(entry.id)) continue;
        PcmForeignSection section{entry.id, EncodingOf(entry), FlagsOf(entry), std::vector<std::byte>(entry.size)};
        ReadWhole(source, entry, section.m_vBytes.data());
        measurement.m_vForeign.push_back(std::move(section));
    }
    measurement.m_iWidth = table.width;
    measurement.m_iHeight = table.height;
    return measurement;
}

}  // namespace

PcmMeasurement ReadPcmFile(const std::string& path) { return ReadFrom(FileSource(path)); }
PcmMeasurement ReadPcm(std::span<const std::byte> bytes) { return ReadFrom(MemorySource(bytes)); }

PcmView ViewOf(const PcmMeasurement& m) {
    return {.m_iWidth = m.m_iWidth,
            .m_iHeight = m.m_iHeight,
            .m_pPoints = m.m_pPoints.get(),
            .m_pConfidence = m.m_pConfidence.get(),
            .m_pClassification = m.m_pClassification.get(),
            .m_pColors = m.m_pColors.get(),
            .m_pTrafo = m.m_fTrafo.data(),
            .m_foreign = m.m_vForeign};
}

}  // namespace MsrStorage
