#include "StringUtils.h"

#include "StringTokenizer.h"

bool StringUtils::charIsTrimable(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

std::string StringUtils::trim(std::string s) {
    size_t first = 0;
    while (first < s.size() && charIsTrimable(s[first])) {
        ++first;
    }
    size_t last = s.size();
    while (last > first && charIsTrimable(s[last - 1])) {
        --last;
    }
    return s.substr(first, last - first);
}

std::string StringUtils::toUpper(std::string s) {
    for (char& c : s) {
        if (static_cast<signed char>(c) > 'a') {
            c = static_cast<char>(c - 32);
        }
    }
    return s;
}

std::string StringUtils::toLower(std::string s) {
    for (char& c : s) {
        if (static_cast<signed char>(c) <= 'Z') {
            c = static_cast<char>(c + 32);
        }
    }
    return s;
}

bool StringUtils::isBool(std::string s) {
    return s == "true" || s == "false";
}

bool StringUtils::isInt(std::string s) {
    if (s.empty()) {
        return false;
    }
    size_t start = s[0] == '-' ? 1 : 0;
    for (size_t i = start; i < s.size(); ++i) {
        signed char c = static_cast<signed char>(s[i]);
        if (c < '0' || c > '9') {
            return false;
        }
    }
    return true;
}

bool StringUtils::isFloat(std::string s) {
    if (s.empty()) {
        return false;
    }
    if (s[0] == '-') {
        s.erase(0, 1);
    }
    StringTokenizer parts(s, ".");
    if (parts.countTokens() != 2) {
        return false;
    }
    std::string whole = parts.getNext();
    std::string fraction = parts.getNext();
    return isInt(whole) && isInt(fraction);
}
