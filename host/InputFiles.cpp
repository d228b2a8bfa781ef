#include "InputFiles.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <string_view>
#include <utility>

#include "FolderFiles.h"
#include "MessageTable.h"
#include "SceneFile.h"

namespace {

/// More than a scene holds, for runs that look at one file after the other.
constexpr FolderLimits kLimits = {.files = 1'000'000, .entries = 10'000'000, .depth = 64};

constexpr std::string_view kStandardInput = "/dev/stdin";

bool IsFolder(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

void AddFolder(const std::string& folder, InputFiles& input) {
    FolderFiles found = FilesInFolder(folder, kLimits);
    for (UnreadFolder& unread : found.unread)
        input.failed.push_back({std::move(unread.path), std::move(unread.reason)});
    if (found.files.empty() && found.unread.empty()) input.failed.push_back({folder, kEmptyFolder});
    if (found.isCut) input.warnings.push_back(folder + ": " + kFullFolder);
    input.files.insert(input.files.end(), found.files.begin(), found.files.end());
}

/// Why the file is no list of files; empty when it may be one. A device such as /dev/zero has no end.
std::string ListRefusal(const std::string& path) {
    if (IsFolder(path)) return "this is a folder, not a list of files";
    if (std::string refusal = ReadRefusal(path); !refusal.empty()) return refusal;
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) return strerrordesc_np(errno);
    const bool isTerminal = S_ISCHR(status.st_mode) && path == kStandardInput && isatty(STDIN_FILENO) != 0;
    const bool isRead = S_ISREG(status.st_mode) || S_ISFIFO(status.st_mode) || isTerminal;
    return isRead ? "" : "this is a device: a list of files is a text file or a pipe";
}

/// @return false with a reason when the list cannot be read or names nothing
bool ReadList(const std::string& path, std::vector<std::string>* names, std::string* reason) {
    *reason = ListRefusal(path);
    if (!reason->empty()) return false;
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    std::ifstream file(path, std::ios::binary);
    bool isFirst = true;
    for (std::string line; std::getline(file, line); isFirst = false) {
        if (isFirst && line.starts_with(kByteOrderMark)) line.erase(0, kByteOrderMark.size());
        if (line.ends_with('\r')) line.pop_back();
        if (line.find_first_not_of(" \t") != std::string::npos) names->push_back(line);
    }
    if (file.bad())
        *reason = strerrordesc_np(errno);
    else if (names->empty())
        *reason = "the list names no file";
    return reason->empty();
}

InputFiles Expanded(const std::vector<std::string>& arguments, bool opensFolders) {
    InputFiles input;
    const auto add = [&](const std::string& name) {
        if (opensFolders && IsFolder(name))
            AddFolder(name, input);
        else
            input.files.push_back(name);
    };
    for (const std::string& argument : arguments) {
        if (!IsFileList(argument)) {
            add(argument);
            continue;
        }
        std::vector<std::string> names;
        std::string reason;
        if (!ReadList(argument.substr(1), &names, &reason)) input.failed.push_back({argument, reason});
        for (const std::string& name : names) add(name);
    }
    return input;
}

}  // namespace

bool IsFileList(const std::string& argument) { return argument.size() > 1 && argument.front() == '@'; }

InputFiles ExpandedFiles(const std::vector<std::string>& arguments) { return Expanded(arguments, true); }

InputFiles ExpandedLists(const std::vector<std::string>& arguments) { return Expanded(arguments, false); }

std::vector<std::string> WithoutPipedLists(const std::vector<std::string>& arguments) {
    std::vector<std::string> files;
    for (const std::string& argument : arguments) {
        struct stat status {};
        const bool isPiped = IsFileList(argument) && stat(argument.c_str() + 1, &status) == 0 &&
                             !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode);
        std::vector<std::string> names;
        std::string reason;
        if (!isPiped || !ReadList(argument.substr(1), &names, &reason)) {
            files.push_back(argument);
            continue;
        }
        // In a list these are files, as arguments they would be lists.
        for (const std::string& name : names) files.push_back((IsFileList(name) ? "./" : "") + name);
    }
    return files;
}
