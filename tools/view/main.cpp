// brinova-view: shows a model or scene file in a window with an orbit camera, or renders one
// frame of it into a picture.
#include "ViewOptions.h"
#include "Viewer.h"

#include <iostream>

int main(int argc, char** argv) {
    ViewOptions options;
    std::string error;
    if (!options.parse(argc, argv, error)) {
        std::cerr << "brinova-view: " << error << "\n\n" << ViewOptions::usage();
        return 2;
    }
    if (options.help) {
        std::cout << ViewOptions::usage();
        return 0;
    }
    return runViewer(options);
}
