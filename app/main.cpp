// Entry of brinova: the engine's start-up with the Brinova production.
#include "BrinovaProgressBar.h"
#include "BrinovaResources.h"
#include "BrinovaShaderCache.h"
#include "DemoMain.h"

int main(int argc, char** argv) {
    DemoMain::Production brinova{[] { return new BrinovaProgressBar; },
                                 [] { return new BrinovaShaderCache; },
                                 [] { return new BrinovaResources; }, BRINOVA_SOURCE_FOLDER};
    return DemoMain::run(argc, argv, brinova);
}
