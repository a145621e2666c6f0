#!/usr/bin/env bash
# Renders the whole production headless at 640x360 (FPS frames a second, default 1) and tiles
# the frames into one contact sheet, each tile labelled with its time and bar:
#   scripts/review.sh [FPS]   ->   build/review.png
set -euo pipefail
cd "$(dirname "$0")/.."
fps="${1:-1}"
cmake --build build --target brinova brinova-review > /dev/null
frames="$PWD/build/review-frames"
rm -rf "$frames"
mkdir -p "$frames"
export LIBGL_ALWAYS_SOFTWARE=1 SDL_AUDIODRIVER=dummy
run=()
[ -z "${DISPLAY:-}" ] && run=(xvfb-run -a -s "-screen 0 1280x720x24")
"${run[@]}" build/bin/brinova --no-launcher --size 640x360 --quality 2 \
  --capture "$frames" --fps "$fps" > build/review.log
build/tools/review/brinova-review --fps "$fps" "$frames" build/review.png
