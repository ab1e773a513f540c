#!/usr/bin/env bash
# Fails when clang-format would change a C++ file of the tree.
set -euo pipefail
cd "$(dirname "$0")/.."
command -v clang-format >/dev/null || { echo "clang-format not installed"; exit 1; }
git ls-files 'src/*' 'sim/*' 'app/*' 'tests/*' 'bench/*' 'fuzz/*' | grep -E '\.(cpp|h)$' \
  | xargs clang-format --dry-run --Werror
