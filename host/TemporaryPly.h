// The way of an image into the viewer: a ply file that exists while it is imported.
#pragma once
#include <cstdint>
#include <span>
#include <string>
#include <vector>

/// Where temporary files may be made, the first choice first: $TMPDIR, and folders that most systems have.
[[nodiscard]] std::vector<std::string> TemporaryFolders();

/// A ply file in memory, with a name on disk for as long as this exists: the viewer opens files by their names, and
/// chooses its reader by the extension. What a killed program leaves is a folder with a link to nothing.
class TemporaryPly {
public:
    /// @param folders  the name is made in the first of them that can be written
    /// @throws std::runtime_error (kNoTemporaryFile) when none can, std::bad_alloc without memory
    explicit TemporaryPly(std::span<const std::uint8_t> bytes,
                          const std::vector<std::string>& folders = TemporaryFolders());
    ~TemporaryPly();
    TemporaryPly(const TemporaryPly&) = delete;
    TemporaryPly& operator=(const TemporaryPly&) = delete;

    [[nodiscard]] std::string Path() const { return m_sFolder + "/mesh.ply"; }

private:
    [[nodiscard]] bool WriteAll(std::span<const std::uint8_t> bytes) const;
    [[nodiscard]] bool NameIn(const std::string& folder);
    void Remove() const;

    int m_iFd;
    std::string m_sFolder;  // of the name alone; empty before it is made
};
