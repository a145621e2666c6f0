#include "KVTDemosys.h"

#include <algorithm>

TrackSystem* KVTDemosys::tracks = nullptr;
Timer* KVTDemosys::timer = nullptr;
unsigned int KVTDemosys::frames = 0;
unsigned int KVTDemosys::fpstime = 0;
bool KVTDemosys::quit = false;
bool KVTDemosys::cameraActive = false;
bool KVTDemosys::system_error = false;
std::string KVTDemosys::MusicFile;
KVTTime KVTDemosys::DemoStartTime(0, 0, 0);
KVTTime KVTDemosys::DemoEndTime(99, 0, 0);
std::vector<std::string> KVTDemosys::miscResources;
DataFBOPool* KVTDemosys::fboDataPool = nullptr;
std::string KVTDemosys::message;

float KVTDemosys::getFPS(unsigned int nowTicks) {
    unsigned int wholeSeconds = (nowTicks - fpstime) / 1000;
    return static_cast<float>(frames) / static_cast<float>(wholeSeconds);
}

void KVTDemosys::addMiscResources(std::string name) {
    if (std::find(miscResources.begin(), miscResources.end(), name) == miscResources.end()) {
        miscResources.push_back(std::move(name));
    }
}
