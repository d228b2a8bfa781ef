// Draws a mesh in the plain way, with all OpenGL state set and restored around it: the reference for meshes that share
// their state. The buffers must be built.
#pragma once
#include <GL/glew.h>

#include "KV_ScenePane/Modes.h"
#include "geometry/Mesh.h"

namespace plain_draw {

inline const void* Offset(std::size_t bytes) { return reinterpret_cast<const void*>(bytes); }

inline void Box(const Mesh& mesh) {
    GLfloat color[4];
    glGetFloatv(GL_CURRENT_COLOR, color);
    glColor3f(0.0f, 0.4f, 0.9f);
    const auto& [minX, maxX, minY, maxY, minZ, maxZ] = mesh.m_fBoundingBox;
    const float corners[4][2] = {{minX, minY}, {maxX, minY}, {maxX, maxY}, {minX, maxY}};
    for (const float z : {minZ, maxZ}) {
        glBegin(GL_LINE_LOOP);
        for (const auto& corner : corners) glVertex3f(corner[0], corner[1], z);
        glEnd();
    }
    glBegin(GL_LINES);
    for (const auto& corner : corners) {
        glVertex3f(corner[0], corner[1], minZ);
        glVertex3f(corner[0], corner[1], maxZ);
    }
    glEnd();
    glColor3fv(color);
}

inline void Arrays(const Mesh& mesh, GLuint indexBuffer, GLenum primitive, GLsizei count) {
    const bool textured = mesh.m_pTexture != nullptr, colored = mesh.m_bHasVertexColors && !textured;
    const auto setClientState = [](GLenum array, bool on) {
        on ? glEnableClientState(array) : glDisableClientState(array);
    };
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_NORMAL_ARRAY);
    setClientState(GL_COLOR_ARRAY, colored);
    setClientState(GL_TEXTURE_COORD_ARRAY, textured);
    if (mesh.m_uVertexBuffer != 0 && textured) {
        const GLboolean wasEnabled = glIsEnabled(GL_TEXTURE_2D);
        glEnable(GL_TEXTURE_2D);
        glActiveTexture(GL_TEXTURE0);
        glBindTexture(GL_TEXTURE_2D, mesh.m_pTexture->m_uName);
        glBindBuffer(GL_ARRAY_BUFFER, mesh.m_uVertexBuffer);
        glVertexPointer(3, GL_FLOAT, 32, Offset(0));
        glNormalPointer(GL_FLOAT, 32, Offset(12));
        glTexCoordPointer(2, GL_FLOAT, 32, Offset(24));
        glDrawArrays(primitive, 0, count);
        glBindBuffer(GL_ARRAY_BUFFER, 0);
        if (wasEnabled == GL_FALSE) glDisable(GL_TEXTURE_2D);
        glBindTexture(GL_TEXTURE_2D, 0);
    } else if (mesh.m_uVertexBuffer != 0 && indexBuffer != 0) {
        const GLsizei stride = colored ? 28 : 24;
        glBindBuffer(GL_ARRAY_BUFFER, mesh.m_uVertexBuffer);
        glVertexPointer(3, GL_FLOAT, stride, Offset(0));
        glNormalPointer(GL_FLOAT, stride, Offset(12));
        if (colored) glColorPointer(4, GL_UNSIGNED_BYTE, stride, Offset(24));
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, indexBuffer);
        glDrawElements(primitive, count, GL_UNSIGNED_INT, nullptr);
        glBindBuffer(GL_ARRAY_BUFFER, 0);
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    }
    glDisableClientState(GL_VERTEX_ARRAY);
    glDisableClientState(GL_NORMAL_ARRAY);
    if (colored) glDisableClientState(GL_COLOR_ARRAY);
    if (textured) glDisableClientState(GL_TEXTURE_COORD_ARRAY);
}

inline void Lit(const Mesh& mesh, GLuint indexBuffer, GLenum primitive, GLsizei count) {
    const GLfloat objectColor[4] = {mesh.m_fColor[0], mesh.m_fColor[1], mesh.m_fColor[2], 1.0f};
    const GLfloat white[4] = {1.0f, 1.0f, 1.0f, 1.0f};
    const bool grayUnblended = mesh.m_bGrayColors && !mesh.m_bBlendObjectColor;
    const bool tinted = !mesh.m_pTexture && (!mesh.m_bHasVertexColors || grayUnblended);
    glPushAttrib(GL_LIGHTING_BIT | GL_DEPTH_BUFFER_BIT);
    glEnable(GL_LIGHT0);
    glEnable(GL_LIGHTING);
    glLightfv(GL_LIGHT0, GL_DIFFUSE, tinted ? objectColor : white);
    glColor4fv(white);
    glEnable(GL_DEPTH_TEST);
    Arrays(mesh, indexBuffer, primitive, count);
    glPopAttrib();
}

}  // namespace plain_draw

/// What Mesh::Draw() shows, without shared state.
inline void DrawPlainly(const Mesh& mesh, int mode, bool reduced) {
    if (mesh.m_vTriangles.empty()) return;
    const auto count = static_cast<GLsizei>(mesh.m_vTriangles.size());
    const auto draw = [&](GLuint buffer, GLenum primitive, GLsizei number) {
        if (reduced)
            plain_draw::Lit(mesh, mesh.m_uReducedBuffer, GL_POINTS, count / mesh.m_iReducedStep);
        else
            plain_draw::Lit(mesh, buffer, primitive, number);
    };
    glPushAttrib(0xFFFFF);
    glColor4f(mesh.m_fColor[0], mesh.m_fColor[1], mesh.m_fColor[2], 0.5f);
    if (mesh.m_fPointSize > 0.0f) glPointSize(mesh.m_fPointSize);
    if (mode == KV_ScenePane::DrawModeWireframe) glPolygonMode(GL_FRONT_AND_BACK, GL_LINE);
    if (mode == KV_ScenePane::DrawModeWireframe || mode == KV_ScenePane::DrawModeFlat) glShadeModel(GL_FLAT);
    if (mode == KV_ScenePane::DrawModeGouraud) glShadeModel(GL_SMOOTH);
    if (mode == KV_ScenePane::DrawModePoints)
        draw(mesh.m_uPointBuffer, GL_POINTS, mesh.m_pTexture ? 3 * count : count);
    else if (mode >= KV_ScenePane::DrawModeWireframe && mode <= KV_ScenePane::DrawModeGouraud)
        draw(mesh.m_uTriangleBuffer, GL_TRIANGLES, 3 * count);
    else if (mode == KV_ScenePane::DrawModeBoundingBoxes)
        plain_draw::Box(mesh);
    glPopAttrib();
}
