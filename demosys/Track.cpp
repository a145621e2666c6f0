#include "Track.h"

#include "TrackKeyFrame.h"

#include <iostream>
#include <iterator>

Track::~Track() {
    clear();
}

void Track::clear() {
    for (auto& entry : keyframes) {
        deleteKeyframeAsStored(entry.second);
    }
    keyframes.clear();
    keyframesChanged();
}

void Track::addKeyframe(TrackKeyFrame* keyframe) {
    store(keyframe->row, keyframe);
}

void Track::store(unsigned int row, TrackKeyFrame* keyframe) {
    TrackKeyFrame*& slot = keyframes[row];
    if (slot != keyframe) {
        deleteKeyframeAsStored(slot);
    }
    slot = keyframe;
    keyframesChanged();
}

void Track::erase(KeyframeMap::iterator entry) {
    deleteKeyframeAsStored(entry->second);
    keyframes.erase(entry);
    keyframesChanged();
}

void Track::insertInterval(TrackKeyFrame* start, TrackKeyFrame* stop) {
    addKeyframe(start);
    addKeyframe(stop);
}

TrackKeyFrame* Track::getKeyframe(unsigned int row) const {
    auto found = keyframes.find(row);
    return found == keyframes.end() ? nullptr : found->second;
}

bool Track::rowExists(unsigned int row) const {
    return keyframes.count(row) != 0;
}

bool Track::rowIsStartKeyFrame(unsigned int row) const {
    TrackKeyFrame* keyframe = getKeyframe(row);
    return keyframe != nullptr && keyframe->type == TrackKeyFrame::START;
}

int Track::nextKeyframe(unsigned int row) const {
    auto next = keyframes.upper_bound(row);
    return next == keyframes.end() ? -1 : static_cast<int>(next->first);
}

unsigned int Track::prevKeyframe(unsigned int row) const {
    auto atOrAfter = keyframes.lower_bound(row);
    if (atOrAfter == keyframes.begin()) {
        return 0xFFFFFFFFu;
    }
    return std::prev(atOrAfter)->first;
}

bool Track::insideInterval(unsigned int row) const {
    auto atOrAfter = keyframes.lower_bound(row);
    if (atOrAfter == keyframes.end()) {
        return false;
    }
    if (atOrAfter->first == row) {
        return true;
    }
    return atOrAfter->second->type == TrackKeyFrame::STOP;
}

bool Track::isActive(unsigned int, unsigned int row) const {
    auto atOrAfter = keyframes.lower_bound(row);
    if (atOrAfter == keyframes.end()) {
        return false;
    }
    if (atOrAfter->second->type == TrackKeyFrame::START) {
        return atOrAfter->first == row;
    }
    return true;
}

bool Track::rangeEmpty(unsigned int from, unsigned int to) const {
    auto atOrAfter = keyframes.lower_bound(from);
    return atOrAfter == keyframes.end() || atOrAfter->first > to;
}

void Track::fetchKeyFrameVector(std::vector<TrackKeyFrame*>& out) const {
    for (const auto& entry : keyframes) {
        out.push_back(entry.second);
    }
}

void Track::getKeyFrameRange(unsigned int from, unsigned int to, std::vector<TrackKeyFrame*>& out) {
    auto entry = keyframes.lower_bound(from);
    if (entry == keyframes.end()) {
        return;
    }
    if (entry->second->type == TrackKeyFrame::STOP && entry != keyframes.begin()) {
        --entry;
    }
    for (; entry != keyframes.end() && entry->first <= to; ++entry) {
        out.push_back(entry->second);
    }
    if (entry != keyframes.end() && entry->second->type == TrackKeyFrame::STOP) {
        out.push_back(entry->second);
    }
}

void Track::deleteInterval(unsigned int row) {
    auto first = keyframes.lower_bound(row);
    if (first == keyframes.end()) {
        return;
    }
    auto second = first;
    if (first->second->type == TrackKeyFrame::START) {
        if (first->first != row || std::next(first) == keyframes.end()) {
            return;
        }
        second = std::next(first);
    } else {
        if (first == keyframes.begin()) {
            return;
        }
        first = std::prev(first);
    }
    erase(first);
    erase(second);
}

void Track::moveRow(unsigned int from, unsigned int to) {
    if (from == to) {
        return;
    }
    auto found = keyframes.find(from);
    if (found == keyframes.end()) {
        return;
    }
    TrackKeyFrame* keyframe = found->second;
    keyframes.erase(found);
    keyframe->row = to;
    store(to, keyframe);
    std::cout << "Moved row from " << from << " to " << to << std::endl;
}

bool Track::validateKeyframes() {
    int expected = TrackKeyFrame::START;
    for (const auto& entry : keyframes) {
        if (entry.second->type != expected) {
            std::cout << "--> row = " << entry.first << ", row=" << entry.second->row
                      << ", type = " << entry.second->type << std::endl;
            std::cout << "--> PREVIOUS LINE IS CORRUPT BECAUSE IT'S NOT TAGGED AS A "
                      << (expected == TrackKeyFrame::START ? "START" : "STOP") << " KEYFRAME!"
                      << std::endl;
            return false;
        }
        expected = expected == TrackKeyFrame::START ? TrackKeyFrame::STOP : TrackKeyFrame::START;
    }
    return true;
}
