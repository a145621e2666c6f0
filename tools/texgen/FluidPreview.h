// A rough look at how a velocity pair stirs a dye picture, for the contact sheet: the dye is
// carried along the pictured velocities for a number of steps (no pressure solve, no
// feedback of the dye on the flow), which is enough to judge the shapes the stirring makes.
#pragma once

#include "Drawing.h"

#include <string>
#include <vector>

namespace texgen {

// `dye` RGB; `u` and `v` grey velocity pictures of one size.
Picture stirredPreview(const Picture& dye, const Picture& u, const Picture& v, int steps);

// The dye and velocity pictures the fluid seeds each of its six modes with.
struct FluidMode {
    int mode;
    std::string dye, u, v;
};
std::vector<FluidMode> fluidModes();

} // namespace texgen
