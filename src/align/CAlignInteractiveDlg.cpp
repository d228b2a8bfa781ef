#include "align/CAlignInteractiveDlg.h"

#include "control/ScenePaneCtrl.h"

void CAlignInteractiveDlg::OnRotateDrag(std::int32_t /*x*/, std::int32_t /*y*/) {}
void CAlignInteractiveDlg::OnMoveDrag(std::int32_t /*x*/, std::int32_t /*y*/) {}
void CAlignInteractiveDlg::OnRotateEnd(std::int32_t /*x*/, std::int32_t /*y*/) {}
void CAlignInteractiveDlg::OnMoveEnd(std::int32_t /*x*/, std::int32_t /*y*/) {}
void CAlignInteractiveDlg::OnViewDrag(std::int32_t /*x*/, std::int32_t /*y*/) {}
void CAlignInteractiveDlg::OnInitDialog() {}
void CAlignInteractiveDlg::PostNcDestroy() { OnInteractionClosed(); }
