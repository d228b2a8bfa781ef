// Look-up in the table of file types, and its extensions as text.
#include "FileTypes.h"

#include <algorithm>
#include <iterator>
#include <vector>

namespace {

/// The extensions of the selected rows, in the order of the table.
std::vector<std::string_view> Extensions(bool (*isSelected)(const FileType&)) {
    std::vector<std::string_view> extensions;
    for (const FileType& type : kFileTypes) {
        if (isSelected(type)) extensions.push_back(type.extension);
    }
    return extensions;
}

}  // namespace

std::string ExtensionOf(std::string_view path) {
    const std::size_t point = path.rfind('.');
    std::string extension(point == std::string_view::npos ? path : path.substr(point + 1));
    // Not tolower(), which depends on the locale.
    for (char& c : extension) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return extension;
}

const FileType* FindFileType(std::string_view path) {
    const auto* const found = std::ranges::find(kFileTypes, ExtensionOf(path), &FileType::extension);
    return found == std::end(kFileTypes) ? nullptr : found;
}

std::string ExtensionList(bool (*isSelected)(const FileType&), std::string_view conjunction) {
    std::vector<std::string_view> extensions = Extensions(isSelected);
    const std::size_t all = extensions.size();
    std::erase_if(extensions, [](std::string_view extension) { return !FindFileType(extension)->isListed; });
    if (extensions.size() < all) extensions.emplace_back("others");
    std::string list;
    for (std::size_t i = 0; i < extensions.size(); ++i) {
        const bool isLast = i + 1 == extensions.size();
        if (i > 0 && isLast) list.append(" ").append(conjunction).append(" ");
        if (i > 0 && !isLast) list += ", ";
        list += extensions[i];
    }
    return list;
}

std::string ExtensionPatterns(bool (*isSelected)(const FileType&)) {
    std::string patterns;
    for (const std::string_view extension : Extensions(isSelected))
        patterns.append(patterns.empty() ? "*." : " *.").append(extension);
    return patterns;
}
