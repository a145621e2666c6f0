#include "TrackSystemIO.h"

#include "DataFBOPool.h"
#include "Effect.h"
#include "File.h"
#include "KVTDemosys.h"
#include "KVTIO.h"
#include "TrackGroup.h"
#include "TrackInterpolate.h"
#include "TrackKeyFrameInterpolate.h"
#include "TrackStartStop.h"
#include "TrackStartStopKeyFrame.h"
#include "TrackSystem.h"

#include <iostream>
#include <memory>

namespace {

// Smallest sizes a record's parts can have, to reject counts the file cannot hold.
const unsigned int MinStartStopEntryBytes = 8;
const unsigned int InterpolateEntryBytes = 12;
const unsigned int MinIndexEntryBytes = 5;

std::string startStopKey(const std::string& group) {
    return group + ".track";
}

std::string interpolateKey(const std::string& group, const std::string& track) {
    return group + "." + track + ".track";
}

bool countFits(int count, const File* source, unsigned int entryBytes) {
    return static_cast<unsigned int>(count) <= source->bytesLeft() / entryBytes;
}

} // namespace

TrackSystemIO::TrackSystemIO(std::string path) : basePath(std::move(path)) {}

FBO* TrackSystemIO::findRenderTarget(const std::string& name) {
    const DataFBOPool* pool = KVTDemosys::fboDataPool;
    return pool != nullptr && pool->exists(name) ? pool->getFBO(name) : nullptr;
}

void TrackSystemIO::reportCorrupt(const File* source, const std::string& record,
                                  const std::string& why) {
    std::string line =
        "Track file '" + source->getFilename() + "' is corrupt: " + record + " " + why;
    std::cout << line << std::endl;
    errors.push_back(line);
}

std::vector<std::pair<std::string, int>> TrackSystemIO::readIndex(File* index) {
    std::vector<std::pair<std::string, int>> entries;
    if (index == nullptr || !index->exists()) {
        return entries;
    }
    int count = index->readInt();
    if (index->overrun() || count < 0) {
        reportCorrupt(index, "the index", "has no valid entry count");
        unreadablePack = true;
        return entries;
    }
    if (!countFits(count, index, MinIndexEntryBytes)) {
        reportCorrupt(index, "the index", "lists more entries than the file holds");
        unreadablePack = true;
        return entries;
    }
    for (int i = 0; i < count; ++i) {
        std::string key = index->readString();
        int offset = index->readInt();
        if (index->overrun()) {
            reportCorrupt(index, "the index", "ends inside an entry");
            unreadablePack = true;
            return {};
        }
        entries.emplace_back(std::move(key), offset);
    }
    return entries;
}

TrackSystem* TrackSystemIO::loadPack(std::vector<std::string>& names,
                                     std::vector<Effect*>& effects) {
    std::unique_ptr<File> index(KVTIO::loadFile(basePath + "index.list"));
    std::unique_ptr<File> data(KVTIO::loadFile(basePath + "track.data"));
    const bool indexMissing = reportIfMissing(index.get(), basePath + "index.list");
    const bool dataMissing = reportIfMissing(data.get(), basePath + "track.data");
    TrackSystem* system = loadPack(index.get(), data.get(), names, effects);
    unreadablePack = unreadablePack || indexMissing || dataMissing;
    return system;
}

bool TrackSystemIO::reportIfMissing(const File* file, const std::string& path) {
    if (file != nullptr && file->exists()) {
        return false;
    }
    const std::string line = "Track file '" + path + "' is missing";
    std::cout << line << std::endl;
    errors.push_back(line);
    return true;
}

TrackSystem* TrackSystemIO::loadPack(File* index, File* data, std::vector<std::string>& names,
                                     std::vector<Effect*>& effects) {
    std::map<std::string, int> offsets;
    for (const auto& entry : readIndex(index)) {
        offsets[entry.first] = entry.second;
    }
    if (data == nullptr || !data->exists()) {
        offsets.clear();
    }
    RecordSource records = [&](const std::string& key) -> File* {
        auto found = offsets.find(key);
        if (found == offsets.end()) {
            return nullptr;
        }
        if (found->second < 0 || static_cast<unsigned int>(found->second) > data->getFileSize()) {
            reportCorrupt(data, "record '" + key + "'", "starts past the end of the file");
            return nullptr;
        }
        data->setReadOffset(static_cast<unsigned int>(found->second));
        return data;
    };
    return loadSystem(names, effects, records);
}

