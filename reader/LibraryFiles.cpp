// A stream has the whole file in memory: the parsers seek and read a few bytes at a time.
#include "LibraryFiles.h"

#include <assimp/IOStream.hpp>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <utility>
#include <vector>

#include "files/RegularFile.h"

namespace {

class MemoryStream : public Assimp::IOStream {
public:
    explicit MemoryStream(std::vector<std::byte> bytes) : m_vBytes(std::move(bytes)) {}

    std::size_t Read(void* to, std::size_t size, std::size_t count) override {
        if (size == 0) return 0;
        const std::size_t whole = std::min(count, (m_vBytes.size() - m_uAt) / size);
        if (whole > 0) std::memcpy(to, &m_vBytes[m_uAt], whole * size);
        m_uAt += whole * size;
        return whole;
    }
    std::size_t Write(const void*, std::size_t, std::size_t) override { return 0; }
    aiReturn Seek(std::size_t offset, aiOrigin origin) override {
        // An offset before the start arrives as a huge number, which wraps.
        const std::size_t from = origin == aiOrigin_SET ? 0 : origin == aiOrigin_CUR ? m_uAt : m_vBytes.size();
        if (from + offset > m_vBytes.size()) return aiReturn_FAILURE;
        m_uAt = from + offset;
        return aiReturn_SUCCESS;
    }
    [[nodiscard]] std::size_t Tell() const override { return m_uAt; }
    [[nodiscard]] std::size_t FileSize() const override { return m_vBytes.size(); }
    void Flush() override {}

private:
    std::vector<std::byte> m_vBytes;
    std::size_t m_uAt = 0;  // not after the end
};

}  // namespace

bool LibraryFiles::Exists(const char* name) const { return !m_files.Find(name).empty(); }

Assimp::IOStream* LibraryFiles::Open(const char* name, const char* mode) {
    const std::string path = *mode == 'r' ? m_files.Find(name) : "";
    if (path.empty()) return nullptr;
    try {
        return new MemoryStream(FileStorage::RegularFile(path).ReadWhole());
    } catch (const FileStorage::FileAccessError&) {
        return nullptr;
    }
}

void LibraryFiles::Close(Assimp::IOStream* stream) { delete stream; }
