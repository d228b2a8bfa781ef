// Polylines of the host, drawn in black. There is no way to delete one: ClearData() removes them all.
#include <GL/glew.h>

#include <cassert>

#include "base/ScopeExit.h"
#include "control/ScenePaneCtrl.h"

using KV_ScenePane::kVariantFalse;
using KV_ScenePane::kVariantTrue;

namespace {

/// Adds the line and its id, or neither of them when memory is exhausted.
void AddLine(CKV_ScenePaneCtrl& control, Line3D line) {
    const std::int32_t id = line.id;
    bool isAdded = false;
    control.m_setLine3DIds.insert(id);
    const ScopeExit undo([&] {
        if (!isAdded) control.m_setLine3DIds.erase(id);
    });
    control.m_vLines3D.push_back(std::move(line));
    isAdded = true;
}

}  // namespace

void CKV_ScenePaneCtrl::SetLine3DDrawingMode(VARIANT_BOOL enable) { m_bLine3DDrawingMode = enable != 0; }

CKV_ScenePaneCtrl::VARIANT_BOOL CKV_ScenePaneCtrl::GetLine3DDrawingMode() {
    return m_bLine3DDrawingMode != 0 ? kVariantTrue : kVariantFalse;
}

CKV_ScenePaneCtrl::VARIANT_BOOL CKV_ScenePaneCtrl::CreateLine3D(std::int32_t id, std::int32_t numberOfXYZs,
                                                                const float* XYZs) {
    if (m_setLine3DIds.contains(id)) return kVariantFalse;
    assert(numberOfXYZs >= 0 && (numberOfXYZs == 0 || XYZs != nullptr));
    Line3D line{id, std::vector<Float3>(static_cast<std::size_t>(numberOfXYZs))};
    for (std::size_t i = 0; i < line.points.size(); ++i) line.points[i] = ToFloat3(XYZs + 3 * i);
    AddLine(*this, std::move(line));
    RefreshControl();
    return kVariantTrue;
}

void CKV_ScenePaneCtrl::DrawLines3D(float lineWidth) {
    if (m_vLines3D.empty()) return;
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    for (const GLenum name : {GL_DEPTH_TEST, GL_LIGHTING, GL_COLOR_MATERIAL, GL_LIGHT0}) glEnable(name);
    glColor3f(0, 0, 0);
    glNormal3f(0, 0, 0);  // no highlight, whatever was drawn before: only the ambient light is left
    glLineWidth(lineWidth);
    // One pair per segment. A strip would be one primitive for each line, and a line of one point has no pair.
    glBegin(GL_LINES);
    for (const Line3D& line : m_vLines3D) {
        for (std::size_t i = 1; i < line.points.size(); ++i) {
            glVertex3fv(line.points[i - 1].data());
            glVertex3fv(line.points[i].data());
        }
    }
    glEnd();
    glPopAttrib();
}
