// Decodes arbitrary bytes as a picture file held in memory, then reads every pixel byte so
// that a wrong size or a short copy shows up under the address sanitizer.
#include "Image.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Image image;
    image.putData(data, static_cast<unsigned int>(size));
    if (!image.exists()) {
        return 0;
    }
    const unsigned int expected = static_cast<unsigned int>(image.getPixelSize()) *
                                  static_cast<unsigned int>(image.getWidth()) *
                                  static_cast<unsigned int>(image.getHeight());
    if (image.getDataSize() != expected || (image.getBpp() != 24 && image.getBpp() != 32)) {
        __builtin_trap();
    }
    unsigned int sum = 0;
    const unsigned char* pixels = image.getData();
    for (unsigned int i = 0; i < image.getDataSize(); ++i) {
        sum += pixels[i];
    }
    return sum == 0xFFFFFFFFu ? 1 : 0;
}
