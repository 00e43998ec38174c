# Cross build for 32-bit Windows with Debian's mingw-w64, posix threads.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR i686)

set(CMAKE_C_COMPILER i686-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER i686-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER i686-w64-mingw32-windres)

set(CMAKE_FIND_ROOT_PATH /usr/i686-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_CROSSCOMPILING_EMULATOR wine)

# SSE2 arithmetic gives the same results at every optimisation level; x87 does not. A host may call
# in on a stack that is only 4-aligned, so every function realigns it.
set(CMAKE_C_FLAGS_INIT "-march=pentium4 -mfpmath=sse -mstackrealign")
set(CMAKE_CXX_FLAGS_INIT "-march=pentium4 -mfpmath=sse -mstackrealign")

# A host machine has none of the compiler's libraries, and the same sources give the same bytes.
set(corvina_link_flags "-static -static-libgcc -static-libstdc++ -Wl,--no-insert-timestamp")
set(CMAKE_EXE_LINKER_FLAGS_INIT "${corvina_link_flags}")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "${corvina_link_flags}")
