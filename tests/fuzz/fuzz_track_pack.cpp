// Loads a track pack from arbitrary bytes: the first two bytes give the length of the index
// part, the rest is the data file. Three effect instances with two tracks each are bound,
// and the loaded system is evaluated and scheduled for a few frames.
#include "Effect.h"
#include "File.h"
#include "TrackGroup.h"
#include "TrackInterpolate.h"
#include "TrackSystem.h"
#include "TrackSystemIO.h"

#include <cstddef>
#include <cstdint>
#include <iostream>
#include <memory>
#include <vector>

namespace {

class SilentEffect : public Effect {
public:
    void registerTracks() override {
        addTrack("alpha", alpha);
        addTrack("beta", beta);
    }
    void draw(unsigned int time, unsigned int, FBO*) override {
        alpha->getValue(time);
        beta->getValue(time);
    }
    TrackInterpolate* alpha = nullptr;
    TrackInterpolate* beta = nullptr;
};

std::unique_ptr<File> memoryFile(const uint8_t* bytes, size_t size) {
    auto file = std::make_unique<File>("memory");
    file->setData(std::vector<unsigned char>(bytes, bytes + size));
    file->exists(true);
    return file;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    if (size < 2) {
        return 0;
    }
    std::cout.setstate(std::ios::failbit);
    size_t indexSize = std::min<size_t>(bytes[0] | bytes[1] << 8, size - 2);
    auto index = memoryFile(bytes + 2, indexSize);
    auto data = memoryFile(bytes + 2 + indexSize, size - 2 - indexSize);

    std::vector<std::unique_ptr<SilentEffect>> owned;
    std::vector<Effect*> effects;
    std::vector<std::string> names{"a", "b", "c"};
    for (size_t i = 0; i < names.size(); ++i) {
        owned.push_back(std::make_unique<SilentEffect>());
        owned.back()->registerTracks();
        effects.push_back(owned.back().get());
    }
    TrackSystemIO io("memory/");
    std::unique_ptr<TrackSystem> system(io.loadPack(index.get(), data.get(), names, effects));
    system->validateStartStopTracks();
    for (unsigned int row : {0u, 1u, 100u, 65535u, 0xFFFFFFFFu}) {
        system->processSystem(row * 50, row, 16);
        system->getTrackGroup(0)->getLocalTime(row, row * 50);
    }
    return 0;
}
