#pragma once

#include <cstddef>
#include <map>
#include <vector>

class TrackKeyFrame;

// Keyframes ordered by row, at most one a row. The track owns its keyframes and deletes each
// as the keyframe type its kind of track stores (the keyframe classes have no virtual
// destructor).
// On start/stop tracks keyframes alternate start, stop, ...; each pair is an interval that
// covers its start row through its stop row, both included.
class Track {
public:
    using KeyframeMap = std::map<unsigned int, TrackKeyFrame*>;

    virtual ~Track();
    Track(const Track&) = delete;
    Track& operator=(const Track&) = delete;

    // Delivers whole intervals touching from..to.
    virtual void getKeyFrameRange(unsigned int from, unsigned int to,
                                  std::vector<TrackKeyFrame*>& out);
    // Checks that keyframes alternate start, stop, ...; prints the first mismatch.
    virtual bool validateKeyframes();
    // Every change to the keys ends here, so that copies of the keys kept for evaluation are
    // dropped. Call it after changing a keyframe's fields through a pointer the track handed
    // out.
    virtual void keyframesChanged() {}

    // Takes ownership. A keyframe already at that row is replaced and deleted.
    void addKeyframe(TrackKeyFrame* keyframe);
    // Deletes every keyframe.
    void clear();
    void insertInterval(TrackKeyFrame* start, TrackKeyFrame* stop);
    TrackKeyFrame* getKeyframe(unsigned int row) const;
    bool rowExists(unsigned int row) const;
    bool rowIsStartKeyFrame(unsigned int row) const;
    // Row of the first keyframe after row, or -1.
    int nextKeyframe(unsigned int row) const;
    // Row of the last keyframe before row, or 0xFFFFFFFF.
    unsigned int prevKeyframe(unsigned int row) const;
    bool insideInterval(unsigned int row) const;
    bool isActive(unsigned int time, unsigned int row) const;
    bool rangeEmpty(unsigned int from, unsigned int to) const;
    void fetchKeyFrameVector(std::vector<TrackKeyFrame*>& out) const;
    void deleteInterval(unsigned int row);
    void moveRow(unsigned int from, unsigned int to);

    size_t size() const { return keyframes.size(); }
    const KeyframeMap& getKeyframes() const { return keyframes; }

protected:
    using KeyframeDeleter = void (*)(TrackKeyFrame*);

    // Deletes a keyframe as the type a kind of track stores.
    template <class KeyFrame> static void deleteAs(TrackKeyFrame* keyframe) {
        delete static_cast<KeyFrame*>(keyframe);
    }

    explicit Track(KeyframeDeleter deleter) : deleteKeyframeAsStored(deleter) {}

    // Deletes the keyframe of an entry and removes the entry.
    void erase(KeyframeMap::iterator entry);

    KeyframeMap keyframes;

private:
    // Puts keyframe at row, deleting the keyframe it replaces.
    void store(unsigned int row, TrackKeyFrame* keyframe);

    KeyframeDeleter deleteKeyframeAsStored;
};
