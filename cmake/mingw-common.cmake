set(CMAKE_C_COMPILER   ${TOOL_PREFIX}-gcc-win32)
set(CMAKE_CXX_COMPILER ${TOOL_PREFIX}-g++-win32)
set(CMAKE_RC_COMPILER  ${TOOL_PREFIX}-windres)
set(CMAKE_FIND_ROOT_PATH /usr/${TOOL_PREFIX})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
# One file, no runtime DLL beside it: libgcc and libstdc++ go in statically.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static -static-libgcc -static-libstdc++")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "-static -static-libgcc -static-libstdc++")
# Size: every function and datum in its own section, unused sections dropped by
# the linker, and no symbol table in the builds that ship.
set(CMAKE_C_FLAGS_INIT "-ffunction-sections -fdata-sections")
set(CMAKE_CXX_FLAGS_INIT "-ffunction-sections -fdata-sections")
string(APPEND CMAKE_EXE_LINKER_FLAGS_INIT " -Wl,--gc-sections")
set(CMAKE_EXE_LINKER_FLAGS_MINSIZEREL_INIT "-s")
set(CMAKE_EXE_LINKER_FLAGS_RELEASE_INIT "-s")
