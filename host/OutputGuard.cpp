#include "OutputGuard.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <vector>

#include "InputFiles.h"
#include "ModeNames.h"
#include "NamedFilesCheck.h"
#include "PictureFile.h"

namespace {

std::vector<std::string> WrittenFiles(const HostOptions& options) {
    switch (options.action) {
        case HostAction::Screenshot:
        case HostAction::Capture:
            return PicturePaths(options);
        case HostAction::Convert:
        case HostAction::Export:
            return {options.exportPath};
        case HostAction::Align:
            if (!options.savedTransforms.empty()) return {options.savedTransforms};
            return {};
        default:
            return {};
    }
}

std::vector<std::string> ReadFiles(const HostOptions& options) {
    std::vector<std::string> files = {options.pairFile};
    for (const auto* const list : {&options.files, &options.movingFiles, &options.fixedFiles}) {
        for (const std::string& file : *list)
            if (IsFileList(file)) files.push_back(file.substr(1));
        const std::vector<std::string> expanded = ExpandedFiles(*list).files;
        files.insert(files.end(), expanded.begin(), expanded.end());
    }
    for (const auto* const list : {&options.pointFiles, &options.lineFiles, &options.needleFiles})
        files.insert(files.end(), list->begin(), list->end());
    if (options.action != HostAction::Align) files.push_back(options.transformFile);
    return files;
}

bool IsSameFile(const std::string& path, const struct stat& state) {
    struct stat other {};
    return stat(path.c_str(), &other) == 0 && other.st_dev == state.st_dev && other.st_ino == state.st_ino;
}

}  // namespace

std::vector<std::string> PicturePaths(const HostOptions& options) {
    if (options.views.empty()) return {options.picturePath};
    std::vector<std::string> paths;
    for (const KV_ScenePane::ViewMode view : options.views) {
        std::string path = options.picturePath;
        for (std::size_t at = 0; (at = path.find(kViewPlace, at)) != std::string::npos;) {
            const std::string_view name = kViewNames.at(static_cast<std::size_t>(view));
            path.replace(at, kViewPlace.size(), name);
            at += name.size();
        }
        paths.push_back(std::move(path));
    }
    return paths;
}

std::string OutputRefusal(const HostOptions& options) {
    const std::vector<std::string> written = WrittenFiles(options);
    if (written.empty()) return {};
    const std::vector<std::string> read = ReadFiles(options);
    for (const std::string& path : written) {
        if (path == kStandardOutput) {
            if (isatty(STDOUT_FILENO) != 0) return "standard output is a terminal: write the picture into a file";
            continue;
        }
        struct stat state {};
        const bool exists = stat(path.c_str(), &state) == 0;
        const auto isSame = [&](const std::string& file) {
            return file == path || (exists && IsSameFile(file, state));
        };
        if (std::ranges::any_of(read, isSame) || IsNamedByAny(read, path))
            return path + ": this file is also read: write another one";
    }
    return {};
}
