#pragma once

#include <string>
#include <vector>

// A byte blob, the form binary resources take, with a float view of its bytes (byte / 256).
class Binary {
public:
    explicit Binary(std::vector<unsigned char> bytes);
    ~Binary();
    Binary(const Binary&) = delete;
    Binary& operator=(const Binary&) = delete;

    int size() const { return static_cast<int>(data.size()); }
    unsigned char getData(int index) const { return data[index]; }
    // Built on first call and kept; owned by the Binary.
    float* getFloatData();
    // A new array of count floats from byte start on; owned by the caller (delete[]).
    float* getFloatData(int start, int count) const;
    std::string getString(int start, int count) const;
    std::string toString() const;

private:
    std::vector<unsigned char> data;
    float* floatView = nullptr;
};
