# Cross build for 32-bit Windows with clang over the headers and libraries of Debian's mingw-w64: a second
# opinion on the sources. What is delivered is built with mingw-i686.cmake.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR i686)

set(CMAKE_C_COMPILER clang)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_RC_COMPILER i686-w64-mingw32-windres)
set(CMAKE_C_COMPILER_TARGET i686-w64-mingw32)
set(CMAKE_CXX_COMPILER_TARGET i686-w64-mingw32)

# Debian has two mingw-w64 side by side; clang would take either.
execute_process(COMMAND i686-w64-mingw32-g++-posix -print-libgcc-file-name
  OUTPUT_VARIABLE gcc OUTPUT_STRIP_TRAILING_WHITESPACE)
cmake_path(GET gcc PARENT_PATH gcc)

set(CMAKE_FIND_ROOT_PATH /usr/i686-w64-mingw32)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_CROSSCOMPILING_EMULATOR wine)

# Of the system's headers only those of the target count.
set(flags "-march=pentium4 -mfpmath=sse -mstackrealign -nostdlibinc")
set(headers "-isystem /usr/i686-w64-mingw32/include")
set(CMAKE_C_FLAGS_INIT "${flags} ${headers}")
set(CMAKE_CXX_FLAGS_INIT "${flags} -isystem ${gcc}/include/c++ -isystem ${gcc}/include/c++/i686-w64-mingw32 ${headers}")

# GCC's own start files (-B), which announce where the exception tables are: clang would take those of
# mingw-w64, and the first throw would end the program. LLVM's linker (package lld) knows the sections that
# both compilers write, and does not mind that the thread library is named before those that need it.
string(CONCAT corvina_link_flags "-static -fuse-ld=lld -B${gcc} -L${gcc} -lpthread"
  " -Wno-unused-command-line-argument")
set(CMAKE_EXE_LINKER_FLAGS_INIT "${corvina_link_flags}")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "${corvina_link_flags}")
