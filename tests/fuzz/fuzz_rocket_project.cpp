// Reads arbitrary text as a sync editor's project file. A project that reads must write out
// and read back to the same file, and its keys must become a document or say why not.
#include "RocketProject.h"
#include "SyncText.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    const std::string text(reinterpret_cast<const char*>(bytes), size);
    rocket::Project project;
    std::string error;
    if (!rocket::readXml(text, "fuzz.rocket", project, error)) {
        if (error.empty()) {
            std::abort(); // a refusal must say why
        }
        return 0;
    }
    const std::string written = rocket::writeXml(project);
    rocket::Project again;
    if (!rocket::readXml(written, "written.rocket", again, error) ||
        rocket::writeXml(again) != written) {
        std::abort();
    }
    synctext::Document keys;
    if (!rocket::toKeys(project, keys, error) && error.empty()) {
        std::abort();
    }
    return 0;
}
