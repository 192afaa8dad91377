#!/usr/bin/env bash
# Configures and builds into build/ (or build-asan/ with --sanitize).
set -euo pipefail
cd "$(dirname "$0")/.."
dir=build
opts=()
if [ "${1:-}" = "--sanitize" ]; then
  dir=build-asan
  opts=(-DZARVIK_SANITIZE=ON -DZARVIK_BENCH=OFF -DCMAKE_BUILD_TYPE=Debug)
fi
cmake -S . -B "$dir" "${opts[@]}" >/dev/null
cmake --build "$dir" -j "$(nproc)"
