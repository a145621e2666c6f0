#pragma once

#include "Camera.h"
#include "KVTTime.h"
#include "ResourceInfo.h"

#include <string>
#include <vector>

class DataAnimationPool;
class DataBinaryPool;
class DataEffectPool;
class DataFBOPool;
class DataObjectPool;
class DataShaderPool;
class DataTexturePool;
class GLExtensions;
class ProgressBar;
class ResourceDefinition;
class ScreenMetrics;
class ShaderCache;
class Timer;
class TrackSystem;
struct SDL_Window;

// The engine's registry: static members only, through which every part reaches the shared
// singletons and global state. The registry owns the singletons it points to.
class KVTDemosys {
public:
    KVTDemosys() = delete;

    static TrackSystem* tracks;
    static Timer* timer;
    static ShaderCache* shaderCache;
    static ResourceDefinition* resources;
    static ProgressBar* pBar;
    static unsigned int frames;
    static unsigned int fpstime;
    // The window; its OpenGL context (an SDL_GLContext) is kept beside it.
    static SDL_Window* screen;
    static void* glContext;
    static bool quit;
    static bool cameraActive;
    // Set whenever glErrPrint finds an OpenGL error.
    static bool system_error;
    static ScreenMetrics* screenMetrics;
    static std::string MusicFile;
    static KVTTime DemoStartTime;
    static KVTTime DemoEndTime;
    static std::vector<ResourceInfo::TextureInfo> TextureList;
    static std::vector<ResourceInfo::SceneInfo> SceneList;
    static std::vector<ResourceInfo::AnimationInfo> AnimationList;
    static std::vector<ResourceInfo::BinaryInfo> BinaryList;
    static std::vector<ResourceInfo::ShaderInfo> ShaderList;
    static std::vector<ResourceInfo::VideoInfo> VideoList;
    static std::vector<std::string> miscResources;
    static DataTexturePool* textureDataPool;
    static DataShaderPool* shaderDataPool;
    static DataAnimationPool* animDataPool;
    static DataBinaryPool* binaryDataPool;
    static DataObjectPool* sceneDataPool;
    static DataFBOPool* fboDataPool;
    static DataEffectPool* effectDataPool;
    static DataEffectPool* effectTemplateDataPool;
    static std::string message;
    static Camera syscamera;
    static Camera camera;
    static GLExtensions* glExtensions;

    static void setQuit(bool flag) { quit = flag; }
    static bool checkQuit() { return quit; }
    static std::string getMessage() { return message; }
    // Frames per whole second since the main loop started (infinite within the first second).
    static float getFPS(unsigned int nowTicks);
    // Adds name once; an equal name already listed is not added again.
    static void addMiscResources(std::string name);
    // Drains the OpenGL error queue, printing each error under the location label.
    // True when there was no error.
    static bool glErrPrint(std::string location);
    // Opens a window (or the full screen) of the metrics' size with an OpenGL context and
    // remembers the metrics; false with the message set when SDL refuses.
    static bool windowOpen(ScreenMetrics* metrics, const char* title, char* icon);
    static bool screenOpen(ScreenMetrics* metrics);
    // Closes the window and its context and shuts SDL down.
    static void shutDown();
};
