// A freehand lasso: its points and its images.
#include "cut/CutSession.h"

#include <utility>

CutSession::CutSession(std::unique_ptr<CutMaskTextures> textures, LassoPixel startPixel, LassoTint /*line*/,
                       LassoTint /*fill*/, LassoTint /*outside*/, std::uint32_t program)
    : m_pTextures(std::move(textures)),
      m_nWidth(m_pTextures->m_nWidth),
      m_nHeight(m_pTextures->m_nHeight),
      m_ptStart(startPixel),
      m_ptLast(startPixel),
      m_uLineColor(0),
      m_uFillColor(0),
      m_uOutsideColor(0),
      m_uPreviewColor(0),
      m_uProgram(program),
      m_rcBounds{},
      m_rcShown{} {}

void CutSession::AddPoint(float /*fx*/, float /*fy*/) {}

void CutSession::SetPreviewPoint(float /*fx*/, float /*fy*/) {}

MaskBits CutSession::CreateMaskBits(std::int32_t /*outWidth*/, std::int32_t /*outHeight*/) const { return {}; }
