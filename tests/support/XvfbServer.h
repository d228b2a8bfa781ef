// An X server without a screen for the tests of one process, so that they need no display of the machine.
#pragma once
#include <sys/types.h>

#include <string>

/// Starts Xvfb on a free display and sets $DISPLAY to it. Ends the server with itself.
class XvfbServer {
public:
    /// @throws std::runtime_error when Xvfb is not installed or does not start: window tests fail then, they do not
    /// skip
    XvfbServer();
    ~XvfbServer();
    XvfbServer(const XvfbServer&) = delete;
    XvfbServer& operator=(const XvfbServer&) = delete;

    /// The server that the tests of this process share; started by the first call; every call sets $DISPLAY.
    static XvfbServer& Shared();

    /// As $DISPLAY has it, ":99".
    [[nodiscard]] const std::string& Name() const { return m_strName; }
    /// How many clients are connected now, by the server's open sockets beyond those it had at its start.
    [[nodiscard]] int ClientCount() const;
    /// Waits until that many clients are connected, for the server closes its side of a connection later; false when it
    /// does not come to that within seconds.
    [[nodiscard]] bool ComesToClients(int count) const;
    /// Ends the server at once, under the clients that it has.
    void Kill();

private:
    [[nodiscard]] int SocketCount() const;

    pid_t m_nProcess = -1;
    std::string m_strName;
    int m_nOwnSockets = 0;
};
