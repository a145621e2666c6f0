#pragma once

// Base of every keyframe: the row it stands at and, on start/stop tracks, its kind.
// Keyframes are plain values; the track that holds one owns it.
class TrackKeyFrame {
public:
    static constexpr int STOP = 0;
    static constexpr int START = 1;

    TrackKeyFrame() = default;
    TrackKeyFrame(unsigned int keyRow, int keyType) : row(keyRow), type(keyType) {}

    unsigned int row = 0;
    int type = STOP;
};
