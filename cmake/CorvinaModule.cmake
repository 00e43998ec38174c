# Every folder below src/ is one module: a static library that names the modules it uses.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE OFF)

# The flags of our own code; third-party code is built without them.
add_library(corvina_own INTERFACE)
target_include_directories(corvina_own INTERFACE "${CMAKE_CURRENT_SOURCE_DIR}/src")
target_compile_definitions(corvina_own INTERFACE
  WIN32_LEAN_AND_MEAN NOMINMAX STRICT _WIN32_WINNT=0x0601
  CORVINA_VERSION="${PROJECT_VERSION}")
if(MSVC)
  target_compile_options(corvina_own INTERFACE /W4 /WX /permissive- /utf-8)
else()
  target_compile_options(corvina_own INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
  # The heap of 32-bit Windows aligns to 8 bytes; the compiler believes 16. With the truth told, types
  # that need 16 get them.
  target_compile_options(corvina_own INTERFACE $<$<COMPILE_LANGUAGE:CXX>:-faligned-new=8>)
endif()

# corvina_module(name SOURCES file... [USES module-or-library...])
function(corvina_module name)
  cmake_parse_arguments(MODULE "" "" "SOURCES;USES" ${ARGN})
  add_library(corvina_${name} STATIC ${MODULE_SOURCES})
  target_link_libraries(corvina_${name} PUBLIC corvina_own ${MODULE_USES})
endfunction()
