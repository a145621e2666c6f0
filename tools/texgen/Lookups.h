// Small lookup pictures the screen effects read: blur weights, a tone ramp and grain.
#pragma once

#include "Drawing.h"

namespace texgen {

// One row of Gaussian weights for the separable blur, grey: texel k holds the weight at
// distance (k + 0.5) / width of the blur radius, 255 at the centre falling to about 3 at the
// radius (three standard deviations). The blur reads it at |offset| / radius.
Picture gaussianKernel(int width);

// One row, RGB: the tone curve that also serves as a threshold ramp. Every channel rises
// monotonically from black to full; a gentle S with cool, lifted shadows.
Picture thresholdRamp(int width);

// Tiling colour grain: independent, evenly spread values on every channel.
Picture colourNoise(int size);

} // namespace texgen
