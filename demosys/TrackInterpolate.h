#pragma once

#include "FloatDivisor.h"
#include "KVTDemosys.h"
#include "Track.h"
#include "TrackEvaluationIndex.h"
#include "TrackSystem.h"

#include <cstdint>
#include <string>

class TrackKeyFrameInterpolate;

// One float parameter of an effect, given as keyframes and evaluated against the clock.
// Interpolation codes of a keyframe (how the value moves on to the next keyframe):
// 0 linear, 1 ease-out (fast start), 2 ease-in (gentle start), 3 step, 4 ramp (f*f),
// 5 smooth (3f² - 2f³, the sync editors' smooth key); any other code is linear. Holds only
// TrackKeyFrameInterpolate keyframes.
// The map of keyframes is what edits change; evaluation reads a flat copy of it (see
// TrackEvaluationIndex), which every change to the keys invalidates.
class TrackInterpolate : public Track {
public:
    static constexpr int LINEAR = 0;
    static constexpr int EASE_OUT = 1;
    static constexpr int EASE_IN = 2;
    static constexpr int STEP = 3;
    static constexpr int RAMP = 4;
    static constexpr int SMOOTH = 5;

    explicit TrackInterpolate(std::string trackName);

    std::string getName() const { return name; }
    // The value at a clock time in milliseconds: 0 before the first keyframe, the last
    // value held after the last one. Never allocates. Not for concurrent use: it rebuilds the
    // evaluation copy and remembers where it found the time.
    // The segment is chosen by the integer row, the fraction within it by the fractional row.
    // Inline for the common case, a linear or constant segment (the time before the first key
    // and after the last one are constant, and the index gives a constant one as linear); the
    // curves are out of line, so that each call site stays small.
    float getValue(unsigned int timeMs) const {
        const unsigned int rowRate = TrackSystem::rowRateOf(KVTDemosys::tracks);
        if (rowRate != preparedRowRate) {
            return valueAfterChange(timeMs, rowRate);
        }
        const TrackEvaluationIndex::Segment& segment = index.segmentOf(rowRate * timeMs / 1000);
        if (segment.interpolation == LINEAR) {
            return segment.from + segment.toward * fractionIn(segment, timeMs);
        }
        return curvedValue(segment, timeMs);
    }

    TrackKeyFrameInterpolate* getClosestKeyframe(unsigned int row) const;
    TrackKeyFrameInterpolate* getClosestKeyframeUpwards(unsigned int row) const;
    void deleteKeyframe(unsigned int row);
    // The keyframes that shape the curve across from..to.
    void getKeyFrameRange(unsigned int from, unsigned int to,
                          std::vector<TrackKeyFrame*>& out) override;
    void keyframesChanged() override;

    // The value between a and b at fraction t (0 at a, 1 at b).
    static float linear(const TrackKeyFrameInterpolate& a, const TrackKeyFrameInterpolate& b,
                        float t);
    static float step(const TrackKeyFrameInterpolate& a, const TrackKeyFrameInterpolate& b,
                      float t);
    static float ramp(const TrackKeyFrameInterpolate& a, const TrackKeyFrameInterpolate& b,
                      float t);
    static float smooth(const TrackKeyFrameInterpolate& a, const TrackKeyFrameInterpolate& b,
                        float t);
    // easeOut true: fast start and gentle arrival; false: gentle start and fast arrival.
    static float cosine(const TrackKeyFrameInterpolate& a, const TrackKeyFrameInterpolate& b,
                        float t, bool easeOut);

private:
    // getValue() after a change to the keys or the row rate: brings the index and the
    // divisor up to date first.
    float valueAfterChange(unsigned int timeMs, unsigned int rowRate) const;
    // getValue() in a segment of a curved code: ease-out, ease-in, ramp or smooth.
    float curvedValue(const TrackEvaluationIndex::Segment& segment, unsigned int timeMs) const;
    // How far timeMs lies into the segment: 0 at its start, 1 at the next one's.
    float fractionIn(const TrackEvaluationIndex::Segment& segment, unsigned int timeMs) const {
        const float fractionalRow = millisecondsPerRow.divide(static_cast<float>(timeMs));
        return segment.length.divide(fractionalRow - segment.startRow);
    }

    // What getValue() reads first: together, before the index's last segment.
    // The row rate that the index and the divisor are ready for; none (a value no rate has)
    // after a change to the keys.
    static constexpr std::uint64_t Unprepared = std::uint64_t{1} << 32;
    mutable std::uint64_t preparedRowRate = Unprepared;
    // Divides by 1000 / rowRate in single precision.
    mutable FloatDivisor millisecondsPerRow{1.0f};
    mutable TrackEvaluationIndex index;
    std::string name;
};
