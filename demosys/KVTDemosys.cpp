#include "KVTDemosys.h"

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
