#include "Effect.h"

#include "TrackInterpolate.h"

#include <iostream>

Effect::~Effect() = default;

void Effect::predraw(unsigned int) {}

void Effect::draw(unsigned int, unsigned int, FBO*) {
    std::cout << "Fallback draw method! This should never happen!" << std::endl;
}

void Effect::postdraw(unsigned int) {}

void Effect::init() {}

Effect* Effect::getInstance() {
    return new Effect;
}

void Effect::registerTracks() {}

void Effect::addTrack(std::string name, TrackInterpolate*& slot) {
    slot = new TrackInterpolate(std::move(name));
    tracks.push_back(slot);
}
