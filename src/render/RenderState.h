// What a frame is drawn with: context, programs, framebuffers, decorations, and the size of the drawing area.
#pragma once
#include <cstdint>
#include <memory>
#include <vector>

#include "KV_ScenePane/Modes.h"
#include "geometry/Vector3.h"
#include "platform/PaneWindow.h"
#include "render/FrameTarget.h"
#include "render/MeshTexture.h"
#include "render/Overlay.h"
#include "render/TextDraw.h"

class GLUquadric;
namespace KV_ScenePane {
struct Picture;
}

/// Width and height of the off-screen framebuffer and so of screenshots, pixels.
inline constexpr std::int32_t kOffscreenSize = 2048;

inline constexpr std::int32_t kBoldListCount = 96;  ///< of the lists from m_nFontListBase on, the first is the space

/// Written by render/ and by the setting methods of control/. Colours are 0x00BBGGRR.
///
/// Invariants: OpenGL names are 0, or belong to the context m_hRC; m_hRC and m_pDC are both null or both set.
/// m_nWidth and m_nHeight are -1 until the first frame or SetSize() stores a real size. m_pFrozenImage is null, or
/// holds m_nFrozenHeight rows of m_nFrozenWidth pixels.
struct RenderState {
    // Properties of the host surface, persisted.
    std::int16_t m_nDrawMode = 0;     ///< any value of the host; DoPropExchange() sets the start value
    std::int32_t m_bMoveReduced = 0;  ///< draw objects reduced while m_bMoving is set

    // Context.
    void* m_hRC = nullptr;                                      ///< rendering context
    PaneWindow* m_pDC = nullptr;                                ///< the window, once it has a pixel format; not owned
    std::uint32_t m_nFontListBase = 0;                          ///< first of kBoldListCount lists
    std::int32_t m_nGlMajorVersion = 3, m_nGlMinorVersion = 3;  ///< requested
    std::int32_t m_nGlSamples = 0;                              ///< requested samples per pixel
    bool m_bRecreating = false;                                 ///< inside RecreateOpenglContext()
    bool m_bSamplesOptional = false;  ///< of the first context: 0 samples where the driver has no such format
    std::string m_strContextRemark;  ///< of the last creation: what the driver offers in place of the request, or empty
    std::vector<TexturePixels> m_vTexturesWithoutContext;  ///< for the next context
    COpenGLTextDraw m_textDraw;
    float m_fScale = 1.0f;  ///< of fonts, line widths and point sizes; 2 for twice the pixels per inch

    // Programs, framebuffers and their attachments.
    FrameTarget m_frameTarget;  ///< of frames; bound unless another target is in use
    FrameTarget m_idTarget;     ///< of picks by colour, one pixel; made by the first pick
    std::uint32_t m_progPerPixel = 0, m_progTexPerPixel = 0, m_progShadow = 0, m_progDepth = 0;
    std::uint32_t m_progQuad = 0, m_progCreateMask = 0, m_progUseMask = 0, m_progFreeFloatingPoints = 0;
    std::uint32_t m_nShadowFbo = 0, m_nShadowTexture = 0;
    std::uint32_t m_nOffscreenColorRb = 0, m_nOffscreenDepthRb = 0, m_nOffscreenFbo = 0;
    std::int32_t m_nShadowMapWidth = 2048, m_nShadowMapHeight = 2048;  ///< pixels

    // Shadows. The look-at of the depth pass is set with the view matrices, world frame.
    std::uint8_t m_bShadowEnabled = 0;
    Float3 m_fShadowColor{};
    Float3 m_fShadowCenter{}, m_fShadowUp{}, m_fShadowEye{};

    // Frame.
    std::int32_t m_nWidth = -1, m_nHeight = -1;  ///< drawing area, pixels; -1 makes the first frame store the real size
    std::uint8_t m_bInDraw = 0;                  ///< a frame of this control is being drawn
    std::uint8_t m_bBlockPaint = 0;              ///< paint requests stay pending
    /// The depths of m_frameTarget are those of the objects alone in the live view: nothing else has written any since.
    bool m_bObjectDepths = false;
    std::unique_ptr<std::uint8_t[]> m_pFrozenImage;        ///< BGR, rows padded to 4 bytes; null while frames are live
    std::int32_t m_nFrozenWidth = 0, m_nFrozenHeight = 0;  ///< pixels
    KV_ScenePane::Picture* m_pCapture = nullptr;           ///< receives the next frame before it is shown; not owned
    std::uint64_t m_nFrameCount = 0;                       ///< frames that were passed to the window
    double m_fFrameSeconds = 0;                            ///< duration of the last of them

    // Decorations.
    std::uint32_t m_nBackgroundColors[4] = {0x321919, 0x321919, 0x321919, 0x321919};  ///< tl, tr, bl, br
    std::uint32_t m_nCrossColor = 0xFFFFFF;
    std::uint32_t m_nArrowColor = 0xFFEAEA;
    std::int32_t m_nShowArrow = 0;      ///< drawn only when exactly 1
    std::int32_t m_nArrowAngle = 0;     ///< degrees
    std::int32_t m_nShowAxes = 0;       ///< drawn only when exactly 1
    GLUquadric* m_pQuadric = nullptr;   ///< owned
    GLUquadric* m_pQuadric2 = nullptr;  ///< owned
    std::vector<Overlay> m_vOverlays;
    float m_fPointCloudSize = 2.0f;  ///< of draw mode 0: pixels; of free points: half their side, scene units
};
