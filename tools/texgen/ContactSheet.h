// One picture that shows every generated picture at a glance, labelled, for review.
#pragma once

#include "Font.h"
#include "Picture.h"

#include <string>
#include <vector>

namespace texgen {

struct SheetItem {
    std::string label;
    Picture picture; // as it appears on screen
};

// Alpha pictures are shown over a dark checkerboard; one-row pictures also get a plot of
// each channel.
Picture contactSheet(const std::vector<SheetItem>& items, const Font& labelFont);

} // namespace texgen
