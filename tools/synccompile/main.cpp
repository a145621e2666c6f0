// synccompile: compiles a production's sync-track text into the track pack the demo loads,
// or turns a pack back into text.
#include "SyncText.h"

#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>

namespace {

void printUsage(std::ostream& out) {
    out << "Usage:\n"
        << "  synccompile compile SOURCE.sync OUTPUT_FOLDER [--effects LIST]\n"
        << "      writes OUTPUT_FOLDER/index.list and track.data; LIST names each effect\n"
        << "      instance and its tracks as 'instance: track track ...' lines\n"
        << "  synccompile decompile PACK_FOLDER [OUTPUT.sync]\n"
        << "      writes the pack as text (to standard output without OUTPUT)\n";
}

bool readText(const std::string& path, std::string& text) {
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        std::cerr << "synccompile: cannot read '" << path << "'\n";
        return false;
    }
    std::ostringstream contents;
    contents << in.rdbuf();
    text = contents.str();
    return true;
}

int compile(const std::string& source, const std::string& folder, const std::string& listPath) {
    std::string text, error;
    if (!readText(source, text)) {
        return 1;
    }
    synctext::Schema schema;
    if (!listPath.empty()) {
        std::string listText;
        if (!readText(listPath, listText) ||
            !synctext::parseSchema(listText, listPath, schema, error)) {
            std::cerr << (error.empty() ? "" : "synccompile: " + error + "\n");
            return 1;
        }
    }
    synctext::Document document;
    std::error_code noFolder;
    std::filesystem::create_directories(folder, noFolder);
    if (!synctext::parse(text, source, listPath.empty() ? nullptr : &schema, document, error) ||
        !synctext::writePack(document, folder, error)) {
        std::cerr << "synccompile: " << error << "\n";
        return 1;
    }
    return 0;
}

int decompile(const std::string& folder, const std::string& output) {
    synctext::Document document;
    std::string error;
    if (!synctext::readPack(folder, document, error)) {
        std::cerr << "synccompile: " << error << "\n";
        return 1;
    }
    std::string text = synctext::format(document);
    if (output.empty()) {
        std::cout << text;
        return 0;
    }
    std::ofstream out(output, std::ios::binary);
    if (!(out << text)) {
        std::cerr << "synccompile: cannot write '" << output << "'\n";
        return 1;
    }
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    std::string command = argc > 1 ? argv[1] : "";
    if (command == "--help") {
        printUsage(std::cout);
        return 0;
    }
    if (command == "compile" && argc == 4) {
        return compile(argv[2], argv[3], "");
    }
    if (command == "compile" && argc == 6 && std::string(argv[4]) == "--effects") {
        return compile(argv[2], argv[3], argv[5]);
    }
    if (command == "decompile" && (argc == 3 || argc == 4)) {
        return decompile(argv[2], argc == 4 ? argv[3] : "");
    }
    printUsage(std::cerr);
    return 2;
}
