# The Windows build for i686; the settings are mingw-common.cmake's.
set(ZARVIK_MINGW_ARCH i686)
# widl's target for the type library.
set(ZARVIK_WIDL_TARGET --win32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-common.cmake)
