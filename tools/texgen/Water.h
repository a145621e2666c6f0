// The sea surface seen from below: a caustic light pattern and three scales of wave normals.
// All four tile seamlessly: they are built from waves with whole numbers of cycles per tile.
#pragma once

#include "Drawing.h"

namespace texgen {

// Light focused by the moving surface, found by bending a dense grid of rays through a wave
// height field and counting where they land.
Picture oceanSurface(int size);

enum class WaveScale { Swell, Chop, Ripples };

// Tangent-space normal map, 0.5-centred (128 = 0), unit length, z up. Green follows the
// texture's t axis, which runs up the picture once the engine loads its bottom row first.
Picture waveNormals(WaveScale scale, int size);

} // namespace texgen
