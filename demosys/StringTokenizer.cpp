#include "StringTokenizer.h"

#include "StringUtils.h"

#include <algorithm>

StringTokenizer::StringTokenizer(std::string source) : StringTokenizer(std::move(source), " ") {}

StringTokenizer::StringTokenizer(std::string source, std::string delimiters)
    : StringTokenizer(std::move(source), std::move(delimiters), false) {}

StringTokenizer::StringTokenizer(std::string sourceText, std::string delimiterString,
                                 bool returnDelims)
    : source(std::move(sourceText)), returnDelimiters(returnDelims) {
    sourceLength = static_cast<unsigned int>(source.size());
    hasMore = true;
    tokenize(std::move(delimiterString));
}

void StringTokenizer::keepIfNotBlank(const std::string& token) {
    if (!StringUtils::trim(token).empty()) {
        tokens.push_back(token);
    }
}

void StringTokenizer::tokenize(std::string delimiterString) {
    delimiters.insert(delimiters.end(), delimiterString.begin(), delimiterString.end());
    std::string accumulator;
    for (char c : source) {
        if (std::find(delimiters.begin(), delimiters.end(), c) != delimiters.end()) {
            keepIfNotBlank(accumulator);
            if (returnDelimiters) {
                tokens.push_back(std::string(1, c));
            }
            accumulator.clear();
        } else {
            accumulator += c;
        }
    }
    keepIfNotBlank(accumulator);
    tokenCount = static_cast<int>(tokens.size());
    position = 0;
    if (tokenCount == 0) {
        hasMore = false;
    }
}

std::string StringTokenizer::getNext() {
    if (!hasMore) {
        return "";
    }
    ++position;
    if (position >= tokenCount) {
        hasMore = false;
    }
    return tokens[position - 1];
}

void StringTokenizer::getNext(int n) {
    position += n;
    if (position >= tokenCount) {
        hasMore = false;
    }
}

std::string StringTokenizer::getCurrent() const {
    return tokens[position - 1];
}
