// A freehand lasso while it is drawn, and the OpenGL objects that it draws with.
#pragma once
#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "cut/CutImage.h"
#include "cut/MaskBits.h"

/// Colour and opacity of one part of the tint.
struct LassoTint {
    std::uint32_t color = 0;  ///< 0x00BBGGRR
    float opacity = 0.0f;     ///< 0 invisible to 1 opaque; what is beyond is clamped, and not a number counts as 0
};

/// Fewer pixels in a row or column leave no place for a freehand lasso: it keeps off the outermost pixels.
inline constexpr std::int32_t kMinLassoSide = 3;

/// OpenGL objects of one freehand session. The rendering context must be current when they are destroyed.
struct CutMaskTextures {
    CutMaskTextures() = default;
    ~CutMaskTextures();
    CutMaskTextures(const CutMaskTextures&) = delete;
    CutMaskTextures& operator=(const CutMaskTextures&) = delete;

    std::int32_t m_nWidth = 0, m_nHeight = 0;  ///< pixels: the drawing area when the session was started
    std::uint32_t m_uLineBuffer = 0;           ///< pixel-unpack buffer of the line texture
    std::uint32_t m_uLineTexture = 0;          ///< the lines of the lasso
    std::uint32_t m_uFillBuffer = 0;           ///< pixel-unpack buffer of the fill texture
    std::uint32_t m_uFillTexture = 0;          ///< the tinted regions
    std::uint32_t m_uSilhouetteTexture = 0;    ///< where the scene has objects
    std::array<double, 16> m_dModelView{};     ///< of the camera of the silhouette
};

/// A running freehand lasso. Points are queued by the input and drawn into the images by the next Draw(). Images are
/// m_nWidth x m_nHeight words, top row first, with the bytes r, g, b, a from the lowest; 0 is empty, and 255 marks
/// what a flood fill has reached.
///
/// Invariants: all points lie inside the outermost pixels of the image, so that a ring of empty pixels encloses the
/// lasso. m_vLines is empty outside m_rcBounds, and m_vComposite outside m_rcShown.
class CutSession {
public:
    /// @param textures    at least kMinLassoSide pixels in both directions; owned from here on, also when this throws
    /// @param startPixel  moved away from the outermost pixels
    /// @param fill, outside  tints of what is inside and outside the lasso
    /// @param program     "use mask"
    /// @throws std::invalid_argument when a colour is the marker of the flood fill, or fill and line are equal
    CutSession(std::unique_ptr<CutMaskTextures> textures, LassoPixel startPixel, LassoTint line, LassoTint fill,
               LassoTint outside, std::uint32_t program);

    /// Adds a point. @param fx, fy  fractions of the drawing area; points outside it or on its outermost pixels are
    /// ignored, also those that are not finite
    void AddPoint(float fx, float fy);
    /// Moves the rubber band; the same points are ignored.
    void SetPreviewPoint(float fx, float fy);
    /// Updates images and textures and draws the session over the frame, whose OpenGL state it restores. The context
    /// must be current. Without OpenGL objects nothing happens.
    void Draw(bool withFill);
    /// Closes the lasso in a copy and returns what it encloses, its lines included, in a window of this size.
    [[nodiscard]] MaskBits CreateMaskBits(std::int32_t outWidth, std::int32_t outHeight) const;
    /// The newest point that AddPoint() or SetPreviewPoint() has accepted.
    [[nodiscard]] std::optional<LassoPixel> GetLastPoint() const { return m_optLastPoint; }

    using Image = std::vector<std::uint32_t>;
    using Rectangle = PixelRectangle;

    std::unique_ptr<CutMaskTextures> m_pTextures;
    std::int32_t m_nWidth, m_nHeight;
    LassoPixel m_ptStart;                    ///< first point of the lasso
    LassoPixel m_ptLast;                     ///< end of what m_vLines shows
    std::optional<LassoPixel> m_optPreview;  ///< end of the rubber band
    std::uint32_t m_uLineColor, m_uFillColor, m_uOutsideColor, m_uPreviewColor;
    std::uint32_t m_uProgram;
    std::optional<LassoPixel> m_optLastPoint;
    std::vector<LassoPixel> m_vPending;     ///< accepted, not yet in m_vLines
    Image m_vLines;                         ///< committed lines
    Rectangle m_rcBounds;                   ///< of all committed points
    Image m_vComposite;                     ///< committed lines and rubber band
    Rectangle m_rcShown;                    ///< last touched by the rubber band
    std::vector<LassoPixel> m_vFloodStack;  ///< reserved once, so that a fill does not allocate

private:
    [[nodiscard]] std::optional<LassoPixel> FindNewPixel(float fx, float fy) const;
    [[nodiscard]] std::uint32_t TintOf(std::uint8_t marker) const;
    [[nodiscard]] Rectangle FindChangedLines() const;
    void CommitLines(const Rectangle& changed);
    void UpdateLines();
    void FillLasso(const Rectangle& box);
    [[nodiscard]] std::vector<std::uint8_t> CloseLasso(const Rectangle& box) const;
    void UpdateFill();
    void LimitTo(const Rectangle& box) const;
    void DrawTint() const;
    void DrawLines() const;

    std::vector<std::uint8_t> m_vMarkers;  ///< LassoMarkers of the filled box of the lasso
    Rectangle m_rcBand;  ///< where m_vComposite has lines that m_vLines has not: rubber band or closing edge
    // What the textures show. Older than the images when a buffer could not be mapped.
    std::optional<Rectangle> m_optLinesToUpload;  ///< where the line texture differs from m_vComposite
    Rectangle m_rcFillShown;                      ///< beyond it the fill texture has m_uOutsideColor
    bool m_bFillIsStale = true;                   ///< m_vComposite has changed since the last fill
};
