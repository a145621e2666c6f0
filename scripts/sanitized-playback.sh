#!/usr/bin/env bash
# Plays the test card on the sanitized engine (AddressSanitizer, LeakSanitizer and
# UndefinedBehaviorSanitizer; built by scripts/fuzz.sh in build-fuzz) with the resources of
# the normal build: in real time with its music, then shots, a capture, a video and a
# benchmark. Fails on any run that does not end with status 0 or on any sanitizer report.
set -euo pipefail
cd "$(dirname "$0")/.."

card=$PWD/build-fuzz/testcard
rm -rf "$card"
mkdir -p "$card"
cp -r build/tests/production/bin/resources "$card/"
cp build-fuzz/testcard_sanitized "$card/"

export LIBGL_ALWAYS_SOFTWARE=1 SDL_AUDIODRIVER=dummy
export LSAN_OPTIONS=suppressions=$PWD/scripts/sanitizer-suppressions.txt
export UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1
# The GL driver is loaded up front so that it is still mapped at the leak check, which can then
# tell its allocations from ours instead of reporting them from an unknown module.
driver=$(ls /usr/lib/*/dri/swrast_dri.so | head -n 1)

runs=(
  "--end 00:01:000"
  "--shot 00:01:500=$card/a.png --shot 00:02:900=$card/b.png"
  "--end 00:00:500 --capture $card/frames --fps 10"
  "--start 00:01:000 --end 00:01:500 --video $card/card.mp4"
  "--benchmark --end 00:01:000"
)
status=0
for i in "${!runs[@]}"; do
  log=$card/run$i.log
  if xvfb-run -a -s "-screen 0 1280x720x24" env LD_PRELOAD="$driver" \
      "$card/testcard_sanitized" --no-launcher --size 320x180 ${runs[$i]} >"$log" 2>&1 &&
      ! grep -q -e "ERROR: AddressSanitizer" -e "ERROR: LeakSanitizer" -e "runtime error" "$log"; then
    echo "sanitized test card ${runs[$i]}: clean"
  else
    echo "sanitized test card ${runs[$i]}: FAILED, see $log"
    grep -A 30 -e "ERROR: " -e "runtime error" "$log" | head -n 60
    status=1
  fi
done
exit $status
