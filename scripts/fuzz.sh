#!/usr/bin/env bash
# Builds the libFuzzer targets with clang (address and undefined-behaviour sanitizers)
# and runs each for the given number of seconds (default 10). Fails on any crash or report.
set -euo pipefail
cd "$(dirname "$0")/.."
seconds=${1:-10}

CC=clang CXX=clang++ cmake -S . -B build-fuzz -G Ninja -DBRINOVA_FUZZ=ON -DCMAKE_BUILD_TYPE=Debug >/dev/null
cmake --build build-fuzz --parallel "$(nproc)"

export UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1
status=0
for target in build-fuzz/tests/fuzz/fuzz_*; do
  [ -x "$target" ] || continue
  name=$(basename "$target")
  corpus=build-fuzz/corpus/$name
  mkdir -p "$corpus"
  seeds=tests/fuzz/seeds/${name#fuzz_}
  [ -d "$seeds" ] || seeds=""
  if "$target" -max_total_time="$seconds" -print_final_stats=0 -artifact_prefix=build-fuzz/ \
      "$corpus" $seeds >"build-fuzz/$name.log" 2>&1; then
    echo "fuzz $name: $(grep -o 'Done [0-9]* runs' "build-fuzz/$name.log" | tail -1), no crash"
  else
    echo "fuzz $name: FAILED, see build-fuzz/$name.log"
    tail -n 40 "build-fuzz/$name.log"
    status=1
  fi
done
exit $status
