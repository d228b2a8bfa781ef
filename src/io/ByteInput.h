// Bytes in order, from a file or from memory, for the readers of files that are not trusted.
#pragma once
#include <cstddef>
#include <cstdint>
#include <span>
#include <stdexcept>
#include <string>

/// Why a file was refused; the text is for the debugger output.
class FileReadError : public std::runtime_error {
    using std::runtime_error::runtime_error;
};

class ByteInput {
public:
    ByteInput() = default;
    virtual ~ByteInput() = default;
    ByteInput(const ByteInput&) = delete;
    ByteInput& operator=(const ByteInput&) = delete;
    /// What there was at the start. A file that another process cuts short gives less.
    [[nodiscard]] virtual std::uint64_t Size() const = 0;
    /// @return how many bytes came; fewer than @p size only at the end
    virtual std::size_t Read(void* to, std::size_t size) = 0;
};

class MemoryInput final : public ByteInput {
public:
    /// Looks at the bytes while it lives.
    explicit MemoryInput(std::span<const std::byte> bytes) : m_bytes(bytes), m_uSize(bytes.size()) {}
    [[nodiscard]] std::uint64_t Size() const override { return m_uSize; }
    std::size_t Read(void* to, std::size_t size) override;

private:
    std::span<const std::byte> m_bytes;  ///< what is left
    std::size_t m_uSize;
};

/// Read by calls and not mapped: a file that shrinks under a mapping would end the process.
class FileInput final : public ByteInput {
public:
    /// @throws FileReadError when the file cannot be opened or is no regular file; never waits for a pipe's writer
    explicit FileInput(const std::wstring& path);
    ~FileInput() override;
    [[nodiscard]] std::uint64_t Size() const override { return m_uSize; }
    /// @throws FileReadError
    std::size_t Read(void* to, std::size_t size) override;

private:
    int m_iFd = -1;
    std::uint64_t m_uSize = 0;
};
