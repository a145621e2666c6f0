#include "TrackStartStop.h"

#include "TrackStartStopKeyFrame.h"

#include <iterator>

namespace {
FBO* targetOf(const TrackKeyFrame* keyframe) {
    return static_cast<const TrackStartStopKeyFrame*>(keyframe)->fbo;
}
} // namespace

TrackStartStop::TrackStartStop(int drawPriority)
    : Track(&deleteAs<TrackStartStopKeyFrame>), priority(drawPriority) {}

FBO* TrackStartStop::getRenderTarget(unsigned int row) const {
    auto atOrAfter = keyframes.lower_bound(row);
    if (atOrAfter == keyframes.end()) {
        return nullptr;
    }
    if (atOrAfter->second->type == TrackKeyFrame::START) {
        return atOrAfter->first == row ? targetOf(atOrAfter->second) : nullptr;
    }
    if (atOrAfter == keyframes.begin()) {
        return nullptr;
    }
    return targetOf(std::prev(atOrAfter)->second);
}

unsigned int TrackStartStop::getStartRow(unsigned int row) const {
    auto after = keyframes.upper_bound(row);
    if (after == keyframes.end() || after->second->type == TrackKeyFrame::START ||
        after == keyframes.begin()) {
        return 0;
    }
    return std::prev(after)->first;
}
