// Any bytes as a ply file for the tolerant reader: refused, or a mesh whose result is valid. Its header is also read by
// the host, in its own process.
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string_view>

#include "AnyPly.h"
#include "Require.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    const std::string_view file(reinterpret_cast<const char*>(bytes), size);
    try {
        FoundMesh found = ReadAnyPly(file, [](const std::string&) { return std::vector<std::uint8_t>{1, 2, 3}; });
        Require(found.texCoords.empty() || found.texCoords.size() == 3 * found.mesh.m_vTriangles.size());
        const ReaderResult result = ResultOf(std::move(found));
        Require(result.kind != ReaderResult::Kind::Refused);
    } catch (const std::runtime_error& error) {
        Require(*error.what() != '\0');
    }
    return 0;
}
