// The connection, and the error handlers that the whole process shares. Any thread of the process may cause an X error,
// so their state is guarded by a lock; no handler of the host is called while it is held.
#include "platform/X11Connection.h"

#include <X11/Xlib.h>

#include <algorithm>
#include <cstdlib>
#include <mutex>
#include <vector>

namespace {

/// The handlers of the host that ours replaced, the latest last.
template <typename Handler>
class HandlerChain {
public:
    using Setter = Handler (*)(Handler);
    HandlerChain(Setter set, Handler ours) : m_set(set), m_ours(ours) {}

    /// Puts ours in front. The handler found there is remembered once, as the latest.
    void Install() {
        const Handler former = m_set(m_ours);
        if (former == m_ours) return;
        std::erase(m_vFormer, former);
        m_vFormer.push_back(former);
    }

    /// Restores the host's latest handler, unless the host has installed another one over ours meanwhile.
    void Remove() {
        if (m_vFormer.empty()) return;
        const Handler installed = m_set(m_vFormer.back());
        if (installed != m_ours) m_set(installed);
        m_vFormer.clear();
    }

    /// The handler that ours passes an error on to; null at the end of the chain.
    /// @param depth  calls of ours that are active on this thread. A handler of the host that was installed over ours
    /// may
    ///               pass errors on to ours, which is in front of it again: the next older one is called then, so that
    ///               the two do not call each other without end
    Handler Next(std::size_t depth) const {
        return depth < m_vFormer.size() ? m_vFormer[m_vFormer.size() - 1 - depth] : nullptr;
    }

private:
    Setter m_set;
    Handler m_ours;
    std::vector<Handler> m_vFormer;
};

}  // namespace

struct X11Connection::ErrorHandlers {
    std::mutex lock;
    std::vector<X11Connection*> connections;
    HandlerChain<XErrorHandler> errors{XSetErrorHandler, OnError};
    HandlerChain<XIOErrorHandler> ioErrors{XSetIOErrorHandler, OnIoError};

    // Never destroyed: an error on a connection of the host may arrive while static objects are being destroyed.
    static ErrorHandlers& Instance() {
        static ErrorHandlers* const handlers = new ErrorHandlers;
        return *handlers;
    }

    X11Connection* Find(const Display* display) const {
        const auto found = std::find_if(connections.begin(), connections.end(),
                                        [display](const X11Connection* c) { return c->m_pDisplay == display; });
        return found == connections.end() ? nullptr : *found;
    }

    static int OnError(Display* display, XErrorEvent* event) {
        static thread_local std::size_t depth = 0;
        XErrorHandler next = nullptr;
        {
            ErrorHandlers& handlers = Instance();
            const std::lock_guard guard(handlers.lock);
            if (X11Connection* const own = handlers.Find(display)) {
                ++own->m_nErrors;
                return 0;
            }
            next = handlers.errors.Next(depth);
        }
        if (next == nullptr) return 0;
        ++depth;
        const int answer = next(display, event);
        --depth;
        return answer;
    }

    static int OnIoError(Display* display) {
        static thread_local std::size_t depth = 0;
        XIOErrorHandler next = nullptr;
        {
            ErrorHandlers& handlers = Instance();
            const std::lock_guard guard(handlers.lock);
            if (handlers.Find(display) != nullptr) return 0;
            next = handlers.ioErrors.Next(depth);
        }
        if (next == nullptr) return 0;
        ++depth;
        const int answer = next(display);
        --depth;
        return answer;
    }

    // Xlib calls this after the IO error handler. Its default calls exit().
    static void OnIoErrorExit(Display*, void* connection) { static_cast<X11Connection*>(connection)->m_bBroken = true; }
};

std::unique_ptr<X11Connection> X11Connection::Open(const std::string& name, std::string* reason) {
    Display* const display = XOpenDisplay(name.empty() ? nullptr : name.c_str());
    if (display != nullptr) return std::unique_ptr<X11Connection>(new X11Connection(display));
    // The words name what was tried: a wrong $DISPLAY is the most frequent cause.
    const char* const variable = std::getenv("DISPLAY");
    if (!name.empty())
        *reason = "No X display: " + name + " cannot be opened";
    else if (variable == nullptr || *variable == '\0')
        *reason = "No X display: $DISPLAY is not set";
    else
        *reason = std::string("No X display: $DISPLAY is ") + variable + ", which cannot be opened";
    return nullptr;
}

X11Connection::X11Connection(_XDisplay* display) : m_pDisplay(display) {
    ErrorHandlers& handlers = ErrorHandlers::Instance();
    {
        const std::lock_guard guard(handlers.lock);
        handlers.connections.push_back(this);
        handlers.errors.Install();
        handlers.ioErrors.Install();
    }
    XSetIOErrorExitHandler(display, ErrorHandlers::OnIoErrorExit, this);
}

// The last of our connections gives the handlers back. Closing may itself report errors, so ours must still be there.
X11Connection::~X11Connection() {
    InstallErrorHandlers();
    XCloseDisplay(m_pDisplay);
    ErrorHandlers& handlers = ErrorHandlers::Instance();
    const std::lock_guard guard(handlers.lock);
    std::erase(handlers.connections, this);
    if (!handlers.connections.empty()) return;
    handlers.errors.Remove();
    handlers.ioErrors.Remove();
}

std::string X11Connection::Name() const { return DisplayString(m_pDisplay); }

void X11Connection::InstallErrorHandlers() {
    ErrorHandlers& handlers = ErrorHandlers::Instance();
    const std::lock_guard guard(handlers.lock);
    if (handlers.connections.empty()) return;
    handlers.errors.Install();
    handlers.ioErrors.Install();
}

X11Connection::ErrorTrap::ErrorTrap(X11Connection& connection) : m_connection(connection), m_nErrorsBefore(0) {
    InstallErrorHandlers();
    if (connection.IsAlive()) XSync(connection.Get(), False);  // errors of earlier requests arrive here
    m_nErrorsBefore = connection.m_nErrors;
}

bool X11Connection::ErrorTrap::Succeeded() const {
    if (m_connection.IsAlive()) XSync(m_connection.Get(), False);
    return m_connection.IsAlive() && m_connection.m_nErrors == m_nErrorsBefore;
}
