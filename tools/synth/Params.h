#pragma once

#include <string>
#include <vector>

namespace synth {

// How an automated parameter moves between two breakpoints: straight in its own unit, or
// along a geometric curve (equal steps per octave), the natural way to sweep a cutoff.
enum class Interpolation { Linear, Geometric };

// One parameter an instrument or an effect understands. Parameters with words take one of
// them in the song text (for example "wave saw") and store the word's index.
struct ParamSpec {
    std::string name;
    double defaultValue;
    double minimum;
    double maximum;
    std::vector<std::string> words;
    bool automatable = false;
    Interpolation interpolation = Interpolation::Linear;
    // A frequency in Hz that may also be written as a note name ("tune D2").
    bool pitch = false;
};

// Values for a fixed list of parameters, every one present with its default until set.
class ParamSet {
public:
    ParamSet() = default;
    explicit ParamSet(const std::vector<ParamSpec>& specs);

    // Null when the name is not one of this set's parameters.
    const ParamSpec* find(const std::string& name) const;
    double get(const std::string& name) const;
    int getInt(const std::string& name) const;
    bool getFlag(const std::string& name) const { return get(name) != 0.0; }
    void set(const std::string& name, double value);
    const std::vector<ParamSpec>& specs() const { return *table; }

private:
    size_t indexOf(const std::string& name) const;

    const std::vector<ParamSpec>* table = nullptr;
    std::vector<double> values;
};

// Gain for a level in decibels; -80 dB and below is silence (a fader pulled all the way down).
double decibelsToGain(double decibels);

} // namespace synth
