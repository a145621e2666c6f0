// Names, logos, their dye versions for the fluid, the loading screen and the launcher banner.
#pragma once

#include "Drawing.h"

#include <string>

namespace texgen {

enum class Title { Vask, Lumo, Orin, Quillet, Korvath, Brinova };

// Credits picture: wide (eight to one) RGBA, colour premultiplied by alpha and black where
// transparent, so it reads the same whether the credits add it or blend it.
Picture titleCard(const FontShelf& fonts, Title title, int width, int height);

// Square RGB dye picture for the fluid: saturated colour on black.
Picture titleDye(const FontShelf& fonts, Title title, int size);

// Loading screen, both 1024 x 512 drawn stretched over a 16:9 screen, so their art is laid out
// for pixels 9/8 as tall as they are wide. The background is RGB; the overlay, uncovered from
// left to right as loading advances, is straight-alpha RGBA holding only what lights up. Both
// are stored bottom row first because the loading screen puts texture row 0 at the top.
Picture loaderBackground(const FontShelf& fonts);
Picture loaderOverlay(const FontShelf& fonts);

// The launcher dialog's title art, 390 x 49 RGB.
Picture launcherBanner(const FontShelf& fonts);

} // namespace texgen
