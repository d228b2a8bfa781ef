// Reads a regular file by offset. Everything else that a path can lead to (folders, pipes, devices) is refused.
#pragma once
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace FileStorage {

/// Why a file could not be opened or read, as a sentence without its subject: "cannot be opened: No such file or
/// directory", "is not a regular file", "cannot be read: Input/output error".
class FileAccessError : public std::runtime_error {
public:
    /// @param error  errno of the failed call, whose message is appended; 0 when no call failed
    FileAccessError(const char* reason, int error);
    [[nodiscard]] int Error() const { return m_iError; }

private:
    int m_iError;
};

/// A regular file that is open for reading. By calls and not mapped: a file that another process shortens under a
/// mapping would end this process. Several threads may read one object at the same time.
class RegularFile {
public:
    /// Never waits, not even for a pipe that has no writer.
    /// @param path  in bytes, as open() receives it; symbolic links are followed
    /// @throws FileAccessError when it cannot be opened or is not a regular file
    explicit RegularFile(const std::string& path);
    ~RegularFile();
    RegularFile(const RegularFile&) = delete;
    RegularFile& operator=(const RegularFile&) = delete;

    /// Bytes in the file when it was opened. Another process can change that later.
    [[nodiscard]] std::uint64_t Size() const { return m_uSize; }
    /// Copies up to @p size bytes, beginning @p offset bytes after the start of the file.
    /// @return the number of bytes copied: fewer than @p size only where the file ends
    /// @throws FileAccessError
    [[nodiscard]] std::size_t ReadAt(std::uint64_t offset, void* to, std::size_t size) const;
    /// The whole file: Size() bytes, or fewer when it was shortened after it was opened.
    /// @throws FileAccessError; std::bad_alloc, std::length_error for a file larger than memory
    [[nodiscard]] std::vector<std::byte> ReadWhole() const;

private:
    int m_iFd = -1;
    std::uint64_t m_uSize = 0;
};

}  // namespace FileStorage
