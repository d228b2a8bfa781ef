// The image object: one picture in memory and the operations on it. Image files are decoded by ImageDecode.h.
#include <algorithm>
#include <cstring>
#include <utility>

#include "ImageDecode.h"
#include "KV_Components/Image.h"
#include "ObjectRegistry.h"

namespace KvComponents {

namespace {

/// See KV_Components/Image.h for the operations.
class ImageObject final : public SingleInterfaceComponent {
public:
    ImageObject() : SingleInterfaceComponent(image::kInterface, Operations()) {}

private:
    std::int32_t Size(std::int32_t* width, std::int32_t* height) {
        if (width == nullptr || height == nullptr) return kInvalidArgument;
        *width = m_picture.m_iWidth;
        *height = m_picture.m_iHeight;
        return kSucceeded;
    }

    std::int32_t SetSize(std::int32_t width, std::int32_t height) {
        if (width <= 0 || height <= 0 || width > kMaxImageSide || height > kMaxImageSide) return kInvalidArgument;
        Picture picture{width, height, {}};
        picture.m_vRgba.resize(std::size_t{4} * static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
        m_picture = std::move(picture);
        return kSucceeded;
    }

    std::int32_t ReadPixels(void* pixels, std::size_t size) {
        if (pixels == nullptr || size != m_picture.m_vRgba.size()) return kInvalidArgument;
        if (size != 0) std::memcpy(pixels, m_picture.m_vRgba.data(), size);
        return kSucceeded;
    }

    std::int32_t WritePixels(const void* pixels, std::size_t size) {
        if (pixels == nullptr || size != m_picture.m_vRgba.size()) return kInvalidArgument;
        if (size != 0) std::memcpy(m_picture.m_vRgba.data(), pixels, size);
        return kSucceeded;
    }

    std::int32_t DecodeFile(const void* bytes, std::size_t size) {
        if (bytes == nullptr || size == 0) return kInvalidArgument;
        std::optional<Picture> picture = DecodeImage({static_cast<const std::uint8_t*>(bytes), size});
        if (!picture) return kFailed;
        m_picture = *std::move(picture);
        return kSucceeded;
    }

    std::int32_t Flip() {
        // Swaps the rows from both ends towards the middle.
        const std::size_t stride = std::size_t{4} * static_cast<std::size_t>(m_picture.m_iWidth);
        auto top = m_picture.m_vRgba.begin();
        auto bottom = m_picture.m_vRgba.end();
        for (std::int32_t row = 0; row < m_picture.m_iHeight / 2; ++row) {
            bottom -= static_cast<std::ptrdiff_t>(stride);
            top = std::swap_ranges(bottom, bottom + static_cast<std::ptrdiff_t>(stride), top);
        }
        return kSucceeded;
    }

    static const Object::Entry* Operations() {
        static const OperationTable table = OperationTable()
                                                .Set<&ImageObject::Size>(image::kSize)
                                                .Set<&ImageObject::SetSize>(image::kSetSize)
                                                .Set<&ImageObject::ReadPixels>(image::kReadPixels)
                                                .Set<&ImageObject::WritePixels>(image::kWritePixels)
                                                .Set<&ImageObject::DecodeFile>(image::kDecodeFile)
                                                .Set<&ImageObject::Flip>(image::kFlip);
        return table.Entries();
    }

    Picture m_picture;
};

}  // namespace

Component* MakeImageObject() { return new ImageObject; }

}  // namespace KvComponents
