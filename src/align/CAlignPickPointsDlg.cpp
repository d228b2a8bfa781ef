// The two phases of an alignment by picked points, and its end. The motion is computed by RigidMotion.h.
#include "align/CAlignPickPointsDlg.h"

#include <GL/glew.h>

#include <algorithm>
#include <string>

#include "KV_ScenePane/Input.h"
#include "align/RigidMotion.h"
#include "base/ScopeExit.h"
#include "control/ScenePaneCtrl.h"
#include "platform/WaitCursor.h"

namespace {

constexpr std::int32_t kPickMovingPhase = 1, kPickFixedPhase = 2;
constexpr std::int32_t kFlagWord = 0xFFFF, kIgnoredFlags = 0xBFFF;  // all bits but bit 14

constexpr float kPointSize = 5.0f, kLineWidth = 2.0f;  // pixels at scale 1
constexpr float kNeedleLength = 3.0f;                  // scene units
constexpr std::int32_t kNumberFont = 1;                // bold, 24 pixels

Float3 NeedleTip(const Vertex& pick) { return PointOf(pick) + kNeedleLength * Float3{pick.nx, pick.ny, pick.nz}; }

std::vector<KV_ScenePane::AlignmentPoint> ToPublic(const std::vector<Vertex>& picks) {
    std::vector<KV_ScenePane::AlignmentPoint> points;
    points.reserve(picks.size());
    for (const Vertex& pick : picks) points.push_back(AlignmentPointOf(pick));
    return points;
}

/// Counted from 1, so that the operator sees which points of the two sides pair up.
std::u16string NumberText(std::size_t index) {
    const std::string digits = std::to_string(index + 1);
    return {digits.begin(), digits.end()};
}

/// Moves what is drawn next towards the viewer by the size s of a point. Its corners are s / sqrt(2) from its centre,
/// so the surface that it was picked on hides no part of it up to a tilt of 54 degrees, whose tangent is sqrt(2). In
/// the orthographic view its place in the window stays.
void RaiseFromSurfaces(const CKV_ScenePaneCtrl& control) {
    const auto side = static_cast<float>(std::max(std::min(control.m_nWidth, control.m_nHeight), 1));
    const float pixel = control.m_fSceneSize * control.m_fZoom / side;
    const Float3 offset = kPointSize * control.m_fScale * pixel * control.m_fAxisZ;
    glTranslatef(offset[0], offset[1], offset[2]);
}

/// Points, needles along the normals, and a number at the tip of each needle.
void DrawPicks(const std::vector<Vertex>& picks, const Float3& color, const Float3& numberColor,
               const COpenGLTextDraw& text) {
    glColor3fv(color.data());
    glBegin(GL_POINTS);
    for (const Vertex& pick : picks) glVertex3fv(PointOf(pick).data());
    glEnd();
    glBegin(GL_LINES);
    for (const Vertex& pick : picks) {
        glVertex3fv(PointOf(pick).data());
        glVertex3fv(NeedleTip(pick).data());
    }
    glEnd();
    glColor3fv(numberColor.data());
    for (std::size_t i = 0; i < picks.size(); ++i) {
        glRasterPos3fv(NeedleTip(picks[i]).data());
        text.PrintText(NumberText(i), kNumberFont);
    }
}

}  // namespace

void CAlignPickPointsDlg::OnInteractionKey(std::int32_t nChar, std::int32_t /*nRepCnt*/, std::int32_t nFlags) {
    if ((nFlags & kFlagWord) == kIgnoredFlags) return;
    if (nChar == KV_ScenePane::kKeyDelete)
        DropLastPick();
    else
        PreTranslateKey(nChar);
}

bool CAlignPickPointsDlg::PreTranslateKey(std::int32_t nChar) {
    if (nChar == KV_ScenePane::kKeyEscape)
        DestroyWindow();
    else if (nChar == KV_ScenePane::kKeySpace)
        NextPhase();
    else
        return false;
    return true;
}

void CAlignPickPointsDlg::DrawInteraction() {
    if (m_nPhase == 0) return;
    const float scale = m_pControl->m_fScale;
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glEnable(GL_DEPTH_TEST);
    for (const GLenum name : {GL_LIGHTING, GL_TEXTURE_2D, GL_BLEND}) glDisable(name);
    glPointSize(kPointSize * scale);
    glLineWidth(kLineWidth * scale);
    glPushMatrix();
    RaiseFromSurfaces(*m_pControl);
    DrawPicks(m_vSourcePoints, {1, 0, 0}, {0.75f, 0, 0}, m_pControl->m_textDraw);
    DrawPicks(m_vTargetPoints, {0, 0, 1}, {0, 0, 0.75f}, m_pControl->m_textDraw);
    glPopMatrix();
    glPopAttrib();
}

