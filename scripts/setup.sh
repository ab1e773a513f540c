#!/usr/bin/env bash
# Installs what the build needs when it is missing, then configures and builds.
# Usage: scripts/setup.sh [build-dir] [extra cmake options...]
set -euo pipefail
cd "$(dirname "$0")/.."

paquets=(cmake ninja-build g++ pkg-config qt6-base-dev qt6-serialport-dev qt6-charts-dev
         libqt6opengl6-dev libqt6sql6-sqlite libgl-dev)
manquants=()
for p in "${paquets[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || manquants+=("$p")
done
if [ ${#manquants[@]} -gt 0 ]; then
  echo "Installing: ${manquants[*]}"
  sudo_cmd=()
  [ "$(id -u)" -eq 0 ] || sudo_cmd=(sudo)
  "${sudo_cmd[@]}" apt-get update -qq
  DEBIAN_FRONTEND=noninteractive "${sudo_cmd[@]}" apt-get install -y -qq "${manquants[@]}" >/dev/null
fi

build_dir=${1:-build}
shift || true
if [ ! -f "$build_dir/build.ninja" ]; then
  cmake -S . -B "$build_dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo "$@"
fi
cmake --build "$build_dir" -j"$(nproc)"
