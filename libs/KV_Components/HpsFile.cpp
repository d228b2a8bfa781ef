// Header and table of hps files, written and checked.
#include "HpsFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <xxhash.h>

#include <algorithm>
#include <cerrno>
#include <limits>
#include <utility>

#include "HpsLayout.h"

namespace KvComponents::Hps {

namespace {

struct Entry {
    std::uint32_t id, flags;
    std::uint64_t size, checksum;
};
static_assert(sizeof(Entry) == kEntrySize);

constexpr std::uint32_t kMaxOfAll = std::numeric_limits<std::int32_t>::max();

/// What a mesh takes in memory: three floats a vertex, three indices a triangle.
std::uint64_t MeshBytes(const FileContent& content) {
    return 12 * (std::uint64_t{content.vertexCount} + content.triangleCount);
}

void AppendText(ByteVector& to, const std::string& text) {
    AppendValue(to, static_cast<std::uint32_t>(text.size()));
    const ByteSpan bytes = std::as_bytes(std::span(text));
    to.insert(to.end(), bytes.begin(), bytes.end());
}

std::string TakeText(ByteReader& from) {
    const ByteSpan bytes = from.Take(from.TakeValue<std::uint32_t>());
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

std::size_t LengthOf(std::size_t sectionCount, std::size_t sectionBytes) {
    return kHeaderSize + sectionCount * kEntrySize + kChecksumSize + sectionBytes;
}

/// Whose fault a damaged section is.
ReadError CodeOf(std::uint32_t section) {
    switch (section) {
        case kPositionSection:
            return ReadError::kVertices;
        case kFacetSection:
            return ReadError::kFacets;
        case kUvSection:
            return ReadError::kUv;
        case kTextureSection:
            return ReadError::kTexture;
        default:
            return ReadError::kInvalidFile;
    }
}

bool IsKnown(std::uint32_t section) {
    return CodeOf(section) != ReadError::kInvalidFile || section == kSourceSection || section == kFillSection;
}

[[noreturn]] void FailInvalid(const char* reason) { throw FileError(ReadError::kInvalidFile, reason); }

void TakeSection(const Entry& entry, ByteSpan bytes, FileContent& content) {
    if (XXH3_64bits(bytes.data(), bytes.size()) != entry.checksum)
        throw FileError(CodeOf(entry.id), "a section is damaged");
    ByteReader from(bytes);
    switch (entry.id) {
        case kPositionSection:
            content.positions = bytes;
            break;
        case kFacetSection:
            content.facets = bytes;
            break;
        case kUvSection:
            if (bytes.empty()) throw FileError(ReadError::kUv, "an empty UV block");
            content.uv = bytes;
            break;
        case kTextureSection:
            if (bytes.size() <= sizeof(std::uint32_t)) throw FileError(ReadError::kTexture, "an empty texture");
            content.orientation = from.TakeValue<std::uint32_t>();
            if (content.orientation > kMaxOrientation) throw FileError(ReadError::kTexture, "unknown orientation");
            content.texture = from.Rest();
            break;
        case kSourceSection:
            content.application = TakeText(from);
            content.version = TakeText(from);
            break;
        default:
            break;
    }
}

/// The table behind a header that announces @p count sections, its checksum checked.
std::vector<Entry> TakeTable(ByteSpan file, std::uint32_t count) {
    ByteReader from(file.subspan(kHeaderSize));
    std::vector<Entry> entries(count);
    for (Entry& entry : entries) entry = from.TakeValue<Entry>();
    const std::size_t tableEnd = kHeaderSize + count * kEntrySize;
    if (from.TakeValue<std::uint64_t>() != XXH3_64bits(file.data(), tableEnd)) FailInvalid("the table is damaged");
    for (auto entry = entries.begin(); entry != entries.end(); ++entry) {
        if (!IsKnown(entry->id)) {
            if (entry->flags & kNeeded) FailInvalid("needs a section that this version does not know");
        } else if (std::any_of(entries.begin(), entry, [&](const Entry& e) { return e.id == entry->id; })) {
            FailInvalid("a section stands twice");
        }
    }
    return entries;
}

struct Start {
    std::uint32_t sectionCount;
    ByteReader rest;  ///< of the header
};

/// Checks the beginning of a file of that size.
[[nodiscard]] Start CheckStart(ByteSpan start, std::size_t fileSize) {
    if (start.size() < kHeaderSize) FailInvalid("cut short");
    ByteReader header(start);
    if (std::memcmp(header.Take(sizeof kMagic).data(), kMagic, sizeof kMagic) != 0) FailInvalid("not an hps file");
    if (header.TakeValue<std::uint32_t>() != kVersion) FailInvalid("of a version that is not known here");
    const auto count = header.TakeValue<std::uint32_t>();
    if (count > kMaxSections) FailInvalid("impossible number of sections");
    if (header.TakeValue<std::uint64_t>() != fileSize) FailInvalid("has another length than it should");
    return {count, header};
}

FileContent ParseFrame(ByteSpan file) {
    auto [count, header] = CheckStart(file, file.size());
    FileContent content;
    content.vertexCount = header.TakeValue<std::uint32_t>();
    content.triangleCount = header.TakeValue<std::uint32_t>();

    const std::vector<Entry> entries = TakeTable(file, count);
    if (content.vertexCount > kMaxOfAll || content.triangleCount > kMaxOfAll) FailInvalid("impossible counts");
    if (MeshBytes(content) / kMaxExpansion > file.size()) FailInvalid("counts out of proportion to the file");
    ByteReader from(file.subspan(LengthOf(count, 0)));
    for (const Entry& entry : entries) TakeSection(entry, from.Take(entry.size), content);
    if (!from.Rest().empty()) FailInvalid("bytes that belong to no section");
    if (content.positions.empty() || content.facets.empty()) FailInvalid("a needed section is missing");
    return content;
}

/// The first bytes of a file. @throws FileError
void ReadWhole(int fd, std::span<std::byte> to) {
    for (std::size_t at = 0; at < to.size();) {
        const ssize_t got = ::pread(fd, to.data() + at, to.size() - at, static_cast<off_t>(at));
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) throw FileError(ReadError::kUnreadable, got < 0 ? "cannot be read" : "shrank meanwhile");
        at += static_cast<std::size_t>(got);
    }
}

}  // namespace

ByteVector BuildFile(const FileContent& content) {
    ByteVector source, texture;
    AppendText(source, content.application);
    AppendText(source, content.version);
    std::vector<std::pair<Entry, ByteSpan>> sections;
    const auto add = [&](std::uint32_t id, std::uint32_t flags, ByteSpan bytes) {
        sections.push_back({{id, flags, bytes.size(), XXH3_64bits(bytes.data(), bytes.size())}, bytes});
    };
    add(kSourceSection, 0, source);
    add(kFacetSection, kNeeded, content.facets);
    add(kPositionSection, kNeeded, content.positions);
    if (!content.uv.empty()) add(kUvSection, 0, content.uv);
    if (!content.texture.empty()) {
        AppendValue(texture, content.orientation);
        texture.insert(texture.end(), content.texture.begin(), content.texture.end());
        add(kTextureSection, 0, texture);
    }
    std::size_t sectionBytes = 0;
    for (const auto& section : sections) sectionBytes += section.second.size();
    const std::size_t least = MeshBytes(content) / kMaxExpansion;
    ByteVector fill;
    if (const std::size_t length = LengthOf(sections.size(), sectionBytes); length < least) {
        fill.resize(least - length);
        add(kFillSection, 0, fill);
        sectionBytes += fill.size();
    }

    ByteVector file;
    const std::size_t length = LengthOf(sections.size(), sectionBytes);
    file.reserve(length);
    for (const unsigned char byte : kMagic) file.push_back(std::byte{byte});
    AppendValue(file, kVersion);
    AppendValue(file, static_cast<std::uint32_t>(sections.size()));
    AppendValue<std::uint64_t>(file, length);
    AppendValue(file, content.vertexCount);
    AppendValue(file, content.triangleCount);
    for (const auto& section : sections) AppendValue(file, section.first);
    AppendValue<std::uint64_t>(file, XXH3_64bits(file.data(), file.size()));
    for (const auto& section : sections) file.insert(file.end(), section.second.begin(), section.second.end());
    return file;
}

FileContent ParseFile(ByteSpan file) {
    try {
        return ParseFrame(file);
    } catch (const DamagedData& damage) {
        FailInvalid(damage.what());
    }
}

RawArray<std::byte> LoadFile(const std::string& path) {
    // O_NONBLOCK: the open of a pipe that nobody writes to must not wait.
    const int fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0) {
        const bool isMissing = errno == ENOENT || errno == ENOTDIR;
        throw FileError(isMissing ? ReadError::kNotFound : ReadError::kUnreadable, "cannot be opened");
    }
    struct Closer {
        int fd;
        ~Closer() { ::close(fd); }
    } const closer{fd};
    struct stat info {};
    if (::fstat(fd, &info) != 0 || !S_ISREG(info.st_mode))
        throw FileError(ReadError::kUnreadable, "not a regular file");
    const auto size = static_cast<std::size_t>(info.st_size);
    // Whatever is no hps file is refused before memory for all of it is taken.
    std::byte start[kHeaderSize];
    const std::span<std::byte> startOfFile(start, std::min(size, sizeof start));
    ReadWhole(fd, startOfFile);
    (void)CheckStart(startOfFile, size);
    RawArray<std::byte> bytes(size);
    ReadWhole(fd, {bytes.data(), size});
    return bytes;
}

}  // namespace KvComponents::Hps
