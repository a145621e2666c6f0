// Feeds arbitrary text to the time-value parser and its text form.
#include "KVTTime.h"

#include <cstddef>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    KVTTime time(std::string(reinterpret_cast<const char*>(bytes), size));
    if (!time.isValid() && time.getTicks() != 0) {
        __builtin_trap();
    }
    time.toString();
    time.setMilliseconds(static_cast<int>(time.getTicks() % 100000));
    return 0;
}
