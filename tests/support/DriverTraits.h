// What the driver of the current context can do or does wrong, where tests must expect different things of drivers.
#pragma once
#include <GL/glew.h>

#include <array>

/// The samples that a window can have: the wanted number, or 0 where the driver has none (softpipe).
inline int AvailableSamples(int wanted) {
    GLint most = 0;
    glGetIntegerv(GL_MAX_SAMPLES, &most);
    return most >= wanted ? wanted : 0;
}

/// Whether points are front faces for a shader, as OpenGL defines it. On softpipe (Mesa 22.3) gl_FrontFacing is false
/// for points, lines and triangles drawn as lines. Draws one point; the framebuffer loses its content.
inline bool PointsAreFrontFaces() {
    const char* const sources[] = {
        "#version 330 compatibility\nvoid main() { gl_Position = gl_Vertex; }",
        "#version 330 compatibility\nvoid main() { gl_FragColor = gl_FrontFacing ? vec4(1.0) : vec4(0.0); }"};
    const GLuint program = glCreateProgram();
    for (const GLenum type : {GLenum{GL_VERTEX_SHADER}, GLenum{GL_FRAGMENT_SHADER}}) {
        const GLuint shader = glCreateShader(type);
        glShaderSource(shader, 1, type == GL_VERTEX_SHADER ? &sources[0] : &sources[1], nullptr);
        glCompileShader(shader);
        glAttachShader(program, shader);
        glDeleteShader(shader);
    }
    glLinkProgram(program);
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glDisable(GL_DEPTH_TEST);
    glUseProgram(program);
    glViewport(0, 0, 3, 3);
    glPointSize(3);
    glBegin(GL_POINTS);
    glVertex2f(0, 0);
    glEnd();
    glUseProgram(0);
    glPopAttrib();
    glDeleteProgram(program);
    std::array<GLubyte, 4> pixel{};
    glReadPixels(1, 1, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel.data());
    return pixel[0] == 255;
}
