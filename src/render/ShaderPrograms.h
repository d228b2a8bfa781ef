// Building GLSL programs in the current context. There is no drawing without them: a program that cannot be built ends
// the process, after the log says why.
#pragma once
#include <cstdint>
#include <string>

/// Compiles and links; logs each step. Ends the process with exit code 1 when either fails.
/// @param name  what the log calls the program
[[nodiscard]] std::uint32_t BuildProgram(const std::string& name, const std::string& vertexSource,
                                         const std::string& fragmentSource);

/// @param type  GL_VERTEX_SHADER or GL_FRAGMENT_SHADER
/// @return 0 when it does not compile; the log then holds the compiler's words
[[nodiscard]] std::uint32_t CompileShader(const std::string& source, std::uint32_t type);

/// Both shaders stay attached to the program. @return 0 when they do not link
[[nodiscard]] std::uint32_t LinkProgram(std::uint32_t vertexShader, std::uint32_t fragmentShader);
