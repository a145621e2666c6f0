#pragma once

#include <string>

// What brinova-view was asked to show, and how.
struct ViewOptions {
    std::string model;
    // Where to write the one frame of a shot; empty for the window.
    std::string shot;
    // A scene camera to start from instead of the orbit camera.
    std::string camera;
    int width = 960;
    int height = 540;
    bool help = false;

    // Reads argv; false with a message naming the option or value when one is wrong.
    bool parse(int argc, const char* const* argv, std::string& error);
    static std::string usage();
};
