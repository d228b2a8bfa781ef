// Bytes in order, from a file or from memory, for the readers of files that are not trusted.
#pragma once
#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>

#include "base/RegularFile.h"

/// Why a file was refused; the text is for the debugger output.
class FileReadError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// A parser is written once against this and runs on files and, in tests and fuzzers, on bytes in memory.
class ByteInput {
public:
    ByteInput() = default;
    virtual ~ByteInput() = default;
    ByteInput(const ByteInput&) = delete;
    ByteInput& operator=(const ByteInput&) = delete;
    /// Bytes in the input when it was opened. A file that another process shortens yields fewer.
    [[nodiscard]] virtual std::uint64_t Size() const = 0;
    /// Copies up to @p size bytes from @p offset on. Several threads may call it at the same time.
    /// @return the number of bytes copied: fewer than @p size only at the end
    virtual std::size_t ReadAt(std::uint64_t offset, void* to, std::size_t size) const = 0;

    /// Copies the next @p size bytes.
    /// @return as ReadAt()
    std::size_t Read(void* to, std::size_t size);
    /// Continues at another byte, which may be after the end.
    void Seek(std::uint64_t offset) { m_uOffset = offset; }

private:
    std::uint64_t m_uOffset = 0;  ///< of the next byte to read
};

class MemoryInput final : public ByteInput {
public:
    /// @param bytes  must outlive this object
    explicit MemoryInput(std::span<const std::byte> bytes) : m_bytes(bytes) {}
    [[nodiscard]] std::uint64_t Size() const override { return m_bytes.size(); }
    std::size_t ReadAt(std::uint64_t offset, void* to, std::size_t size) const override;

private:
    std::span<const std::byte> m_bytes;
};

/// A regular file.
class FileInput final : public ByteInput {
public:
    /// @throws FileReadError when the file cannot be opened or is not a regular file; never waits for a pipe's writer
    explicit FileInput(const std::wstring& path);
    [[nodiscard]] std::uint64_t Size() const override { return m_file.Size(); }
    /// @throws FileReadError
    std::size_t ReadAt(std::uint64_t offset, void* to, std::size_t size) const override;

private:
    RegularFile m_file;
};
