# Cross-compiling the Windows build (zarvik.dll and its test programs) with
# mingw-w64 for ZARVIK_MINGW_ARCH, which mingw-i686.cmake or
# mingw-x86_64.cmake sets; see scripts/build-windows.sh.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR ${ZARVIK_MINGW_ARCH})
set(CMAKE_C_COMPILER ${ZARVIK_MINGW_ARCH}-w64-mingw32-gcc)
set(CMAKE_CXX_COMPILER ${ZARVIK_MINGW_ARCH}-w64-mingw32-g++)
set(CMAKE_RC_COMPILER ${ZARVIK_MINGW_ARCH}-w64-mingw32-windres)
set(CMAKE_FIND_ROOT_PATH /usr/${ZARVIK_MINGW_ARCH}-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
