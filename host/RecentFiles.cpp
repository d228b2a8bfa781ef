// In the settings a path is percent-encoded text, which holds any byte and can be read by a person.
#include "RecentFiles.h"

#include <limits.h>

#include <QByteArray>
#include <QDir>
#include <QFileInfo>
#include <QStringList>
#include <algorithm>
#include <filesystem>

#include "Settings.h"

namespace {

constexpr const char* kRecentFiles = "files/recent";

const char* KeyOf(FolderUse use) {
    switch (use) {
        case FolderUse::Open:
            return "files/openFolder";
        case FolderUse::Export:
            return "files/exportFolder";
        case FolderUse::Picture:
            return "files/pictureFolder";
        case FolderUse::Needles:
            return "files/needlesFolder";
        case FolderUse::Transforms:
            return "files/transformsFolder";
        case FolderUse::Logo:
            return "files/logoFolder";
    }
    return "";
}

bool IsAbsolutePath(const std::string& path) {
    return !path.empty() && path.front() == '/' && path.size() < PATH_MAX && path.find('\0') == std::string::npos;
}

void AddOnce(std::vector<std::string>& files, std::string file) {
    if (files.size() < kMaxRecentFiles && std::ranges::find(files, file) == files.end())
        files.push_back(std::move(file));
}

QString ExistingFolder(FolderUse use) {
    const QString folder = OpenSettings().value(KeyOf(use)).toString();
    return QDir::isAbsolutePath(folder) && QFileInfo(folder).isDir() ? folder : QString();
}

}  // namespace

std::vector<std::string> StoredRecentFiles() {
    std::vector<std::string> files;
    for (const QString& text : OpenSettings().value(kRecentFiles).toStringList()) {
        std::string file = QByteArray::fromPercentEncoding(text.toUtf8()).toStdString();
        if (IsAbsolutePath(file)) AddOnce(files, std::move(file));
    }
    return files;
}

void AddRecentFiles(const std::vector<std::string>& files) {
    std::vector<std::string> recent;
    for (const std::string& file : files) {
        std::error_code error;
        const std::filesystem::path path = std::filesystem::absolute(file, error).lexically_normal();
        if (error || !std::filesystem::exists(path, error)) continue;
        // A folder without the slash that a shell completes it with: else it would be listed twice.
        const std::string text = path.has_filename() ? path.string() : path.parent_path().string();
        if (IsAbsolutePath(text)) AddOnce(recent, text);
    }
    if (recent.empty()) return;
    for (std::string& file : StoredRecentFiles()) AddOnce(recent, std::move(file));
    QStringList texts;
    for (const std::string& file : recent)
        texts << QString::fromLatin1(QByteArray::fromStdString(file).toPercentEncoding("/"));
    OpenSettings().setValue(kRecentFiles, texts);
}

void ClearRecentFiles() { OpenSettings().remove(kRecentFiles); }

QString StoredFolder(FolderUse use) {
    const QString folder = ExistingFolder(use);
    return folder.isEmpty() && use != FolderUse::Open ? ExistingFolder(FolderUse::Open) : folder;
}

void StoreFolderOf(FolderUse use, const QString& file) {
    if (!file.isEmpty()) OpenSettings().setValue(KeyOf(use), QFileInfo(file).absolutePath());
}
