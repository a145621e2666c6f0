#include "TestSupport.h"

#include "Catalogue.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>
#include <stdexcept>
#include <sys/wait.h>

namespace texgen::test {

const Picture& drawn(const std::string& file) {
    static const FontShelf fonts(TEXGEN_FONT_FOLDER);
    static std::map<std::string, Picture> cache;
    auto found = cache.find(file);
    if (found != cache.end()) {
        return found->second;
    }
    for (const PictureEntry& entry : catalogue()) {
        if (entry.file == file) {
            return cache.emplace(file, entry.make(fonts)).first->second;
        }
    }
    throw std::invalid_argument("no picture named " + file);
}

namespace {

double difference(const Picture& p, int x0, int y0, int x1, int y1) {
    double sum = 0.0;
    for (int c = 0; c < p.channels; ++c) {
        sum += std::abs(int(p.pixel(x0, y0)[c]) - int(p.pixel(x1, y1)[c]));
    }
    return sum;
}

} // namespace

double seamRatioX(const Picture& p) {
    double interior = 0.0;
    double seam = 0.0;
    for (int y = 0; y < p.height; ++y) {
        for (int x = 0; x + 1 < p.width; ++x) {
            interior += difference(p, x, y, x + 1, y);
        }
        seam += difference(p, p.width - 1, y, 0, y);
    }
    return (seam / p.height) / (interior / (double(p.width - 1) * p.height));
}

double seamRatioY(const Picture& p) {
    double interior = 0.0;
    double seam = 0.0;
    for (int x = 0; x < p.width; ++x) {
        for (int y = 0; y + 1 < p.height; ++y) {
            interior += difference(p, x, y, x, y + 1);
        }
        seam += difference(p, x, p.height - 1, x, 0);
    }
    return (seam / p.width) / (interior / (double(p.height - 1) * p.width));
}

CommandResult runTexgen(const std::string& arguments) {
    const std::string command = std::string("'") + TEXGEN_EXECUTABLE + "' " + arguments + " 2>&1";
    FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) {
        throw std::runtime_error("cannot start " + command);
    }
    std::string output;
    char buffer[4096];
    std::size_t n;
    while ((n = std::fread(buffer, 1, sizeof buffer, pipe)) > 0) {
        output.append(buffer, n);
    }
    const int status = pclose(pipe);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, output};
}

std::string freshFolder() {
    std::string pattern = "/tmp/texgen-test-XXXXXX";
    if (!mkdtemp(pattern.data())) {
        throw std::runtime_error("cannot make a temporary folder");
    }
    return pattern;
}

std::string readFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
}

} // namespace texgen::test
