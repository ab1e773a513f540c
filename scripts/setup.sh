#!/usr/bin/env bash
# Installs what the build needs when it is missing, then configures and builds.
# Usage: scripts/setup.sh [build-dir] [extra cmake options...]
set -euo pipefail
cd "$(dirname "$0")/.."

pacchetti=(cmake ninja-build g++ ccache pkg-config clang-format qt6-base-dev qt6-serialport-dev qt6-charts-dev
         libqt6opengl6-dev libqt6sql6-sqlite libgl-dev)
. scripts/pacchetti.sh
installa_mancanti "${pacchetti[@]}"

# Paths relative to the checkout, so that another clone of the same tree hits the cache.
export CCACHE_BASEDIR="$PWD" CCACHE_NOHASHDIR=1

build_dir=${1:-build}
shift || true
if [ ! -f "$build_dir/build.ninja" ]; then
  # ccache makes a fresh checkout on a machine that has built before (CI) cheap to build.
  cmake -S . -B "$build_dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
        -DCMAKE_CXX_COMPILER_LAUNCHER=ccache "$@"
fi
cmake --build "$build_dir" -j"$(nproc)"
