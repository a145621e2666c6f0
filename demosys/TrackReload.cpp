#include "TrackReload.h"

#include "Effect.h"
#include "SyncText.h"
#include "TrackGroup.h"
#include "TrackInterpolate.h"
#include "TrackKeyFrameInterpolate.h"
#include "TrackStartStop.h"
#include "TrackStartStopKeyFrame.h"
#include "TrackSystem.h"
#include "TrackSystemIO.h"

#include <fstream>
#include <sstream>

namespace {

// Every group of the running system with the parameter tracks its effect declares: a text
// naming anything else would key tracks nobody reads.
synctext::Schema schemaOf(const TrackSystem& system) {
    synctext::Schema schema;
    for (int i = 0; i < system.getSortedTrackGroupCount(); ++i) {
        const TrackGroup* group = system.getSortedTrackGroup(i);
        std::set<std::string>& tracks = schema[group->getName()];
        for (int j = 0; j < group->getInterpolateTrackCount(); ++j) {
            tracks.insert(group->getInterpolateTrack(j)->getName());
        }
    }
    return schema;
}

const synctext::Effect* findEffect(const synctext::Document& document, const std::string& name) {
    for (const synctext::Effect& effect : document.effects) {
        if (effect.name == name) {
            return &effect;
        }
    }
    return nullptr;
}

const synctext::Track* findTrack(const synctext::Effect* effect, const std::string& name) {
    if (effect != nullptr) {
        for (const synctext::Track& track : effect->tracks) {
            if (track.name == name) {
                return &track;
            }
        }
    }
    return nullptr;
}

// Intervals with their render targets resolved as loading resolves them: a name the
// framebuffer pool does not hold draws to the screen. A group the text leaves out gets the
// empty track loading gives it.
void replaceIntervals(TrackStartStop& track, const synctext::Effect* effect) {
    track.clear();
    track.priority = effect != nullptr ? effect->priority : -1;
    if (effect == nullptr) {
        return;
    }
    for (const synctext::Interval& interval : effect->intervals) {
        auto* start = new TrackStartStopKeyFrame(interval.start, TrackKeyFrame::START);
        start->fbo = TrackSystemIO::findRenderTarget(interval.target);
        start->target = start->fbo != nullptr ? interval.target : "screen";
        track.insertInterval(start, new TrackStartStopKeyFrame(interval.stop, TrackKeyFrame::STOP));
    }
}

void replaceKeyframes(TrackInterpolate& track, const synctext::Track* keyed) {
    track.clear();
    if (keyed == nullptr) {
        return;
    }
    for (const synctext::Keyframe& key : keyed->keyframes) {
        track.addKeyframe(new TrackKeyFrameInterpolate(key.row, key.interpolation, key.value));
    }
}

void replaceTracks(const synctext::Document& document, TrackSystem& system) {
    for (int i = 0; i < system.getSortedTrackGroupCount(); ++i) {
        TrackGroup* group = system.getSortedTrackGroup(i);
        const synctext::Effect* effect = findEffect(document, group->getName());
        replaceIntervals(*group->getStartStopTrack(), effect);
        for (int j = 0; j < group->getInterpolateTrackCount(); ++j) {
            TrackInterpolate* track = group->getInterpolateTrack(j);
            replaceKeyframes(*track, findTrack(effect, track->getName()));
        }
    }
    system.sortPrioritySystem();
    system.prioritySanityCheck();
}

bool readSyncText(const std::string& path, std::string& text, std::string& error) {
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        error = path + ": cannot be read";
        return false;
    }
    std::ostringstream contents;
    contents << in.rdbuf();
    text = contents.str();
    return true;
}

} // namespace

bool reloadTracks(const std::string& syncTextPath, TrackSystem& system, std::string& error) {
    std::string text;
    const synctext::Schema schema = schemaOf(system);
    synctext::Document document;
    if (!readSyncText(syncTextPath, text, error) ||
        !synctext::parse(text, syncTextPath, &schema, document, error)) {
        return false;
    }
    replaceTracks(document, system);
    return true;
}

bool saveTracksInto(const std::string& syncTextPath, const TrackSystem& system,
                    std::string& error) {
    std::string text;
    if (!readSyncText(syncTextPath, text, error)) {
        return false;
    }
    const std::string merged = synctext::mergeKeys(text, synctext::readTrackSystem(system));
    const synctext::Schema schema = schemaOf(system);
    synctext::Document check;
    if (!synctext::parse(merged, syncTextPath, &schema, check, error)) {
        return false;
    }
    std::ofstream out(syncTextPath, std::ios::binary | std::ios::trunc);
    if (!(out << merged)) {
        error = syncTextPath + ": cannot be written";
        return false;
    }
    return true;
}
