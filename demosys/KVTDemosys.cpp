#include "KVTDemosys.h"

#include "ScreenMetrics.h"

#include <SDL.h>

#include <GL/glew.h>

#include <GL/glu.h>

#include <algorithm>
#include <iostream>

TrackSystem* KVTDemosys::tracks = nullptr;
Timer* KVTDemosys::timer = nullptr;
ShaderCache* KVTDemosys::shaderCache = nullptr;
ResourceDefinition* KVTDemosys::resources = nullptr;
ProgressBar* KVTDemosys::pBar = nullptr;
unsigned int KVTDemosys::frames = 0;
unsigned int KVTDemosys::fpstime = 0;
SDL_Window* KVTDemosys::screen = nullptr;
void* KVTDemosys::glContext = nullptr;
bool KVTDemosys::quit = false;
bool KVTDemosys::cameraActive = false;
bool KVTDemosys::system_error = false;
ScreenMetrics* KVTDemosys::screenMetrics = nullptr;
std::string KVTDemosys::MusicFile;
KVTTime KVTDemosys::DemoStartTime(0, 0, 0);
KVTTime KVTDemosys::DemoEndTime(99, 0, 0);
std::vector<ResourceInfo::TextureInfo> KVTDemosys::TextureList;
std::vector<ResourceInfo::SceneInfo> KVTDemosys::SceneList;
std::vector<ResourceInfo::AnimationInfo> KVTDemosys::AnimationList;
std::vector<ResourceInfo::BinaryInfo> KVTDemosys::BinaryList;
std::vector<ResourceInfo::ShaderInfo> KVTDemosys::ShaderList;
std::vector<ResourceInfo::VideoInfo> KVTDemosys::VideoList;
std::vector<std::string> KVTDemosys::miscResources;
DataTexturePool* KVTDemosys::textureDataPool = nullptr;
DataShaderPool* KVTDemosys::shaderDataPool = nullptr;
DataAnimationPool* KVTDemosys::animDataPool = nullptr;
DataBinaryPool* KVTDemosys::binaryDataPool = nullptr;
DataObjectPool* KVTDemosys::sceneDataPool = nullptr;
DataFBOPool* KVTDemosys::fboDataPool = nullptr;
DataEffectPool* KVTDemosys::effectDataPool = nullptr;
DataEffectPool* KVTDemosys::effectTemplateDataPool = nullptr;
std::string KVTDemosys::message;
Camera KVTDemosys::syscamera;
Camera KVTDemosys::camera;
GLExtensions* KVTDemosys::glExtensions = nullptr;

float KVTDemosys::getFPS(unsigned int nowTicks) {
    unsigned int wholeSeconds = (nowTicks - fpstime) / 1000;
    return static_cast<float>(frames) / static_cast<float>(wholeSeconds);
}

void KVTDemosys::addMiscResources(std::string name) {
    if (std::find(miscResources.begin(), miscResources.end(), name) == miscResources.end()) {
        miscResources.push_back(std::move(name));
    }
}

bool KVTDemosys::glErrPrint(std::string location) {
    GLenum error = glGetError();
    if (error == GL_NO_ERROR) {
        return true;
    }
    while (error != GL_NO_ERROR) {
        std::cout << "[GL_ERROR LOCATION = '" << location << "']" << std::endl;
        const GLubyte* text = gluErrorString(error);
        if (text != nullptr) {
            std::cout << "[GL_ERROR CODE " << error << "] '" << text << "'" << std::endl;
        } else {
            std::cout << "[GL_ERROR CODE UNKNOWN]" << std::endl;
        }
        system_error = true;
        error = glGetError();
    }
    return false;
}

namespace {

// Video up and double buffering asked for; false with the message set when SDL refuses.
bool startVideo() {
    if (SDL_Init(SDL_INIT_VIDEO) == -1) {
        KVTDemosys::message = std::string("Failed to initialize SDL!\n") + SDL_GetError();
        return false;
    }
    SDL_GL_SetAttribute(SDL_GL_DOUBLEBUFFER, 1);
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_MAJOR_VERSION, 2);
    SDL_GL_SetAttribute(SDL_GL_CONTEXT_MINOR_VERSION, 1);
    return true;
}

void askForMultisampling(int samples) {
    SDL_GL_SetAttribute(SDL_GL_MULTISAMPLEBUFFERS, samples != 0 ? 1 : 0);
    SDL_GL_SetAttribute(SDL_GL_MULTISAMPLESAMPLES, samples);
}

// Creates the window and its context; swap control can only be set once a context exists.
bool createScreen(ScreenMetrics* metrics, const char* title, Uint32 flags) {
    KVTDemosys::screen =
        SDL_CreateWindow(title, SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED, metrics->getWidth(),
                         metrics->getHeight(), SDL_WINDOW_OPENGL | flags);
    if (KVTDemosys::screen != nullptr) {
        KVTDemosys::glContext = SDL_GL_CreateContext(KVTDemosys::screen);
    }
    if (KVTDemosys::screen == nullptr || KVTDemosys::glContext == nullptr) {
        KVTDemosys::message = std::string("Failed to set screenmode!\n") + SDL_GetError();
        std::cout << KVTDemosys::message << std::endl;
        return false;
    }
    SDL_GL_SetSwapInterval(metrics->getVSync() ? 1 : 0);
    SDL_ShowCursor(SDL_DISABLE);
    return true;
}

} // namespace

bool KVTDemosys::windowOpen(ScreenMetrics* metrics, const char* title, char*) {
    screenMetrics = metrics;
    if (!startVideo()) {
        return false;
    }
    askForMultisampling(metrics->getFSAASamples() != 0 ? 4 : 0);
    return createScreen(metrics, title, SDL_WINDOW_RESIZABLE);
}

bool KVTDemosys::screenOpen(ScreenMetrics* metrics) {
    screenMetrics = metrics;
    if (!startVideo()) {
        return false;
    }
    askForMultisampling(metrics->getFSAASamples());
    return createScreen(metrics, "", SDL_WINDOW_FULLSCREEN);
}

void KVTDemosys::shutDown() {
    if (glContext != nullptr) {
        SDL_GL_DeleteContext(glContext);
        glContext = nullptr;
    }
    if (screen != nullptr) {
        SDL_DestroyWindow(screen);
        screen = nullptr;
    }
    SDL_Quit();
}
