// Entry of gl_tests: one hidden SDL2 window with an OpenGL 2.x compatibility context serves
// every test of the binary. Listing the tests (CTest's discovery) needs no context.
#include "KVTDemosys.h"
#include "ScreenMetrics.h"

#include <GL/glew.h>

#include <SDL.h>
#include <gtest/gtest.h>

#include <iostream>

namespace {

const int WINDOW_SIZE = 64;

bool openTestContext() {
    if (SDL_Init(SDL_INIT_VIDEO) != 0) {
        std::cerr << "gl_tests: SDL_Init failed: " << SDL_GetError() << std::endl;
        return false;
    }
    SDL_GL_SetAttribute(SDL_GL_DOUBLEBUFFER, 1);
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_MAJOR_VERSION, 2);
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_MINOR_VERSION, 1);
    SDL_Window* window =
        SDL_CreateWindow("gl_tests", SDL_WINDOWPOS_UNDEFINED, SDL_WINDOWPOS_UNDEFINED, WINDOW_SIZE,
                         WINDOW_SIZE, SDL_WINDOW_OPENGL | SDL_WINDOW_HIDDEN);
    if (window == nullptr) {
        std::cerr << "gl_tests: no window: " << SDL_GetError() << std::endl;
        return false;
    }
    SDL_GLContext context = SDL_GL_CreateContext(window);
    if (context == nullptr) {
        std::cerr << "gl_tests: no OpenGL context: " << SDL_GetError() << std::endl;
        return false;
    }
    KVTDemosys::screen = window;
    KVTDemosys::glContext = context;
    return true;
}

// GLEW built for GLX reports GLEW_ERROR_NO_GLX_DISPLAY on an EGL context although it has
// loaded every entry point; that result is fine as long as OpenGL 2.0 is really there.
bool initGlew() {
    const GLenum result = glewInit();
    const bool hasGL20 = glCreateProgram != nullptr && glUseProgram != nullptr;
    if (result == GLEW_OK || (result == GLEW_ERROR_NO_GLX_DISPLAY && hasGL20)) {
        return true;
    }
    std::cerr << "gl_tests: glewInit failed: " << glewGetErrorString(result) << std::endl;
    return false;
}

void closeTestContext() {
    SDL_GL_DeleteContext(KVTDemosys::glContext);
    SDL_DestroyWindow(KVTDemosys::screen);
    KVTDemosys::glContext = nullptr;
    KVTDemosys::screen = nullptr;
    SDL_Quit();
}

} // namespace

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    if (GTEST_FLAG_GET(list_tests)) {
        return RUN_ALL_TESTS();
    }
    if (!openTestContext() || !initGlew()) {
        return 1;
    }
    ScreenMetrics metrics;
    metrics.setResolution(WINDOW_SIZE, WINDOW_SIZE);
    metrics.initView();
    KVTDemosys::screenMetrics = &metrics;
    const int result = RUN_ALL_TESTS();
    KVTDemosys::screenMetrics = nullptr;
    closeTestContext();
    return result;
}
