#include "TrackEvaluationIndex.h"

#include "TrackInterpolate.h"
#include "TrackKeyFrameInterpolate.h"

#include <algorithm>
#include <limits>

namespace {

constexpr std::size_t RowsInACacheLine = 64 / sizeof(unsigned int);

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

// The number of rows not greater than row in rows, which are in order. A binary search: while the
// rows left span more than a cache line, both halves' middles are asked for, so that the next
// step's row is on its way whichever half it takes.
std::size_t rowsAtOrBefore(const std::vector<unsigned int>& rows, unsigned int row) {
    const unsigned int* first = rows.data();
    std::size_t count = rows.size();
    while (count > RowsInACacheLine) {
        __builtin_prefetch(first + count / 4);
        __builtin_prefetch(first + count / 2 + count / 4);
        halve(first, count, row);
    }
    while (count > 1) {
        halve(first, count, row);
    }
    return static_cast<std::size_t>(first - rows.data()) + (*first <= row ? 1 : 0);
}

// Makes a step segment a linear one that holds its first value (see Segment).
void holdFirstValue(TrackEvaluationIndex::Segment& segment) {
    segment.interpolation = TrackInterpolate::LINEAR;
    segment.startRow = 0.0f;
    segment.length = FloatDivisor(std::numeric_limits<float>::infinity());
    segment.toward = -0.0f;
}

} // namespace

void TrackEvaluationIndex::invalidate(std::size_t keyCount) {
    stale = true;
    if (keyCount + 2 > segments.capacity()) {
        // Doubling keeps loading linear; clearing first spares copying what is rebuilt anyway.
        const std::size_t capacity = std::max(keyCount + 2, 2 * segments.capacity());
        segments.clear();
        segments.reserve(capacity);
        pairRows.clear();
        pairRows.reserve(capacity / 2 + 1);
    }
}

// A segment runs to the row before the next one starts; the last one to the clock's last row,
// where the row after it wraps around to 0. The segment before a first key at row 0 covers
// no row and is never entered, as no row lies before it (its entry would cover every row).
void TrackEvaluationIndex::rebuild(const Track::KeyframeMap& keyframes) {
    segments.clear();
    pairRows.clear();
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
        if (s % 2 == 0) {
            pairRows.push_back(firstRow);
        }
        if (key != keyframes.end()) {
            const auto& next = *static_cast<const TrackKeyFrameInterpolate*>(key->second);
            segment.toward =
                interpolation == TrackInterpolate::LINEAR ? next.value - value : next.value;
            segment.interpolation = interpolation;
            value = next.value;
            interpolation = knownCode(next.interpolation);
            ++key;
        }
        if (segment.interpolation == TrackInterpolate::STEP) {
            holdFirstValue(segment);
        }
        segments.push_back(segment);
        firstRow = nextRow;
    }
    segments.push_back(segments.back());
    enter(lastSegment());
    stale = false;
}

// pairRows[0] is 0, so at least one pair starts by row. The pair holding row holds it in its
// second segment when that one starts by row. The last pair's second may be the copy after the
// last segment, which stands for the last segment.
std::size_t TrackEvaluationIndex::search(unsigned int row) const {
    const std::size_t second = 2 * rowsAtOrBefore(pairRows, row) - 1;
    // Arithmetic, not a branch, which random rows would mispredict half the time.
    const std::size_t segment = second - (row < segments[second].firstRow ? 1 : 0);
    return std::min(segment, lastSegment());
}
