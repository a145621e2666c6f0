// Every picture texgen writes, with the file name the production loads it by.
#pragma once

#include "Drawing.h"

#include <functional>
#include <string>
#include <vector>

namespace texgen {

struct PictureEntry {
    std::string file;
    std::function<Picture(const FontShelf&)> make;
    // Stored bottom row first because its user draws texture row 0 at the top of the screen.
    bool storedUpsideDown = false;
};

std::vector<PictureEntry> catalogue();

} // namespace texgen
