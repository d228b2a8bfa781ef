// Checks by stat() and access(). A file can change after its check, so opening it must still report errors of its own.
#include "SceneFile.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "FileTypes.h"
#include "MessageTable.h"

namespace {

// Not strerror(): its text depends on the locale and its buffer on the thread.
std::string SystemMessage(int error) { return strerrordesc_np(error); }

}  // namespace

std::string ReadRefusal(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) return errno == ENOENT ? kNoSuchFile : SystemMessage(errno);
    if (S_ISDIR(status.st_mode)) return kIsFolder;
    return access(path.c_str(), R_OK) == 0 ? "" : SystemMessage(errno);
}

std::string ImportRefusal(const std::string& path) {
    if (std::string refusal = ReadRefusal(path); !refusal.empty()) return refusal;
    const FileType* const type = FindFileType(path);
    if (type != nullptr && (type->canImport || type->kind == FileKind::Points)) return {};
    const std::string types = ExtensionList(IsImported, "and");
    return FilledSentence(kUnknownType, {&types, 1});
}

std::string ExportRefusal(std::string_view path) {
    const FileType* const type = FindFileType(path);
    if (type != nullptr && type->canExport) return {};
    return "only " + ExtensionList(IsExported, "and") + " files can be written";
}

std::string WriteRefusal(const std::string& path) {
    struct stat status {};
    if (stat(path.c_str(), &status) == 0) {
        if (S_ISDIR(status.st_mode)) return SystemMessage(EISDIR);
        if (!S_ISREG(status.st_mode)) return "not a regular file";
        if (access(path.c_str(), W_OK) != 0) return SystemMessage(errno);
    }
    // A file is written beside its target and renamed over it, so the folder matters even when the target is writable.
    const std::size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    if (access(folder.c_str(), W_OK | X_OK) == 0) return {};
    const int error = errno;
    const bool isMissing = error == ENOENT || error == ENOTDIR;
    return isMissing ? SystemMessage(error) : "no file can be created in its folder: " + SystemMessage(error);
}
