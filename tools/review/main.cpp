// brinova-review: lays the frames that `brinova --capture DIR --fps N` wrote into one contact
// sheet, each tile labelled with its time and its bar.beat, so a whole run can be seen at a
// glance.
#include "ContactSheet.h"
#include "Font.h"
#include "Picture.h"

#include <stb_image.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

const int kColumns = 10;
const int kTileWidth = 288;
const int kGap = 14;

struct Options {
    std::string frames;
    std::string sheet;
    double fps = 1.0;
    double tempo = 120.0;
};

void usage() {
    std::cerr << "usage: brinova-review [--fps N] [--tempo BPM] FRAME_FOLDER SHEET.png\n"
                 "  Tiles the frame*.png pictures of FRAME_FOLDER (as --capture writes them at\n"
                 "  N frames a second, default 1) into SHEET.png, labelled with time and bar.\n";
}

bool parse(int argc, char** argv, Options& options) {
    std::vector<std::string> paths;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if ((arg == "--fps" || arg == "--tempo") && i + 1 < argc) {
            const double value = std::atof(argv[++i]);
            if (value <= 0) {
                std::cerr << "brinova-review: invalid value '" << argv[i] << "' for " << arg
                          << "\n";
                return false;
            }
            (arg == "--fps" ? options.fps : options.tempo) = value;
        } else {
            paths.push_back(arg);
        }
    }
    if (paths.size() != 2) {
        usage();
        return false;
    }
    options.frames = paths[0];
    options.sheet = paths[1];
    return true;
}

// "01:04.5  bar 33.2": minutes and seconds, then the bar and beat (4 beats a bar) it falls in.
std::string labelOf(double seconds, double tempo) {
    const double beats = seconds * tempo / 60.0;
    const int bar = static_cast<int>(beats / 4.0) + 1;
    const int beat = static_cast<int>(beats) % 4 + 1;
    const int minutes = static_cast<int>(seconds / 60.0);
    char text[64];
    std::snprintf(text, sizeof text, "%02d:%04.1f  bar %d.%d", minutes, seconds - minutes * 60.0,
                  bar, beat);
    return text;
}

raster::Picture readFrame(const fs::path& path) {
    int width = 0;
    int height = 0;
    int channels = 0;
    stbi_uc* pixels = stbi_load(path.c_str(), &width, &height, &channels, 3);
    if (pixels == nullptr) {
        throw std::runtime_error("cannot read the frame '" + path.string() + "'");
    }
    raster::Picture picture(width, height, 3);
    std::copy(pixels, pixels + picture.bytes.size(), picture.bytes.begin());
    stbi_image_free(pixels);
    return picture;
}

std::vector<fs::path> framesIn(const std::string& folder) {
    std::vector<fs::path> frames;
    for (const fs::directory_entry& entry : fs::directory_iterator(folder)) {
        const std::string name = entry.path().filename().string();
        if (name.rfind("frame", 0) == 0 && entry.path().extension() == ".png") {
            frames.push_back(entry.path());
        }
    }
    std::sort(frames.begin(), frames.end());
    return frames;
}

} // namespace

int main(int argc, char** argv) {
    Options options;
    if (!parse(argc, argv, options)) {
        return 2;
    }
    try {
        if (!fs::is_directory(options.frames)) {
            throw std::runtime_error("the frame folder '" + options.frames + "' is missing");
        }
        const std::vector<fs::path> frames = framesIn(options.frames);
        if (frames.empty()) {
            throw std::runtime_error("no frame*.png in '" + options.frames + "'");
        }
        std::vector<texgen::SheetItem> items;
        for (std::size_t i = 0; i < frames.size(); ++i) {
            items.push_back({labelOf(i / options.fps, options.tempo), readFrame(frames[i])});
        }
        const raster::FontShelf fonts(raster::DefaultFontFolder);
        texgen::SheetLayout layout;
        layout.wideBox = kTileWidth;
        layout.width = kColumns * (kTileWidth + kGap) + kGap;
        raster::writePng(texgen::contactSheet(items, fonts.mono(), layout), options.sheet);
        std::cout << "Wrote " << options.sheet << " (" << frames.size() << " frames)\n";
    } catch (const std::exception& error) {
        std::cerr << "brinova-review: " << error.what() << "\n";
        return 1;
    }
    return 0;
}
