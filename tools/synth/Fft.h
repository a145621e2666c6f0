#pragma once

#include <complex>
#include <vector>

namespace synth {

// In-place radix-2 FFT; the size must be a power of two.
void fft(std::vector<std::complex<double>>& data);

// Magnitudes of the first size/2 + 1 bins of a Hann-windowed frame of real samples.
std::vector<double> magnitudeSpectrum(const float* samples, int size);

} // namespace synth
