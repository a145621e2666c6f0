#pragma once

#include "Effect.h"

#include <string>
#include <vector>

// A stand-in effect that records every call the track system makes, into a shared log.
class RecordingEffect : public Effect {
public:
    RecordingEffect(std::string effectName, std::vector<std::string>* callLog)
        : name(std::move(effectName)), log(callLog) {}

    void predraw(unsigned int) override { log->push_back("pre " + name); }
    void draw(unsigned int, unsigned int frameTime, FBO* target) override {
        lastFrameTime = frameTime;
        lastTarget = target;
        log->push_back("draw " + name);
    }
    void postdraw(unsigned int) override { log->push_back("post " + name); }

    std::string name;
    std::vector<std::string>* log;
    unsigned int lastFrameTime = 0;
    FBO* lastTarget = nullptr;
};
