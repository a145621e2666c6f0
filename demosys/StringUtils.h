#pragma once

#include <string>

// Trimming, byte-wise case change and the engine's number tests. The rules are narrow on
// purpose (see each function); text readers rely on them exactly.
class StringUtils {
public:
    // Space, tab, line feed and carriage return; nothing else.
    static bool charIsTrimable(char c);
    static std::string trim(std::string s);
    // Subtracts 32 from every byte above 'a' (so 'a' itself stays and "{|}~" change).
    static std::string toUpper(std::string s);
    // Adds 32 to every byte up to 'Z' (digits, blanks and high bytes included).
    static std::string toLower(std::string s);
    static bool isBool(std::string s);
    // Digits with one optional leading '-'; "-" alone counts.
    static bool isInt(std::string s);
    // Exactly two integer parts around '.', optional leading '-'; no exponent.
    static bool isFloat(std::string s);
};
