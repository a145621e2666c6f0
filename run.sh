#!/usr/bin/env bash
# Builds Brinova with the production's data and starts the demo; arguments go to the program.
set -euo pipefail
cd "$(dirname "$0")"

scripts/install-packages.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build build --parallel "$(nproc)"

exec build/bin/brinova "$@"
