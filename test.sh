#!/usr/bin/env bash
# Builds Brinova and runs every test: fuzzers, the test card on the sanitized engine, then CTest
# (its summary ends the run).
set -euo pipefail
cd "$(dirname "$0")"

scripts/install-packages.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build build --parallel "$(nproc)"

scripts/fuzz.sh 10
scripts/sanitized-playback.sh

# OpenGL tests need a display: a virtual one with Mesa's software renderer, no audio device.
export LIBGL_ALWAYS_SOFTWARE=1 SDL_AUDIODRIVER=dummy
cd build
xvfb-run -a -s "-screen 0 1280x720x24" ctest --output-on-failure --parallel "$(nproc)"
