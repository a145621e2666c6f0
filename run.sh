#!/usr/bin/env bash
# Builds Brinova with the production's data and starts the demo; arguments go to the program.
# Until the production's effects exist, the demo played is the engine's test card.
set -euo pipefail
cd "$(dirname "$0")"

scripts/install-packages.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo
cmake --build build --parallel "$(nproc)"

exec build/tests/production/bin/testcard_demo "$@"
