#include "Flow.h"

#include "Noise.h"

#include <cmath>
#include <functional>

namespace texgen {

namespace {

constexpr float kPi = 3.14159265358979f;

using StreamFunction = std::function<float(float, float)>;

// A Gaussian eddy; positive strength turns counter-clockwise with y up.
float eddy(float x, float y, float cx, float cy, float radius, float strength) {
    const float dx = x - cx;
    const float dy = y - cy;
    return strength * radius * std::exp(-(dx * dx + dy * dy) / (radius * radius));
}

// A jet at (cx, cy) blowing along `angle`: fast in its core, with return flow on its flanks.
float jet(float x, float y, float cx, float cy, float angle, float length, float width) {
    const float dx = x - cx;
    const float dy = y - cy;
    const float along = dx * std::cos(angle) + dy * std::sin(angle);
    const float across = -dx * std::sin(angle) + dy * std::cos(angle);
    const float envelope =
        std::exp(-(along * along) / (length * length) - (across * across) / (9.0f * width * width));
    return -width * std::tanh(across / width) * envelope;
}

// Fades the stream function to zero near the walls, so the flow runs along them, not into them.
float wallTaper(float x, float y) {
    return smoothstep(0.0f, 0.22f, x) * smoothstep(1.0f, 0.78f, x) * smoothstep(0.0f, 0.22f, y) *
           smoothstep(1.0f, 0.78f, y);
}

float swirl(float x, float y) {
    float psi = eddy(x, y, 0.5f, 0.5f, 0.24f, 1.0f);
    for (int k = 0; k < 6; ++k) {
        const float angle = k * kPi / 3.0f + 0.3f;
        const float sign = (k % 2 == 0) ? -0.9f : 0.6f;
        psi +=
            eddy(x, y, 0.5f + 0.3f * std::cos(angle), 0.5f + 0.3f * std::sin(angle), 0.085f, sign);
    }
    return psi;
}

float jets(float x, float y) {
    const float reach = 0.22f;
    float psi = 0.0f;
    for (int k = 0; k < 3; ++k) {
        const float from = -kPi / 2.0f + k * 2.0f * kPi / 3.0f + 0.25f;
        const float cx = 0.5f + reach * std::cos(from);
        const float cy = 0.5f + reach * std::sin(from);
        // Aim slightly past the centre so the three jets shear past each other and spin up.
        psi += jet(x, y, cx, cy, from + kPi + 0.35f, 0.2f, 0.045f);
    }
    return psi;
}

float turbulence(float x, float y) {
    return 0.12f * periodicFbm(x, y, 3, 4, 0.62f, 0x7B1Du);
}

StreamFunction streamFor(FlowKind kind) {
    switch (kind) {
    case FlowKind::Swirl:
        return swirl;
    case FlowKind::Jets:
        return jets;
    case FlowKind::Turbulence:
        return turbulence;
    }
    return swirl;
}

} // namespace

FlowPair flowPair(FlowKind kind, int size) {
    const StreamFunction stream = streamFor(kind);
    const auto psi = [&](float px, float py) {
        // Picture row 0 is the top; the flow's y axis points up.
        const float x = (px + 0.5f) / size;
        const float y = (size - py - 0.5f) / size;
        return stream(x, y) * wallTaper(x, y);
    };
    Field u(size, size);
    Field v(size, size);
    float fastest = 0.0f;
    for (int row = 0; row < size; ++row) {
        for (int x = 0; x < size; ++x) {
            // Central differences of one stream function: u = ∂ψ/∂y, v = −∂ψ/∂x.
            u.at(x, row) = 0.5f * (psi(x, row - 1.0f) - psi(x, row + 1.0f));
            v.at(x, row) = -0.5f * (psi(x + 1.0f, row) - psi(x - 1.0f, row));
            fastest =
                std::fmax(fastest, std::fmax(std::fabs(u.at(x, row)), std::fabs(v.at(x, row))));
        }
    }
    for (int row = 0; row < size; ++row) {
        for (int x = 0; x < size; ++x) {
            u.at(x, row) /= fastest;
            v.at(x, row) /= fastest;
        }
    }
    return {toSignedGrey(u), toSignedGrey(v)};
}

} // namespace texgen
