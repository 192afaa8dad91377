#!/usr/bin/env bash
# Installs the Debian packages the build needs, when they are missing; with
# --windows also those of the Windows build and its tests under Wine.
# Run as root on a fresh Debian machine; does nothing when all are present.
set -euo pipefail
packages=(build-essential cmake pkg-config libsqlite3-dev unixodbc-dev odbcinst libsqliteodbc
          nlohmann-json3-dev libgtest-dev libbenchmark-dev clang-format)
if [ "${1:-}" = "--windows" ]; then
  packages+=(g++-mingw-w64-x86-64 g++-mingw-w64-i686 mingw-w64-tools libwine-dev wine wine64
             unixodbc)
fi
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -gt 0 ]; then
  echo "setup: installing ${missing[*]}"
  export DEBIAN_FRONTEND=noninteractive
  apt-get update -qq
  apt-get install -y -qq "${missing[@]}" >/dev/null
fi
