// texgen draws with the tools' shared rasters, fonts and pictures, named here without
// their namespace.
#pragma once

#include "Font.h"
#include "Picture.h"
#include "Raster.h"

namespace texgen {
using namespace raster;
} // namespace texgen
