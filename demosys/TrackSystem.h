#pragma once

#include <map>
#include <string>
#include <vector>

class TrackGroup;
class TrackStartStop;

// The registry of every track group and the per-frame scheduler of effects: each frame the
// groups active at the current row are called in priority order, all predraws first, then
// all draws (each into its interval's render target), then all postdraws.
// The system owns the groups added to it.
class TrackSystem {
public:
    static constexpr int DefaultRowRate = 20;

    TrackSystem();
    ~TrackSystem();
    TrackSystem(const TrackSystem&) = delete;
    TrackSystem& operator=(const TrackSystem&) = delete;

    // Rows per second of the registered system (KVTDemosys::tracks), or the default.
    static unsigned int globalRowRate();
    // Rows per second of a system, or the default without one.
    static unsigned int rowRateOf(const TrackSystem* system) {
        return static_cast<unsigned int>(system != nullptr ? system->rowRate : DefaultRowRate);
    }

    int getRowRate() const { return rowRate; }
    void setRowRate(int rate) { rowRate = rate; }

    // Takes ownership; a group of the same name is replaced in the name map.
    void addTrackGroup(TrackGroup* group);
    TrackGroup* getTrackGroupByName(const std::string& name) const;
    int size() const { return static_cast<int>(trackGroups.size()); }
    // The index-th group in name order; indices below 1 give the first.
    TrackGroup* getTrackGroup(int index) const;
    int countAllTracks() const;

    void createPrioritySystem();
    void sortPrioritySystem();
    // Renumbers priorities 0, 1, 2, ... in draw order.
    void prioritySanityCheck();
    TrackGroup* getSortedTrackGroup(int index) const { return sortedTrackGroups[index]; }
    int getSortedTrackGroupCount() const { return static_cast<int>(sortedTrackGroups.size()); }
    void swapTracks(int a, int b);
    void printPriority() const;

    // Allocates only on the first call, when the list of active groups gets room for all.
    void processSystem(unsigned int time, unsigned int row, unsigned int frameTime);
    // Whether a group of that name was active in the last processed frame.
    bool isEffectActive(const std::string& name) const;

    bool validateStartStopTracks() const;
    bool validateInterpolateTracks() const { return true; }
    // Fills a track with 1000 random alternating keyframes, 1 to 10 rows apart.
    static void fillTrack(TrackStartStop* track);

private:
    std::map<std::string, TrackGroup*> trackGroups;
    std::vector<TrackGroup*> sortedTrackGroups;
    std::vector<TrackGroup*> activeTrackGroups;
    std::vector<TrackGroup*> ownedGroups;
    int rowRate = DefaultRowRate;
};
