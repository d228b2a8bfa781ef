// The pending repaint of a window. Requests are one until a paint takes them; the window decides when to call its
// client.
#pragma once

/// Coalesces repaint requests. Knows no window and no display.
class PaintQueue {
public:
    /// One more request; the flag of the pending request is the or of all of them.
    void Request(bool erase) {
        m_bPending = true;
        m_bErase = m_bErase || erase;
    }

    /// Opens a paint and takes the pending request; a request made from here on waits for the next paint. Paints nest.
    /// @return whether the taken request asked to erase
    bool Begin() {
        const bool erase = m_bErase;
        m_bPending = m_bErase = false;
        ++m_nOpenPaints;
        return erase;
    }
    /// An End() too many is ignored.
    void End() {
        if (m_nOpenPaints > 0) --m_nOpenPaints;
    }

    [[nodiscard]] bool IsPending() const { return m_bPending; }
    /// A queued paint never starts inside another one, also when the client's paint runs the event loop.
    [[nodiscard]] bool IsDue() const { return m_bPending && m_nOpenPaints == 0; }

    void Clear() { *this = PaintQueue(); }

private:
    bool m_bPending = false;
    bool m_bErase = false;
    int m_nOpenPaints = 0;
};
