// The connection, and the error handlers that the whole process shares. Any thread of the process may cause an X error,
// so their state is guarded by a lock; no handler of the host is called while it is held.
#include "platform/X11Connection.h"

#include <X11/Xlib.h>

#include <algorithm>
#include <array>
#include <bitset>
#include <cstdlib>
#include <mutex>
#include <utility>
#include <vector>

namespace {

constexpr std::size_t kEntries = 32;

/// Handlers of ours and, behind each, the one handler of the host that it was installed over and passes errors on to
/// for ever. A host that puts back what XSetErrorHandler() returned to it puts back one of ours, and with it its own
/// handler: one entry for all would pass on to whatever was installed last, such as a handler that was meant for a few
/// requests only.
template <typename Handler>
class HandlerChain {
public:
    using Setter = Handler (*)(Handler);
    HandlerChain(Setter set, const std::array<Handler, kEntries>& entries) : m_set(set), m_entries(entries) {}

    /// Puts the entry of the installed handler in front of it, unless one of ours is installed already.
    void Install() {
        const Handler installed = m_set(m_entries[m_nFront]);
        const std::size_t index = IndexOf(installed);
        if (index == m_nFront && m_nUsed > 0) return;
        const std::size_t former = m_nFront;
        m_nFront = index < kEntries ? index : EntryFor(installed);
        if (index == kEntries && m_nFront != former) m_below[m_nFront] = former;
        m_set(m_entries[m_nFront]);
    }

    /// Puts back the handler of the host below ours. Entries that the host still knows go on passing errors on to it.
    void Remove() {
        const Handler installed = m_set(m_entries[m_nFront]);
        const std::size_t index = IndexOf(installed);
        m_set(index < m_nUsed ? m_hosts[index] : installed);
    }

    /// The entry whose handler gets an error that @p called has received; kEntries when there is none. A handler may
    /// have been installed over its own entry: an error that comes back to an entry in @p active goes to the one below,
    /// so that the two do not call each other without end.
    [[nodiscard]] std::size_t EntryToCall(std::size_t called, const std::bitset<kEntries>& active) const {
        for (std::size_t steps = 0; steps < kEntries; ++steps, called = m_below[called])
            if (!active[called]) return called;
        return kEntries;
    }
    [[nodiscard]] Handler HostHandler(std::size_t entry) const { return m_hosts[entry]; }

private:
    [[nodiscard]] std::size_t IndexOf(Handler handler) const {
        return static_cast<std::size_t>(std::ranges::find(m_entries, handler) - m_entries.begin());
    }

    // Hosts have few handlers. One that has more than there are entries shares the last.
    std::size_t EntryFor(Handler host) {
        const auto used = m_hosts.begin() + static_cast<std::ptrdiff_t>(m_nUsed);
        const auto found = std::find(m_hosts.begin(), used, host);
        if (found != used) return static_cast<std::size_t>(found - m_hosts.begin());
        if (m_nUsed < kEntries) ++m_nUsed;
        m_hosts[m_nUsed - 1] = host;
        return m_nUsed - 1;
    }

    Setter m_set;
    const std::array<Handler, kEntries>& m_entries;
    std::array<Handler, kEntries> m_hosts{};      ///< by entry; the first m_nUsed are set
    std::array<std::size_t, kEntries> m_below{};  ///< by entry: the one that was in front before; not always older
    std::size_t m_nUsed = 0;
    std::size_t m_nFront = 0;  ///< the entry that was installed last
};

/// The error that handlers of the host are looking at on this thread, and the entries that called them. Compared by its
/// serial number, because a handler may leave by longjmp().
struct PassedOn {
    const Display* display = nullptr;
    unsigned long serial = 0;
    std::bitset<kEntries> entries;

    /// Itself when it is about that error, else an empty record of it.
    [[nodiscard]] PassedOn About(const Display* errorDisplay, unsigned long errorSerial) const {
        return errorDisplay == display && errorSerial == serial ? *this : PassedOn{errorDisplay, errorSerial, {}};
    }
};
thread_local PassedOn g_passedOn;

/// Notes a call of a handler of the host for as long as it lives.
class Passing {
public:
    Passing(std::size_t entry, PassedOn error) : m_former(g_passedOn) {
        error.entries.set(entry);
        g_passedOn = error;
    }
    ~Passing() { g_passedOn = m_former; }
    Passing(const Passing&) = delete;
    Passing& operator=(const Passing&) = delete;

private:
    PassedOn m_former;
};

}  // namespace

struct X11Connection::ErrorHandlers {
    std::mutex lock;
    std::vector<X11Connection*> connections;
    HandlerChain<XErrorHandler> errors{XSetErrorHandler, kErrorEntries};
    HandlerChain<XIOErrorHandler> ioErrors{XSetIOErrorHandler, kIoErrorEntries};

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

    /// Counts an error of ours and returns null; else the handler of the host that it is for, or null for none.
    template <typename Handler>
    Handler CountOrFind(const HandlerChain<Handler>& chain, std::size_t called, const PassedOn& error,
                        std::size_t* entry) {
        const std::lock_guard guard(lock);
        if (X11Connection* const own = Find(error.display)) {
            ++own->m_nErrors;
            return nullptr;
        }
        *entry = chain.EntryToCall(called, error.entries);
        return *entry < kEntries ? chain.HostHandler(*entry) : nullptr;
    }

    template <std::size_t Entry>
    static int OnError(Display* display, XErrorEvent* event) {
        const PassedOn error = g_passedOn.About(display, event->serial);
        std::size_t entry = kEntries;
        const XErrorHandler next = Instance().CountOrFind(Instance().errors, Entry, error, &entry);
        if (next == nullptr) return 0;
        const Passing passing(entry, error);
        return next(display, event);
    }

    // An IO error has no serial number: it ends the connection, so there is one for a display.
    template <std::size_t Entry>
    static int OnIoError(Display* display) {
        const PassedOn error = g_passedOn.About(display, 0);
        std::size_t entry = kEntries;
        const XIOErrorHandler next = Instance().CountOrFind(Instance().ioErrors, Entry, error, &entry);
        if (next == nullptr) return 0;
        const Passing passing(entry, error);
        return next(display);
    }

    template <std::size_t... I>
    static constexpr std::array<XErrorHandler, kEntries> ErrorEntries(std::index_sequence<I...>) {
        return {OnError<I>...};
    }
    template <std::size_t... I>
    static constexpr std::array<XIOErrorHandler, kEntries> IoErrorEntries(std::index_sequence<I...>) {
        return {OnIoError<I>...};
    }
    static const std::array<XErrorHandler, kEntries> kErrorEntries;
    static const std::array<XIOErrorHandler, kEntries> kIoErrorEntries;

    // Xlib calls this after the IO error handler. Its default calls exit().
    static void OnIoErrorExit(Display*, void* connection) { static_cast<X11Connection*>(connection)->m_bBroken = true; }
};

constinit const std::array<XErrorHandler, kEntries> X11Connection::ErrorHandlers::kErrorEntries =
    ErrorEntries(std::make_index_sequence<kEntries>());
constinit const std::array<XIOErrorHandler, kEntries> X11Connection::ErrorHandlers::kIoErrorEntries =
    IoErrorEntries(std::make_index_sequence<kEntries>());

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
