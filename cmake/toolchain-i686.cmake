# Cross build for 32-bit Windows with mingw-w64 (win32 thread model: no winpthread, whose imports the named Windows lack): the shipping build.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(TOOL_PREFIX i686-w64-mingw32)
include(${CMAKE_CURRENT_LIST_DIR}/mingw-common.cmake)
