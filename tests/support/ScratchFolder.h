// A temporary folder that is deleted with the test, and whole files in one call.
#pragma once
#include <fcntl.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

class ScratchFolder {
public:
    ScratchFolder() {
        std::string pattern = testing::TempDir() + "kv-XXXXXX";
        if (::mkdtemp(pattern.data()) == nullptr) throw std::runtime_error("no scratch folder");
        m_path = pattern;
    }
    ~ScratchFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    [[nodiscard]] const std::filesystem::path& Path() const { return m_path; }
    [[nodiscard]] std::string operator/(const std::string& name) const { return (m_path / name).string(); }
    [[nodiscard]] std::size_t FileCount() const {
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(m_path), {}));
    }
    /// Whether its file system makes files without a name.
    [[nodiscard]] bool HasNamelessFiles() const {
        const int fd = ::open(m_path.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
        if (fd >= 0) ::close(fd);
        return fd >= 0;
    }

private:
    std::filesystem::path m_path;
};

inline void WriteBytes(const std::string& path, const std::vector<std::byte>& bytes) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    if (!file.flush()) throw std::runtime_error("cannot write " + path);
}

inline std::vector<std::byte> ReadBytes(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) throw std::runtime_error("cannot read " + path);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    const auto* bytes = reinterpret_cast<const std::byte*>(text.data());
    return {bytes, bytes + text.size()};
}
