// Alignment by hand: drags of the mouse turn and move the variable objects as they would turn and move the view.
#pragma once
#include <optional>

#include "align/CInteractionDlg.h"
#include "geometry/CACADQTrafo.h"

/// Every mouse step is baked into the vertices at once, so that the transforms of the objects are final at each moment.
/// No member is used after a repaint: the sink of the debugger output may end the alignment in it.
class CAlignInteractiveDlg : public CInteractionDlg {
public:
    // The first call of a drag moves nothing, and fixes its kind. The calls of the other kind are steps of the same
    // drag; only the end of its own kind ends it.
    void OnRotateDrag(std::int32_t x, std::int32_t y) override { Drag(kRotateDrag, x, y); }
    void OnMoveDrag(std::int32_t x, std::int32_t y) override { Drag(kMoveDrag, x, y); }
    void OnRotateEnd(std::int32_t x, std::int32_t y) override { EndDrag(kRotateDrag, x, y); }
    void OnMoveEnd(std::int32_t x, std::int32_t y) override { EndDrag(kMoveDrag, x, y); }
    void ForgetDrag() override;
    void OnViewDrag(std::int32_t x, std::int32_t y) override;
    [[nodiscard]] bool AwaitsDrag() const override { return m_bAwaitsDrag; }
    [[nodiscard]] KV_ScenePane::AlignmentPicks GetPicks() const override {
        return {KV_ScenePane::AlignmentPhase::ByHand, {}, {}};
    }

    static constexpr std::int32_t kNoDrag = 0, kMoveDrag = 1, kRotateDrag = 2;
    std::int32_t m_nDragState = kNoDrag;
    std::int32_t m_nLastX = 0, m_nLastY = 0;  ///< last pixel handled in the drag
    Float3 m_fPivot{};    ///< centre of rotation: mean of the centres of the variable objects, NaN without any
    CACADQTrafo m_Delta;  ///< of the last mouse step

protected:
    void OnInitDialog() override;
    void PostNcDestroy() override;

private:
    bool m_bAwaitsDrag = true;  ///< no drag of the objects or the view since the last release

    void Drag(std::int32_t kind, std::int32_t x, std::int32_t y);
    void EndDrag(std::int32_t kind, std::int32_t x, std::int32_t y);
    /// From the last pixel to this one, which becomes the last.
    void Step(std::int32_t kind, std::int32_t x, std::int32_t y);
    // The motion of a step under the present camera; empty when there is none.
    [[nodiscard]] std::optional<CACADQTrafo> RotationTo(std::int32_t x, std::int32_t y) const;
    [[nodiscard]] std::optional<CACADQTrafo> TranslationTo(std::int32_t x, std::int32_t y) const;
};
