// Plays a whole piece on the music clock, as the demo does (seek to 0, play, one reading per
// frame of about 16 ms), and prints how far the clock, which counts ticks, drifts from the
// sound's play position. Uses SDL's silent audio driver unless SDL_AUDIODRIVER says
// otherwise. Usage: music_drift MUSIC_FILE
#include "MusicTimer.h"

#include <SDL.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iostream>
#include <vector>

namespace {

const Uint32 FRAME_MS = 16;
const unsigned int ROW_RATE = 20;

struct Sample {
    double clock;
    double drift;
};

// Mean drift over the readings whose clock lies in [from, to).
double meanDrift(const std::vector<Sample>& samples, double from, double to) {
    double sum = 0.0;
    int count = 0;
    for (const Sample& sample : samples) {
        if (sample.clock >= from && sample.clock < to) {
            sum += sample.drift;
            ++count;
        }
    }
    return count > 0 ? sum / count : 0.0;
}

// Least-squares slope of drift over clock, in ms of drift per minute.
double driftPerMinute(const std::vector<Sample>& samples) {
    double meanClock = 0.0, meanValue = 0.0;
    for (const Sample& sample : samples) {
        meanClock += sample.clock;
        meanValue += sample.drift;
    }
    meanClock /= samples.size();
    meanValue /= samples.size();
    double covariance = 0.0, variance = 0.0;
    for (const Sample& sample : samples) {
        covariance += (sample.clock - meanClock) * (sample.drift - meanValue);
        variance += (sample.clock - meanClock) * (sample.clock - meanClock);
    }
    return variance > 0.0 ? covariance / variance * 60000.0 : 0.0;
}

void report(const std::vector<Sample>& samples, unsigned int endTime) {
    double worst = 0.0;
    for (const Sample& sample : samples) {
        worst = std::max(worst, std::abs(sample.drift));
    }
    const double end = endTime;
    std::cout << "readings: " << samples.size() << " over " << end / 1000.0 << " s\n"
              << "drift = clock - sound position, ms (positive: the clock is ahead)\n"
              << "largest |drift|: " << worst << " ms\n"
              << "mean drift, first 10 s: " << meanDrift(samples, 0.0, 10000.0) << " ms\n"
              << "mean drift, last 10 s: " << meanDrift(samples, end - 10000.0, end) << " ms\n"
              << "trend: " << driftPerMinute(samples) << " ms per minute\n";
    for (int tenth = 1; tenth <= 10; ++tenth) {
        const double at = end * tenth / 10.0;
        std::cout << "  mean drift around " << at / 1000.0
                  << " s: " << meanDrift(samples, at - 2000.0, at) << " ms\n";
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::cerr << "usage: music_drift MUSIC_FILE" << std::endl;
        return 2;
    }
    setenv("SDL_AUDIODRIVER", "dummy", 0);
    MusicTimer timer(argv[1], ROW_RATE);
    if (!timer.init()) {
        std::cerr << timer.getMessage() << std::endl;
        return 1;
    }
    timer.setTime(0);
    timer.play();
    std::vector<Sample> samples;
    while (timer.getSoundTime() < timer.getEndTime()) {
        SDL_Delay(FRAME_MS);
        timer.updateSystem();
        const double clock = timer.getTime();
        samples.push_back({clock, clock - timer.getSoundTime()});
    }
    report(samples, timer.getEndTime());
    return 0;
}
