#pragma once

#include "KVTTime.h"

#include <string>
#include <vector>

class DataFBOPool;
class Timer;
class TrackSystem;

// The engine's registry: static members only, through which every part reaches the shared
// singletons and global state. The registry owns the singletons it points to.
class KVTDemosys {
public:
    KVTDemosys() = delete;

    static TrackSystem* tracks;
    static Timer* timer;
    static unsigned int frames;
    static unsigned int fpstime;
    static bool quit;
    static bool cameraActive;
    static bool system_error;
    static std::string MusicFile;
    static KVTTime DemoStartTime;
    static KVTTime DemoEndTime;
    static std::vector<std::string> miscResources;
    static DataFBOPool* fboDataPool;
    static std::string message;

    static void setQuit(bool flag) { quit = flag; }
    static bool checkQuit() { return quit; }
    static std::string getMessage() { return message; }
    // Frames per whole second since the main loop started (infinite within the first second).
    static float getFPS(unsigned int nowTicks);
    // Adds name once; an equal name already listed is not added again.
    static void addMiscResources(std::string name);
};
