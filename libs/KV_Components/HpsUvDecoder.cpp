// The UV decoder object: HpsUv.h behind the binary interface. It has no state.
#include <new>

#include "HpsUv.h"
#include "KV_Components/Hps.h"
#include "ObjectRegistry.h"

namespace KvComponents {

namespace {

Hps::ByteSpan Bytes(const void* bytes, std::size_t size) { return {static_cast<const std::byte*>(bytes), size}; }

class HpsUvDecoder final : public SingleInterfaceComponent {
public:
    HpsUvDecoder();

    std::int32_t Measure(const void* block, std::size_t size, std::int32_t* vertexCount, std::int32_t* pairCount,
                         std::int32_t* reserved);
    std::int32_t Decode(const void* block, std::size_t size, std::uint8_t* pairsOfVertex, std::size_t pairsOfVertexSize,
                        float* pairs, std::size_t pairsSize);
};

const Object::Entry* DecoderTable() {
    static const OperationTable table = OperationTable()
                                            .Set<&HpsUvDecoder::Measure>(hps_uv_decoder::kMeasure)
                                            .Set<&HpsUvDecoder::Decode>(hps_uv_decoder::kDecode);
    return table.Entries();
}

HpsUvDecoder::HpsUvDecoder() : SingleInterfaceComponent(hps_uv_decoder::kInterface, DecoderTable()) {}

std::int32_t HpsUvDecoder::Measure(const void* block, std::size_t size, std::int32_t* vertexCount,
                                   std::int32_t* pairCount, std::int32_t* reserved) {
    if (block == nullptr || vertexCount == nullptr || pairCount == nullptr) return kInvalidArgument;
    *vertexCount = *pairCount = 0;
    if (reserved != nullptr) *reserved = 0;
    try {
        const Hps::UvCounts counts = Hps::MeasureUv(Bytes(block, size));
        *vertexCount = static_cast<std::int32_t>(counts.vertices);
        *pairCount = static_cast<std::int32_t>(counts.pairs);
    } catch (const Hps::DamagedData&) {
        return kFailed;
    }
    return kSucceeded;
}

std::int32_t HpsUvDecoder::Decode(const void* block, std::size_t size, std::uint8_t* pairsOfVertex,
                                  std::size_t pairsOfVertexSize, float* pairs, std::size_t pairsSize) {
    if (block == nullptr || (pairsOfVertex == nullptr && pairsOfVertexSize > 0) || (pairs == nullptr && pairsSize > 0))
        return kInvalidArgument;
    try {
        const Hps::UvCounts counts = Hps::MeasureUv(Bytes(block, size));
        const std::size_t values = 2 * std::size_t{counts.pairs};
        if (pairsOfVertexSize != counts.vertices || pairsSize != values * sizeof(float)) return kInvalidArgument;
        Hps::UnpackUv(Bytes(block, size), {pairsOfVertex, pairsOfVertexSize}, {pairs, values});
    } catch (const Hps::DamagedData&) {
        return kFailed;
    }
    return kSucceeded;
}

}  // namespace

Component* MakeHpsUvDecoder() { return new HpsUvDecoder; }

}  // namespace KvComponents
