// The user's changes are found by comparison: drags, keys, menus and panels all change the same ten numbers.
#include "ArrivalFit.h"

#include "FileImport.h"

ArrivalFit::View ArrivalFit::ViewOf(KV_ScenePane::_DKV_ScenePane& methods) {
    View v{};
    methods.GetViewParams(&v[0], &v[1], &v[2], &v[3], &v[4], &v[5], &v[6], &v[7], &v[8], &v[9]);
    return v;
}

void ArrivalFit::Fit(KV_ScenePane::_DKV_ScenePane& methods) {
    m_bLeftToUser = m_bLeftToUser || (m_fitted && *m_fitted != ViewOf(methods));
    if (m_bLeftToUser) return;
    FitView(methods, m_fZoom);
    m_fitted = ViewOf(methods);
}

void ArrivalFit::Remember(KV_ScenePane::_DKV_ScenePane& methods) {
    if (m_fitted && !m_bLeftToUser) m_fitted = ViewOf(methods);
}
