#include "TrackGroup.h"

#include "TrackInterpolate.h"
#include "TrackStartStop.h"
#include "TrackSystem.h"

TrackGroup::~TrackGroup() {
    delete startStop;
    for (TrackInterpolate* track : tracks) {
        delete track;
    }
}

void TrackGroup::addInterpolateTrack(TrackInterpolate* track) {
    tracksByName[track->getName()] = track;
    tracks.push_back(track);
}

TrackInterpolate* TrackGroup::getInterpolateTrackByName(const std::string& trackName) const {
    auto found = tracksByName.find(trackName);
    return found == tracksByName.end() ? nullptr : found->second;
}

bool TrackGroup::isActive(unsigned int time, unsigned int row) const {
    return startStop != nullptr && startStop->isActive(time, row);
}

unsigned int TrackGroup::getLocalTime(unsigned int row, unsigned int timeMs) const {
    unsigned int rowRate = TrackSystem::globalRowRate();
    unsigned int startRow = startStop != nullptr ? startStop->getStartRow(row) : 0;
    unsigned int start = startRow * (1000 / rowRate);
    return start < timeMs ? timeMs - start : 0;
}
