#include "Song.h"

#include <algorithm>
#include <cmath>

namespace synth {
namespace {

struct KindName {
    InstrumentKind kind;
    const char* name;
};

constexpr KindName kKinds[] = {
    {InstrumentKind::Synth, "synth"},   {InstrumentKind::Pluck, "pluck"},
    {InstrumentKind::Kick, "kick"},     {InstrumentKind::Snare, "snare"},
    {InstrumentKind::Clap, "clap"},     {InstrumentKind::Hat, "hat"},
    {InstrumentKind::Crash, "crash"},   {InstrumentKind::Sweep, "sweep"},
    {InstrumentKind::Impact, "impact"},
};

ParamSpec automated(ParamSpec param, Interpolation interpolation = Interpolation::Linear) {
    param.automatable = true;
    param.interpolation = interpolation;
    return param;
}

std::vector<ParamSpec> mixerParams() {
    return {
        automated({"volume", 0.0, -80.0, 12.0, {}}),
        automated({"pan", 0.0, -1.0, 1.0, {}}),
        automated({"reverb", 0.0, 0.0, 1.0, {}}),
        automated({"delay", 0.0, 0.0, 1.0, {}}),
        {"chorus", 0.0, 0.0, 1.0, {}},
        {"duck", 0.0, 0.0, 1.0, {}},
        {"polyphony", 16.0, 1.0, 32.0, {}},
    };
}

const std::vector<std::string> kWaves = {"sine", "saw", "square", "triangle"};
const std::vector<std::string> kSwitch = {"off", "on"};
const std::vector<std::string> kFades = {"flat", "in", "out"};

ParamSpec cutoff(double defaultHz) {
    return automated({"cutoff", defaultHz, 20.0, 20000.0, {}}, Interpolation::Geometric);
}

std::vector<ParamSpec> synthParams() {
    return {
        {"wave", 1.0, 0.0, 3.0, kWaves},   {"pw", 0.5, 0.05, 0.95, {}},
        {"wave2", 1.0, 0.0, 3.0, kWaves},  {"mix2", 0.0, 0.0, 1.0, {}},
        {"semi2", 0.0, -24.0, 24.0, {}},   {"detune2", 0.0, -100.0, 100.0, {}},
        {"sub", 0.0, 0.0, 1.0, {}},        {"noise", 0.0, 0.0, 1.0, {}},
        {"unison", 1.0, 1.0, 9.0, {}},     {"spread", 0.0, 0.0, 100.0, {}},
        {"width", 0.0, 0.0, 1.0, {}},      {"attack", 0.005, 0.0, 20.0, {}},
        {"decay", 0.2, 0.0, 20.0, {}},     {"sustain", 0.8, 0.0, 1.0, {}},
        {"release", 0.2, 0.0, 20.0, {}},   cutoff(8000.0),
        {"q", 0.7071, 0.5, 20.0, {}},      {"envamount", 0.0, -8.0, 8.0, {}},
        {"fattack", 0.005, 0.0, 20.0, {}}, {"fdecay", 0.3, 0.0, 20.0, {}},
        {"fsustain", 0.0, 0.0, 1.0, {}},   {"frelease", 0.3, 0.0, 20.0, {}},
        {"keytrack", 0.0, 0.0, 1.0, {}},   {"velcutoff", 0.0, 0.0, 4.0, {}},
        {"vibrato", 0.0, 0.0, 100.0, {}},  {"vibratorate", 5.0, 0.1, 12.0, {}},
        {"glide", 0.0, 0.0, 2.0, {}},      {"mono", 0.0, 0.0, 1.0, kSwitch},
    };
}

std::vector<ParamSpec> pluckParams() {
    return {
        {"decay", 1.5, 0.05, 20.0, {}},
        {"brightness", 0.6, 0.0, 1.0, {}},
        {"release", 0.15, 0.005, 5.0, {}},
        cutoff(12000.0),
    };
}

std::vector<ParamSpec> kickParams() {
    return {
        {"tune", 48.0, 25.0, 150.0, {}},       {"punch", 140.0, 40.0, 500.0, {}},
        {"pitchdecay", 0.045, 0.005, 0.5, {}}, {"decay", 0.45, 0.05, 3.0, {}},
        {"click", 0.1, 0.0, 1.0, {}},          {"drive", 0.2, 0.0, 1.0, {}},
    };
}

std::vector<ParamSpec> snareParams() {
    return {
        {"tune", 190.0, 80.0, 500.0, {}},   {"decay", 0.12, 0.02, 1.0, {}},
        {"noisedecay", 0.2, 0.02, 2.0, {}}, {"tone", 3000.0, 300.0, 12000.0, {}},
        {"snappy", 0.7, 0.0, 1.0, {}},
    };
}

std::vector<ParamSpec> clapParams() {
    return {
        {"decay", 0.25, 0.03, 2.0, {}}, {"tone", 1200.0, 300.0, 8000.0, {}},
        {"q", 1.2, 0.5, 10.0, {}},      {"spread", 0.011, 0.002, 0.04, {}},
        {"bursts", 4.0, 1.0, 6.0, {}},
    };
}

std::vector<ParamSpec> hatParams() {
    return {
        {"decay", 0.06, 0.01, 2.0, {}},
        {"tone", 7500.0, 1000.0, 16000.0, {}},
        {"metal", 0.3, 0.0, 1.0, {}},
    };
}

std::vector<ParamSpec> crashParams() {
    return {
        {"decay", 1.2, 0.1, 6.0, {}},
        {"tone", 3500.0, 1000.0, 12000.0, {}},
        {"metal", 0.35, 0.0, 1.0, {}},
        {"width", 0.7, 0.0, 1.0, {}},
    };
}

std::vector<ParamSpec> sweepParams() {
    return {
        {"from", 200.0, 20.0, 20000.0, {}}, {"to", 8000.0, 20.0, 20000.0, {}},
        {"q", 2.0, 0.5, 20.0, {}},          {"fade", 1.0, 0.0, 2.0, kFades},
        {"width", 0.8, 0.0, 1.0, {}},
    };
}

std::vector<ParamSpec> impactParams() {
    return {
        {"tune", 38.0, 20.0, 120.0, {}},        {"punch", 110.0, 30.0, 400.0, {}},
        {"pitchdecay", 0.25, 0.02, 2.0, {}},    {"decay", 1.8, 0.1, 8.0, {}},
        {"noise", 0.5, 0.0, 1.0, {}},           {"noisedecay", 0.6, 0.05, 4.0, {}},
        {"cutoff", 2500.0, 100.0, 16000.0, {}},
    };
}

// A drum's "tune" takes Hz or a note.
std::vector<ParamSpec> tunedByNote(std::vector<ParamSpec> specs) {
    for (ParamSpec& param : specs)
        param.pitch = param.name == "tune";
    return specs;
}

std::vector<ParamSpec> withMixer(std::vector<ParamSpec> specs) {
    std::vector<ParamSpec> all = mixerParams();
    all.insert(all.end(), specs.begin(), specs.end());
    return all;
}

} // namespace

bool kindFromName(const std::string& name, InstrumentKind& kind) {
    for (const KindName& entry : kKinds)
        if (name == entry.name) {
            kind = entry.kind;
            return true;
        }
    return false;
}

const std::vector<ParamSpec>& instrumentParams(InstrumentKind kind) {
    static const std::vector<ParamSpec> tables[] = {
        withMixer(synthParams()),
        withMixer(pluckParams()),
        withMixer(tunedByNote(kickParams())),
        withMixer(tunedByNote(snareParams())),
        withMixer(clapParams()),
        withMixer(hatParams()),
        withMixer(crashParams()),
        withMixer(sweepParams()),
        withMixer(tunedByNote(impactParams())),
    };
    return tables[static_cast<int>(kind)];
}

const std::vector<ParamSpec>& reverbParams() {
    static const std::vector<ParamSpec> table = {
        {"size", 1.0, 0.3, 2.0, {}},
        {"decay", 3.0, 0.2, 20.0, {}},
        {"damping", 6000.0, 500.0, 20000.0, {}},
        {"predelay", 0.02, 0.0, 0.25, {}},
        {"lowcut", 150.0, 20.0, 1000.0, {}},
        {"volume", 0.0, -80.0, 12.0, {}},
    };
    return table;
}

const std::vector<ParamSpec>& delayParams() {
    static const std::vector<ParamSpec> table = {
        {"beats", 0.75, 0.0625, 4.0, {}},        {"feedback", 0.35, 0.0, 0.95, {}},
        {"damping", 4000.0, 500.0, 20000.0, {}}, {"lowcut", 200.0, 20.0, 2000.0, {}},
        {"reverb", 0.2, 0.0, 1.0, {}},           {"volume", 0.0, -80.0, 12.0, {}},
    };
    return table;
}

const std::vector<ParamSpec>& masterParams() {
    static const std::vector<ParamSpec> table = {
        automated({"volume", 0.0, -80.0, 12.0, {}}),
        {"threshold", -14.0, -40.0, 0.0, {}},
        {"ratio", 2.0, 1.0, 10.0, {}},
        {"attack", 0.01, 0.0005, 0.2, {}},
        {"release", 0.15, 0.01, 2.0, {}},
        {"makeup", 0.0, 0.0, 18.0, {}},
        {"ceiling", -1.0, -12.0, 0.0, {}},
    };
    return table;
}

long Song::lengthFrames() const {
    return std::lround(lengthSeconds * sampleRate);
}

const Automation* Song::findAutomation(int instrument, const std::string& param) const {
    for (const Automation& automation : automations)
        if (automation.instrument == instrument && automation.param == param)
            return &automation;
    return nullptr;
}

double Automation::valueAt(double beat) const {
    if (beat <= points.front().beat)
        return points.front().value;
    if (beat >= points.back().beat)
        return points.back().value;
    const auto after =
        std::upper_bound(points.begin(), points.end(), beat,
                         [](double b, const AutomationPoint& point) { return b < point.beat; });
    const AutomationPoint& a = *(after - 1);
    const AutomationPoint& b = *after;
    const double t = (beat - a.beat) / (b.beat - a.beat);
    if (interpolation == Interpolation::Geometric)
        return a.value * std::pow(b.value / a.value, t);
    return a.value + (b.value - a.value) * t;
}

} // namespace synth
