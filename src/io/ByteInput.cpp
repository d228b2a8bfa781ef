// Both kinds of input are read in order, and both return fewer bytes at the end instead of failing.
#include "io/ByteInput.h"

#include <algorithm>
#include <cstring>

#include "KV_ScenePane/PathText.h"

// memcpy() must not get the null pointer of an empty span.
std::size_t MemoryInput::Read(void* to, std::size_t size) {
    if (m_uOffset >= m_bytes.size()) return 0;
    const std::size_t part = std::min(size, m_bytes.size() - m_uOffset);
    if (part > 0) std::memcpy(to, m_bytes.data() + m_uOffset, part);
    m_uOffset += part;
    return part;
}

// FileAccessError keeps its text as it becomes the error that callers of the readers expect.
FileInput::FileInput(const std::wstring& path) try : m_file(KV_ScenePane::PathBytes(path)) {
} catch (const FileAccessError& error) {
    throw FileReadError(error.what());
}

std::size_t FileInput::Read(void* to, std::size_t size) {
    try {
        const std::size_t got = m_file.ReadAt(m_uOffset, to, size);
        m_uOffset += got;
        return got;
    } catch (const FileAccessError& error) {
        throw FileReadError(error.what());
    }
}
