// Soft point sprites with straight alpha: white-ish colour so that the particle colour tints
// them, and alpha that reaches exactly 0 before the border.
#pragma once

#include "Drawing.h"

namespace texgen {

// A point of light: hot core, wide halo and four faint rays.
Picture lightSprite(int size);
// A luminous creature: bright nucleus inside a glowing, ribbed bell.
Picture creatureSprite(int size);
// A flake of marine snow: a ragged, cloudy puff.
Picture puffSprite(int size);

} // namespace texgen
