#!/usr/bin/env bash
# Installs what is missing, builds, and runs the whole test suite.
# With --sanitize: the same under AddressSanitizer + UndefinedBehaviorSanitizer.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
bash scripts/build.sh "$@"
dir=build
[ "${1:-}" = "--sanitize" ] && dir=build-asan
ctest --test-dir "$dir" --output-on-failure -j "$(nproc)"
