#pragma once

#include "CacheLineAllocator.h"
#include "FloatDivisor.h"
#include "Track.h"

#include <cstddef>
#include <vector>

// A flat, contiguous copy of an interpolate track's keys, made for evaluation. The keys' rows
// divide the clock into segments, numbered from 0 (before the first key) to the key count
// (from the last key on); segment s > 0 starts at key s - 1. One array holds everything
// evaluating in each segment needs, worked out once when the index is built, two segments to
// a cache line; a search of an array of every other segment's first row finds the pair that
// holds a row, and the pair's line, which evaluation reads anyway, tells which of the two.
// Evaluation reads these instead of the track's map, whose nodes lie scattered over the heap. The
// track invalidates the copy on every change to its keys and rebuilds it before the next
// evaluation. It keeps the segment of the last look-up, so that playback, where time moves on a
// little each frame, reads nothing else while it stays there, and steps to the next segment without
// searching.
class TrackEvaluationIndex {
public:
    // The keys changed. The arrays grow here, while keys are being added anyway, so that the
    // rebuild never allocates.
    void invalidate(std::size_t keyCount);
    bool isStale() const { return stale; }
    void rebuild(const Track::KeyframeMap& keyframes);

    // What evaluating in a segment needs: where it lies, and the curve from its first value to
    // the next segment's, shaped by its interpolation code (an unknown code reads as the
    // linear one it stands for). Before the first key the value is 0 and from the last key on
    // it is held: both as by a step. A step reads as a linear segment that does not move, so
    // that evaluation tells the two apart by no branch: its fraction is +0 at every row (it
    // starts at row 0 and its divisor is infinite) and its rise (toward) is -0.0, and adding -0.0
    // leaves every value as it is, -0.0 included.
    struct Segment {
        unsigned int firstRow = 0;
        unsigned int lastRowOffset = 0; // last row - first row
        float from = 0.0f;
        // Where the segment goes: a linear one as its rise, the next segment's from - from,
        // which the fraction scales; a curved one as the next segment's from itself, which
        // the curves, working in double, need.
        float toward = 0.0f;
        int interpolation = 0;
        float startRow = 0.0f; // the first row as a float; 0 for a step
        // Divides by the rows to the next segment as floats: its start - startRow; by infinity
        // for a step.
        FloatDivisor length{0.0f};
    };

    static bool holds(const Segment& segment, unsigned int row) {
        return row - segment.firstRow <= segment.lastRowOffset;
    }
    // The segment holding row, which becomes the last look-up's: that one when it holds row,
    // else the one after it when that does, as in playback, else the one a search finds.
    // Not while the index is stale.
    const Segment& segmentOf(unsigned int row) {
        if (holds(current, row)) {
            return current;
        }
        const std::size_t next = currentNumber + 1;
        return enter(holds(segments[next], row) ? next : search(row));
    }

private:
    // Keeps a copy of a segment as the last look-up's, and gives the original, which the
    // caller reads without waiting for the copy.
    const Segment& enter(std::size_t segment) {
        currentNumber = segment;
        current = segments[segment];
        return segments[segment];
    }
    // The number of the segment holding row.
    std::size_t search(unsigned int row) const;
    // The segment from the last key on; the copy after it is not counted.
    std::size_t lastSegment() const { return segments.size() - 2; }

    // A copy of the last look-up's segment, first in the index, so that a frame that
    // evaluates many tracks finds it beside the rest of the track, not in an array elsewhere.
    Segment current;
    std::size_t currentNumber = 0;
    bool stale = true;
    // One a segment, then the last one again, which the step after the last one reads: it
    // holds none of the rows that the last one does not hold. Segments 2p and 2p + 1 share a
    // cache line.
    std::vector<Segment, CacheLineAllocator<Segment>> segments;
    static_assert(2 * sizeof(Segment) == CacheLineAllocator<Segment>::LineSize,
                  "a pair of segments fills a cache line");
    // Segment 2p's first row at p, in order, which a search reads: compact, so that a search
    // of a large track touches few cache lines.
    std::vector<unsigned int> pairRows;
};
