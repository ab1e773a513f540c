#!/usr/bin/env bash
# Builds the fuzz targets with clang (AddressSanitizer and UndefinedBehaviorSanitizer) and runs
# each in turn for the given seconds, starting from its seeds in fuzz/corpus/<target>. What the
# runs grow and find stays outside the tree, in a folder named at the end; a finding makes the
# script fail. Usage: scripts/fuzz.sh [seconds] [target...]   (default 60 s, every target)
set -euo pipefail
cd "$(dirname "$0")/.."
radice=$PWD

secondi=${1:-60}
shift || true
[[ $secondi =~ ^[0-9]+$ ]] || { echo "usage: scripts/fuzz.sh [seconds] [target...]" >&2; exit 2; }

# clang and its fuzzer runtime; setup.sh below installs the rest.
pacchetti=(clang libclang-rt-14-dev)
. scripts/pacchetti.sh
installa_mancanti "${pacchetti[@]}"

scripts/setup.sh build-fuzz -DCMAKE_CXX_COMPILER=clang++ -DKORVANTINE_FUZZ=ON -DKORVANTINE_TESTS=OFF

if [ $# -gt 0 ]; then
  bersagli=("$@")
else
  bersagli=()
  for f in fuzz/fuzz_*.cpp; do bersagli+=("$(basename "$f" .cpp)"); done
fi

lavoro=$(mktemp -d "${TMPDIR:-/tmp}/korvantine-fuzz.XXXXXX")
riassunto=()
trovati=0
for b in "${bersagli[@]}"; do
  eseguibile=$radice/build-fuzz/fuzz/$b
  [ -x "$eseguibile" ] || { echo "no target $b" >&2; exit 2; }
  mkdir -p "$lavoro/$b/corpus" "$lavoro/$b/trovati"
  [ -d "fuzz/corpus/$b" ] && cp fuzz/corpus/"$b"/* "$lavoro/$b/corpus/"
  echo "== $b: $secondi s"
  # One job in a child process: its output goes to fuzz-0.log in the folder it runs in.
  (cd "$lavoro/$b" && "$eseguibile" corpus -max_total_time="$secondi" -jobs=1 -timeout=10 \
     -print_final_stats=1 -artifact_prefix="$lavoro/$b/trovati/" >/dev/null 2>&1) || true
  registro=$lavoro/$b/fuzz-0.log
  esecuzioni=$(sed -n 's/^stat::number_of_executed_units: *//p' "$registro" | tail -1)
  al_secondo=$(sed -n 's/.* exec\/s: \([0-9]*\).*/\1/p' "$registro" | tail -1)
  n=$(find "$lavoro/$b/trovati" -type f | wc -l)
  trovati=$((trovati + n))
  grep -E '^(==[0-9]+==ERROR|SUMMARY|Done)' "$registro" || true
  riassunto+=("$(printf '%-20s %12s executions %8s exec/s %4d findings' "$b" "${esecuzioni:-?}" "${al_secondo:-?}" "$n")")
done

echo
printf '%s\n' "${riassunto[@]}"
echo "Logs, grown corpora and findings: $lavoro"
[ "$trovati" -eq 0 ]
