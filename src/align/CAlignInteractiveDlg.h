// Alignment by hand: drags of the mouse turn and move the variable objects as they would turn and move the view.
#pragma once
#include "align/CInteractionDlg.h"
#include "align/DimmedColors.h"
#include "geometry/CACADQTrafo.h"

class CAlignInteractiveDlg : public CInteractionDlg {
public:
    void OnRotateDrag(std::int32_t x, std::int32_t y) override;
    void OnMoveDrag(std::int32_t x, std::int32_t y) override;
    void OnRotateEnd(std::int32_t x, std::int32_t y) override;
    void OnMoveEnd(std::int32_t x, std::int32_t y) override;
    void OnViewDrag(std::int32_t x, std::int32_t y) override;
    [[nodiscard]] KV_ScenePane::AlignmentPicks GetPicks() const override {
        return {KV_ScenePane::AlignmentPhase::ByHand, {}, {}};
    }

    std::int32_t m_nDragState = 0;            ///< 0 none, 1 move drag, 2 rotate drag
    std::int32_t m_nLastX = 0, m_nLastY = 0;  ///< last pixel handled in the drag
    Float3 m_fPivot{};                        ///< centre of rotation: mean of the centres of the variable objects
    CACADQTrafo m_Delta;                      ///< of the current mouse step

protected:
    void OnInitDialog() override;
    void PostNcDestroy() override;

private:
    DimmedColors m_savedColors;  ///< of the fixed objects
};
