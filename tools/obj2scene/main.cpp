// obj2scene: converts a Wavefront OBJ model with its MTL materials into a scene file the
// demo loads from resources/objects/ (texture pictures go to resources/graphics/).
#include "KVTObjImporter.h"
#include "KVTSceneWriter.h"

#include <iostream>
#include <sstream>
#include <string>
#include <vector>

namespace {

void printUsage(std::ostream& out) {
    out << "Usage: obj2scene [--light X,Y,Z]... INPUT.obj OUTPUT.scene\n"
        << "  Every group and material of the model becomes a mesh under one root node named\n"
        << "  after OUTPUT. Material libraries are read from INPUT's folder; texture files are\n"
        << "  named without their folders. --light adds a white point light at X,Y,Z.\n";
}

bool parsePosition(const std::string& text, KVTSceneRecord::Float3& position) {
    std::istringstream in(text);
    char comma1 = 0, comma2 = 0;
    in >> position[0] >> comma1 >> position[1] >> comma2 >> position[2];
    return !in.fail() && comma1 == ',' && comma2 == ',' && in.peek() == EOF;
}

// The file name without folders and extension.
std::string stem(const std::string& path) {
    const std::size_t slash = path.find_last_of('/');
    const std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
    return name.substr(0, name.find('.'));
}

} // namespace

int main(int argc, char** argv) {
    std::vector<std::string> files;
    KVTObjImporter importer;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        KVTSceneRecord::Float3 position{};
        if (arg == "--help") {
            printUsage(std::cout);
            return 0;
        }
        if (arg == "--light" && i + 1 < argc && parsePosition(argv[i + 1], position)) {
            importer.addPointLight(position);
            ++i;
        } else if (arg.rfind("--", 0) == 0 || files.size() == 2) {
            std::cerr << "obj2scene: unexpected argument '" << arg << "'\n";
            printUsage(std::cerr);
            return 2;
        } else {
            files.push_back(arg);
        }
    }
    if (files.size() != 2) {
        printUsage(std::cerr);
        return 2;
    }
    if (!importer.readFile(files[0])) {
        std::cerr << "obj2scene: " << importer.getErrorMessage() << "\n";
        return 1;
    }
    KVTSceneWriter writer;
    importer.write(writer, stem(files[1]));
    if (!writer.write(files[1])) {
        std::cerr << "obj2scene: " << writer.getErrorMessage() << "\n";
        return 1;
    }
    std::cout << "Wrote " << files[1] << ": " << importer.countMeshes() << " meshes, "
              << importer.countTriangles() << " triangles, " << importer.countMaterials()
              << " materials\n";
    return 0;
}
