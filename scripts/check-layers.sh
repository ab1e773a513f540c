#!/usr/bin/env bash
# Fails when an include under src/ runs against the layers: a library may include its own
# folder and the folders of lower rank, never one of the same rank or above. The ui/ folders
# sit above every widget-free one, so nothing without widgets can reach a widget.
set -euo pipefail
cd "$(dirname "$0")/.."

declare -A rank=(
  [base]=0
  [variables]=1 [archives]=1
  [monitoring]=2
  [link]=3
  [shell]=4
  [pages]=5 [programming]=5
  [calibration]=6
  [shell/ui]=10
  [pages/ui]=11 [monitoring/ui]=11 [programming/ui]=11 [archives/ui]=11
  [calibration/ui]=12
)

folder_of() { # src/pages/ui/X.cpp -> pages/ui ; pages/X.h -> pages
  local p=${1#src/}
  p=${p%/*}
  echo "$p"
}

bad=0
while IFS= read -r file; do
  from=$(folder_of "$file")
  [ -n "${rank[$from]+x}" ] || { echo "$file: folder '$from' has no layer"; bad=1; continue; }
  while IFS= read -r inc; do
    to=${inc%/*}
    [ "$to" = "$inc" ] && continue            # a file of the same folder
    [ -n "${rank[$to]+x}" ] || continue       # not one of ours
    [ "$to" = "$from" ] && continue
    if [ "${rank[$to]}" -ge "${rank[$from]}" ]; then
      echo "$file includes $inc: $from may not depend on $to"
      bad=1
    fi
  done < <(sed -n 's/^#include "\([^"]*\)".*/\1/p' "$file")
done < <(git ls-files 'src/*.cpp' 'src/*.h' 2>/dev/null || find src -name '*.cpp' -o -name '*.h')
exit $bad
