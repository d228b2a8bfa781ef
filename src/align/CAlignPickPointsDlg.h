// Alignment by picked points: first on the variable objects, then as many on the other ones.
#pragma once
#include <memory>
#include <vector>

#include "align/CInteractionDlg.h"
#include "geometry/Vertex.h"

class CAlignPickPointsDlg : public CInteractionDlg {
public:
    void OnInteractionKey(std::int32_t nChar, std::int32_t nRepCnt, std::int32_t nFlags) override;
    bool PreTranslateKey(std::int32_t nChar) override;
    void DrawInteraction() override;
    void OnObjectPicked(const std::shared_ptr<Mesh>& mesh, std::int32_t triangleIndex, const Float3& hitPoint,
                        std::uint32_t flags) override;
    [[nodiscard]] KV_ScenePane::AlignmentPicks GetPicks() const override;

    std::int32_t m_nPhase = 0;  ///< 0 inactive, 1 on the variable objects, 2 on the fixed ones
    std::vector<Vertex> m_vSourcePoints, m_vTargetPoints;  ///< picks of phase 1 and of phase 2, with unit normals

protected:
    void OnInitDialog() override;
    void PostNcDestroy() override;

private:
    /// The list that the present phase fills; null outside both.
    [[nodiscard]] std::vector<Vertex>* PicksOfPhase();
    /// From the variable objects to the fixed ones, once there is a point to find a partner for.
    void NextPhase();
    void DropLastPick();
    /// Moves the variable objects and stores the result.
    void ComputeAlignment();

    std::vector<std::weak_ptr<Mesh>> m_vpFixedObjects;                    ///< in list order
    std::shared_ptr<const char> m_life = std::make_shared<const char>();  ///< expires with the object
};
