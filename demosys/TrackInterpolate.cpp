#include "TrackInterpolate.h"

#include "TrackKeyFrameInterpolate.h"
#include "TrackSystem.h"

#include <cmath>
#include <iterator>

namespace {

const double Pi = 3.141592653589793;

const TrackKeyFrameInterpolate& asInterpolate(const TrackKeyFrame* keyframe) {
    return *static_cast<const TrackKeyFrameInterpolate*>(keyframe);
}

TrackKeyFrameInterpolate* asInterpolatePointer(TrackKeyFrame* keyframe) {
    return static_cast<TrackKeyFrameInterpolate*>(keyframe);
}

float blend(const TrackKeyFrameInterpolate& a, const TrackKeyFrameInterpolate& b, double w) {
    return static_cast<float>(a.value + (b.value - a.value) * w);
}

} // namespace

float TrackInterpolate::linear(const TrackKeyFrameInterpolate& a, const TrackKeyFrameInterpolate& b,
                               float t) {
    return a.value + (b.value - a.value) * t;
}

float TrackInterpolate::step(const TrackKeyFrameInterpolate& a, const TrackKeyFrameInterpolate&,
                             float) {
    return a.value;
}

float TrackInterpolate::ramp(const TrackKeyFrameInterpolate& a, const TrackKeyFrameInterpolate& b,
                             float t) {
    return a.value + (b.value - a.value) * (t * t);
}

// Leaves a with no slope and arrives at b with none.
float TrackInterpolate::smooth(const TrackKeyFrameInterpolate& a, const TrackKeyFrameInterpolate& b,
                               float t) {
    return a.value + (b.value - a.value) * (t * t * (3.0f - 2.0f * t));
}

float TrackInterpolate::cosine(const TrackKeyFrameInterpolate& a, const TrackKeyFrameInterpolate& b,
                               float t, bool easeOut) {
    double w = easeOut ? std::cos((1.0 - t) * Pi * 0.5) : 1.0 - std::cos(t * Pi * 0.5);
    return blend(a, b, w);
}

float TrackInterpolate::getValue(unsigned int timeMs) const {
    if (keyframes.empty()) {
        return 0.0f;
    }
    unsigned int rowRate = TrackSystem::globalRowRate();
    unsigned int row = rowRate * timeMs / 1000;
    if (keyframes.size() == 1) {
        const auto& only = *keyframes.begin();
        return row >= only.first ? asInterpolate(only.second).value : 0.0f;
    }
    auto after = keyframes.upper_bound(row);
    if (after == keyframes.begin()) {
        return 0.0f;
    }
    if (after == keyframes.end()) {
        return asInterpolate(keyframes.rbegin()->second).value;
    }
    const TrackKeyFrameInterpolate& a = asInterpolate(std::prev(after)->second);
    const TrackKeyFrameInterpolate& b = asInterpolate(after->second);
    float fractionalRow = timeMs / (1000.0f / rowRate);
    float f = (fractionalRow - static_cast<float>(a.row)) /
              (static_cast<float>(b.row) - static_cast<float>(a.row));
    switch (a.interpolation) {
    case EASE_OUT:
        return cosine(a, b, f, true);
    case EASE_IN:
        return cosine(a, b, f, false);
    case STEP:
        return step(a, b, f);
    case RAMP:
        return ramp(a, b, f);
    case SMOOTH:
        return smooth(a, b, f);
    default:
        return linear(a, b, f);
    }
}

TrackKeyFrameInterpolate* TrackInterpolate::getClosestKeyframe(unsigned int row) const {
    if (keyframes.empty()) {
        return nullptr;
    }
    if (keyframes.size() == 1) {
        const auto& only = *keyframes.begin();
        return only.first == row ? asInterpolatePointer(only.second) : nullptr;
    }
    auto after = keyframes.upper_bound(row);
    if (after == keyframes.begin()) {
        return nullptr;
    }
    return asInterpolatePointer(std::prev(after)->second);
}

TrackKeyFrameInterpolate* TrackInterpolate::getClosestKeyframeUpwards(unsigned int row) const {
    if (keyframes.size() >= 2) {
        auto after = keyframes.upper_bound(row);
        if (after == keyframes.end() || after == keyframes.begin()) {
            return nullptr;
        }
    }
    return getClosestKeyframe(row);
}

TrackInterpolate::TrackInterpolate(std::string trackName)
    : Track(&deleteAs<TrackKeyFrameInterpolate>), name(std::move(trackName)) {}

void TrackInterpolate::deleteKeyframe(unsigned int row) {
    auto atOrAfter = keyframes.lower_bound(row);
    if (atOrAfter == keyframes.end()) {
        return;
    }
    auto doomed = atOrAfter;
    if (atOrAfter->first != row) {
        if (atOrAfter == keyframes.begin()) {
            return;
        }
        doomed = std::prev(atOrAfter);
    }
    erase(doomed);
}

void TrackInterpolate::getKeyFrameRange(unsigned int from, unsigned int to,
                                        std::vector<TrackKeyFrame*>& out) {
    auto entry = keyframes.lower_bound(from);
    if (entry == keyframes.end()) {
        return;
    }
    if (entry->first > from && entry != keyframes.begin()) {
        out.push_back(std::prev(entry)->second);
    }
    for (; entry != keyframes.end() && entry->first <= to; ++entry) {
        out.push_back(entry->second);
    }
    if (entry != keyframes.end()) {
        out.push_back(entry->second);
    }
}