TrackSystem* TrackSystemIO::load(std::vector<std::string>& names, std::vector<Effect*>& effects) {
    std::unique_ptr<File> current;
    RecordSource records = [&](const std::string& key) -> File* {
        current.reset(KVTIO::loadFile(basePath + "/" + key, KVTIO::KVT_RESOURCES_FLAT));
        return current != nullptr && current->exists() ? current.get() : nullptr;
    };
    return loadSystem(names, effects, records);
}

TrackSystem* TrackSystemIO::loadSystem(std::vector<std::string>& names,
                                       std::vector<Effect*>& effects, const RecordSource& records) {
    auto* system = new TrackSystem;
    for (size_t i = 0; i < names.size() && i < effects.size(); ++i) {
        loadGroup(system, names[i], effects[i], records);
    }
    system->createPrioritySystem();
    system->prioritySanityCheck();
    return system;
}

void TrackSystemIO::loadGroup(TrackSystem* system, const std::string& name, Effect* effect,
                              const RecordSource& records) {
    auto* group = new TrackGroup(name);
    group->effect = effect;
    system->addTrackGroup(group);

    if (File* record = records(startStopKey(name))) {
        group->setStartStopTrack(loadStartStopTrack(record, name));
    } else {
        if (verbose) {
            std::cout << "Track '" << name << "' do not exit. Creating dummy." << std::endl;
        }
        group->setStartStopTrack(new TrackStartStop(-1));
    }

    int trackCount = effect != nullptr ? effect->getTrackCount() : 0;
    for (int j = 0; j < trackCount; ++j) {
        TrackInterpolate* track = effect->getTrackPointer(j);
        if (File* record = records(interpolateKey(name, track->getName()))) {
            loadInterpolateTrack(record, name, track);
        } else if (verbose) {
            std::cout << "-> '" << name << "." << track->getName()
                      << ".track' do not exit. Keeping dummy." << std::endl;
        }
        group->addInterpolateTrack(track);
    }
}

TrackStartStop* TrackSystemIO::loadStartStopTrack(File* source, std::string groupName) {
    int priority = source->readInt();
    std::cout << "Loading '" << groupName << ".track' (" << priority << ")" << std::endl;
    auto track = std::make_unique<TrackStartStop>(priority);
    int count = source->readInt();
    if (source->overrun() || (count >= 1 && !countFits(count, source, MinStartStopEntryBytes))) {
        reportCorrupt(source, "record '" + startStopKey(groupName) + "'",
                      "holds more keyframes than the file has bytes");
        return new TrackStartStop(-1);
    }
    for (int i = 0; i < count; ++i) {
        unsigned int row = static_cast<unsigned int>(source->readInt());
        int type = source->readInt();
        std::string target = "screen";
        FBO* fbo = nullptr;
        if (type == TrackKeyFrame::START) {
            unsigned int before = source->getReadOffset();
            target = source->readString();
            bool unnamed = source->getReadOffset() - before == 1;
            if (verbose) {
                std::cout << "Raw string = '" << target << "'" << std::endl;
            }
            fbo = findRenderTarget(target);
            if (fbo == nullptr && (!keepTargetNames || unnamed)) {
                target = "screen";
            }
        }
        if (source->overrun()) {
            reportCorrupt(source, "record '" + startStopKey(groupName) + "'",
                          "ends inside a keyframe");
            return new TrackStartStop(-1);
        }
        auto* keyframe = new TrackStartStopKeyFrame(row, type);
        if (type == TrackKeyFrame::START) {
            keyframe->target = target;
            keyframe->fbo = fbo;
        }
        track->addKeyframe(keyframe);
        if (verbose) {
            std::cout << "keyframe " << row << " : " << type << ", " << target << std::endl;
        }
    }
    return track.release();
}

void TrackSystemIO::loadInterpolateTrack(File* source, std::string groupName,
                                         TrackInterpolate* track) {
    std::cout << "Loading '" << groupName << "." << track->getName() << "'" << std::endl;
    int count = source->readInt();
    if (source->overrun() || (count >= 1 && !countFits(count, source, InterpolateEntryBytes))) {
        reportCorrupt(source, "record '" + interpolateKey(groupName, track->getName()) + "'",
                      "holds more keyframes than the file has bytes");
        return;
    }
    for (int i = 0; i < count; ++i) {
        unsigned int row = static_cast<unsigned int>(source->readInt());
        int interpolation = source->readInt();
        float value = source->readFloat();
        track->addKeyframe(new TrackKeyFrameInterpolate(row, interpolation, value));
        if (verbose) {
            std::cout << "keyframe " << row << " : " << interpolation << ", " << value << std::endl;
        }
    }
}

