// The pending repaint of a window. Requests are coalesced until a paint removes them; the window decides when to call
// its client.
#pragma once

/// Coalesces repaint requests. Independent of any window system.
class PaintQueue {
public:
    /// One more request; the pending request erases when any of its parts asked to.
    void Request(bool erase) {
        m_bPending = true;
        m_bErase = m_bErase || erase;
    }

    /// Opens a paint and removes the pending request; a request made from here on is for the next paint. Paints nest.
    /// @return whether the removed request asked to erase
    bool Begin() {
        const bool erase = m_bErase;
        m_bPending = m_bErase = false;
        ++m_nOpenPaints;
        return erase;
    }
    /// An End() without a Begin() is ignored.
    void End() {
        if (m_nOpenPaints > 0) --m_nOpenPaints;
    }

    [[nodiscard]] bool IsPending() const { return m_bPending; }
    /// Whether a queued paint may start now. Never inside another paint, even when the client's paint runs the event
    /// loop: the frame that is being drawn would be interrupted by itself.
    [[nodiscard]] bool IsDue() const { return m_bPending && m_nOpenPaints == 0; }

    void Clear() { *this = PaintQueue(); }

private:
    bool m_bPending = false;
    bool m_bErase = false;
    int m_nOpenPaints = 0;
};
