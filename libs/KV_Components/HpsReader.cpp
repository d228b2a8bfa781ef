// The reader object. Open checks and unpacks the whole file, so that every defect is reported there.
#include <algorithm>
#include <future>

#include "ComponentReference.h"
#include "HpsFile.h"
#include "HpsMesh.h"
#include "HpsUv.h"
#include "HpsVertices.h"
#include "KV_Components/Hps.h"
#include "KV_Components/Image.h"
#include "KV_ScenePane/PathText.h"
#include "ObjectRegistry.h"
#include "files/Cores.h"

namespace KvComponents {

namespace {

using Hps::ReadError;

/// The picture of an image file. @throws Hps::FileError
ObjectPointer DecodeImage(Hps::ByteSpan file) {
    const ObjectPointer made(MakeImageObject()->MainInterface());
    Object* image = nullptr;
    const bool isImage = kQuery(made.get(), image::kInterface, &image) == kSucceeded;
    ObjectPointer result(image);
    if (!isImage || image::kDecodeFile(image, file.data(), file.size()) != kSucceeded)
        throw Hps::FileError(ReadError::kTexture, "the texture is not a picture");
    return result;
}

/// Ends the feed when it is destroyed, so that the thread that reads it ends as well.
class EndOfFeed {
public:
    explicit EndOfFeed(Hps::IntroductionFeed& feed) : m_feed(feed) {}
    ~EndOfFeed() { m_feed.End(); }
    EndOfFeed(const EndOfFeed&) = delete;
    EndOfFeed& operator=(const EndOfFeed&) = delete;

private:
    Hps::IntroductionFeed& m_feed;
};

/// Reads one file at a time; see hps_reader in KV_Components/Hps.h for the operations.
class HpsReader final : public SingleInterfaceComponent {
public:
    HpsReader();

    std::int32_t Open(const wchar_t* path);
    std::int32_t LastError(std::int32_t* code);
    std::int32_t UvBlockSize(std::int32_t* size);
    std::int32_t UvBlock(void* block, std::size_t size);
    std::int32_t ImageFileSize(std::int32_t* size, std::int32_t* reserved1, std::int32_t* reserved2);
    std::int32_t ImageFileBytes(void* bytes, std::size_t size);
    std::int32_t Image(Object** image);
    std::int32_t Mesh(Object** mesh);
    std::int32_t ImageOrientation(std::int32_t* orientation);
    std::int32_t Close();

private:
    /// Closes the file and forgets mesh, image and error.
    void Reset();
    /// Reads and checks the whole file. @throws Hps::FileError
    void Read(const std::string& path);
    /// Decodes triangles and positions, large ones on two threads. @throws Hps::FileError
    void UnpackMesh();
    void SetMesh(Hps::RawArray<float> positions, Hps::RawArray<std::int32_t> indices, bool hasValidIndices);
    /// Empty when there is no texture: callers conclude from a UV block that there is one.
    [[nodiscard]] Hps::ByteSpan UvBlockOfTexture() const;
    /// Returns the size of a part of the file to a caller; kFailed when there is no such part.
    [[nodiscard]] static std::int32_t ReportSize(Hps::ByteSpan of, std::int32_t* size);
    /// Copies a part of the file to the buffer of a caller, whose size must be exact.
    [[nodiscard]] static std::int32_t CopyBytes(Hps::ByteSpan from, void* to, std::size_t size);

