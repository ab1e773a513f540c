#!/usr/bin/env bash
# Sets everything up and starts Korvantine. With no arguments it runs against the
# built-in simulated ECU; pass other arguments (e.g. nothing but --home DIR) to choose.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh build
if [ $# -eq 0 ]; then set -- --demo; fi
exec build/app/korvantine "$@"
