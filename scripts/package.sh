#!/usr/bin/env bash
# Builds the Debian package korvantine_<version>_amd64.deb with CPack into the build folder.
# Usage: scripts/package.sh [build-dir]
set -euo pipefail
cd "$(dirname "$0")/.."

# dpkg-shlibdeps finds the libraries the binaries need, for the package's dependencies.
pacchetti=(dpkg-dev file)
. scripts/pacchetti.sh
installa_mancanti "${pacchetti[@]}"

build_dir=${1:-build}
scripts/setup.sh "$build_dir"
(cd "$build_dir" && cpack -G DEB)
ls "$build_dir"/korvantine_*_amd64.deb
