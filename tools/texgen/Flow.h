// Velocity pictures for the fluid: one grey picture per velocity component, 128 meaning no
// motion, brighter moving right (u) or up (v), darker the other way. Each u/v pair is derived
// from one stream function, so a pair on its own is free of divergence.
#pragma once

#include "Drawing.h"

namespace texgen {

enum class FlowKind {
    Swirl,     // one large eddy ringed by small counter-turning ones
    Jets,      // three jets that meet in the middle and curl back
    Turbulence // eddies of every size
};

struct FlowPair {
    Picture u;
    Picture v;
};

// Both components share one scale: the fastest component of the pair reaches ±127.
FlowPair flowPair(FlowKind kind, int size);

} // namespace texgen
