// texgen: draws every picture of the production into a folder.
#include "Catalogue.h"
#include "ContactSheet.h"
#include "FluidPreview.h"

#include <chrono>
#include <cstring>
#include <filesystem>
#include <iomanip>
#include <iostream>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

const char* const kDefaultFontFolder = "/usr/share/fonts/truetype/dejavu";

struct Options {
    std::string outputFolder;
    std::string contactSheet;
    std::string fontFolder = kDefaultFontFolder;
    bool list = false;
    bool verbose = false;
};

void printUsage(std::ostream& out) {
    out << "Usage: texgen [options] OUTPUT_FOLDER\n"
        << "       texgen --list\n"
        << "\n"
        << "Draws every picture of the production into OUTPUT_FOLDER (created if missing).\n"
        << "\n"
        << "Options:\n"
        << "  --contact-sheet FILE  also write one PNG that shows every picture\n"
        << "  --font-dir FOLDER     where the DejaVu fonts are (default " << kDefaultFontFolder
        << ")\n"
        << "  --list                print the names of the pictures and exit\n"
        << "  --verbose             print each picture's size and drawing time\n"
        << "  --help                show this help and exit\n";
}

struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

std::string valueAfter(int& i, int argc, char** argv) {
    if (i + 1 >= argc) {
        throw UsageError(std::string("option '") + argv[i] + "' needs a value");
    }
    return argv[++i];
}

Options parse(int argc, char** argv) {
    Options options;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--contact-sheet") {
            options.contactSheet = valueAfter(i, argc, argv);
        } else if (arg == "--font-dir") {
            options.fontFolder = valueAfter(i, argc, argv);
        } else if (arg == "--list") {
            options.list = true;
        } else if (arg == "--verbose") {
            options.verbose = true;
        } else if (!arg.empty() && arg[0] == '-') {
            throw UsageError("unknown option '" + arg + "'");
        } else if (options.outputFolder.empty()) {
            options.outputFolder = arg;
        } else {
            throw UsageError("more than one output folder ('" + options.outputFolder + "', '" +
                             arg + "')");
        }
    }
    if (!options.list && options.outputFolder.empty()) {
        throw UsageError("no output folder given");
    }
    return options;
}

void makeFolder(const std::string& folder) {
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (error || !std::filesystem::is_directory(folder)) {
        throw std::runtime_error("cannot create the output folder '" + folder +
                                 "': " + (error ? error.message() : "a file is in the way"));
    }
}

const char* channelName(int channels) {
    switch (channels) {
    case 1:
        return "grey";
    case 3:
        return "RGB";
    case 4:
        return "RGBA";
    default:
        return "?";
    }
}

std::string sheetLabel(const texgen::PictureEntry& entry, const texgen::Picture& picture) {
    return entry.file + "  " + std::to_string(picture.width) + "x" +
           std::to_string(picture.height) + " " + channelName(picture.channels) +
           (entry.storedUpsideDown ? "  (as on screen)" : "");
}

// Each fluid mode's dye after some stirring by its velocity pictures.
void addFluidPreviews(std::vector<texgen::SheetItem>& sheet,
                      const std::map<std::string, texgen::Picture>& pictures) {
    for (const texgen::FluidMode& m : texgen::fluidModes()) {
        const std::string label = "fluid mode " + std::to_string(m.mode) + ", stirred";
        sheet.push_back({label, texgen::stirredPreview(pictures.at(m.dye), pictures.at(m.u),
                                                       pictures.at(m.v), 40)});
    }
}

double secondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

int run(const Options& options) {
    const std::vector<texgen::PictureEntry> entries = texgen::catalogue();
    if (options.list) {
        for (const texgen::PictureEntry& entry : entries) {
            std::cout << entry.file << "\n";
        }
        return 0;
    }
    const auto start = std::chrono::steady_clock::now();
    const texgen::FontShelf fonts(options.fontFolder);
    fonts.loadAll();
    makeFolder(options.outputFolder);

    std::vector<texgen::SheetItem> sheet;
    std::map<std::string, texgen::Picture> drawn;
    for (const texgen::PictureEntry& entry : entries) {
        const auto pictureStart = std::chrono::steady_clock::now();
        texgen::Picture picture = entry.make(fonts);
        texgen::writePng(picture, options.outputFolder + "/" + entry.file);
        if (options.verbose) {
            std::cout << "  " << std::left << std::setw(24) << entry.file << std::right
                      << std::setw(5) << picture.width << " x " << std::left << std::setw(5)
                      << picture.height << std::setw(5) << channelName(picture.channels)
                      << std::right << std::fixed << std::setprecision(3)
                      << secondsSince(pictureStart) << " s\n";
        }
        if (!options.contactSheet.empty()) {
            sheet.push_back({sheetLabel(entry, picture), entry.storedUpsideDown
                                                             ? texgen::flippedVertically(picture)
                                                             : picture});
            drawn.emplace(entry.file, std::move(picture));
        }
    }
    if (!options.contactSheet.empty()) {
        addFluidPreviews(sheet, drawn);
        texgen::writePng(texgen::contactSheet(sheet, fonts.mono()), options.contactSheet);
    }
    std::cout << "texgen: " << entries.size() << " pictures in '" << options.outputFolder << "' in "
              << std::fixed << std::setprecision(2) << secondsSince(start) << " s\n";
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--help") == 0) {
            printUsage(std::cout);
            return 0;
        }
    }
    try {
        return run(parse(argc, argv));
    } catch (const UsageError& error) {
        std::cerr << "texgen: " << error.what() << "\n\n";
        printUsage(std::cerr);
        return 2;
    } catch (const std::exception& error) {
        std::cerr << "texgen: " << error.what() << "\n";
        return 1;
    }
}
