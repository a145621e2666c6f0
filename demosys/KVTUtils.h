#pragma once

#include <string>

// Number <-> text conversions with standard stream formatting.
class KVTUtils {
public:
    static std::string int2string(int value);
    static std::string uint2string(unsigned int value);
    // Default stream formatting: six significant digits, 0.5 -> "0.5", 1.0 -> "1".
    static std::string float2string(float value);
    // Reads a number from the start of the text; 0 when none can be read.
    static int string2Int(std::string text);
    static float string2Float(std::string text);
};
