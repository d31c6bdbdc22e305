# Cross-compiling for 32-bit Windows with Debian's g++-mingw-w64-i686-posix.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR i686)
set(_triple i686-w64-mingw32)
set(CMAKE_C_COMPILER ${_triple}-gcc-posix)
set(CMAKE_CXX_COMPILER ${_triple}-g++-posix)
set(CMAKE_RC_COMPILER ${_triple}-windres)
# SSE2 arithmetic, so that doubles round as on other systems; heap blocks of the C runtime are
# aligned to 8 bytes only, which aligned new must know.
set(_flags "-msse2 -mfpmath=sse -mstackrealign -D_FILE_OFFSET_BITS=64 -D_WIN32_WINNT=0x0601 -DUNICODE -D_UNICODE -DNOMINMAX")
set(CMAKE_C_FLAGS_INIT "${_flags}")
set(CMAKE_CXX_FLAGS_INIT "${_flags} -faligned-new=8")
set(CMAKE_EXE_LINKER_FLAGS_INIT "-static -Wl,--stack,8388608 -Wl,--large-address-aware")
set(CMAKE_FIND_ROOT_PATH /usr/${_triple})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
