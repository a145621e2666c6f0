// Expands "#include" lines over an in-memory folder built from arbitrary bytes: the input is
// split at zero bytes into files named f0, f1, ... (at most eight); f0 is the source. Cycles,
// repeated and missing includes must end with a message, never hang or overflow the stack.
#include "KVTDemosys.h"
#include "MemoryResourceLoader.h"

#include <cstddef>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string input(reinterpret_cast<const char*>(data), size);
    MemoryResourceLoader loader;
    std::size_t start = 0;
    for (int index = 0; index < 8 && start <= input.size(); ++index) {
        std::size_t end = input.find('\0', start);
        if (end == std::string::npos) {
            end = input.size();
        }
        loader.files["mem/f" + std::to_string(index)] = input.substr(start, end - start);
        start = end + 1;
    }
    File source("mem/f0");
    const std::string& text = loader.files["mem/f0"];
    source.setData(std::vector<unsigned char>(text.begin(), text.end()));

    std::string out;
    loader.addShaderParams(out, {"name", "A 1", "B"});
    const bool expanded = loader.shaderInclude(out, source.getAsLines(), "mem/", "f0", 0);
    if (!expanded && loader.getErrorMessage().rfind("Failed to include '", 0) != 0) {
        __builtin_trap();
    }
    if (loader.opened > ResourceLoader::MAX_INCLUDES) {
        __builtin_trap();
    }
    KVTDemosys::miscResources.clear();
    return 0;
}
