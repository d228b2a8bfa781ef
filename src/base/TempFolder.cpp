// $TMPDIR where it is usable, otherwise /tmp.
#include "base/TempFolder.h"

#include <sys/stat.h>

#include <cstdlib>

std::string TempFolder() {
    constexpr std::size_t kMaxPathSize = 260;
    const char* const variable = std::getenv("TMPDIR");
    std::string folder = variable == nullptr ? "" : variable;
    struct stat info {};
    if (folder.empty() || folder.size() > kMaxPathSize || stat(folder.c_str(), &info) != 0 || !S_ISDIR(info.st_mode))
        return "/tmp";
    while (!folder.empty() && folder.back() == '/') folder.pop_back();
    return folder;
}
