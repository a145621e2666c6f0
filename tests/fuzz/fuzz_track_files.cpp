// Reads the loose track files from arbitrary bytes: the first byte chooses a start/stop
// record, an interpolate record or the track properties file, the rest is the file. The
// tracks read are evaluated across rows; the properties are applied to a small track system.
#include "File.h"
#include "KVTDemosys.h"
#include "KVTIO.h"
#include "TrackGroup.h"
#include "TrackInterpolate.h"
#include "TrackStartStop.h"
#include "TrackSystem.h"
#include "TrackSystemIO.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <memory>
#include <unistd.h>

namespace {

const unsigned int Rows[] = {0u, 1u, 20u, 1000u, 65535u, 0x7FFFFFFFu, 0xFFFFFFFFu};

void readStartStop(TrackSystemIO& io, File& file) {
    std::unique_ptr<TrackStartStop> track(io.loadStartStopTrack(&file, "fuzz"));
    for (unsigned int row : Rows) {
        track->getRenderTarget(row);
        track->getStartRow(row);
    }
}

void readInterpolate(TrackSystemIO& io, File& file) {
    TrackInterpolate track("value");
    io.loadInterpolateTrack(&file, "fuzz", &track);
    for (unsigned int row : Rows) {
        track.getValue(row);
    }
}

// The properties file is read from the resource folder under the working folder: the
// fuzzer steps into a folder of its own for it, and back, since its corpus paths are relative.
void readProperties(TrackSystemIO& io, const uint8_t* bytes, size_t size) {
    static const std::filesystem::path folder = std::filesystem::temp_directory_path() /
                                                ("brinova-fuzz-tracks-" + std::to_string(getpid()));
    std::filesystem::create_directories(folder / KVTIO::TrackPath);
    const std::filesystem::path back = std::filesystem::current_path();
    std::filesystem::current_path(folder);
    std::ofstream(KVTIO::TrackPath + "/track.properties", std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes), static_cast<std::streamsize>(size));
    io.loadStateData();
    std::filesystem::current_path(back);
}

} // namespace

// A track system of two groups for the properties to name.
extern "C" int LLVMFuzzerInitialize(int*, char***) {
    KVTDemosys::tracks = new TrackSystem;
    for (const char* name : {"alpha", "beta"}) {
        auto* group = new TrackGroup(name);
        group->setStartStopTrack(new TrackStartStop(1));
        KVTDemosys::tracks->addTrackGroup(group);
    }
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    if (size < 1) {
        return 0;
    }
    std::cout.setstate(std::ios::failbit);
    TrackSystemIO io(KVTIO::TrackPath);
    File file("fuzz.track");
    file.setData(std::vector<unsigned char>(bytes + 1, bytes + size));
    file.exists(true);
    switch (bytes[0] % 3) {
    case 0:
        readStartStop(io, file);
        break;
    case 1:
        readInterpolate(io, file);
        break;
    default:
        readProperties(io, bytes + 1, size - 1);
    }
    return 0;
}
