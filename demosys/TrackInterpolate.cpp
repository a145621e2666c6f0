#include "TrackInterpolate.h"

#include "TrackKeyFrameInterpolate.h"

#include <cmath>
#include <iterator>

namespace {

const double Pi = 3.141592653589793;

TrackKeyFrameInterpolate* asInterpolatePointer(TrackKeyFrame* keyframe) {
    return static_cast<TrackKeyFrameInterpolate*>(keyframe);
}

float linearBetween(float a, float b, float t) {
    return a + (b - a) * t;
}

float rampBetween(float a, float b, float t) {
    return a + (b - a) * (t * t);
}

// Leaves a with no slope and arrives at b with none.
float smoothBetween(float a, float b, float t) {
    return a + (b - a) * (t * t * (3.0f - 2.0f * t));
}

// Out of line, so that the curves without a cosine need no stack frame.
[[gnu::noinline]] float cosineBetween(float a, float b, float t, bool easeOut) {
    double w = easeOut ? std::cos((1.0 - t) * Pi * 0.5) : 1.0 - std::cos(t * Pi * 0.5);
    return static_cast<float>(a + (b - a) * w);
}

// The value between a and b at fraction t, shaped by a curved interpolation code of a (the
// index gives the others as linear segments, which getValue() evaluates itself).
float curve(int interpolation, float a, float b, float t) {
    switch (interpolation) {
    case TrackInterpolate::EASE_OUT:
        return cosineBetween(a, b, t, true);
    case TrackInterpolate::EASE_IN:
        return cosineBetween(a, b, t, false);
    case TrackInterpolate::RAMP:
        return rampBetween(a, b, t);
    default:
        return smoothBetween(a, b, t);
    }
}

} // namespace

TrackInterpolate::TrackInterpolate(std::string trackName)
    : Track(&deleteAs<TrackKeyFrameInterpolate>), name(std::move(trackName)) {}

float TrackInterpolate::linear(const TrackKeyFrameInterpolate& a, const TrackKeyFrameInterpolate& b,
                               float t) {
    return linearBetween(a.value, b.value, t);
}

float TrackInterpolate::step(const TrackKeyFrameInterpolate& a, const TrackKeyFrameInterpolate&,
                             float) {
    return a.value;
}

float TrackInterpolate::ramp(const TrackKeyFrameInterpolate& a, const TrackKeyFrameInterpolate& b,
                             float t) {
    return rampBetween(a.value, b.value, t);
}

float TrackInterpolate::smooth(const TrackKeyFrameInterpolate& a, const TrackKeyFrameInterpolate& b,
                               float t) {
    return smoothBetween(a.value, b.value, t);
}

float TrackInterpolate::cosine(const TrackKeyFrameInterpolate& a, const TrackKeyFrameInterpolate& b,
                               float t, bool easeOut) {
    return cosineBetween(a.value, b.value, t, easeOut);
}

float TrackInterpolate::valueAfterChange(unsigned int timeMs, unsigned int rowRate) const {
    if (index.isStale()) {
        index.rebuild(keyframes);
    }
    preparedRowRate = rowRate;
    millisecondsPerRow = FloatDivisor(1000.0f / rowRate);
    return getValue(timeMs);
}

float TrackInterpolate::curvedValue(const TrackEvaluationIndex::Segment& segment,
                                    unsigned int timeMs) const {
    return curve(segment.interpolation, segment.from, segment.toward, fractionIn(segment, timeMs));
}

void TrackInterpolate::keyframesChanged() {
    index.invalidate(keyframes.size());
    preparedRowRate = Unprepared;
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
