#!/usr/bin/env bash
# Sets everything up and runs every test: once in a plain build, once with
# AddressSanitizer and UndefinedBehaviorSanitizer.
set -euo pipefail
cd "$(dirname "$0")/.."
export QT_QPA_PLATFORM=offscreen

scripts/setup.sh build
ctest --test-dir build --output-on-failure -j2

scripts/setup.sh build-asan -DCMAKE_BUILD_TYPE=Debug -DKORVANTINE_SANITIZE=ON
ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 \
  ctest --test-dir build-asan --output-on-failure -j2
