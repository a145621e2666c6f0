// Archives for tests, made with the 7zz archiver the project packs its resources with.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

namespace testarchives {

// The options the project packs with: non-solid, strongest compression.
const std::string PACKING_OPTIONS = "-ms=off -mx=9";

inline bool have7zz() {
    return std::system("command -v 7zz >/dev/null 2>&1") == 0;
}

// Runs "7zz arguments" inside folder, quietly; true when it succeeded.
inline bool sevenZip(const std::string& folder, const std::string& arguments) {
    const std::string command = "cd '" + folder + "' && 7zz " + arguments + " >/dev/null 2>&1";
    return std::system(command.c_str()) == 0;
}

// What "7zz arguments" prints, run inside folder.
inline std::string sevenZipOutput(const std::string& folder, const std::string& arguments) {
    const std::string command = "cd '" + folder + "' && 7zz " + arguments + " 2>&1";
    std::string output;
    if (std::FILE* pipe = popen(command.c_str(), "r")) {
        char buffer[4096];
        for (std::size_t got; (got = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;) {
            output.append(buffer, got);
        }
        pclose(pipe);
    }
    return output;
}

} // namespace testarchives
