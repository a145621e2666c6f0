#include "Demo.h"

#include "Animation.h"
#include "Authoring.h"
#include "DataFBOPool.h"
#include "FBO.h"
#include "FrameListener.h"
#include "KVTAssert.h"
#include "KVTDemosys.h"
#include "KVTIO.h"
#include "ResourceLoader.h"
#include "ResourcePacker.h"
#include "ScreenMetrics.h"
#include "Timer.h"
#include "TrackSystem.h"

#include <GL/glew.h>
#include <SDL.h>

#include <algorithm>
#include <iostream>

namespace {

// A screen larger than the driver can draw into, or than its framebuffers can be, would only
// fail later, after taking memory for pictures it cannot show.
bool screenFitsDriver(const ScreenMetrics& metrics, std::string& error) {
    GLint viewport[2] = {0, 0};
    glGetIntegerv(GL_MAX_VIEWPORT_DIMS, viewport);
    GLint renderbuffer = 0;
    if (GLEW_EXT_framebuffer_object) {
        glGetIntegerv(GL_MAX_RENDERBUFFER_SIZE_EXT, &renderbuffer);
    }
    const int widest = renderbuffer > 0 ? std::min(viewport[0], renderbuffer) : viewport[0];
    const int tallest = renderbuffer > 0 ? std::min(viewport[1], renderbuffer) : viewport[1];
    if (metrics.getWidth() <= widest && metrics.getHeight() <= tallest) {
        return true;
    }
    error = "The screen size " + std::to_string(metrics.getWidth()) + "x" +
            std::to_string(metrics.getHeight()) + " is larger than this driver allows: at most " +
            std::to_string(widest) + "x" + std::to_string(tallest);
    return false;
}

} // namespace

Demo::Demo(int, char**) {}

Demo::~Demo() {
    delete animation;
    delete loader;
}

bool Demo::fail(std::string text) {
    message = std::move(text);
    error = true;
    return false;
}

bool Demo::load(ScreenMetrics* metrics, int resourceMode) {
    KVT_ASSERT_AT(KVTDemosys::resources != NULL, "demosys/Demo", "load", 37);
    KVTIO::init(resourceMode);
    loader = new ResourceLoader;
    if (!KVTIO::archiveError().empty()) {
        return fail("Cannot open the resource archive: " + KVTIO::archiveError());
    }
    loader->useFrameClock(frameStepMs, decodeMusicOffline);
    loader->createDataPools();
    if (!loader->initScreen(metrics, title)) {
        return fail(loader->getErrorMessage());
    }
    GLenum glew = glewInit();
    // A context made through EGL has every entry point loaded although GLEW, built for GLX,
    // reports that it found no GLX display.
    if (glew != GLEW_OK && !(glew == GLEW_ERROR_NO_GLX_DISPLAY && GLEW_VERSION_2_0)) {
        return fail("Error initializing glew\n");
    }
    if (!GLEW_VERSION_2_0) {
        return fail("No OpenGL 2.0 support found!");
    }
    std::cout << "GLSL version : " << glGetString(GL_SHADING_LANGUAGE_VERSION) << std::endl;
    std::string tooLarge;
    if (!screenFitsDriver(*metrics, tooLarge)) {
        return fail(tooLarge);
    }
    if (!loader->loadDataFiles() || !loader->createEffectObjects()) {
        return fail(loader->getErrorMessage());
    }
    if (!loader->createTrackData()) {
        // Deliberately not an error: the demo still starts, its message is shown at the end.
        message = loader->getErrorMessage();
        error = false;
        return false;
    }
    if (!loader->loadSound()) {
        return fail(loader->getErrorMessage());
    }
    KVTIO::destroy();
    return true;
}

bool Demo::pack() {
    if (error || loader == nullptr) {
        return false;
    }
    std::string reason;
    return packLoadedResources(*loader, reason) || fail(reason);
}

void Demo::init() {
    if (error) {
        return;
    }
    glClearColor(0.0f, 0.0f, 0.0f, 0.0f);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glEnable(GL_DEPTH_TEST);
    KVTDemosys::cameraActive = false;
    animation = new Animation;
}