void TrackSystemIO::saveStartStopTrack(File* target, TrackStartStop* track) {
    target->put(track->priority);
    target->put(static_cast<int>(track->size()));
    for (const auto& entry : track->getKeyframes()) {
        const auto* keyframe = static_cast<const TrackStartStopKeyFrame*>(entry.second);
        target->put(keyframe->row);
        target->put(keyframe->type);
        if (keyframe->type == TrackKeyFrame::START) {
            if (keyframe->fbo != nullptr || keepTargetNames) {
                target->put(keyframe->target);
            }
            target->put(static_cast<unsigned char>(0));
        }
    }
}

void TrackSystemIO::saveInterpolateTrack(File* target, TrackInterpolate* track) {
    target->put(static_cast<int>(track->size()));
    for (const auto& entry : track->getKeyframes()) {
        const auto* keyframe = static_cast<const TrackKeyFrameInterpolate*>(entry.second);
        target->put(keyframe->row);
        target->put(keyframe->interpolation);
        target->put(keyframe->value);
    }
}

bool TrackSystemIO::writeStartStopRecord(const std::string& path, TrackStartStop* track) {
    File out(path, File::WRITE);
    saveStartStopTrack(&out, track);
    return out.write();
}

bool TrackSystemIO::writeInterpolateRecord(const std::string& path, TrackInterpolate* track) {
    File out(path, File::WRITE);
    saveInterpolateTrack(&out, track);
    return out.write();
}

bool TrackSystemIO::save(TrackSystem* system) {
    bool written = true;
    for (int i = 0; i < system->size(); ++i) {
        TrackGroup* group = system->getTrackGroup(i);
        const std::string name = group->getName();
        written &=
            writeStartStopRecord(basePath + "/" + startStopKey(name), group->getStartStopTrack());
        for (int j = 0; j < group->getInterpolateTrackCount(); ++j) {
            TrackInterpolate* track = group->getInterpolateTrack(j);
            written &= writeInterpolateRecord(
                basePath + "/" + interpolateKey(name, track->getName()), track);
        }
    }
    return written;
}

bool TrackSystemIO::savePack(TrackSystem* system) {
    File index(basePath + "/index.list", File::WRITE);
    File data(basePath + "/track.data", File::WRITE);
    index.put(system->countAllTracks());
    auto addKey = [&](const std::string& key) {
        index.put(key);
        index.put(static_cast<unsigned char>(0));
        index.put(static_cast<int>(data.getWriteOffset()));
    };
    for (int i = 0; i < system->size(); ++i) {
        TrackGroup* group = system->getTrackGroup(i);
        addKey(startStopKey(group->getName()));
        saveStartStopTrack(&data, group->getStartStopTrack());
        for (int j = 0; j < group->getInterpolateTrackCount(); ++j) {
            TrackInterpolate* track = group->getInterpolateTrack(j);
            addKey(interpolateKey(group->getName(), track->getName()));
            saveInterpolateTrack(&data, track);
        }
    }
    bool indexWritten = index.write();
    bool dataWritten = data.write();
    return indexWritten && dataWritten;
}

bool TrackSystemIO::saveStateData() {
    TrackSystem* system = KVTDemosys::tracks;
    File out(KVTIO::TrackPath + "/track.properties", File::WRITE);
    out.put(system->size());
    for (int i = 0; i < system->size(); ++i) {
        TrackGroup* group = system->getTrackGroup(i);
        out.put(group->getName());
        out.put(static_cast<unsigned char>(0));
        std::cout << "Saving track property for " << group->getName() << std::endl;
        out.put(group->getStartStopTrack()->enabled ? 0 : 1);
    }
    return out.write();
}

// A group that no longer exists has its flag left unread, so the entries after it are read
// out of step; that matches what the writer of older files expects. Reading stops at the end.
void TrackSystemIO::loadStateData() {
    std::unique_ptr<File> in(KVTIO::loadFile(KVTIO::TrackPath + "/track.properties"));
    if (in == nullptr || !in->exists()) {
        return;
    }
    int count = in->readInt();
    for (int i = 0; i < count && !in->overrun(); ++i) {
        std::string name = in->readString();
        std::cout << "Loading track property for " << name << std::endl;
        TrackGroup* group = KVTDemosys::tracks->getTrackGroupByName(name);
        if (group != nullptr) {
            int flag = in->readInt();
            group->getStartStopTrack()->enabled = flag == 0;
            std::cout << "Flag : " << flag << std::endl;
        }
    }
}
