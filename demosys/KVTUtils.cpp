#include "KVTUtils.h"

#include <sstream>

namespace {

template <typename T> std::string toText(T value) {
    std::ostringstream out;
    out << value;
    return out.str();
}

template <typename T> T fromText(const std::string& text) {
    std::istringstream in(text);
    T value = 0;
    in >> value;
    return in.fail() ? T(0) : value;
}

} // namespace

std::string KVTUtils::int2string(int value) {
    return toText(value);
}

std::string KVTUtils::uint2string(unsigned int value) {
    return toText(value);
}

std::string KVTUtils::float2string(float value) {
    return toText(value);
}

int KVTUtils::string2Int(std::string text) {
    return fromText<int>(text);
}

float KVTUtils::string2Float(std::string text) {
    return fromText<float>(text);
}
