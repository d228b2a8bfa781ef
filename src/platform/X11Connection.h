// A connection of our own to an X server, on which no error ends the process.
#pragma once
#include <atomic>
#include <cstdint>
#include <memory>
#include <string>

struct _XDisplay;

/// Xlib has one error handler for the process. Ours records the errors of our connections and passes all others to the
/// handler that the host has installed. A server that goes away breaks the connection instead of ending the process.
class X11Connection {
public:
    /// @param name    X display name; empty takes $DISPLAY
    /// @param reason  takes why there is none
    static std::unique_ptr<X11Connection> Open(const std::string& name, std::string* reason);
    ~X11Connection();
    X11Connection(const X11Connection&) = delete;
    X11Connection& operator=(const X11Connection&) = delete;

    [[nodiscard]] _XDisplay* Get() const { return m_pDisplay; }
    /// False once the server is gone. No request does anything then.
    [[nodiscard]] bool IsAlive() const { return !m_bBroken; }
    [[nodiscard]] std::string Name() const;

    /// Puts our error handler back when the host has installed another one since. Before requests that may fail.
    static void TakeErrors();

    /// Requests that the server may refuse.
    class Attempt {
    public:
        explicit Attempt(X11Connection& connection);
        /// Waits for the server's answers: true when all requests since the construction were good.
        [[nodiscard]] bool Succeeded() const;

    private:
        X11Connection& m_connection;
        std::uint64_t m_nErrorsBefore;
    };

private:
    struct ErrorHandlers;  ///< the process-wide part

    explicit X11Connection(_XDisplay* display);

    _XDisplay* m_pDisplay;
    std::atomic<std::uint64_t> m_nErrors{0};
    std::atomic<bool> m_bBroken{false};
};
