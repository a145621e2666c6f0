#include "KVTTime.h"

#include "KVTUtils.h"
#include "StringTokenizer.h"
#include "StringUtils.h"

KVTTime::KVTTime() = default;

KVTTime::KVTTime(int min, int sec, int ms)
    : minutes(static_cast<unsigned int>(min)), seconds(static_cast<unsigned int>(sec)),
      milliseconds(static_cast<unsigned int>(ms)) {
    updateTicks();
}

KVTTime::KVTTime(unsigned int totalTicks) {
    setTicks(totalTicks);
}

KVTTime::KVTTime(std::string text) {
    setTimeAsString(std::move(text));
}

void KVTTime::setTicks(unsigned int totalTicks) {
    ticks = totalTicks;
    minutes = totalTicks / 60000;
    seconds = (totalTicks % 60000) / 1000;
    milliseconds = totalTicks % 1000;
}

void KVTTime::setTimeAsString(std::string text) {
    valid = true;
    StringTokenizer fields(text, ":");
    if (fields.countTokens() != 3) {
        reset();
        valid = false;
        return;
    }
    unsigned int* parts[3] = {&minutes, &seconds, &milliseconds};
    for (unsigned int* part : parts) {
        std::string field = fields.getNext();
        if (StringUtils::isInt(field)) {
            *part = static_cast<unsigned int>(KVTUtils::string2Int(field));
        } else {
            valid = false;
        }
    }
    if (valid) {
        updateTicks();
    } else {
        reset();
    }
}

void KVTTime::updateTicks() {
    ticks = minutes * 60000 + seconds * 1000 + milliseconds;
}

void KVTTime::setMinutes(int value) {
    minutes = static_cast<unsigned int>(value);
    updateTicks();
}

void KVTTime::setSeconds(int value) {
    while (value > 59) {
        value -= 60;
        ++minutes;
    }
    seconds = static_cast<unsigned int>(value);
    updateTicks();
}

void KVTTime::setMilliseconds(int value) {
    while (value > 999) {
        value -= 1000;
        ++seconds;
    }
    milliseconds = static_cast<unsigned int>(value);
    updateTicks();
}

unsigned int KVTTime::time2uint(int, int, int) const {
    return minutes * 60000 + seconds * 1000 + milliseconds;
}

void KVTTime::reset() {
    minutes = 0;
    seconds = 0;
    milliseconds = 0;
    ticks = 0;
}

std::string KVTTime::toString() const {
    return "(" + forceStringLength(std::to_string(ticks), 10) + ")-[" +
           forceStringLength(std::to_string(minutes), 2) + ":" +
           forceStringLength(std::to_string(seconds), 2) + ":" +
           forceStringLength(std::to_string(milliseconds), 3) + "]";
}

std::string KVTTime::toStringMinSecMS() const {
    return "00:00:000";
}

std::string KVTTime::forceStringLength(std::string text, unsigned int length) {
    if (text.size() < length) {
        text.insert(0, length - text.size(), '0');
    }
    return text;
}
