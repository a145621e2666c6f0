#pragma once

#include <map>
#include <string>
#include <vector>

class Effect;
class TrackInterpolate;
class TrackStartStop;

// All tracks of one effect instance: its start/stop track and its named parameter tracks.
// The group owns every track handed to it; the effect is only referred to.
class TrackGroup {
public:
    explicit TrackGroup(std::string groupName) : name(std::move(groupName)) {}
    ~TrackGroup();
    TrackGroup(const TrackGroup&) = delete;
    TrackGroup& operator=(const TrackGroup&) = delete;

    // Takes ownership.
    void setStartStopTrack(TrackStartStop* track) { startStop = track; }
    TrackStartStop* getStartStopTrack() const { return startStop; }
    const std::string& getName() const { return name; }

    // Takes ownership; a later track of the same name shadows the earlier in name look-ups.
    void addInterpolateTrack(TrackInterpolate* track);
    int getInterpolateTrackCount() const { return static_cast<int>(tracks.size()); }
    TrackInterpolate* getInterpolateTrack(int index) const { return tracks[index]; }
    TrackInterpolate* getInterpolateTrackByName(const std::string& trackName) const;

    bool isActive(unsigned int time, unsigned int row) const;
    // Milliseconds since the current interval started (0 outside or at its very start).
    unsigned int getLocalTime(unsigned int row, unsigned int timeMs) const;

    Effect* effect = nullptr;

private:
    TrackStartStop* startStop = nullptr;
    std::map<std::string, TrackInterpolate*> tracksByName;
    std::vector<TrackInterpolate*> tracks;
    std::string name;
};
