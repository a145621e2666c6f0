#pragma once

#include <string>
#include <vector>

// Splits a string at any of a set of delimiter characters. Tokens that are blank after
// trimming are dropped, but kept tokens keep their surrounding blanks ("a , b" at ","
// gives "a " and " b"). Optionally every delimiter met is also returned as a token.
class StringTokenizer {
public:
    explicit StringTokenizer(std::string source);
    StringTokenizer(std::string source, std::string delimiters);
    StringTokenizer(std::string source, std::string delimiters, bool returnDelimiters);

    bool hasMoreTokens() const { return hasMore; }
    // The next token, or "" once all were handed out.
    std::string getNext();
    // Skips n tokens without returning them.
    void getNext(int n);
    // The token last returned by getNext(); call getNext() first.
    std::string getCurrent() const;
    int countTokens() const { return tokenCount; }
    // Rewinds the position only; has-more stays as it was.
    void reset() { position = 0; }
    void tokenize(std::string delimiterString);

private:
    void keepIfNotBlank(const std::string& token);

    int tokenCount = 0;
    int position = 0;
    std::vector<std::string> tokens;
    std::vector<char> delimiters;
    std::string source;
    unsigned int sourceLength = 0;
    bool hasMore = true;
    bool returnDelimiters = false;
};
