// An export has worked when there is another file than before: the viewer returns as ever when it could not open one,
// and replaces one that is there by a new one.
#include "FileExport.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <optional>

#include "CaughtError.h"
#include "DebugCapture.h"
#include "KV_ScenePane/PathText.h"
#include "ProgramName.h"
#include "SceneFile.h"

namespace {

std::optional<struct stat> StateOf(const std::string& file) {
    struct stat state {};
    if (stat(file.c_str(), &state) != 0) return std::nullopt;
    return state;
}

bool IsNewer(const struct stat& now, const std::optional<struct stat>& before) {
    const auto differs = [](const timespec& a, const timespec& b) {
        return a.tv_sec != b.tv_sec || a.tv_nsec != b.tv_nsec;
    };
    return !before || now.st_dev != before->st_dev || now.st_ino != before->st_ino || now.st_size != before->st_size ||
           differs(now.st_mtim, before->st_mtim) || differs(now.st_ctim, before->st_ctim);
}

/// Why nothing can be written there, as far as it can be told from outside.
std::string WhyNotWritable(const std::string& file) {
    const std::size_t slash = file.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : file.substr(0, slash + 1);
    if (const auto state = StateOf(file)) {
        if (S_ISDIR(state->st_mode)) return strerrordesc_np(EISDIR);
        if (!S_ISREG(state->st_mode)) return "not a regular file";
        if (access(file.c_str(), W_OK) != 0) return strerrordesc_np(errno);
    }
    if (access(folder.c_str(), W_OK | X_OK) != 0) return strerrordesc_np(errno);
    return "the viewer wrote no file and did not say why";
}

}  // namespace

ExportResult ExportObject(KV_ScenePane::_DKV_ScenePane& methods, int index, const std::string& file) {
    if (std::string reason = WhyNoExportName(file); !reason.empty()) return {false, reason};
    const auto wide = [](const char* ascii) { return std::wstring(ascii, ascii + std::strlen(ascii)); };
    methods.SetHpsSourceApp(wide(kProgramName).c_str(), wide(kProgramVersion).c_str());
    return WatchWrite(
        file, [&] { methods.ExportMesh(static_cast<std::int16_t>(index), KV_ScenePane::WidePath(file).c_str()); });
}

ExportResult WatchWrite(const std::string& file, const std::function<void()>& write) {
    const std::optional<struct stat> before = StateOf(file);
    const DebugCapture capture;
    std::string thrown;
    try {
        write();
    } catch (...) {
        thrown = TextOfCaughtError();
    }
    const std::string text = TextAbout(file, capture.Text(), thrown);
    const std::optional<struct stat> now = StateOf(file);
    if (thrown.empty() && now && IsNewer(*now, before)) return {true, text};
    return {false, text.empty() ? WhyNotWritable(file) : text};
}
