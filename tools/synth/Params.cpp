#include "Params.h"

#include <cmath>
#include <stdexcept>

namespace synth {

ParamSet::ParamSet(const std::vector<ParamSpec>& specs) : table(&specs) {
    for (const ParamSpec& param : specs)
        values.push_back(param.defaultValue);
}

const ParamSpec* ParamSet::find(const std::string& name) const {
    if (!table)
        return nullptr;
    for (const ParamSpec& param : *table)
        if (param.name == name)
            return &param;
    return nullptr;
}

size_t ParamSet::indexOf(const std::string& name) const {
    const ParamSpec* param = find(name);
    // Names come from the program itself once the song is parsed: a miss is a programming error.
    if (!param)
        throw std::logic_error("no parameter named '" + name + "'");
    return static_cast<size_t>(param - table->data());
}

double ParamSet::get(const std::string& name) const {
    return values[indexOf(name)];
}

int ParamSet::getInt(const std::string& name) const {
    return static_cast<int>(std::lround(get(name)));
}

void ParamSet::set(const std::string& name, double value) {
    values[indexOf(name)] = value;
}

double decibelsToGain(double decibels) {
    return decibels <= -80.0 ? 0.0 : std::pow(10.0, decibels / 20.0);
}

} // namespace synth
