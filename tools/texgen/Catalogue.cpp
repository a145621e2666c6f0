#include "Catalogue.h"

#include "Flow.h"
#include "Lookups.h"
#include "Overlay.h"
#include "Sprites.h"
#include "Titles.h"
#include "Water.h"

namespace texgen {

namespace {

constexpr int kWaterSize = 512;
constexpr int kSpriteSize = 128;
constexpr int kFlowSize = 128;
constexpr int kCardWidth = 1024;
constexpr int kCardHeight = 128;
constexpr int kDyeSize = 256;

PictureEntry waves(const char* file, WaveScale scale) {
    return {file, [scale](const FontShelf&) { return waveNormals(scale, kWaterSize); }};
}

PictureEntry flow(const char* file, FlowKind kind, bool vertical) {
    return {file, [kind, vertical](const FontShelf&) {
                FlowPair pair = flowPair(kind, kFlowSize);
                return vertical ? pair.v : pair.u;
            }};
}

PictureEntry card(const char* file, Title title) {
    return {file, [title](const FontShelf& fonts) {
                return titleCard(fonts, title, kCardWidth, kCardHeight);
            }};
}

PictureEntry dye(const char* file, Title title) {
    return {file, [title](const FontShelf& fonts) { return titleDye(fonts, title, kDyeSize); }};
}

} // namespace

std::vector<PictureEntry> catalogue() {
    return {
        {"OceanSurface.png", [](const FontShelf&) { return oceanSurface(kWaterSize); }},
        waves("Waves1Normals.png", WaveScale::Swell),
        waves("Waves2Normals.png", WaveScale::Chop),
        waves("Waves3Normals.png", WaveScale::Ripples),
        {"FrameOverlay.png", [](const FontShelf&) { return frameOverlay(1024); }},
        {"Noise.png", [](const FontShelf&) { return colourNoise(256); }},
        {"Kernel.png", [](const FontShelf&) { return gaussianKernel(256); }},
        {"Threshold.png", [](const FontShelf&) { return thresholdRamp(256); }},
        {"light.png", [](const FontShelf&) { return lightSprite(kSpriteSize); }},
        {"Particle.png", [](const FontShelf&) { return creatureSprite(kSpriteSize); }},
        {"Puff.png", [](const FontShelf&) { return puffSprite(kSpriteSize); }},
        flow("Velocities.png", FlowKind::Swirl, false),
        flow("Velocities2.png", FlowKind::Swirl, true),
        flow("Velocities3.png", FlowKind::Jets, false),
        flow("Velocities4.png", FlowKind::Jets, true),
        flow("Velocities5.png", FlowKind::Turbulence, false),
        flow("Velocities6.png", FlowKind::Turbulence, true),
        card("Vask.png", Title::Vask),
        card("Lumo.png", Title::Lumo),
        card("Orin.png", Title::Orin),
        card("Quillet.png", Title::Quillet),
        card("KorvathLogo.png", Title::Korvath),
        card("BrinovaLogo.png", Title::Brinova),
        dye("VaskSmall.png", Title::Vask),
        dye("LumoSmall.png", Title::Lumo),
        dye("OrinSmall.png", Title::Orin),
        dye("QuilletSmall.png", Title::Quillet),
        dye("KorvathLogoSmall.png", Title::Korvath),
        dye("BrinovaLogoSmall.png", Title::Brinova),
        {"Loader1.png", [](const FontShelf& fonts) { return loaderBackground(fonts); }, true},
        {"Loader2.png", [](const FontShelf& fonts) { return loaderOverlay(fonts); }, true},
        {"LauncherBanner.png", [](const FontShelf& fonts) { return launcherBanner(fonts); }},
    };
}

} // namespace texgen
