// Building GLSL programs in the current context. The control cannot draw without them: a program that fails to build
// ends the process, after the reason was logged.
#pragma once
#include <cstdint>
#include <string>

/// Compiles both shaders and links them; logs each step. Ends the process with exit code 1 when a step fails.
/// @param name  of the program in the log
/// @return name of the OpenGL program
[[nodiscard]] std::uint32_t BuildProgram(const std::string& name, const std::string& vertexSource,
                                         const std::string& fragmentSource);

/// @param type  GL_VERTEX_SHADER or GL_FRAGMENT_SHADER
/// @return name of the shader; 0 when it does not compile: the log then holds the message of the compiler
[[nodiscard]] std::uint32_t CompileShader(const std::string& source, std::uint32_t type);

/// Both shaders stay attached to the program.
/// @return name of the program; 0 when the shaders do not link
[[nodiscard]] std::uint32_t LinkProgram(std::uint32_t vertexShader, std::uint32_t fragmentShader);
