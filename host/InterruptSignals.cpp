// The signal is raised again, so that a shell sees by which one the program ended.
#include "InterruptSignals.h"

#include <signal.h>

#include "files/TemporaryFiles.h"

namespace {

// The default action is set again before this is called; the second signal is delivered when it returns.
void OnSignal(int signal) {
    FileStorage::RemoveOpenTemporaryFiles();
    (void)::raise(signal);
}

}  // namespace

void HandleInterruptSignals() {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction action {};
        if (::sigaction(signal, nullptr, &action) != 0 || action.sa_handler == SIG_IGN) continue;
        action = {};
        action.sa_handler = &OnSignal;
        action.sa_flags = static_cast<int>(SA_RESETHAND);
        (void)::sigaction(signal, &action, nullptr);
    }
    (void)::signal(SIGXFSZ, SIG_IGN);
}
