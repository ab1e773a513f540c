#!/usr/bin/env bash
# Renders the main menu, the ECU version page, the port page, the idle page, the instruments, the charts and
# the calibration pages to docs/pictures/ as a fitter sees them, against the simulated ECU, with the
# offscreen platform (no display).
# Usage: scripts/pictures.sh [build-dir]   (default: build)
set -euo pipefail
cd "$(dirname "$0")/.."
build_dir=${1:-build}
if [ ! -f "$build_dir/build.ninja" ]; then
  scripts/setup.sh "$build_dir"
fi
cmake --build "$build_dir" --target korvantine-pictures
QT_QPA_PLATFORM=offscreen "$build_dir/app/korvantine-pictures" docs/pictures
