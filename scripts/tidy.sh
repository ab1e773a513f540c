#!/usr/bin/env bash
# clang-tidy with the checks of .clang-tidy over the program's own sources (src/, sim/, app/),
# from the compile database of a build. Gentle with a shared machine: niced, one file at a
# time unless told otherwise.
#
#   scripts/tidy.sh [build-dir] [file...]      TIDY_JOBS=2 for two at once,
#                                              TIDY_EXCLUDE=regex to leave files out
#
# Prints each finding once (a header seen from many files counts once), then the count by check.
# Exits 1 when there is any finding.
set -euo pipefail
cd "$(dirname "$0")/.."

build=build
if [ $# -gt 0 ] && [ -f "$1/compile_commands.json" ]; then
  build=$1
  shift
fi
[ -f "$build/compile_commands.json" ] || { echo "no $build/compile_commands.json: build first" >&2; exit 2; }
command -v clang-tidy >/dev/null || { echo "clang-tidy is not installed" >&2; exit 2; }

if [ $# -gt 0 ]; then
  files=("$@")
else
  mapfile -t files < <(grep -o '"file": *"[^"]*"' "$build/compile_commands.json" | sed 's/.*"\([^"]*\)"$/\1/' |
    sed "s|^$PWD/||" | grep -E '^(src|sim|app)/' | grep -v '_autogen/' |
    grep -Ev "${TIDY_EXCLUDE:-^$}" | sort -u)
fi

log=$(mktemp)
trap 'rm -f "$log"' EXIT
# The build uses GCC; clang need not know all of its warning flags.
printf '%s\0' "${files[@]}" |
  nice -n 10 xargs -0 -r -P "${TIDY_JOBS:-1}" -n 1 \
    clang-tidy -p "$build" --quiet --extra-arg=-Wno-unknown-warning-option 2>/dev/null >>"$log" || true

grep -E '^[^ ].*: (warning|error): .*\[[^]]+\]$' "$log" | sed "s|^$PWD/||" | sort -u >"$log.findings" || true
cat "$log.findings"
echo "---- findings by check"
sed -E 's/.*\[([^]]+)\]$/\1/' "$log.findings" | sort | uniq -c | sort -rn
total=$(wc -l <"$log.findings")
rm -f "$log.findings"
echo "---- total: $total"
[ "$total" -eq 0 ]