    ReadError m_error = ReadError::kNone;
    bool m_bIsOpen = false;
    Hps::RawArray<std::byte> m_file;
    Hps::FileContent m_content;  ///< points into m_file
    ComponentReference<HpsMesh> m_mesh;
    ObjectPointer m_pImage;  ///< decoded by Open(); null after the first Image()
};

const Object::Entry* ReaderTable() {
    static const OperationTable table = OperationTable()
                                            .Set<&HpsReader::Open>(hps_reader::kOpen)
                                            .Set<&HpsReader::LastError>(hps_reader::kLastError)
                                            .Set<&HpsReader::UvBlockSize>(hps_reader::kUvBlockSize)
                                            .Set<&HpsReader::UvBlock>(hps_reader::kUvBlock)
                                            .Set<&HpsReader::ImageFileSize>(hps_reader::kImageFileSize)
                                            .Set<&HpsReader::ImageFileBytes>(hps_reader::kImageFileBytes)
                                            .Set<&HpsReader::Image>(hps_reader::kImage)
                                            .Set<&HpsReader::Mesh>(hps_reader::kMesh)
                                            .Set<&HpsReader::ImageOrientation>(hps_reader::kImageOrientation)
                                            .Set<&HpsReader::Close>(hps_reader::kClose);
    return table.Entries();
}

HpsReader::HpsReader() : SingleInterfaceComponent(hps_reader::kInterface, ReaderTable()) {}

void HpsReader::Reset() {
    m_error = ReadError::kNone;
    m_bIsOpen = false;
    m_content = {};
    m_file = {};
    m_mesh = {};
    m_pImage.reset();
}

// The positions are decoded by the other thread while the triangles, whose order they follow, are decoded by this one.
void HpsReader::UnpackMesh() {
    Hps::Facets facets;
    facets.introductions = Hps::RawArray<Hps::Introduction>(m_content.vertexCount);
    Hps::IntroductionFeed feed;
    const auto unpackPositions = [&] {
        Hps::PackedPositions packed(m_content.positions, m_content.vertexCount);
        return packed.Decode(facets.introductions.Span(), feed);
    };
    // In packed bytes. Below this the start of a thread costs more than it saves.
    constexpr std::size_t kMinSizeForThread = 100'000;
    // "deferred" too: on this thread when the system has no further one.
    const bool hasThread = m_content.positions.size() >= kMinSizeForThread && FileStorage::AllowedCores() > 1;
    auto unpacked =
        std::async(hasThread ? std::launch::async | std::launch::deferred : std::launch::deferred, unpackPositions);
    const EndOfFeed endOfFeed(feed);  // before the other thread is waited for, which waits for the feed
    // The part that is being decoded, for the code of an error.
    ReadError section = ReadError::kFacets;
    try {
        Hps::DecodeFacets(m_content.facets, m_content.triangleCount, facets, feed);
        if (facets.firstBad != Hps::Facets::kNone) {
            // The mesh keeps its triangles, so that a caller can report which one is wrong.
            Hps::RawArray<float> positions(3 * std::size_t{m_content.vertexCount});
            std::fill_n(positions.data(), positions.size(), 0.0f);
            SetMesh(std::move(positions), std::move(facets.indices), false);
            throw Hps::FileError(ReadError::kFacets, "a triangle names no vertex");
        }
        section = ReadError::kVertices;
        Hps::RawArray<float> positions = unpacked.get();
        SetMesh(std::move(positions), std::move(facets.indices), true);
    } catch (const Hps::DamagedData& damage) {
        throw Hps::FileError(section, damage.what());
    }
}

void HpsReader::SetMesh(Hps::RawArray<float> positions, Hps::RawArray<std::int32_t> indices, bool hasValidIndices) {
    m_mesh = ComponentReference<HpsMesh>::Adopt(new HpsMesh(std::move(positions), std::move(indices), hasValidIndices));
}

void HpsReader::Read(const std::string& path) {
    m_file = Hps::LoadFile(path);
    m_content = Hps::ParseFile(m_file.Span());
    UnpackMesh();
    // Texture coordinates stay packed: only their counts are checked here, the decoder object unpacks them.
    try {
        if (m_content.uv.size() > Hps::kMaxCount) throw Hps::DamagedData("too large");
        if (!m_content.uv.empty()) (void)Hps::MeasureUv(m_content.uv);
    } catch (const Hps::DamagedData& damage) {
        throw Hps::FileError(ReadError::kUv, damage.what());
    }
    if (m_content.texture.size() > Hps::kMaxCount) throw Hps::FileError(ReadError::kTexture, "too large");
    if (!m_content.texture.empty()) m_pImage = DecodeImage(m_content.texture);
}

std::int32_t HpsReader::Open(const wchar_t* path) {
    Reset();
    if (path == nullptr) return kInvalidArgument;
    try {
        Read(KV_ScenePane::PathBytes(path));
    } catch (const Hps::FileError& error) {
        // After a wrong index the mesh stays, for a caller that wants to report the triangle.
        if (error.m_code != ReadError::kFacets) Reset();
        m_error = error.m_code;
        return kFailed;
    } catch (...) {
        Reset();  // a reader that is not open must not return a mesh
        throw;
    }
    m_bIsOpen = true;
    return kSucceeded;
}

std::int32_t HpsReader::LastError(std::int32_t* code) {
    if (code == nullptr) return kInvalidArgument;
    *code = static_cast<std::int32_t>(m_error);
    return kSucceeded;
}

Hps::ByteSpan HpsReader::UvBlockOfTexture() const {
    return m_bIsOpen && !m_content.texture.empty() ? m_content.uv : Hps::ByteSpan();
}

std::int32_t HpsReader::ReportSize(Hps::ByteSpan of, std::int32_t* size) {
    if (size == nullptr) return kInvalidArgument;
    *size = 0;
    if (of.empty()) return kFailed;
    *size = static_cast<std::int32_t>(of.size());
    return kSucceeded;
}

std::int32_t HpsReader::CopyBytes(Hps::ByteSpan from, void* to, std::size_t size) {
    if (to == nullptr) return kInvalidArgument;
    if (from.empty()) return kFailed;
    if (size != from.size()) return kInvalidArgument;
    std::memcpy(to, from.data(), size);
    return kSucceeded;
}

std::int32_t HpsReader::UvBlockSize(std::int32_t* size) { return ReportSize(UvBlockOfTexture(), size); }

std::int32_t HpsReader::UvBlock(void* block, std::size_t size) { return CopyBytes(UvBlockOfTexture(), block, size); }

std::int32_t HpsReader::ImageFileSize(std::int32_t* size, std::int32_t* reserved1, std::int32_t* reserved2) {
    if (reserved1 != nullptr) *reserved1 = 0;
    if (reserved2 != nullptr) *reserved2 = 0;
    return ReportSize(m_bIsOpen ? m_content.texture : Hps::ByteSpan(), size);
}

std::int32_t HpsReader::ImageFileBytes(void* bytes, std::size_t size) {
    return CopyBytes(m_bIsOpen ? m_content.texture : Hps::ByteSpan(), bytes, size);
}

std::int32_t HpsReader::Image(Object** image) {
    if (image == nullptr) return kInvalidArgument;
    *image = nullptr;
    if (!m_bIsOpen || m_content.texture.empty()) return kFailed;
    // Each caller gets its own image, which it may flip; the first one gets the image that Open() decoded.
    *image = m_pImage ? m_pImage.release() : DecodeImage(m_content.texture).release();
    return kSucceeded;
}

std::int32_t HpsReader::Mesh(Object** mesh) {
    if (mesh == nullptr) return kInvalidArgument;
    *mesh = nullptr;
    if (!m_mesh) return kFailed;
    m_mesh->AddReference();  // for the caller
    *mesh = m_mesh->MainInterface();
    return kSucceeded;
}

std::int32_t HpsReader::ImageOrientation(std::int32_t* orientation) {
    if (orientation == nullptr) return kInvalidArgument;
    *orientation = 0;
    if (!m_bIsOpen || m_content.texture.empty()) return kFailed;
    *orientation = static_cast<std::int32_t>(m_content.orientation);
    return kSucceeded;
}

std::int32_t HpsReader::Close() {
    if (!m_bIsOpen) return kFailed;
    Reset();
    return kSucceeded;
}

}  // namespace

Component* MakeHpsReader() { return new HpsReader; }

}  // namespace KvComponents
