// The process-wide sink, and the lock under which it is called and replaced.
#include "base/DebugOutput.h"

#include <unistd.h>

#include <cerrno>
#include <mutex>
#include <utility>

namespace {

struct Output {
    std::mutex lock;
    KV_ScenePane::DebugOutputSink sink;
};

// Never destroyed: destructors of static objects may still write while the process exits.
Output& TheOutput() {
    static Output* const output = new Output;
    return *output;
}

// By the system call and not by std::cerr or stderr: these may be destroyed already, and the text must not remain in a
// buffer when the process crashes.
void WriteToStandardError(std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = write(STDERR_FILENO, text.data(), text.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return;  // closed or full: there is no other place to report it
        text.remove_prefix(static_cast<std::size_t>(written));
    }
}

}  // namespace

namespace KV_ScenePane {

void SetDebugOutputSink(DebugOutputSink sink) {
    Output& output = TheOutput();
    // Waits for a call in progress: after this the previous sink is not called again.
    const std::lock_guard lock(output.lock);
    std::swap(output.sink, sink);
}

}  // namespace KV_ScenePane

void DebugOutput(std::string_view text) {
    Output& output = TheOutput();
    const std::lock_guard lock(output.lock);
    if (output.sink)
        output.sink(text);
    else
        WriteToStandardError(text);
}
