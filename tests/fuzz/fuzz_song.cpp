// Reads arbitrary text as a song for the synthesizer. A bad song must be reported as a song
// error naming where it is; any other exception or a crash is a fault.
#include "Parser.h"

#include <cstddef>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    try {
        synth::parseSong(std::string(reinterpret_cast<const char*>(bytes), size), "fuzz.song");
    } catch (const synth::SongError&) {
    }
    return 0;
}
