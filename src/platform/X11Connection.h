// A connection of our own to an X server, on which no error ends the process.
#pragma once
#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

struct _XDisplay;

/// Xlib has one error handler and one IO error handler for the process. Ours count the errors of our connections and
/// pass all others to the handlers that the host has installed. When the server ends, the connection becomes unusable
/// instead of ending the process.
class X11Connection {
public:
    /// @param name    X display name; empty: $DISPLAY
    /// @param reason  receives why there is no connection; must not be null
    /// @return null when the display cannot be opened
    static std::unique_ptr<X11Connection> Open(const std::string& name, std::string* reason);
    ~X11Connection();
    X11Connection(const X11Connection&) = delete;
    X11Connection& operator=(const X11Connection&) = delete;

    [[nodiscard]] _XDisplay* Get() const { return m_pDisplay; }
    /// False once the server has ended. Requests have no effect then.
    [[nodiscard]] bool IsAlive() const { return !m_bBroken; }
    [[nodiscard]] std::string Name() const;

    /// Installs our error handlers again when the host has replaced them since. To be called before requests that the
    /// server may refuse.
    static void InstallErrorHandlers();

    /// Finds out whether the server accepted the requests that are sent while it lives. Costs two round trips.
    class ErrorTrap {
    public:
        explicit ErrorTrap(X11Connection& connection);
        /// Waits until the server has processed all requests: true when none since the construction was in error.
        [[nodiscard]] bool Succeeded() const;

    private:
        X11Connection& m_connection;
        std::uint64_t m_nErrorsBefore;
    };

private:
    struct ErrorHandlers;  ///< the part that the whole process shares

    explicit X11Connection(_XDisplay* display);

    _XDisplay* m_pDisplay;
    std::atomic<std::uint64_t> m_nErrors{0};
    std::atomic<bool> m_bBroken{false};
};
