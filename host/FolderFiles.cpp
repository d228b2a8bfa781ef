// The walk keeps a list of folders to visit, and the identity of each that was visited: links can form loops.
#include "FolderFiles.h"

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <deque>
#include <memory>
#include <set>
#include <string_view>
#include <utility>

#include "FileTypes.h"
#include "MessageTable.h"
#include "NaturalOrder.h"

namespace {

struct Folder {
    std::string path;
    int depth;
};

bool IsOpenedFromFolder(const std::string& file) {
    const FileType* const type = FindFileType(file);
    return type != nullptr && type->extension != "txt" && type->extension != "csv";
}

std::string_view ParentOf(std::string_view path) { return path.substr(0, path.rfind('/') + 1); }

/// Files of one folder together, then by their names.
bool ComesBefore(const std::string& a, const std::string& b) {
    const std::string_view parentA = ParentOf(a), parentB = ParentOf(b);
    if (parentA != parentB) return NaturalLess(parentA, parentB);
    return NaturalLess(a, b);
}

class Walk {
public:
    explicit Walk(const FolderLimits& limits) : m_limits(limits) {}

    FolderFiles Run(const std::string& start) {
        m_waiting.push_back({start, 0});
        while (!m_waiting.empty() && !m_found.isCut) {
            const Folder folder = std::move(m_waiting.front());
            m_waiting.pop_front();
            Visit(folder);
        }
        std::ranges::sort(m_found.files, ComesBefore);
        return std::move(m_found);
    }

private:
    void Visit(const Folder& folder) {
        struct stat status {};
        if (stat(folder.path.c_str(), &status) != 0) return NoteUnread(folder.path);
        if (!m_visited.insert({status.st_dev, status.st_ino}).second) return;
        const std::unique_ptr<DIR, int (*)(DIR*)> entries(opendir(folder.path.c_str()), closedir);
        if (!entries) return NoteUnread(folder.path);
        const std::string start = folder.path.ends_with('/') ? folder.path : folder.path + '/';
        for (;;) {
            errno = 0;
            const dirent* const entry = readdir(entries.get());  // NOLINT(concurrency-mt-unsafe): on one thread
            if (entry == nullptr) break;
            if (entry->d_name[0] == '.') continue;
            if (m_nEntries++ == m_limits.entries) {
                m_found.isCut = true;
                return;
            }
            if (!Add(start + entry->d_name, folder.depth)) break;
        }
        if (errno != 0) NoteUnread(folder.path);
    }

    /// For the reason in errno.
    void NoteUnread(const std::string& folder) {
        const std::string reason = strerrordesc_np(errno);
        m_found.unread.push_back({folder, FilledSentence(kUnreadFolder, {&reason, 1})});
    }

    /// @return false with errno when the folder does not let its files be looked at
    bool Add(const std::string& path, int depth) {
        struct stat status {};
        if (stat(path.c_str(), &status) != 0) return !IsDenied(path);
        if (S_ISDIR(status.st_mode)) {
            if (depth < m_limits.depth) m_waiting.push_back({path, depth + 1});
            return true;
        }
        if (!S_ISREG(status.st_mode) || !IsOpenedFromFolder(path)) return true;
        if (m_found.files.size() == m_limits.files)
            m_found.isCut = true;
        else
            m_found.files.push_back(path);
        return true;
    }

    /// By the folder itself, after stat() failed. A link that leads nowhere, or into another folder, is no such case.
    static bool IsDenied(const std::string& path) {
        struct stat status {};
        return lstat(path.c_str(), &status) != 0 && errno == EACCES;
    }

    const FolderLimits m_limits;
    FolderFiles m_found;
    std::deque<Folder> m_waiting;
    std::set<std::pair<dev_t, ino_t>> m_visited;
    std::size_t m_nEntries = 0;
};

}  // namespace

FolderFiles FilesInFolder(const std::string& folder, const FolderLimits& limits) { return Walk(limits).Run(folder); }