void Demo::run() {
    if (error) {
        return;
    }
    if (KVTDemosys::timer == nullptr) {
        // The track data failed, so the clock was never made: play on the plain clock.
        KVTDemosys::timer = new Timer(TrackSystem::globalRowRate());
        KVTDemosys::timer->init();
    }
    glEnable(GL_CULL_FACE);
    glCullFace(GL_BACK);
    glEnable(GL_DEPTH_TEST);
    glDisable(GL_LIGHTING);
    loader->initDemo();
    KVTDemosys::fpstime = SDL_GetTicks();
    while (!KVTDemosys::checkQuit()) {
        drawFrame();
    }
    if (frameListener != nullptr) {
        frameListener->afterLastFrame();
    }
    std::cout << "Duration : " << KVTTime(KVTDemosys::timer->getTime()).toString() << std::endl;
    if (frameStepMs > 0.0) {
        // Offline frames follow their own clock, so a rate against the demo's time means
        // nothing: say how much was rendered and how long it took.
        std::cout << "Rendered " << KVTDemosys::frames << " frames in "
                  << (SDL_GetTicks() - KVTDemosys::fpstime) / 1000.0 << " s" << std::endl;
    } else {
        std::cout << "FPS = " << KVTDemosys::getFPS(SDL_GetTicks()) << std::endl;
    }
}

void Demo::drawFrame() {
    Timer* timer = KVTDemosys::timer;
    FBO::bind(nullptr);
    if (frameListener != nullptr) {
        frameListener->beforeFrame();
    }
    if (authoring != nullptr) {
        authoring->beforeFrame();
    }
    timer->updateSystem();
    unsigned int time = timer->getTime();
    unsigned int row = timer->getRow();
    unsigned int frameTime = timer->updateFrameTime(time);
    if (time > KVTDemosys::DemoEndTime.getTicks()) {
        KVTDemosys::setQuit(true);
    }
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    KVTDemosys::screenMetrics->setView();
    glMatrixMode(GL_MODELVIEW);
    glLoadIdentity();
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    keyEvents();
    KVTDemosys::tracks->processSystem(time, row, frameTime);
    KVTDemosys::fboDataPool->clearFlaggedFBOs();
    if (frameListener != nullptr) {
        frameListener->afterFrame(time);
    }
    // After captures have read the frame: the overlay reaches the window only.
    if (authoring != nullptr) {
        authoring->afterFrame();
    }
    SDL_GL_SwapWindow(KVTDemosys::screen);
    ++KVTDemosys::frames;
}

void Demo::keyEvents() {
    SDL_Event event;
    while (SDL_PollEvent(&event)) {
        if (authoring != nullptr && authoring->handleEvent(event)) {
            continue;
        }
        if (event.type == SDL_KEYDOWN && event.key.keysym.sym == SDLK_ESCAPE) {
            KVTDemosys::setQuit(true);
        } else if (event.type == SDL_QUIT) {
            KVTDemosys::setQuit(true);
        } else if (event.type == SDL_WINDOWEVENT &&
                   event.window.event == SDL_WINDOWEVENT_SIZE_CHANGED) {
            int width = event.window.data1;
            int height = event.window.data2;
            std::cout << "Screen resize (" << width << "," << height << ")" << std::endl;
            KVTDemosys::screenMetrics->resize(width, height);
        }
    }
}

bool Demo::dispose() {
    std::cout << "[Shutting Down]" << std::endl;
    if (loader == nullptr || !loader->isValid() || error) {
        std::cout << "Message from demosys :" << std::endl << KVTDemosys::getMessage() << std::endl;
        std::cout << "Message from resourceloader" << std::endl << message << std::endl;
    }
    if (loader != nullptr) {
        loader->dispose();
    }
    std::cout << "KVTDemosys::shutdown()" << std::endl;
    KVTDemosys::shutDown();
    std::cout << "[Application End]" << std::endl;
    return true;
}
