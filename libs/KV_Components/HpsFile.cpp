// Parser and writer of the sections of hps files.
#include "HpsFile.h"

#include <algorithm>
#include <bit>
#include <cerrno>
#include <utility>

#include "HpsLayout.h"
#include "files/RegularFile.h"
#include "files/SectionFile.h"

namespace KvComponents::Hps {

namespace {

using FileStorage::SectionEntry;

/// Memory for a mesh: three floats per vertex, three indices per triangle.
std::uint64_t MeshBytes(const FileContent& content) {
    return 12 * (std::uint64_t{content.vertexCount} + content.triangleCount);
}

/// Appends length and bytes of a text; ReadText() is the inverse.
void AppendText(ByteVector& to, const std::string& text) {
    AppendValue(to, static_cast<std::uint32_t>(text.size()));
    const ByteSpan bytes = std::as_bytes(std::span(text));
    to.insert(to.end(), bytes.begin(), bytes.end());
}

std::string ReadText(ByteReader& from) {
    const ByteSpan bytes = from.Read(from.ReadValue<std::uint32_t>());
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// The code that reports damage in a section.
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

/// Whether this version knows a section.
bool IsKnown(std::uint32_t section) {
    return CodeOf(section) != ReadError::kInvalidFile || section == kSourceSection || section == kFillSection;
}

[[noreturn]] void FailInvalid(const char* reason) { throw FileError(ReadError::kInvalidFile, reason); }

/// Checks one section and enters it in @p content.
void ReadSection(const SectionEntry& entry, ByteSpan bytes, FileContent& content) {
    if (FileStorage::Checksum(bytes.data(), bytes.size()) != entry.checksum)
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
            // Empty would mean "none", which a writer expresses by leaving the section out.
            if (bytes.empty()) throw FileError(ReadError::kUv, "an empty UV block");
            content.uv = bytes;
            break;
        case kTextureSection:
            if (bytes.size() <= sizeof(std::uint32_t)) throw FileError(ReadError::kTexture, "an empty texture");
            content.orientation = from.ReadValue<std::uint32_t>();
            if (content.orientation > kMaxOrientation) throw FileError(ReadError::kTexture, "unknown orientation");
            content.texture = from.Rest();
            break;
        case kSourceSection:
            content.application = ReadText(from);
            content.version = ReadText(from);
            break;
        default:  // padding, and optional sections of later versions: only the checksum matters
            break;
    }
}

/// The header of a file.
struct Start {
    std::uint32_t sectionCount;
    HpsHeader header;
};

/// Checks the beginning of a file.
[[nodiscard]] Start CheckStart(ByteSpan start) {
    if (start.size() < kHeaderSize) FailInvalid("cut short");
    const auto header = start.first<kHeaderSize>();
    const std::uint32_t count = FileStorage::CheckHeader(kFormat, header);
    return {count, std::bit_cast<HpsHeader>(FileStorage::FieldsOf(header))};
}

/// Checks a file in the order header, table, counts, sections: the first defect decides the code.
FileContent ParseSections(ByteSpan file) {
    const auto [count, header] = CheckStart(file);
    if (header.fileSize != file.size()) FailInvalid("has another length than it should");
    const std::size_t headSize = FileStorage::HeadSize(count);
    if (file.size() < headSize) FailInvalid("cut short");
    const std::vector<SectionEntry> entries = FileStorage::ReadTable(file.first(headSize));
    for (std::size_t i = 0; i < entries.size(); ++i)
        FileStorage::CheckEntry(entries, i, IsKnown(entries[i].id), kNeeded);
    if (header.vertexCount > kMaxCount || header.triangleCount > kMaxCount) FailInvalid("impossible counts");
    FileContent content;
    content.vertexCount = header.vertexCount;
    content.triangleCount = header.triangleCount;
    if (MeshBytes(content) / kMaxExpansion > file.size()) FailInvalid("counts out of proportion to the file");
    FileStorage::SectionPlacer placer(headSize, file.size());
    for (const SectionEntry& entry : entries)
        ReadSection(entry, file.subspan(placer.Place(entry), entry.size), content);
    placer.ExpectEnd();
    if (content.positions.empty() || content.facets.empty()) FailInvalid("a needed section is missing");
    return content;
}

}  // namespace

ByteVector BuildFile(const FileContent& content) {
    // Sections that are not yet in memory as bytes.
    ByteVector source, texture;
    AppendText(source, content.application);
    AppendText(source, content.version);
    std::vector<SectionEntry> entries;
    std::vector<ByteSpan> sections;
    std::size_t sectionBytes = 0;
    const auto add = [&](std::uint32_t id, std::uint32_t flags, ByteSpan bytes) {
        entries.push_back({id, flags, bytes.size(), FileStorage::Checksum(bytes.data(), bytes.size())});
        sections.push_back(bytes);
        sectionBytes += bytes.size();
    };
    const auto fileSize = [&] {
        return FileStorage::HeadSize(static_cast<std::uint32_t>(entries.size())) + sectionBytes;
    };
    // Triangles before positions, which need them to be decoded.
    add(kSourceSection, 0, source);
    add(kFacetSection, kNeeded, content.facets);
    add(kPositionSection, kNeeded, content.positions);
    if (!content.uv.empty()) add(kUvSection, 0, content.uv);
    if (!content.texture.empty()) {
        AppendValue(texture, content.orientation);
        texture.insert(texture.end(), content.texture.begin(), content.texture.end());
        add(kTextureSection, 0, texture);
    }
    // The counts must not be out of proportion to the file size: zeros are added to a mesh that compresses better.
    ByteVector fill;
    if (const std::size_t minSize = MeshBytes(content) / kMaxExpansion; fileSize() < minSize) {
        fill.resize(minSize - fileSize());
        add(kFillSection, 0, fill);
    }

    const HpsHeader header{fileSize(), content.vertexCount, content.triangleCount};
    ByteVector file = FileStorage::BuildHead(kFormat, std::bit_cast<FileStorage::HeaderFields>(header), entries);
    file.reserve(fileSize());
    for (const ByteSpan section : sections) file.insert(file.end(), section.begin(), section.end());
    return file;
}

FileContent ParseFile(ByteSpan file) {
    try {
        return ParseSections(file);
    } catch (const DamagedData& damage) {
        FailInvalid(damage.what());
    } catch (const FileStorage::SectionFileError& error) {
        FailInvalid(error.what());
    }
}

RawArray<std::byte> LoadFile(const std::string& path) {
    try {
        const FileStorage::RegularFile file(path);
        const auto size = static_cast<std::size_t>(file.Size());
        const auto read = [&file](std::byte* to, std::size_t count) {
            if (file.ReadAt(0, to, count) != count) throw FileError(ReadError::kUnreadable, "shrank while it was read");
        };
        // A file in another format is refused before memory for the whole file is allocated.
        std::byte start[kHeaderSize];
        const std::size_t startSize = std::min(size, sizeof start);
        read(start, startSize);
        const std::uint64_t announced = CheckStart({start, startSize}).header.fileSize;
        if (announced > size) FailInvalid("cut short");
        // What follows the announced length is no part of the file.
        RawArray<std::byte> bytes(static_cast<std::size_t>(announced));
        read(bytes.data(), bytes.size());
        return bytes;
    } catch (const FileStorage::FileAccessError& error) {
        const bool isMissing = error.Error() == ENOENT || error.Error() == ENOTDIR;
        throw FileError(isMissing ? ReadError::kNotFound : ReadError::kUnreadable, error.what());
    } catch (const FileStorage::SectionFileError& error) {
        FailInvalid(error.what());
    }
}

}  // namespace KvComponents::Hps
