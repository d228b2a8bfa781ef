// Checks of a scan file from outside.
#include "ScanFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

ScanKind KindOfScan(std::string_view path) {
    const std::size_t point = path.rfind('.');
    std::string extension(point == std::string_view::npos ? path : path.substr(point + 1));
    for (char& c : extension) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    if (extension == "pcm") return ScanKind::Pcm;
    if (extension == "pax") return ScanKind::Pax;
    if (extension == "xdt") return ScanKind::Xdt;
    return ScanKind::Unknown;
}

std::string WhyNoScanFile(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) return strerrordesc_np(errno);
    if (S_ISDIR(status.st_mode)) return strerrordesc_np(EISDIR);
    if (access(path.c_str(), R_OK) != 0) return strerrordesc_np(errno);
    if (KindOfScan(path) == ScanKind::Unknown) return "unknown file type";
    return {};
}
