#!/usr/bin/env bash
# Installs what is missing, builds, and runs the demo tour on the embedded
# demo database.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
bash scripts/build.sh
build/zarvik demo
