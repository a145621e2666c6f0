#pragma once

#include <string>

// A position in the production in milliseconds, also held as minutes, seconds and
// milliseconds. Its text form is "mm:ss:ms" where the last field counts milliseconds
// ("02:30:850" is 150 850 ms, "00:00:5" is 5 ms).
class KVTTime {
public:
    KVTTime();
    KVTTime(int minutes, int seconds, int milliseconds);
    explicit KVTTime(unsigned int ticks);
    explicit KVTTime(std::string text);

    void setTicks(unsigned int ticks);
    // Parses "m:s:ms"; on a malformed text the value becomes invalid.
    void setTimeAsString(std::string text);

    unsigned int getMinutes() const { return minutes; }
    unsigned int getSeconds() const { return seconds; }
    unsigned int getMilliseconds() const { return milliseconds; }
    unsigned int getTicks() const { return ticks; }
    double getTicksAsDouble() const { return static_cast<double>(ticks); }

    void setMinutes(int value);
    // Carries whole minutes out of the value.
    void setSeconds(int value);
    // Carries whole seconds out of the value (but not on into minutes).
    void setMilliseconds(int value);

    unsigned int time2uint(int minutes, int seconds, int milliseconds) const;
    void reset();
    bool isValid() const { return valid; }

    // "(0000150850)-[02:30:850]"
    std::string toString() const;
    // Always "00:00:000".
    std::string toStringMinSecMS() const;
    static std::string forceStringLength(std::string text, unsigned int length);

private:
    void updateTicks();

    unsigned int minutes = 0;
    unsigned int seconds = 0;
    unsigned int milliseconds = 0;
    unsigned int ticks = 0;
    bool valid = true;
};
