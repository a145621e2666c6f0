#include "TrackEvaluationIndex.h"

#include "TrackInterpolate.h"
#include "TrackKeyFrameInterpolate.h"

#include <algorithm>

namespace {

int knownCode(int interpolation) {
    const bool known =
        interpolation >= TrackInterpolate::LINEAR && interpolation <= TrackInterpolate::SMOOTH;
    return known ? interpolation : TrackInterpolate::LINEAR;
}

// Keeps the half of the rows first..first + count in which the first row greater than row
// lies, or after which it lies; without a branch, which random rows would mispredict half
// the time.
void halve(const unsigned int*& first, std::size_t& count, unsigned int row) {
    const std::size_t half = count / 2;
    first = first[half] <= row ? first + half : first;
    count -= half;
}

} // namespace

void TrackEvaluationIndex::invalidate(std::size_t keyCount) {
    stale = true;
    if (keyCount + 2 > segments.capacity()) {
        // Doubling keeps loading linear; clearing first spares copying what is rebuilt anyway.
        const std::size_t capacity = std::max(keyCount + 2, 2 * segments.capacity());
        segments.clear();
        segments.reserve(capacity);
        keyRows.clear();
        keyRows.reserve(capacity);
    }
}

// A segment runs to the row before the next one starts; the last one to the clock's last row,
// where the row after it wraps around to 0. The segment before a first key at row 0 covers
// no row and is never entered, as no row lies before it (its entry would cover every row).
void TrackEvaluationIndex::rebuild(const Track::KeyframeMap& keyframes) {
    segments.clear();
    keyRows.clear();
    unsigned int firstRow = 0;
    float value = 0.0f;
    int interpolation = TrackInterpolate::STEP;
    auto key = keyframes.begin();
    for (std::size_t s = 0; s <= keyframes.size(); ++s) {
        const unsigned int nextRow = key != keyframes.end() ? key->first : 0;
        Segment segment;
        segment.firstRow = firstRow;
        segment.lastRowOffset = nextRow - 1 - firstRow;
        segment.from = value;
        segment.startRow = static_cast<float>(firstRow);
        segment.length = FloatDivisor(static_cast<float>(nextRow) - segment.startRow);
        segment.interpolation = TrackInterpolate::STEP;
        if (key != keyframes.end()) {
            const auto& next = *static_cast<const TrackKeyFrameInterpolate*>(key->second);
            segment.rise = next.value - value;
            segment.interpolation = interpolation;
            value = next.value;
            interpolation = knownCode(next.interpolation);
            keyRows.push_back(key->first);
            ++key;
        }
        segments.push_back(segment);
        firstRow = nextRow;
    }
    segments.push_back(segments.back());
    enter(segments.size() - 2);
    stale = false;
}

// A binary search: while the rows left span more than a cache line, both halves' middles
// are asked for, so that the next step's row is on its way whichever half it takes.
std::size_t TrackEvaluationIndex::search(unsigned int row) const {
    if (keyRows.empty()) {
        return 0;
    }
    const unsigned int* first = keyRows.data();
    std::size_t count = keyRows.size();
    while (count > RowsInACacheLine) {
        __builtin_prefetch(first + count / 4);
        __builtin_prefetch(first + count / 2 + count / 4);
        halve(first, count, row);
    }
    while (count > 1) {
        halve(first, count, row);
    }
    return static_cast<std::size_t>(first - keyRows.data()) + (*first <= row ? 1 : 0);
}
