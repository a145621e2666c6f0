// synccompile: compiles a production's sync-track text into the track pack the demo loads,
// or turns a pack back into text, or trades keys with a sync-tracker editor's project file.
#include "RocketProject.h"
#include "SyncText.h"

#include <filesystem>
#include <fstream>
#include <iostream>
#include <sstream>
#include <vector>

namespace {

void printUsage(std::ostream& out) {
    out << "Usage:\n"
        << "  synccompile compile SOURCE.sync OUTPUT_FOLDER [--effects LIST]\n"
        << "      writes OUTPUT_FOLDER/index.list and track.data; LIST names each effect\n"
        << "      instance and its tracks as 'instance: track track ...' lines\n"
        << "  synccompile decompile PACK_FOLDER [OUTPUT.sync] [--tempo BPM]\n"
        << "      writes the pack as text (to standard output without OUTPUT), times as\n"
        << "      mm:ss:ms; with --tempo also the tempo and end lines, and times that fall on\n"
        << "      a beat as bar.beat\n"
        << "  synccompile export-rocket SOURCE.sync OUT.rocket\n"
        << "      writes the tracks as a sync-tracker editor's project, to open before the demo\n"
        << "      links to the editor\n"
        << "  synccompile import-rocket IN.rocket SOURCE.sync\n"
        << "      puts the project's keys into the text's tracks, keeping the rest of it\n";
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

bool writeText(const std::string& path, const std::string& text) {
    std::ofstream out(path, std::ios::binary);
    if (!(out << text)) {
        std::cerr << "synccompile: cannot write '" << path << "'\n";
        return false;
    }
    return true;
}

int decompile(const std::string& folder, const std::string& output, float tempo) {
    synctext::Document document;
    std::string error;
    if (!synctext::readPack(folder, document, error)) {
        std::cerr << "synccompile: " << error << "\n";
        return 1;
    }
    std::string text = synctext::format(document, tempo);
    if (output.empty()) {
        std::cout << text;
        return 0;
    }
    return writeText(output, text) ? 0 : 1;
}

bool readDocument(const std::string& source, std::string& text, synctext::Document& document) {
    std::string error;
    if (!readText(source, text)) {
        return false;
    }
    if (!synctext::parse(text, source, nullptr, document, error)) {
        std::cerr << "synccompile: " << error << "\n";
        return false;
    }
    return true;
}

int exportRocket(const std::string& source, const std::string& output) {
    std::string text;
    synctext::Document document;
    if (!readDocument(source, text, document)) {
        return 1;
    }
    return writeText(output, rocket::writeXml(rocket::fromDocument(document))) ? 0 : 1;
}

// The merged text must read back before it replaces the source.
int importRocket(const std::string& input, const std::string& source) {
    std::string xml, text, error;
    synctext::Document original, keys, merged;
    rocket::Project project;
    if (!readText(input, xml) || !readDocument(source, text, original)) {
        return 1;
    }
    if (!rocket::readXml(xml, input, project, error) || !rocket::toKeys(project, keys, error)) {
        std::cerr << "synccompile: " << (error.find(input) == 0 ? "" : input + ": ") << error
                  << "\n";
        return 1;
    }
    const std::string result = synctext::mergeKeys(text, keys);
    if (!synctext::parse(result, source, nullptr, merged, error)) {
        std::cerr << "synccompile: the imported keys do not fit the text: " << error << "\n";
        return 1;
    }
    return writeText(source, result) ? 0 : 1;
}

// "decompile PACK_FOLDER [OUTPUT.sync] [--tempo BPM]", the option anywhere after the command.
int decompileCommand(const std::vector<std::string>& args) {
    std::vector<std::string> paths;
    float tempo = 0.0f;
    for (size_t i = 0; i < args.size(); ++i) {
        if (args[i] == "--tempo") {
            const std::string value = i + 1 < args.size() ? args[++i] : "";
            if (!synctext::readTempo(value, tempo)) {
                std::cerr << "synccompile: --tempo needs beats per minute (above 0, up to 1000), "
                          << "found '" << value << "'\n";
                return 2;
            }
        } else if (args[i].rfind("--", 0) == 0) {
            std::cerr << "synccompile: unknown option '" << args[i] << "'\n";
            return 2;
        } else {
            paths.push_back(args[i]);
        }
    }
    if (paths.empty() || paths.size() > 2) {
        printUsage(std::cerr);
        return 2;
    }
    return decompile(paths[0], paths.size() == 2 ? paths[1] : "", tempo);
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
    if (command == "export-rocket" && argc == 4) {
        return exportRocket(argv[2], argv[3]);
    }
    if (command == "import-rocket" && argc == 4) {
        return importRocket(argv[2], argv[3]);
    }
    if (command == "decompile") {
        return decompileCommand(std::vector<std::string>(argv + 2, argv + argc));
    }
    printUsage(std::cerr);
    return 2;
}
