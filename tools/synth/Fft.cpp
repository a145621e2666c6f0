#include "Fft.h"

#include <cmath>
#include <stdexcept>

namespace synth {
namespace {
constexpr double kPi = 3.141592653589793;
}

void fft(std::vector<std::complex<double>>& data) {
    const size_t n = data.size();
    if (n == 0 || (n & (n - 1)) != 0)
        throw std::invalid_argument("FFT size must be a power of two");
    for (size_t i = 1, j = 0; i < n; ++i) {
        size_t bit = n >> 1;
        for (; j & bit; bit >>= 1)
            j ^= bit;
        j ^= bit;
        if (i < j)
            std::swap(data[i], data[j]);
    }
    for (size_t length = 2; length <= n; length <<= 1) {
        const std::complex<double> step = std::polar(1.0, -2.0 * kPi / static_cast<double>(length));
        for (size_t start = 0; start < n; start += length) {
            std::complex<double> twiddle = 1.0;
            for (size_t k = 0; k < length / 2; ++k) {
                const std::complex<double> even = data[start + k];
                const std::complex<double> odd = data[start + k + length / 2] * twiddle;
                data[start + k] = even + odd;
                data[start + k + length / 2] = even - odd;
                twiddle *= step;
            }
        }
    }
}

std::vector<double> magnitudeSpectrum(const float* samples, int size) {
    std::vector<std::complex<double>> frame(static_cast<size_t>(size));
    for (int i = 0; i < size; ++i) {
        const double window = 0.5 - 0.5 * std::cos(2.0 * kPi * i / size);
        frame[static_cast<size_t>(i)] = samples[i] * window;
    }
    fft(frame);
    std::vector<double> magnitudes(static_cast<size_t>(size / 2 + 1));
    for (size_t k = 0; k < magnitudes.size(); ++k)
        magnitudes[k] = std::abs(frame[k]);
    return magnitudes;
}

} // namespace synth
