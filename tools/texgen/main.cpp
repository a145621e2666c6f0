// texgen: draws every picture of the production into a folder.
#include "Catalogue.h"
#include "ContactSheet.h"
#include "FluidPreview.h"

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iomanip>
#include <iostream>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

struct Options {
    std::string outputFolder;
    std::string contactSheet;
    std::string fontFolder = raster::DefaultFontFolder;
    bool list = false;
    bool verbose = false;
};

void printUsage(std::ostream& out) {
    out << "Usage: texgen [options] OUTPUT_FOLDER\n"
        << "       texgen --contact-sheet SHEET.png [options] [OUTPUT_FOLDER]\n"
        << "       texgen --list\n"
        << "\n"
        << "Draws every picture of the production into OUTPUT_FOLDER (created if missing).\n"
        << "\n"
        << "Options:\n"
        << "  --contact-sheet SHEET.png  also write one PNG that shows every picture; without\n"
        << "                             OUTPUT_FOLDER the pictures are drawn into a temporary\n"
        << "                             folder that is removed afterwards\n"
        << "  --font-dir FOLDER          where the DejaVu fonts are (default "
        << raster::DefaultFontFolder << ")\n"
        << "  --list                     print the names of the pictures and exit\n"
        << "  --verbose                  print each picture's size and drawing time\n"
        << "  --help                     show this help and exit\n";
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
    if (!options.list && options.outputFolder.empty() && options.contactSheet.empty()) {
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

// A new folder under the system's temporary folder, removed with its contents at the end.
class TemporaryFolder {
public:
    TemporaryFolder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "texgen-XXXXXX").string();
        if (mkdtemp(pattern.data()) == nullptr) {
            throw std::runtime_error("cannot create a temporary folder '" + pattern +
                                     "': " + std::strerror(errno));
        }
        path_ = pattern;
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::string& path() const { return path_; }

private:
    std::string path_;
};

double secondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// Draws every picture into folder (the user's output folder or a temporary one).
int drawAll(const Options& options, const std::string& folder) {
    const std::vector<texgen::PictureEntry> entries = texgen::catalogue();
    const auto start = std::chrono::steady_clock::now();
    const texgen::FontShelf fonts(options.fontFolder);
    fonts.loadAll();
    makeFolder(folder);

    std::vector<texgen::SheetItem> sheet;
    std::map<std::string, texgen::Picture> drawn;
    for (const texgen::PictureEntry& entry : entries) {
        const auto pictureStart = std::chrono::steady_clock::now();
        texgen::Picture picture = entry.make(fonts);
        texgen::writePng(picture, folder + "/" + entry.file);
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
    std::cout << "texgen: " << entries.size() << " pictures "
              << (options.outputFolder.empty() ? "on the contact sheet '" + options.contactSheet
                                               : "in '" + options.outputFolder)
              << "' in " << std::fixed << std::setprecision(2) << secondsSince(start) << " s\n";
    return 0;
}

int run(const Options& options) {
    if (options.list) {
        for (const texgen::PictureEntry& entry : texgen::catalogue()) {
            std::cout << entry.file << "\n";
        }
        return 0;
    }
    if (!options.outputFolder.empty()) {
        return drawAll(options, options.outputFolder);
    }
    const TemporaryFolder scratch;
    return drawAll(options, scratch.path());
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
