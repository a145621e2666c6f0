#include "TrackEvaluationIndex.h"

#include "TrackInterpolate.h"
#include "TrackKeyFrameInterpolate.h"

#include <algorithm>

void TrackEvaluationIndex::invalidate(std::size_t keyCount) {
    stale = true;
    if (keyCount + 2 > starts.capacity()) {
        // Doubling keeps loading linear; clearing first spares copying what is rebuilt anyway.
        const std::size_t capacity = std::max(keyCount + 2, 2 * starts.capacity());
        starts.clear();
        starts.reserve(capacity);
        shapes.clear();
        shapes.reserve(capacity);
    }
}

// The segment before a first key at row 0 covers no row and is never entered, as no row lies
// before it (its entry would cover every row).
void TrackEvaluationIndex::rebuild(const Track::KeyframeMap& keyframes) {
    starts.assign(1, 0);
    shapes.assign(1, {0.0f, TrackInterpolate::STEP});
    for (const auto& entry : keyframes) {
        const auto& key = *static_cast<const TrackKeyFrameInterpolate*>(entry.second);
        starts.push_back(entry.first);
        shapes.push_back({key.value, key.interpolation});
    }
    shapes.back().interpolation = TrackInterpolate::STEP;
    starts.push_back(0);
    shapes.push_back({0.0f, TrackInterpolate::STEP});
    enter(starts.size() - 2);
    stale = false;
}