void CAlignPickPointsDlg::OnObjectPicked(const std::shared_ptr<Mesh>& mesh, std::int32_t triangleIndex,
                                         const Float3& hitPoint, std::uint32_t /*flags*/) {
    std::vector<Vertex>* const picks = PicksOfPhase();
    if (triangleIndex < 0 || picks == nullptr) return;
    Vertex pick{hitPoint[0], hitPoint[1], hitPoint[2]};
    mesh->GetTriangleNormal(static_cast<std::size_t>(triangleIndex), &pick.nx, &pick.ny, &pick.nz);
    picks->push_back(pick);
    const std::weak_ptr<const char> life = m_life;
    m_pControl->RefreshControl();  // a sink of the debugger output may end the alignment
    if (life.expired() || m_nPhase != kPickFixedPhase || m_vTargetPoints.size() != m_vSourcePoints.size()) return;
    m_savedColors.Restore();
    ComputeAlignment();
    DestroyWindow();
}

KV_ScenePane::AlignmentPicks CAlignPickPointsDlg::GetPicks() const {
    if (m_nPhase == 0) return {};
    const auto phase = m_nPhase == kPickMovingPhase ? KV_ScenePane::AlignmentPhase::PickMoving
                                                    : KV_ScenePane::AlignmentPhase::PickFixed;
    return {phase, ToPublic(m_vSourcePoints), ToPublic(m_vTargetPoints)};
}

void CAlignPickPointsDlg::OnInitDialog() {
    CKV_ScenePaneCtrl& control = *m_pControl;
    const auto moving = control.MovingObjects();
    MarkObjects(moving);
    m_vpPickableObjects.assign(moving.begin(), moving.end());  // one that is listed twice costs a second look per click
    for (const auto& mesh : control.m_vpMeshes) {
        if (mesh->m_iObjectTag == kVariableTag) continue;
        m_savedColors.Dim(mesh);
        m_vpFixedObjects.push_back(mesh);
    }
    control.m_lastAlignment = {};  // the host sees at the end whether anything was matched
    control.ShowLassoCursor(true);
    m_nPhase = kPickMovingPhase;
    control.RefreshControl();  // last: a sink of the debugger output may end the alignment
}

// The order of the steps is part of the surface. The handler of the host may start the next alignment or close the
// viewer; when it throws, the alignment has ended all the same.
void CAlignPickPointsDlg::PostNcDestroy() {
    CKV_ScenePaneCtrl& control = *m_pControl;
    const ScopeExit close([this] { OnInteractionClosed(); });
    m_savedColors.Restore();
    control.ShowLassoCursor(false);
    m_nPhase = 0;
    AbandonMouseDrag();
    control.Fire(&KV_ScenePane::_DKV_ScenePaneEvents::AlignmentDone);
    control.RefreshControl();
}

std::vector<Vertex>* CAlignPickPointsDlg::PicksOfPhase() {
    if (m_nPhase == kPickMovingPhase) return &m_vSourcePoints;
    return m_nPhase == kPickFixedPhase ? &m_vTargetPoints : nullptr;
}

void CAlignPickPointsDlg::NextPhase() {
    if (m_nPhase != kPickMovingPhase || m_vSourcePoints.empty()) return;
    m_vpPickableObjects = m_vpFixedObjects;
    m_savedColors.Restore();
    for (const auto& mesh : m_pControl->MovingObjects()) m_savedColors.Dim(mesh);
    m_nPhase = kPickFixedPhase;
    m_pControl->RefreshControl();
}

void CAlignPickPointsDlg::DropLastPick() {
    std::vector<Vertex>* const picks = PicksOfPhase();
    if (picks == nullptr || picks->empty()) return;
    picks->pop_back();
    m_pControl->RefreshControl();
}

void CAlignPickPointsDlg::ComputeAlignment() {
    CKV_ScenePaneCtrl& control = *m_pControl;
    const WaitCursor wait(*control.m_pWindow);
    control.MoveByPoints(m_vSourcePoints, m_vTargetPoints);
}
