#!/usr/bin/env bash
# Builds the Debian package korvantine_<version>_amd64.deb with CPack into the build folder.
# Usage: scripts/package.sh [build-dir]
set -euo pipefail
cd "$(dirname "$0")/.."

# dpkg-shlibdeps finds the libraries the binaries need, for the package's dependencies.
pacchetti=(dpkg-dev file)
mancanti=()
for p in "${pacchetti[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || mancanti+=("$p")
done
if [ ${#mancanti[@]} -gt 0 ]; then
  echo "Installing: ${mancanti[*]}"
  sudo_cmd=()
  [ "$(id -u)" -eq 0 ] || sudo_cmd=(sudo)
  "${sudo_cmd[@]}" apt-get update -qq
  DEBIAN_FRONTEND=noninteractive "${sudo_cmd[@]}" apt-get install -y -qq "${mancanti[@]}" >/dev/null
fi

build_dir=${1:-build}
scripts/setup.sh "$build_dir"
(cd "$build_dir" && cpack -G DEB)
ls "$build_dir"/korvantine_*_amd64.deb
