#include "Binary.h"

namespace {
// byte / 256: 255 maps to 0.99609375, never to 1.0.
const float ByteScale = 0.00390625f;
} // namespace

Binary::Binary(std::vector<unsigned char> bytes) : data(std::move(bytes)) {}

Binary::~Binary() {
    delete[] floatView;
}

float* Binary::getFloatData() {
    if (floatView == nullptr) {
        floatView = getFloatData(0, size());
    }
    return floatView;
}

float* Binary::getFloatData(int start, int count) const {
    float* values = new float[count > 0 ? count : 0];
    for (int i = 0; i < count; ++i) {
        values[i] = data[start + i] * ByteScale;
    }
    return values;
}

std::string Binary::getString(int, int) const {
    return "";
}

std::string Binary::toString() const {
    return "Binary { size = " + std::to_string(data.size()) + " }\n";
}
