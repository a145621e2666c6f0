// Entry of the brinova executable.
#include "BrinovaVersion.h"

#include <cstring>
#include <iostream>

namespace {

void printUsage(std::ostream& out) {
    out << "Usage: " << BRINOVA_NAME << " [options]\n"
        << "\n"
        << "Plays the Brinova demo.\n"
        << "\n"
        << "Options:\n"
        << "  --help       show this help and exit\n"
        << "  --version    show the program name and version and exit\n";
}

} // namespace

int main(int argc, char** argv) {
    for (int i = 1; i < argc; ++i) {
        if (std::strcmp(argv[i], "--help") == 0) {
            printUsage(std::cout);
            return 0;
        }
        if (std::strcmp(argv[i], "--version") == 0) {
            std::cout << BRINOVA_NAME << " " << BRINOVA_VERSION << "\n";
            return 0;
        }
        std::cerr << BRINOVA_NAME << ": unknown option '" << argv[i] << "'\n\n";
        printUsage(std::cerr);
        return 2;
    }
    std::cerr << BRINOVA_NAME << ": the demo player is not part of this build yet\n";
    return 1;
}
