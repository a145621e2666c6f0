// The frame laid over every finished picture of the demo.
#pragma once

#include "Drawing.h"

namespace texgen {

// The part the screen shows: the left 15/16 of the width and the upper 52.73 % of the height.
struct VisibleBlock {
    int width;
    int height;
};
VisibleBlock overlayVisibleBlock(int size);

// Straight-alpha RGBA, size x size. Inside the visible block: a soft dark vignette, a fine
// porthole frame with corner brackets and a depth gauge, and exactly transparent centre (the
// overlay is drawn with an alpha test). Outside the block the edge texels are repeated, so
// that filtering at the crop line brings in nothing new.
Picture frameOverlay(int size);

} // namespace texgen
