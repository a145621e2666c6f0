// Opens arbitrary bytes as the resource archive and extracts the entries the seed archives
// hold (made by 7zz with the project's options and a few other coders), through the same
// calls KVTIO makes. Damage must end in "not found" or a failed extraction, never a crash.
#include "File.h"
#include "Image.h"
#include "archive/arc.h"
#include "archive/packman.h"

#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <string>

namespace {

const char* const NAMES[] = {"resources/misc/a.bin", "resources/misc/b.bin",
                             "resources/misc/empty.bin"};
const char* const PICTURE = "resources/graphics/p.png";
// Entries claiming more are looked up but not extracted, to keep each run short.
const int MAX_EXTRACTED = 1 << 22;

std::string archivePath() {
    return "/tmp/fuzz_archive_" + std::to_string(getpid()) + ".7z";
}

bool writeArchive(const std::string& path, const uint8_t* data, size_t size) {
    std::FILE* out = std::fopen(path.c_str(), "wb");
    if (out == nullptr) {
        return false;
    }
    const bool written = std::fwrite(data, 1, size, out) == size;
    return std::fclose(out) == 0 && written;
}

void extractAll() {
    for (const char* name : NAMES) {
        const int size = packman_getFileSize(name);
        if (size < 0 || size > MAX_EXTRACTED) {
            continue;
        }
        File file(name);
        if (arc_getFile(&file) && file.getFileSize() != static_cast<unsigned int>(size)) {
            __builtin_trap();
        }
    }
    if (packman_getFileSize(PICTURE) <= MAX_EXTRACTED) {
        Image image;
        image.setFileName(PICTURE);
        arc_getImage(&image);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const std::string path = archivePath();
    if (!writeArchive(path, data, size)) {
        return 0;
    }
    if (arc_load(path)) {
        extractAll();
        // Twice: the second pass reopens the reader and walks again from the start.
        extractAll();
    }
    arc_close();
    std::remove(path.c_str());
    return 0;
}
