// Writer of pcm files. It finds the value that the holes of the grid have in common, and stores that value once and the
// other pixels unchanged. The reader is PcmFile.cpp.
#include <algorithm>
#include <bit>
#include <cstring>

#include "MSRDLL/PcmFile.h"
#include "MSRDLL/PcmLayout.h"
#include "files/SectionFile.h"

namespace MsrStorage {
namespace {

using namespace PcmLayout;
using FileStorage::AtomicFile;
using FileStorage::SectionEntry;

/// The destination of the bytes: a file or memory.
class Sink {
public:
    virtual ~Sink() = default;
    virtual void WriteAt(std::uint64_t offset, const std::byte* bytes, std::size_t size) = 0;
};

class FileSink final : public Sink {
public:
    explicit FileSink(AtomicFile& file) : m_file(file) {}
    void WriteAt(std::uint64_t offset, const std::byte* bytes, std::size_t size) override {
        m_file.WriteAt(offset, bytes, size);
    }

private:
    AtomicFile& m_file;
};

class MemorySink final : public Sink {
public:
    void WriteAt(std::uint64_t offset, const std::byte* bytes, std::size_t size) override {
        if (m_vBytes.size() < offset + size) m_vBytes.resize(offset + size);
        std::copy_n(bytes, size, m_vBytes.begin() + static_cast<std::ptrdiff_t>(offset));
    }
    std::vector<std::byte> m_vBytes;
};

constexpr std::size_t kPointSize = 3 * sizeof(float);

/// The values of one section, one per pixel.
struct Channel {
    std::uint32_t id;
    std::uint16_t flags;
    const std::byte* values;
    std::size_t valueSize;

    [[nodiscard]] const std::byte* At(std::uint64_t pixel) const { return values + pixel * valueSize; }
};

/// The values of a channel whose size the compiler knows: a comparison or a copy is then two or three instructions.
template <std::size_t kSize>
struct SizedChannel {
    const std::byte* values;

    [[nodiscard]] const std::byte* At(std::uint64_t pixel) const { return values + pixel * kSize; }
    [[nodiscard]] bool Same(std::uint64_t a, std::uint64_t b) const { return std::memcmp(At(a), At(b), kSize) == 0; }
};

using PointChannel = SizedChannel<kPointSize>;

/// Calls a function with the SizedChannel of a channel.
template <class Function>
auto WithSize(const Channel& channel, const Function& function) {
    if (channel.valueSize == kPointSize) return function(SizedChannel<kPointSize>{channel.values});
    if (channel.valueSize == sizeof(float)) return function(SizedChannel<sizeof(float)>{channel.values});
    return function(SizedChannel<sizeof(std::uint8_t)>{channel.values});
}

/// The pixels that do not have the point of the holes; the words are empty when that point is too rare to save space.
struct Holes {
    std::vector<std::uint64_t> words;  ///< bit i is set when pixel i is covered
    std::uint64_t covered = 0;         ///< number of bits that are set
    std::uint64_t firstHole = 0;       ///< a pixel with the point of the holes

