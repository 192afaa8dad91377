#!/usr/bin/env bash
# Cross-builds the Windows COM server with mingw-w64: build-win64/ and
# build-win32/ each get zarvik.dll (type library embedded), the tests' ADO
# server zarvik_test_ado.dll and early_client.exe. The native zarvik command
# comes first: it prints the IDL and the vtable thunks the build compiles.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh --windows
cmake -S . -B build >/dev/null
cmake --build build -j "$(nproc)" --target zarvik
for target in x86_64:win64 i686:win32; do
  arch=${target%%:*}
  dir=build-${target##*:}
  cmake -S . -B "$dir" -DCMAKE_TOOLCHAIN_FILE="cmake/mingw-$arch.cmake" \
    -DCMAKE_BUILD_TYPE=Release -DZARVIK_NATIVE="$PWD/build/zarvik" >/dev/null
  cmake --build "$dir" -j "$(nproc)"
done
