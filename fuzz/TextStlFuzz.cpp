// Any bytes as stl in text: refused, or a mesh whose result is valid.
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "Require.h"
#include "TextStl.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    try {
        const ReaderResult result = ResultOf(ReadTextStl({reinterpret_cast<const char*>(bytes), size}));
        Require(result.kind == ReaderResult::Kind::Mesh);
    } catch (const UnreadableFile& error) {
        Require(*error.what() != '\0');
    }
    return 0;
}
