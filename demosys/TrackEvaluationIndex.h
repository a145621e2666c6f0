#pragma once

#include "Track.h"

#include <cstddef>
#include <vector>

// A flat, contiguous copy of an interpolate track's keys, made for evaluation. The keys' rows
// divide the clock into segments, numbered from 0 (before the first key) to the key count
// (from the last key on); segment s > 0 starts at key s - 1. One array holds the first row of
// each segment, sorted, which a search reads; another the value and interpolation code that
// the segment starts with. Evaluation searches them instead of the track's map, whose nodes
// lie scattered over the heap. The track invalidates the copy on every change to its keys and
// rebuilds it before the next evaluation.
// It keeps what evaluating in the segment of the last look-up needs, so that playback, where
// time moves on a little each frame, reads nothing else while it stays there, and steps to the
// next segment without searching.
class TrackEvaluationIndex {
public:
    TrackEvaluationIndex() { invalidate(0); }

    // The keys changed. The arrays grow here, while keys are being added anyway, so that the
    // rebuild never allocates.
    void invalidate(std::size_t keyCount);
    bool isStale() const { return stale; }
    void rebuild(const Track::KeyframeMap& keyframes);

    // What evaluating in a segment needs: where it lies, and the curve from its first value to
    // the next segment's, shaped by its interpolation code. Before the first key the value is
    // 0 and from the last key on it is held: both as by a step.
    struct Segment {
        unsigned int firstRow = 0;
        unsigned int lastRowOffset = 0; // last row - first row
        float from = 0.0f;
        float to = 0.0f;
        int interpolation = 0;
        float startRow = 0.0f; // the first row as a float
        float length = 0.0f;   // rows to the next segment as floats: its start - startRow
    };

    // The segment of the last look-up.
    const Segment& lastSegment() const { return current; }
    static bool holds(const Segment& segment, unsigned int row) {
        return row - segment.firstRow <= segment.lastRowOffset;
    }
    // The segment holding row, which the last look-up's does not hold (so the track has a
    // key): the next one when it does, as in playback, else the one a search finds. Among the
    // rows of one cache line a search costs no more than trying the next segment.
    const Segment& locate(unsigned int row) {
        const std::size_t keys = starts.size() - 2;
        const std::size_t next = currentNumber + 1;
        const bool stepped = keys > RowsInACacheLine && next <= keys && segmentHolds(next, row);
        enter(stepped ? next : search(row));
        return current;
    }

private:
    struct Shape {
        float value;
        int interpolation;
    };

    static constexpr std::size_t RowsInACacheLine = 64 / sizeof(unsigned int);

    // A segment runs to the row before the next one starts (the last one to the clock's last
    // row, as the entry after it starts at row 0).
    unsigned int lastRowOffset(std::size_t segment) const {
        return starts[segment + 1] - 1 - starts[segment];
    }
    bool segmentHolds(std::size_t segment, unsigned int row) const {
        return row - starts[segment] <= lastRowOffset(segment);
    }

    void enter(std::size_t segment) {
        currentNumber = segment;
        current.firstRow = starts[segment];
        current.lastRowOffset = lastRowOffset(segment);
        current.from = shapes[segment].value;
        current.to = shapes[segment + 1].value;
        current.interpolation = shapes[segment].interpolation;
        current.startRow = static_cast<float>(starts[segment]);
        current.length = static_cast<float>(starts[segment + 1]) - current.startRow;
    }

    // The number of keys whose row is not greater than row, which is the segment holding row,
    // by a binary search without branches on the comparisons (random queries would mispredict
    // half of them).
    std::size_t search(unsigned int row) const {
        const unsigned int* keyRows = starts.data() + 1;
        const unsigned int* first = keyRows;
        std::size_t count = starts.size() - 2;
        if (count > RowsInACacheLine) {
            while (count > RowsInACacheLine) {
                // Both halves' middles, so that the next step's row is on its way either way.
                __builtin_prefetch(first + count / 4);
                __builtin_prefetch(first + count / 2 + count / 4);
                halve(first, count, row);
            }
            prefetchShapes(static_cast<std::size_t>(first - keyRows), count);
        }
        while (count > 1) {
            halve(first, count, row);
        }
        return static_cast<std::size_t>(first - keyRows) + (*first <= row ? 1 : 0);
    }

    // Keeps the half of the rows first..first + count in which the first row greater than row
    // lies, or after which it lies.
    static void halve(const unsigned int*& first, std::size_t& count, unsigned int row) {
        const std::size_t half = count / 2;
        first = first[half] <= row ? first + half : first;
        count -= half;
    }

    // Asks for the shapes from segment to segment + count, which the last steps of a search
    // choose among, while those steps run.
    void prefetchShapes(std::size_t segment, std::size_t count) const {
        const char* start = reinterpret_cast<const char*>(&shapes[segment]);
        for (std::size_t offset = 0; offset <= (count + 1) * sizeof(Shape); offset += 64) {
            __builtin_prefetch(start + offset);
        }
    }

    // One entry a segment, then one that starts at row 0 and only ends the last segment.
    std::vector<unsigned int> starts;
    std::vector<Shape> shapes;
    Segment current;
    std::size_t currentNumber = 0;
    bool stale = true;
};
