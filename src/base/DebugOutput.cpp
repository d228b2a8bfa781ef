// One sink for the process, called by one thread at a time.
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

// Never destroyed: objects with static storage may still write while the process ends.
Output& TheOutput() {
    static Output* const output = new Output;
    return *output;
}

// Past the streams of the library: they may be gone already, and the text must not wait in a buffer.
void WriteToStandardError(std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = write(STDERR_FILENO, text.data(), text.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
}

}  // namespace

namespace KV_ScenePane {

void SetDebugOutputSink(DebugOutputSink sink) {
    Output& output = TheOutput();
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
