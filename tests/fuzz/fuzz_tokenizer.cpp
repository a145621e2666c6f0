// Splits arbitrary text at delimiters taken from the input's first bytes, walking every
// token with all the tokenizer's operations, and runs the number tests on each token.
#include "StringTokenizer.h"
#include "StringUtils.h"

#include <cstddef>
#include <cstdint>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
    if (size < 2) {
        return 0;
    }
    size_t delimiterCount = bytes[0] % 4 + 1;
    bool returnDelimiters = bytes[1] & 1;
    if (size < 2 + delimiterCount) {
        return 0;
    }
    std::string delimiters(reinterpret_cast<const char*>(bytes + 2), delimiterCount);
    std::string source(reinterpret_cast<const char*>(bytes + 2 + delimiterCount),
                       size - 2 - delimiterCount);
    StringTokenizer tokens(source, delimiters, returnDelimiters);
    int seen = 0;
    while (tokens.hasMoreTokens()) {
        std::string token = tokens.getNext();
        if (token != tokens.getCurrent()) {
            __builtin_trap();
        }
        StringUtils::isInt(token);
        StringUtils::isFloat(token);
        StringUtils::toLower(StringUtils::toUpper(StringUtils::trim(token)));
        ++seen;
    }
    if (seen != tokens.countTokens()) {
        __builtin_trap();
    }
    tokens.reset();
    tokens.getNext(seen);
    return 0;
}
