// An X server without a monitor for the tests of one process, so that they need no display of the machine.
#pragma once
#include <sys/types.h>

#include <string>

/// Starts Xvfb on a free display and sets $DISPLAY to it. Ends the server with itself.
class XvfbServer {
public:
    /// @param screen  its size, "WIDTHxHEIGHT" in pixels
    /// @throws std::runtime_error when Xvfb is not installed or does not start: window tests fail then, they do not
    /// skip
    explicit XvfbServer(const std::string& screen = "1280x1024");
    ~XvfbServer();
    XvfbServer(const XvfbServer&) = delete;
    XvfbServer& operator=(const XvfbServer&) = delete;

    /// The server that the tests of this process share, started by the first call. Every call sets $DISPLAY to it.
    static XvfbServer& Shared();

    /// In the form of $DISPLAY, ":99".
    [[nodiscard]] const std::string& Name() const { return m_strName; }
    /// How many clients are connected now, by the server's open sockets beyond those it had at its start.
    [[nodiscard]] int ClientCount() const;
    /// Waits until this number of clients is connected: the server closes its end of a connection later than the
    /// client.
    [[nodiscard]] bool WaitForClients(int count) const;
    /// Ends the server while its clients are connected. Returns when the process has ended.
    void Kill();

private:
    [[nodiscard]] int SocketCount() const;

    pid_t m_nProcess = -1;
    std::string m_strName;
    int m_nOwnSockets = 0;
};