    struct PixelRange {
        std::uint64_t first, count;  ///< bit i of the word is pixel first + i; 64, or fewer in the last word
    };
    /// @param word    index into words
    /// @param pixels  of the grid
    [[nodiscard]] static PixelRange PixelsOf(std::size_t word, std::uint64_t pixels) {
        const std::uint64_t first = word * 64;
        return {first, std::min<std::uint64_t>(64, pixels - first)};
    }
};

/// @return a pixel with the point of the holes: the majority among the pixels that are equal to their left neighbour,
///         by the vote of Boyer and Moore. Measured neighbours are never equal to the bit, so that these are holes in
///         practice; a wrong result costs space, never a value
std::uint64_t VoteForHole(const PointChannel& points, std::uint64_t pixels) {
    std::uint64_t candidate = 0, votes = 0;
    for (std::uint64_t i = 1; i < pixels; ++i) {
        if (!points.Same(i, i - 1)) continue;
        if (votes == 0) candidate = i;
        votes = points.Same(i, candidate) ? votes + 1 : votes - 1;
    }
    return candidate;
}

/// Marks the pixels that do not have the point of the holes.
Holes FindHoles(const PointChannel& points, std::uint64_t pixels) {
    Holes holes;
    const std::uint64_t hole = VoteForHole(points, pixels);
    holes.words.resize((pixels + 63) / 64);
    holes.firstHole = pixels;
    for (std::size_t word = 0; word < holes.words.size(); ++word) {
        const auto [first, count] = Holes::PixelsOf(word, pixels);
        std::uint64_t bits = 0;
        for (std::uint64_t i = 0; i < count; ++i) bits |= std::uint64_t{!points.Same(first + i, hole)} << i;
        holes.words[word] = bits;
        const auto covered = static_cast<unsigned>(std::popcount(bits));
        holes.covered += covered;
        if (covered < count && holes.firstHole == pixels)
            holes.firstHole = first + static_cast<unsigned>(std::countr_one(bits));
    }
    const std::uint64_t saved = (pixels - holes.covered - 1) * kPointSize;
    // The coverage itself costs a table entry and one bit per pixel.
    if (saved <= FileStorage::kEntrySize + (pixels + 7) / 8) holes.words.clear();
    return holes;
}

/// Whether all pixels that are not covered have the value of the first of them. The points have it: they define the
/// holes.
template <class Sized>
bool HaveHolesOneValue(const Sized& channel, std::uint64_t pixels, const Holes& holes) {
    for (std::size_t word = 0; word < holes.words.size(); ++word) {
        const auto [first, count] = Holes::PixelsOf(word, pixels);
        const std::uint64_t bits = holes.words[word];
        for (std::uint64_t i = static_cast<unsigned>(std::countr_one(bits)); i < count; ++i)
            if (((bits >> i) & 1) == 0 && !channel.Same(first + i, holes.firstHole)) return false;
    }
    return true;
}

/// The smallest encoding that can store the channel.
Encoding ChooseEncoding(const Channel& channel, std::uint64_t pixels, const Holes& holes) {
    return WithSize(channel, [&](const auto& sized) {
        std::uint64_t equal = 1;
        while (equal < pixels && sized.Same(equal, 0)) ++equal;
        if (equal == pixels) return kConstant;
        if (holes.words.empty()) return kDense;
        return channel.id == kPoints || HaveHolesOneValue(sized, pixels, holes) ? kSparse : kDense;
    });
}

/// Writes one section in pieces, and counts what its table entry needs: size and checksum.
class SectionWriter {
public:
    SectionWriter(Sink& sink, std::uint64_t offset) : m_sink(sink), m_uOffset(offset) {}
    void Add(const std::byte* bytes, std::size_t size) {
        while (size > 0) {
            const std::size_t part = std::min(size, kBlockSize);
            m_checksum.Add(bytes, part);
            m_sink.WriteAt(m_uOffset + m_uSize, bytes, part);
            m_uSize += part;
            bytes += part;
            size -= part;
        }
    }
    [[nodiscard]] SectionEntry Finish(std::uint32_t id, std::uint16_t encoding, std::uint16_t flags) const {
        return {id, Attributes(encoding, flags), m_uSize, m_checksum.Value()};
    }

private:
    Sink& m_sink;
    std::uint64_t m_uOffset, m_uSize = 0;
    FileStorage::RunningChecksum m_checksum;
};

/// Collects values and writes them in full blocks.
class BlockWriter {
public:
    explicit BlockWriter(SectionWriter& writer) : m_writer(writer) {}
    void Add(const std::byte* values, std::size_t size) {
        while (size > 0) {
            const std::size_t part = std::min(size, kBlockSize - m_uUsed);
            std::memcpy(&m_vBlock[m_uUsed], values, part);
            m_uUsed += part;
            values += part;
            size -= part;
            if (m_uUsed == kBlockSize) Flush();
        }
    }
    void Flush() {
        m_writer.Add(m_vBlock.data(), m_uUsed);
        m_uUsed = 0;
    }

private:
    SectionWriter& m_writer;
    std::vector<std::byte> m_vBlock = std::vector<std::byte>(kBlockSize);
    std::size_t m_uUsed = 0;
};

/// Writes the values of the covered pixels in order, run by run.
void AddCoveredValues(SectionWriter& writer, const Channel& channel, const Holes& holes) {
    BlockWriter block(writer);
    std::uint64_t runBegin = 0, runEnd = 0;  // a run goes on across words
    const auto addRun = [&] { block.Add(channel.At(runBegin), (runEnd - runBegin) * channel.valueSize); };
    for (std::size_t word = 0; word < holes.words.size(); ++word) {
        std::uint64_t at = word * 64, bits = holes.words[word];
        while (bits != 0) {
            const auto gap = static_cast<unsigned>(std::countr_zero(bits));
            bits >>= gap;
            at += gap;
            const auto length = static_cast<unsigned>(std::countr_one(bits));
            if (at != runEnd) {
                addRun();
                runBegin = at;
            }
            at += length;
            runEnd = at;
            bits = length == 64 ? 0 : bits >> length;
        }
    }
    addRun();
    block.Flush();
}

/// Writes one section. @return its table entry
SectionEntry WriteChannel(Sink& sink, std::uint64_t offset, const Channel& channel, Encoding encoding,
                          std::uint64_t pixels, const Holes& holes) {
    SectionWriter writer(sink, offset);
    if (encoding == kDense) {
        writer.Add(channel.values, pixels * channel.valueSize);
    } else if (encoding == kConstant) {
        writer.Add(channel.values, channel.valueSize);
    } else {
        writer.Add(channel.At(holes.firstHole), channel.valueSize);
        AddCoveredValues(writer, channel, holes);
    }
    return writer.Finish(channel.id, encoding, channel.flags);
}

std::vector<std::byte> MakeHead(const PcmView& view, const std::vector<SectionEntry>& entries, std::uint64_t fileSize) {
    const PcmHeader header{static_cast<std::uint32_t>(view.m_iWidth), static_cast<std::uint32_t>(view.m_iHeight),
                           fileSize};
    return FileStorage::BuildHead(kFormat, std::bit_cast<FileStorage::HeaderFields>(header), entries);
}

/// @throws PcmError for a grid that readers would refuse
void CheckView(const PcmView& view) {
    const auto wrong = [](int side) { return side < 1 || side > kPcmMaxSide; };
    if (wrong(view.m_iWidth) || wrong(view.m_iHeight)) throw PcmError("impossible grid size");
    if (!view.m_pPoints || !view.m_pConfidence || !view.m_pClassification || !view.m_pTrafo) {
        throw PcmError("nothing to write");
    }
    if (view.m_foreign.size() > FileStorage::kMaxSections - std::size(kKnownSections))
        throw PcmError("too many sections");
    for (const PcmForeignSection& section : view.m_foreign) {
        if (IsKnown(section.m_uId) || (section.m_uFlags & kNeeded))
            throw PcmError("a foreign section that readers refuse");
    }
}

/// The sections with one value per pixel.
std::vector<Channel> ChannelsOf(const PcmView& view) {
    const auto bytes = [](const auto* values) { return reinterpret_cast<const std::byte*>(values); };
    std::vector<Channel> channels = {{kPoints, kNeeded, bytes(view.m_pPoints), 3 * sizeof(float)},
                                     {kConfidence, kNeeded, bytes(view.m_pConfidence), sizeof(float)},
                                     {kClassification, kNeeded, bytes(view.m_pClassification), sizeof(std::uint8_t)}};
    if (view.m_pColors) channels.push_back({kColors, 0, bytes(view.m_pColors), sizeof(std::uint32_t)});
    return channels;
}

/// The encoding of each channel.
struct Plan {
    Holes holes;
    std::vector<Encoding> encodings;
    bool needsCoverage = false;
};

/// Finds the holes and chooses the encodings.
Plan MakePlan(const std::vector<Channel>& channels, std::uint64_t pixels) {
    Plan plan;
    plan.holes = FindHoles(PointChannel{channels.front().values}, pixels);
    std::uint64_t size = 0;
    for (const Channel& channel : channels) {
        const Encoding encoding = ChooseEncoding(channel, pixels, plan.holes);
        plan.encodings.push_back(encoding);
        const std::uint64_t values = encoding == kDense ? pixels : encoding == kSparse ? plan.holes.covered : 1;
        size += values * channel.valueSize;
        plan.needsCoverage = plan.needsCoverage || encoding == kSparse;
    }
    if (plan.needsCoverage) size += pixels / 8;
    // Readers refuse a grid that is out of proportion to its file. A grid that is nearly empty is stored with dense
    // classes, which makes the file large enough.
    if (DecodedSize(pixels, channels.size() == 4) / kPcmMaxExpansion > size) {
        const auto classes = std::find_if(channels.begin(), channels.end(),
                                          [](const Channel& channel) { return channel.id == kClassification; });
        plan.encodings[static_cast<std::size_t>(classes - channels.begin())] = kDense;
    }
    return plan;
}

/// Writes the sections first, then header and table, which need the sizes and checksums.
void WriteTo(Sink& sink, const PcmView& view) {
    const auto pixels = static_cast<std::uint64_t>(view.m_iWidth) * static_cast<std::uint64_t>(view.m_iHeight);
    const std::vector<Channel> channels = ChannelsOf(view);
    const Plan plan = MakePlan(channels, pixels);
    // The number of sections fixes the offset of the first one.
    const std::size_t count = channels.size() + 1 + (plan.needsCoverage ? 1 : 0) + view.m_foreign.size();
    std::uint64_t end = FileStorage::HeadSize(static_cast<std::uint32_t>(count));
    std::vector<SectionEntry> entries;
    const auto placed = [&](const SectionEntry& entry) {
        entries.push_back(entry);
        end += entry.size;
    };
    const auto addWhole = [&](std::uint32_t id, std::uint16_t encoding, std::uint16_t flags, const void* bytes,
                              std::size_t size) {
        SectionWriter writer(sink, end);
        writer.Add(static_cast<const std::byte*>(bytes), size);
        placed(writer.Finish(id, encoding, flags));
    };
    addWhole(kTrafo, kDense, kNeeded, view.m_pTrafo, 16 * sizeof(float));
    if (plan.needsCoverage) addWhole(kCoverage, kDense, kNeeded, plan.holes.words.data(), (pixels + 7) / 8);
    for (std::size_t i = 0; i < channels.size(); ++i) {
        placed(WriteChannel(sink, end, channels[i], plan.encodings[i], pixels, plan.holes));
    }
    // Sections that this version does not know come last, in their order.
    for (const PcmForeignSection& section : view.m_foreign) {
        addWhole(section.m_uId, section.m_uEncoding, section.m_uFlags, section.m_vBytes.data(),
                 section.m_vBytes.size());
    }
    const std::vector<std::byte> head = MakeHead(view, entries, end);
    sink.WriteAt(0, head.data(), head.size());
}

}  // namespace

void WritePcmFile(const std::string& path, const PcmView& view, FileStorage::FileCalls& calls) {
    CheckView(view);
    AtomicFile file(path, calls);
    FileSink sink(file);
    WriteTo(sink, view);
    file.Commit();
}

std::vector<std::byte> WritePcm(const PcmView& view) {
    CheckView(view);
    MemorySink sink;
    WriteTo(sink, view);
    return std::move(sink.m_vBytes);
}

}  // namespace MsrStorage
