#include "Oscillator.h"

namespace synth {

uint32_t mixSeed(uint32_t a, uint32_t b) {
    uint32_t h = a * 0x85ebca6bu ^ (b + 0x9e3779b9u + (a << 6) + (a >> 2));
    h ^= h >> 16;
    h *= 0x7feb352du;
    h ^= h >> 15;
    h *= 0x846ca68bu;
    h ^= h >> 16;
    return h;
}

double midiToHz(double key) {
    return 440.0 * std::pow(2.0, (key - 69.0) / 12.0);
}

} // namespace synth
