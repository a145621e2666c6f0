#include "ViewOptions.h"

#include "DemoOptions.h"

#include <vector>

std::string ViewOptions::usage() {
    return "Usage: brinova-view [--size WxH] [--camera NAME] [--shot FILE.png] "
           "MODEL.obj|FILE.scene\n"
           "\n"
           "Shows a Wavefront OBJ model (converted as obj2scene converts it) or a scene file,\n"
           "loaded and lit by the engine's scene code: the scene's own lights, or a light\n"
           "over the viewer's shoulder when it has none.\n"
           "\n"
           "Options:\n"
           "  --shot FILE.png   render one frame into FILE.png and exit\n"
           "  --size WxH        window or picture size (default 960x540)\n"
           "  --camera NAME     start from the scene's camera NAME instead of the orbit camera\n"
           "  --help            show this help and exit\n"
           "\n"
           "In the window: drag with the left mouse button to turn, the wheel zooms, F frames\n"
           "the model, C steps through the scene's cameras and back to the orbit camera,\n"
           "Escape quits.\n";
}

bool ViewOptions::parse(int argc, const char* const* argv, std::string& error) {
    const std::vector<std::string> args(argv + 1, argv + argc);
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& arg = args[i];
        const bool takesValue = arg == "--shot" || arg == "--size" || arg == "--camera";
        if (takesValue && i + 1 == args.size()) {
            error = "option '" + arg + "' needs a value";
            return false;
        }
        if (arg == "--help") {
            help = true;
        } else if (arg == "--shot") {
            shot = args[++i];
        } else if (arg == "--camera") {
            camera = args[++i];
        } else if (arg == "--size") {
            if (!DemoOptions::readSize(args[++i], width, height)) {
                error = "invalid size '" + args[i] + "' (WxH with sides from 16 to 16384)";
                return false;
            }
        } else if (arg.rfind("--", 0) == 0) {
            error = "unknown option '" + arg + "'";
            return false;
        } else if (!model.empty()) {
            error = "more than one model ('" + model + "', '" + arg + "')";
            return false;
        } else {
            model = arg;
        }
    }
    if (model.empty() && !help) {
        error = "no model given";
        return false;
    }
    return true;
}
