// Picture files for tests: PNGs encoded in memory and written into fresh folders.
#pragma once

#include <stb_image_write.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace testpictures {

// Pixels with the top row first, as a picture file holds them.
inline std::vector<unsigned char> encodePng(int width, int height, int channels,
                                            const std::vector<unsigned char>& pixels) {
    std::vector<unsigned char> png;
    auto append = [](void* context, void* bytes, int size) {
        auto* out = static_cast<std::vector<unsigned char>*>(context);
        const auto* begin = static_cast<const unsigned char*>(bytes);
        out->insert(out->end(), begin, begin + size);
    };
    stbi_write_png_to_func(append, &png, width, height, channels, pixels.data(), width * channels);
    return png;
}

// Removes the folders freshFolder made when the test program ends.
struct FolderSweeper {
    std::vector<std::string> folders;
    ~FolderSweeper() {
        for (const std::string& folder : folders) {
            std::error_code ignored;
            std::filesystem::remove_all(folder, ignored);
        }
    }
};

// A new empty folder under the system's temporary folder, with a trailing "/"; it is removed
// when the test program ends.
inline std::string freshFolder() {
    static FolderSweeper sweeper;
    std::string pattern = "/tmp/brinova-test-XXXXXX";
    sweeper.folders.push_back(mkdtemp(pattern.data()));
    return sweeper.folders.back() + "/";
}

inline void writeFile(const std::string& path, const std::vector<unsigned char>& bytes) {
    std::ofstream out(path, std::ios::binary);
    out.write(reinterpret_cast<const char*>(bytes.data()), static_cast<long>(bytes.size()));
}

inline void writeFile(const std::string& path, const std::string& text) {
    writeFile(path, std::vector<unsigned char>(text.begin(), text.end()));
}

} // namespace testpictures
