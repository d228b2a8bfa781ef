// The framebuffer that a picture is drawn into and read back from. Not the window's: the back buffer of a covered or
// unmapped window is undefined, and a driver may drop the depth at the swap.
#pragma once
#include <cstdint>

/// Colour and depth of one size, with a second pair of buffers that holds the resolved samples when there are several
/// per pixel. All calls with the same context current; it leaves this framebuffer bound, see Bind().
///
/// When the driver cannot make it, the window's own framebuffer is used instead and the log has one line.
class FrameTarget {
public:
    /// Makes the buffers and clears them. Without effect when they have this size already.
    /// @param width, height  pixels; at least one is made of each
    /// @param samples        per pixel; 0 for none
    void SetSize(std::int32_t width, std::int32_t height, std::int32_t samples);

    /// Makes it the framebuffer that is drawn into and read. With samples, reads give the colours of the last
    /// Resolve(); the depth has to be resolved by the reader.
    void Bind() const;
    /// To be called before colours are read. Does nothing without samples; with 4 of them a software driver needs about
    /// as long for it as for an empty frame.
    void Resolve() const;
    /// Copies the resolved colours to the back buffer of the window, which has no samples.
    void CopyToWindow() const;

    /// Deletes the buffers; the window's framebuffer is bound when one of them was.
    void Release() {
        Delete(m_drawn);
        Delete(m_resolved);
        Forget();
    }
    /// The buffers were deleted with their context.
    void Forget() { *this = {}; }

    /// The size of the last SetSize(), pixels; 0 before it.
    [[nodiscard]] std::int32_t Width() const { return m_nWidth; }
    [[nodiscard]] std::int32_t Height() const { return m_nHeight; }
    /// The name of the framebuffer that is drawn into; 0 is the window's.
    [[nodiscard]] std::uint32_t Name() const { return m_drawn.framebuffer; }
    /// The name of the framebuffer that is read.
    [[nodiscard]] std::uint32_t ReadName() const {
        return m_resolved.framebuffer != 0 ? m_resolved.framebuffer : Name();
    }

private:
    struct Buffers {
        std::uint32_t framebuffer = 0, texture = 0, color = 0, depth = 0;  ///< texture or color
    };
    [[nodiscard]] bool Make(Buffers& buffers, std::int32_t samples) const;
    static void Delete(Buffers& buffers);
    void CopyColors(std::uint32_t from, std::uint32_t to) const;

    Buffers m_drawn, m_resolved;  ///< m_resolved only with several samples
    std::int32_t m_nWidth = 0, m_nHeight = 0, m_nSamples = 0;
    bool m_bLogged = false;  ///< that the driver cannot make it
};
