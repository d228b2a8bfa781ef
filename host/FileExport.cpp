// An export worked when the file on disk is another one than before: the viewer's methods return normally when they
// could not write, and they replace an existing file by a new one.
#include "FileExport.h"

#include <sys/stat.h>

#include <cstring>
#include <optional>

#include "CaughtError.h"
#include "DebugCapture.h"
#include "KV_ScenePane/PathText.h"
#include "ProgramName.h"
#include "SceneFile.h"

namespace {

/// Empty for a missing file.
std::optional<struct stat> StateOf(const std::string& file) {
    struct stat state {};
    if (stat(file.c_str(), &state) != 0) return std::nullopt;
    return state;
}

/// A new file, or one with another content: the clock of a file system may be too coarse to see that by the times
/// alone.
bool IsNewer(const struct stat& now, const std::optional<struct stat>& before) {
    const auto differs = [](const timespec& a, const timespec& b) {
        return a.tv_sec != b.tv_sec || a.tv_nsec != b.tv_nsec;
    };
    return !before || now.st_dev != before->st_dev || now.st_ino != before->st_ino || now.st_size != before->st_size ||
           differs(now.st_mtim, before->st_mtim) || differs(now.st_ctim, before->st_ctim);
}

}  // namespace

ExportResult ExportObject(KV_ScenePane::_DKV_ScenePane& methods, int index, const std::string& file) {
    if (std::string reason = ExportRefusal(file); !reason.empty()) return {false, reason};
    // Written into hps files only.
    const auto wide = [](const char* ascii) { return std::wstring(ascii, ascii + std::strlen(ascii)); };
    methods.SetHpsSourceApp(wide(kProgramName).c_str(), wide(kProgramVersion).c_str());
    return WatchWrite(
        file, [&] { methods.ExportMesh(static_cast<std::int16_t>(index), KV_ScenePane::WidePath(file).c_str()); });
}

ExportResult WatchWrite(const std::string& file, const std::function<void()>& write) {
    // The viewer's methods return nothing, so the file itself is the evidence.
    const std::optional<struct stat> before = StateOf(file);
    const DebugCapture capture;
    std::string thrown;
    try {
        write();
    } catch (...) {
        thrown = TextOfCaughtError();
    }
    std::string text = FileMessage(file, capture.Text(), thrown);
    const std::optional<struct stat> now = StateOf(file);
    if (thrown.empty() && now && IsNewer(*now, before)) return {true, text};
    // An exception without a line about the file may be a status that is the same for every cause.
    if (capture.Text().empty()) {
        if (const std::string refusal = WriteRefusal(file); !refusal.empty()) text = refusal;
    }
    return {false, text.empty() ? "the viewer wrote no file and gave no reason" : text};
}
