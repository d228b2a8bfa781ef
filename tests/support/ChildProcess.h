// A program that a test runs beside itself, and ends at the latest with itself.
#pragma once
#include <sys/types.h>

#include <map>
#include <optional>
#include <string>
#include <vector>

class ChildProcess {
public:
    /// Starts a program. What it prints goes to the standard error of the test.
    /// @param arguments    the program first; without a slash it is searched for in $PATH
    /// @param environment  variables to set; those with an empty value are removed
    /// @throws std::runtime_error when no process can be made; a program that cannot be executed ends with status 127
    explicit ChildProcess(const std::vector<std::string>& arguments,
                          const std::map<std::string, std::string>& environment = {});
    /// Ends the process: by SIGTERM, and by SIGKILL when that does not end it.
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    [[nodiscard]] bool IsRunning();
    /// Waits until the process has ended. @return its exit status, 128 and the signal's number after a signal; empty
    /// when it does not end within the limit of the tests
    [[nodiscard]] std::optional<int> WaitForEnd();
    [[nodiscard]] pid_t Id() const { return m_nProcess; }

private:
    pid_t m_nProcess = -1;
    std::optional<int> m_status;  // empty while it runs
};
