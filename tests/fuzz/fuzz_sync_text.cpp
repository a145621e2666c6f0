// Parses arbitrary sync text. A document that parses must survive its own text form: written
// out (with a tempo, so bar.beat times are used) it parses again to the same text.
#include "SyncText.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    const std::string text(reinterpret_cast<const char*>(bytes), size);
    synctext::Document document;
    std::string error;
    if (!synctext::parse(text, "fuzz.sync", nullptr, document, error)) {
        return 0;
    }
    const std::string written = synctext::format(document, 120.0f);
    synctext::Document again;
    if (!synctext::parse(written, "written.sync", nullptr, again, error) ||
        synctext::format(again, 120.0f) != written) {
        std::abort();
    }
    return 0;
}
