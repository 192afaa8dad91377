# The Windows build for x86_64; the settings are mingw-common.cmake's.
set(ZARVIK_MINGW_ARCH x86_64)
# widl's target for the type library.
set(ZARVIK_WIDL_TARGET --win64)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-common.cmake)
