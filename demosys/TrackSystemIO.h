#pragma once

#include <functional>
#include <map>
#include <string>
#include <vector>

class Effect;
class File;
class FBO;
class TrackInterpolate;
class TrackStartStop;
class TrackSystem;

// Reads and writes the sync tracks of all effects: one loose file per track, or a pack of
// "index.list" (record names and offsets) and "track.data" (the records back to back).
// Missing records give empty dummy tracks so new effects run before anybody keyed them.
// Records that do not fit in their file are reported as corrupt and also become dummies.
class TrackSystemIO {
public:
    explicit TrackSystemIO(std::string basePath);

    // A new system with one group per effect (names[i] names effects[i]); caller owns it.
    TrackSystem* loadPack(std::vector<std::string>& names, std::vector<Effect*>& effects);
    // The same from an index and a data file already in memory (either may be null).
    TrackSystem* loadPack(File* index, File* data, std::vector<std::string>& names,
                          std::vector<Effect*>& effects);
    TrackSystem* load(std::vector<std::string>& names, std::vector<Effect*>& effects);
    bool save(TrackSystem* system);
    bool savePack(TrackSystem* system);
    // The enabled flags of KVTDemosys::tracks in "track.properties".
    bool saveStateData();
    void loadStateData();

    // A new start/stop track read at the file's cursor; a dummy when the record is corrupt.
    TrackStartStop* loadStartStopTrack(File* source, std::string groupName);
    // Fills track from the record at the file's cursor; leaves it empty when corrupt.
    void loadInterpolateTrack(File* source, std::string groupName, TrackInterpolate* track);
    void saveStartStopTrack(File* target, TrackStartStop* track);
    void saveInterpolateTrack(File* target, TrackInterpolate* track);

    // The entries of an index file in file order: record name and offset in the data file.
    // Empty (with an error reported) when the index is damaged.
    std::vector<std::pair<std::string, int>> readIndex(File* index);

    void setVerbose(bool flag) { verbose = flag; }
    // For authoring tools, which have no framebuffers: start keyframes keep the target
    // names they were read with, and names are written whether or not they were resolved
    // (the screen as "screen").
    void setKeepTargetNames(bool flag) { keepTargetNames = flag; }
    // The framebuffer a start keyframe names, from the framebuffer pool; null for the screen
    // and for names the pool does not hold.
    static FBO* findRenderTarget(const std::string& name);
    // Corrupt records met so far, one line each naming the file and the record.
    const std::vector<std::string>& getErrors() const { return errors; }
    // True when a pack's index or data file was missing or its index unreadable: every
    // track is then an empty dummy and nothing would play.
    bool packUnreadable() const { return unreadablePack; }

private:
    // Finds the record stored under a loose file name ("group.track", "group.name.track")
    // and returns a file with its cursor on it, or null when there is none.
    using RecordSource = std::function<File*(const std::string& key)>;

    TrackSystem* loadSystem(std::vector<std::string>& names, std::vector<Effect*>& effects,
                            const RecordSource& records);
    void loadGroup(TrackSystem* system, const std::string& name, Effect* effect,
                   const RecordSource& records);
    bool writeStartStopRecord(const std::string& path, TrackStartStop* track);
    bool writeInterpolateRecord(const std::string& path, TrackInterpolate* track);
    void reportCorrupt(const File* source, const std::string& record, const std::string& why);
    bool reportIfMissing(const File* file, const std::string& path);

    std::string basePath;
    bool verbose = false;
    bool keepTargetNames = false;
    std::vector<std::string> errors;
    bool unreadablePack = false;
};
