// The persisted properties of the control. Their order, their start values and the stores are in io/PropExchange.h.
#include <utility>

#include "base/DebugOutput.h"
#include "control/ScenePaneCtrl.h"
#include "io/PropExchange.h"

namespace {

PersistedProperties PropertiesOf(const CKV_ScenePaneCtrl& control) {
    return {control.m_bDrawMosaic != 0, control.m_nDrawMode, control.m_bMoveReduced != 0};
}

}  // namespace

void CKV_ScenePaneCtrl::DoPropExchange(PropExchange& exchange) {
    PersistedProperties properties = PropertiesOf(*this);
    ExchangeProperties(exchange, properties);
    m_bDrawMosaic = properties.drawMosaic ? 1 : 0;
    m_nDrawMode = properties.drawMode;
    m_bMoveReduced = properties.moveReduced ? 1 : 0;
}

std::string CKV_ScenePaneCtrl::SaveProperties(KV_ScenePane::PropertyFormat format) {
    const std::unique_ptr<PropWriter> store = NewPropertyStore(format);
    DoPropExchange(*store);
    m_bModified = false;
    return store->Store();
}

bool CKV_ScenePaneCtrl::LoadProperties(std::string_view store, std::string* reason) {
    const PersistedProperties former = PropertiesOf(*this);
    std::string refusal;
    try {
        DoPropExchange(*OpenPropertyStore(store));
    } catch (const PropertyStoreError& error) {
        refusal = error.what();
        StartValueExchange startValues;
        DoPropExchange(startValues);
    }
    m_bModified = false;
    if (PropertiesOf(*this) != former) InvalidateControl(true);
    if (refusal.empty()) return true;
    if (reason != nullptr) *reason = refusal;
    DebugOutput(std::string("CKV_ScenePaneCtrl::LoadProperties(): ").append(refusal).append("\n"));
    return false;
}
