// Shared helpers of the texgen tests.
#pragma once

#include "Drawing.h"

#include <string>

namespace texgen::test {

// The catalogue's picture of that file name, drawn once per test process.
const Picture& drawn(const std::string& file);

// Mean absolute difference across the wrap-around edge divided by the mean difference between
// interior neighbours, along x (columns W-1 and 0) or y (rows H-1 and 0). A picture that tiles
// scores about 1; a seam scores far higher.
double seamRatioX(const Picture& picture);
double seamRatioY(const Picture& picture);

struct CommandResult {
    int status;
    std::string output; // stdout and stderr together
};
// Runs the built texgen with the given arguments (already quoted as needed).
CommandResult runTexgen(const std::string& arguments);

// A new empty folder under the system's temporary folder.
std::string freshFolder();

std::string readFile(const std::string& path);

} // namespace texgen::test
