// By fork() and exec(): the child ends with the thread that started it, also when the test is killed.
#include "support/ChildProcess.h"

#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <stdexcept>

#include "support/Wait.h"

namespace {

int StatusOf(int wait) { return WIFSIGNALED(wait) ? 128 + WTERMSIG(wait) : WEXITSTATUS(wait); }

}  // namespace

ChildProcess::ChildProcess(const std::vector<std::string>& arguments,
                           const std::map<std::string, std::string>& environment) {
    std::vector<char*> pointers;
    for (const std::string& argument : arguments) pointers.push_back(const_cast<char*>(argument.c_str()));
    pointers.push_back(nullptr);
    const pid_t parent = getpid();
    m_nProcess = fork();
    if (m_nProcess < 0) throw std::runtime_error("no process for " + arguments.front());
    if (m_nProcess > 0) return;
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) _exit(1);  // the parent ended before the line above
    dup2(STDERR_FILENO, STDOUT_FILENO);
    for (const auto& [name, value] : environment) {
        if (value.empty())
            unsetenv(name.c_str());
        else
            setenv(name.c_str(), value.c_str(), 1);
    }
    execvp(pointers.front(), pointers.data());
    _exit(127);
}

ChildProcess::~ChildProcess() {
    if (!IsRunning()) return;
    kill(m_nProcess, SIGTERM);
    if (WaitUntil([&] { return !IsRunning(); })) return;
    kill(m_nProcess, SIGKILL);
    waitpid(m_nProcess, nullptr, 0);
}

bool ChildProcess::IsRunning() {
    if (m_status) return false;
    int wait = 0;
    if (waitpid(m_nProcess, &wait, WNOHANG) == 0) return true;
    m_status = StatusOf(wait);
    return false;
}

std::optional<int> ChildProcess::WaitForEnd() {
    (void)WaitUntil([&] { return !IsRunning(); });
    return m_status;
}
