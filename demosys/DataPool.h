#pragma once

#include <string>

// Base of the typed resource pools: each maps string keys to objects it owns.
class DataPool {
public:
    virtual ~DataPool() = default;
    virtual int size() const = 0;
    virtual std::string toString() const {
        return "DataPool { size = " + std::to_string(count) + " }\n";
    }

protected:
    // One report line: indent, key, " = ", the entry's own description, a line end.
    static std::string entryLine(const std::string& indent, const std::string& key,
                                 const std::string& description) {
        const bool ended = !description.empty() && description.back() == '\n';
        return indent + key + " = " + description + (ended ? "" : "\n");
    }

    // Additions made, counting replacements.
    int count = 0;
};
