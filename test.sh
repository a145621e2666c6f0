#!/usr/bin/env bash
# Builds Brinova and runs every test: unit tests, fuzzers, then CTest (its summary ends the run).
set -euo pipefail
cd "$(dirname "$0")"

scripts/install-packages.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build build --parallel "$(nproc)"

scripts/fuzz.sh 10

cd build
ctest --output-on-failure --parallel "$(nproc)"
