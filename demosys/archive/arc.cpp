#include "arc.h"

#include "File.h"
#include "Image.h"
#include "packman.h"

#include <iostream>
#include <memory>
#include <new>
#include <vector>

namespace {

enum class Extraction { MISSING, FAILED, DONE };

Extraction extractEntry(const std::string& name, std::vector<unsigned char>& bytes) {
    const int size = packman_getFileSize(name.c_str());
    if (size < 0) {
        return Extraction::MISSING;
    }
    bytes.resize(static_cast<std::size_t>(size));
    if (packman_getFile(name.c_str(), bytes.data()) != 0) {
        // The loader then reports the resource as missing: say first why it is.
        std::cout << "Archive : " << packman_getError() << std::endl;
        return Extraction::FAILED;
    }
    return Extraction::DONE;
}

} // namespace

bool arc_load(std::string path) {
    return packman_init(path.c_str()) == 0;
}

std::string arc_getError() {
    return packman_getError();
}

void arc_close() {
    packman_shutdown();
}

bool arc_getFile(File* file) {
    std::vector<unsigned char> bytes;
    const Extraction result = extractEntry(file->getFilename(), bytes);
    if (result == Extraction::MISSING) {
        file->exists(false);
    }
    if (result != Extraction::DONE) {
        return false;
    }
    file->setData(std::move(bytes));
    file->exists(true);
    return true;
}

bool arc_getImage(Image* image) {
    std::vector<unsigned char> bytes;
    const Extraction result = extractEntry(image->getFileName(), bytes);
    if (result == Extraction::MISSING) {
        image->exists(false);
    }
    if (result != Extraction::DONE) {
        return false;
    }
    image->putData(bytes.data(), static_cast<unsigned int>(bytes.size()));
    return true;
}
