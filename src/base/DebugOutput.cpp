// The process-wide sink. Threads call it one after the other, each for its own texts, and no lock is held meanwhile: a
// sink may call whatever it likes, also what writes to the debugger output.
#include "base/DebugOutput.h"

#include <unistd.h>

#include <cerrno>
#include <condition_variable>
#include <cstdint>
#include <exception>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace {

using KV_ScenePane::DebugOutputSink;

struct Output {
    std::mutex lock;  ///< guards the members below
    std::condition_variable turnChanged;
    std::uint64_t nextTurn = 0, currentTurn = 0;  ///< threads have their turns in the order in which they asked
    std::shared_ptr<const DebugOutputSink> sink;  ///< null: standard error
};

// Never destroyed: destructors of static objects may still write while the process exits.
Output& TheOutput() {
    static Output* const output = new Output;
    return *output;
}

/// Texts that this thread has written and not passed on yet, because it is inside the sink or a DelayedDebugOutput.
/// Null: a text is passed on at once.
thread_local std::vector<std::string>* g_waitingTexts = nullptr;
/// Whether a call of the sink is on the stack of this thread; it then has the turn.
thread_local bool g_isInSink = false;

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

/// This thread's turn to call or to replace the sink; waits for it.
class Turn {
public:
    Turn() {
        Output& output = TheOutput();
        std::unique_lock lock(output.lock);
        const std::uint64_t mine = output.nextTurn++;
        output.turnChanged.wait(lock, [&] { return output.currentTurn == mine; });
    }
    ~Turn() {
        Output& output = TheOutput();
        {
            const std::lock_guard lock(output.lock);
            ++output.currentTurn;
        }
        output.turnChanged.notify_all();
    }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;
};

void PassOn(std::string_view text) {
    std::shared_ptr<const DebugOutputSink> sink;  // lives until the call has returned, also when it replaces itself
    {
        Output& output = TheOutput();
        const std::lock_guard lock(output.lock);
        sink = output.sink;
    }
    if (sink != nullptr)
        (*sink)(text);
    else
        WriteToStandardError(text);
}

/// Passes on the texts and those that the sink itself writes meanwhile, all of them also when it throws.
/// @return its first exception, or null
std::exception_ptr PassOnAll(std::vector<std::string>& texts) {
    std::exception_ptr failure;
    const Turn turn;
    g_waitingTexts = &texts;
    g_isInSink = true;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const std::string text = std::move(texts[i]);  // the vector may grow
        try {
            PassOn(text);
        } catch (...) {
            if (failure == nullptr) failure = std::current_exception();
        }
    }
    g_isInSink = false;
    g_waitingTexts = nullptr;
    return failure;
}

}  // namespace

namespace KV_ScenePane {

void SetDebugOutputSink(DebugOutputSink sink) {
    Output& output = TheOutput();
    auto next = sink ? std::make_shared<const DebugOutputSink>(std::move(sink)) : nullptr;
    const auto replace = [&] {
        const std::lock_guard lock(output.lock);
        std::swap(output.sink, next);
    };
    // All other callers wait for a call in progress: after this the former sink is not called again.
    if (g_isInSink) {
        replace();
    } else {
        const Turn turn;
        replace();
    }
}

}  // namespace KV_ScenePane

void DebugOutput(std::string_view text) {
    if (g_waitingTexts != nullptr) {
        g_waitingTexts->emplace_back(text);
        return;
    }
    std::vector<std::string> texts{std::string(text)};
    if (const std::exception_ptr failure = PassOnAll(texts)) std::rethrow_exception(failure);
}

DelayedDebugOutput::DelayedDebugOutput() : m_bOutermost(g_waitingTexts == nullptr) {
    if (m_bOutermost) g_waitingTexts = &m_vTexts;
}

void DelayedDebugOutput::PassOn() {
    if (!std::exchange(m_bOutermost, false)) return;
    g_waitingTexts = nullptr;
    if (m_vTexts.empty()) return;
    if (const std::exception_ptr failure = PassOnAll(m_vTexts)) std::rethrow_exception(failure);
}

// A destructor cannot pass an exception of the sink on.
DelayedDebugOutput::~DelayedDebugOutput() {
    if (!m_bOutermost) return;
    g_waitingTexts = nullptr;
    if (!m_vTexts.empty()) PassOnAll(m_vTexts);
}
