// Xvfb chooses the display itself and reports its number through a pipe, so that test processes can run in parallel.
#include "support/XvfbServer.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>

#include "support/Wait.h"

namespace {

[[noreturn]] void RunServer(int numberPipe, pid_t parent, const std::string& screen) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) _exit(1);  // the parent ended before the line above
    const int null = open("/dev/null", O_RDWR);
    dup2(null, STDOUT_FILENO);
    dup2(null, STDERR_FILENO);
    // The driver under test is not for the server.
    for (const char* const name : {"GALLIUM_DRIVER", "LD_PRELOAD", "MESA_LOADER_DRIVER_OVERRIDE"}) unsetenv(name);
    fcntl(numberPipe, F_SETFD, 0);
    const std::string number = std::to_string(numberPipe);
    execlp("Xvfb", "Xvfb", "-displayfd", number.c_str(), "-screen", "0", screen.c_str(), "+extension", "GLX",
           "-nolisten", "tcp", "-noreset", static_cast<char*>(nullptr));
    _exit(127);
}

// The display number; empty when the server ended or did not report one.
std::string ReadNumber(int pipe) {
    std::string number;
    std::array<char, 16> bytes{};
    while (BecomesReadable(pipe)) {
        const ssize_t count = read(pipe, bytes.data(), bytes.size());
        if (count <= 0) return {};
        number.append(bytes.data(), static_cast<std::size_t>(count));
        if (number.back() == '\n') return number.substr(0, number.size() - 1);
    }
    return {};
}

}  // namespace

XvfbServer::XvfbServer(const std::string& screen) {
    std::array<int, 2> numberPipe{};
    if (pipe2(numberPipe.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe for Xvfb");
    const pid_t parent = getpid();
    m_nProcess = fork();
    if (m_nProcess == 0) RunServer(numberPipe[1], parent, screen + "x24");
    close(numberPipe[1]);
    const std::string number = m_nProcess < 0 ? "" : ReadNumber(numberPipe[0]);
    close(numberPipe[0]);
    if (number.empty()) {
        Kill();
        throw std::runtime_error("Xvfb does not start; is it installed?");
    }
    m_strName = ":" + number;
    m_nOwnSockets = SocketCount();
    setenv("DISPLAY", m_strName.c_str(), 1);
}

XvfbServer::~XvfbServer() { Kill(); }

XvfbServer& XvfbServer::Shared() {
    static XvfbServer server;
    setenv("DISPLAY", server.m_strName.c_str(), 1);  // another test may have set another
    return server;
}

void XvfbServer::Kill() {
    if (m_nProcess <= 0) return;
    kill(m_nProcess, SIGTERM);  // lets it remove its lock file and socket
    if (!WaitUntil([&] { return waitpid(m_nProcess, nullptr, WNOHANG) != 0; })) {
        kill(m_nProcess, SIGKILL);
        waitpid(m_nProcess, nullptr, 0);
    }
    m_nProcess = -1;
}

int XvfbServer::ClientCount() const { return SocketCount() - m_nOwnSockets; }

bool XvfbServer::WaitForClients(int count) const {
    return WaitUntil([&] { return ClientCount() == count; });
}

int XvfbServer::SocketCount() const {
    int count = 0;
    std::error_code error;
    for (const auto& entry :
         std::filesystem::directory_iterator("/proc/" + std::to_string(m_nProcess) + "/fd", error)) {
        const std::string target = std::filesystem::read_symlink(entry.path(), error).string();
        if (target.starts_with("socket:")) ++count;
    }
    return count;
}
