// The cuts of objects written into their pcm files.
#include "cut/SaveCut.h"

KV_ScenePane::CutSaveEntry PlanMeshCutting(const Mesh& /*mesh*/, const std::optional<CutPlane>& /*plane*/) {
    return {};
}

bool SaveMeshCutting(Mesh& /*mesh*/, float /*confidenceLimit*/, const std::optional<CutPlane>& /*plane*/,
                     KV_ScenePane::CutSaveEntry& /*entry*/) {
    return false;
}
