// Parses arbitrary command lines (arguments separated by zero bytes) as the demo's options,
// then settles their paths and bar.beat times as the program does. Whatever is accepted must
// be within the documented ranges.
#include "DemoOptions.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    std::vector<std::string> arguments = {"brinova"};
    std::string current;
    for (size_t i = 0; i < size; ++i) {
        if (bytes[i] == 0) {
            arguments.push_back(current);
            current.clear();
        } else {
            current += static_cast<char>(bytes[i]);
        }
    }
    arguments.push_back(current);
    std::vector<const char*> argv;
    for (const std::string& argument : arguments) {
        argv.push_back(argument.c_str());
    }
    DemoOptions options;
    std::string error;
    if (!options.parse(static_cast<int>(argv.size()), argv.data(), error)) {
        if (error.empty()) {
            std::abort(); // a refusal must say why
        }
        return 0;
    }
    options.resolvePaths("/start");
    const bool settled = options.resolveBarBeats(120.0, error);
    const bool sized = options.width >= 16 && options.width <= 16384 && options.height >= 16 &&
                       options.height <= 16384;
    const bool ordered =
        !settled || !options.hasStart || !options.hasEnd || options.endMs > options.startMs;
    if (!sized || !ordered || options.frameStepMs() <= 0.0) {
        std::abort();
    }
    return 0;
}
