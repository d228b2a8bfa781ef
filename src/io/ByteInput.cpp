// Both kinds of input are read in order, and both return fewer bytes at the end instead of failing.
#include "io/ByteInput.h"

#include <algorithm>
#include <cstring>

#include "KV_ScenePane/PathText.h"

std::size_t ByteInput::Read(void* to, std::size_t size) {
    const std::size_t got = ReadAt(m_uOffset, to, size);
    m_uOffset += got;
    return got;
}

// memcpy() must not get the null pointer of an empty span.
std::size_t MemoryInput::ReadAt(std::uint64_t offset, void* to, std::size_t size) const {
    if (offset >= m_bytes.size()) return 0;
    const std::size_t part = std::min<std::uint64_t>(size, m_bytes.size() - offset);
    if (part > 0) std::memcpy(to, m_bytes.data() + offset, part);
    return part;
}

// FileAccessError keeps its text as it becomes the error that callers of the readers expect.
FileInput::FileInput(const std::wstring& path) try : m_file(KV_ScenePane::PathBytes(path)) {
} catch (const FileAccessError& error) {
    throw FileReadError(error.what());
}

std::size_t FileInput::ReadAt(std::uint64_t offset, void* to, std::size_t size) const {
    try {
        return m_file.ReadAt(offset, to, size);
    } catch (const FileAccessError& error) {
        throw FileReadError(error.what());
    }
}
