// One picture that shows every generated picture at a glance, labelled, for review.
#pragma once

#include "Drawing.h"

#include <string>
#include <vector>

namespace texgen {

struct SheetItem {
    std::string label;
    Picture picture; // as it appears on screen
};

// How wide the sheet is and how wide a wide picture (1.6:1 or wider) is shown; other
// pictures fit a 256-pixel square.
struct SheetLayout {
    int width = 1680;
    int wideBox = 540;
};

// Alpha pictures are shown over a dark checkerboard; one-row pictures also get a plot of
// each channel.
Picture contactSheet(const std::vector<SheetItem>& items, const Font& labelFont,
                     const SheetLayout& layout = SheetLayout());

} // namespace texgen
