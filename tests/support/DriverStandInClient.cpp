// A program that is not linked to the driver stand-in, for the tests that preload it: draws two frames and prints what
// it sees of the driver, one fact a line.
#include <dlfcn.h>

#include <chrono>
#include <cstdio>
#include <memory>
#include <string_view>

#include "support/PlainContext.h"

int main(int count, char** arguments) {
    const bool egl = count == 2 && std::string_view(arguments[1]) == "egl";
    std::unique_ptr<PlainContext> context;
    if (egl)
        context = std::make_unique<PlainEglContext>();
    else
        context = std::make_unique<PlainGlxContext>();

    glClearColor(0, 0, 1, 1);
    glClearDepth(0.75);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    const auto start = std::chrono::steady_clock::now();
    context->Swap();
    context->Swap();
    const std::chrono::duration<double, std::milli> elapsed = std::chrono::steady_clock::now() - start;

    float depth = -1;
    GLubyte color[4] = {};
    glReadPixels(5, 5, 1, 1, GL_DEPTH_COMPONENT, GL_FLOAT, &depth);
    glReadPixels(5, 5, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, color);
    std::printf("depth %.2f\ncolor %d %d %d\n", static_cast<double>(depth), color[0], color[1], color[2]);

    GLuint buffer = 0;
    glGenBuffers(1, &buffer);
    glBindBuffer(GL_ARRAY_BUFFER, buffer);
    std::printf("errors");
    for (int i = 0; i < 3; ++i) {
        glBufferData(GL_ARRAY_BUFFER, 16, nullptr, GL_STATIC_DRAW);
        std::printf(" %u", glGetError());
    }
    std::printf("\nwaited %d\n", elapsed.count() >= 100 ? 1 : 0);
    // GLEW has fetched glBufferData by its name; the other ways to find a function must lead to the same.
    const auto* const name = reinterpret_cast<const GLubyte*>("glBufferData");
    std::printf("same %d\n", glXGetProcAddressARB(name) == glXGetProcAddress(name) &&
                                 glXGetProcAddress(name) == eglGetProcAddress("glBufferData") &&
                                 reinterpret_cast<void*>(eglGetProcAddress("eglSwapBuffers")) ==
                                     dlsym(RTLD_DEFAULT, "eglSwapBuffers"));
    return 0;
}
