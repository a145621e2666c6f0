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
    // Additions made, counting replacements.
    int count = 0;
};
