// Archives for tests, made with the 7zz archiver the project packs its resources with.
#pragma once

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

} // namespace testarchives
