// Any bytes as a store of the persisted properties: refused in one line, or properties that are the same after they
// were written, in either format. A binary store also with its checksum repaired, or no other check would be reached.
#include <cstring>
#include <string>
#include <string_view>

#include "Require.h"
#include "files/SectionFile.h"
#include "io/PropExchange.h"

namespace {

PersistedProperties Read(std::string_view store) {
    PersistedProperties properties{true, 77, true};
    ExchangeProperties(*OpenPropertyStore(store), properties);
    return properties;
}

void RequireSameAfterWriting(PersistedProperties read) {
    using KV_ScenePane::PropertyFormat;
    for (const PropertyFormat format : {PropertyFormat::Text, PropertyFormat::Binary}) {
        const auto store = NewPropertyStore(format);
        ExchangeProperties(*store, read);
        Require(Read(store->Store()) == read);
    }
}

void Check(std::string_view store) {
    try {
        const PersistedProperties read = Read(store);
        Require(store.size() <= kMaxPropertyStore);
        RequireSameAfterWriting(read);
    } catch (const PropertyStoreError& error) {
        const std::string_view reason = error.what();
        Require(!reason.empty() && reason.size() < 200 && reason.find('\n') == std::string_view::npos);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view store(reinterpret_cast<const char*>(data), size);
    Check(store);
    if (size < FileStorage::kChecksumSize) return 0;
    std::string repaired(store.substr(0, size - FileStorage::kChecksumSize));
    const std::uint64_t checksum = FileStorage::Checksum(repaired.data(), repaired.size());
    repaired.append(reinterpret_cast<const char*>(&checksum), sizeof checksum);
    Check(repaired);
    return 0;
}
