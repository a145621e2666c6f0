#include "TrackSystem.h"

#include "Effect.h"
#include "KVTDemosys.h"
#include "TrackGroup.h"
#include "TrackStartStop.h"
#include "TrackStartStopKeyFrame.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <utility>

TrackSystem::TrackSystem() = default;

TrackSystem::~TrackSystem() {
    for (TrackGroup* group : ownedGroups) {
        delete group;
    }
}

unsigned int TrackSystem::globalRowRate() {
    return rowRateOf(KVTDemosys::tracks);
}

void TrackSystem::addTrackGroup(TrackGroup* group) {
    trackGroups[group->getName()] = group;
    if (std::find(ownedGroups.begin(), ownedGroups.end(), group) == ownedGroups.end()) {
        ownedGroups.push_back(group);
    }
}

TrackGroup* TrackSystem::getTrackGroupByName(const std::string& name) const {
    auto found = trackGroups.find(name);
    return found == trackGroups.end() ? nullptr : found->second;
}

TrackGroup* TrackSystem::getTrackGroup(int index) const {
    if (index + 1 > size()) {
        return nullptr;
    }
    auto entry = trackGroups.begin();
    std::advance(entry, std::max(index, 0));
    return entry->second;
}

int TrackSystem::countAllTracks() const {
    int count = size();
    for (const auto& entry : trackGroups) {
        count += entry.second->getInterpolateTrackCount();
    }
    return count;
}

void TrackSystem::createPrioritySystem() {
    for (const auto& entry : trackGroups) {
        sortedTrackGroups.push_back(entry.second);
    }
    sortPrioritySystem();
}

// Selection sort, exactly: equal priorities end in a reproducible (not stable) order.
void TrackSystem::sortPrioritySystem() {
    size_t count = sortedTrackGroups.size();
    for (size_t i = 0; i < count; ++i) {
        size_t smallest = i;
        for (size_t j = i + 1; j < count; ++j) {
            if (sortedTrackGroups[j]->getStartStopTrack()->priority <
                sortedTrackGroups[smallest]->getStartStopTrack()->priority) {
                smallest = j;
            }
        }
        std::swap(sortedTrackGroups[i], sortedTrackGroups[smallest]);
    }
}

void TrackSystem::prioritySanityCheck() {
    for (size_t i = 0; i < sortedTrackGroups.size(); ++i) {
        sortedTrackGroups[i]->getStartStopTrack()->priority = static_cast<int>(i);
    }
}

void TrackSystem::swapTracks(int a, int b) {
    std::swap(sortedTrackGroups[a], sortedTrackGroups[b]);
    std::swap(sortedTrackGroups[a]->getStartStopTrack()->priority,
              sortedTrackGroups[b]->getStartStopTrack()->priority);
}

void TrackSystem::printPriority() const {
    for (const TrackGroup* group : sortedTrackGroups) {
        std::cout << "Priority " << group->getStartStopTrack()->priority << " = "
                  << group->getName() << std::endl;
    }
}

void TrackSystem::processSystem(unsigned int time, unsigned int row, unsigned int frameTime) {
    activeTrackGroups.clear();
    activeTrackGroups.reserve(sortedTrackGroups.size());
    for (TrackGroup* group : sortedTrackGroups) {
        if (group->isActive(time, row)) {
            activeTrackGroups.push_back(group);
        }
    }
    for (TrackGroup* group : activeTrackGroups) {
        group->effect->predraw(time);
    }
    for (TrackGroup* group : activeTrackGroups) {
        group->effect->draw(time, frameTime, group->getStartStopTrack()->getRenderTarget(row));
    }
    for (TrackGroup* group : activeTrackGroups) {
        group->effect->postdraw(time);
    }
}

// A scan of the few active groups: keeping a name map of them instead would cost
// allocations every frame.
bool TrackSystem::isEffectActive(const std::string& name) const {
    return std::any_of(activeTrackGroups.begin(), activeTrackGroups.end(),
                       [&name](const TrackGroup* group) { return group->getName() == name; });
}

bool TrackSystem::validateStartStopTracks() const {
    std::cout << "Validating StartStop track data." << std::endl;
    for (TrackGroup* group : sortedTrackGroups) {
        if (!group->getStartStopTrack()->validateKeyframes()) {
            std::cout << "--> StartStop Track : " << group->getName() << " has keyframe mismatch"
                      << std::endl;
            return false;
        }
    }
    return true;
}

void TrackSystem::fillTrack(TrackStartStop* track) {
    unsigned int row = 0;
    for (int i = 0; i < 1000; ++i) {
        row += static_cast<unsigned int>(std::rand() % 10 + 1);
        int type = i % 2 == 0 ? TrackKeyFrame::START : TrackKeyFrame::STOP;
        track->addKeyframe(new TrackStartStopKeyFrame(row, type));
    }
}
