#include "InputFiles.h"

#include <sys/stat.h>

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

bool IsFolder(const std::string& path) {
    struct stat status {};
    return stat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

void AddFolder(const std::string& folder, InputFiles& input) {
    FolderFiles found = FilesInFolder(folder, kLimits);
    if (found.files.empty()) input.failed.push_back({folder, kEmptyFolder});
    if (found.isCut) input.warnings.push_back(folder + ": " + kFullFolder);
    input.files.insert(input.files.end(), found.files.begin(), found.files.end());
}

/// @return false with a reason when the list cannot be read or names nothing
bool ReadList(const std::string& path, std::vector<std::string>* names, std::string* reason) {
    *reason = ReadRefusal(path);
    if (!reason->empty()) return false;
    std::ifstream file(path, std::ios::binary);
    for (std::string line; std::getline(file, line);) {
        if (line.ends_with('\r')) line.pop_back();
        if (!line.empty()) names->push_back(line);
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
