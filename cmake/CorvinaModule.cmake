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
  # C4996 calls functions deprecated that old drives and Windows 7 need; C4324 reports every type that is
  # aligned on purpose.
  target_compile_options(corvina_own INTERFACE /W4 /WX /permissive- /utf-8 /wd4996 /wd4324)
else()
  target_compile_options(corvina_own INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
  # The heap of 32-bit Windows aligns to 8 bytes; the compiler believes 16. This is the truth, so that
  # types that need 16 get them.
  target_compile_options(corvina_own INTERFACE $<$<COMPILE_LANG_AND_ID:CXX,GNU>:-faligned-new=8>)
endif()

# corvina_module(name SOURCES file... [USES module-or-library...])
# Modules are added from the ground up, so one can use only those that were added before it.
function(corvina_module name)
  cmake_parse_arguments(MODULE "" "" "SOURCES;USES" ${ARGN})
  add_library(corvina_${name} STATIC ${MODULE_SOURCES})
  corvina_is_module(${name} corvina_${name} ${MODULE_USES})
  target_link_libraries(corvina_${name} PUBLIC corvina_own ${MODULE_USES})
endfunction()

# corvina_is_module(name target USES...): what corvina_module does for a target that it cannot make.
function(corvina_is_module name target)
  set_property(GLOBAL APPEND PROPERTY CORVINA_MODULES ${name})
  set(reachable ${name})
  foreach(used IN LISTS ARGN)
    if(used MATCHES "^corvina_" AND NOT TARGET ${used})
      message(FATAL_ERROR "The module ${name} uses ${used}, which is not below it in src/CMakeLists.txt.")
    endif()
    if(TARGET ${used})
      get_property(further TARGET ${used} PROPERTY CORVINA_REACHABLE)
      list(APPEND reachable ${further})
    endif()
  endforeach()
  list(REMOVE_DUPLICATES reachable)
  set_target_properties(${target} PROPERTIES
    CORVINA_REACHABLE "${reachable}" CORVINA_FOLDER "${CMAKE_CURRENT_SOURCE_DIR}")
endfunction()

# corvina_check_includes(target folder [module...]): the target is built only if the sources below the
# folder include from no other modules than these.
function(corvina_check_includes target folder)
  get_property(modules GLOBAL PROPERTY CORVINA_MODULES)
  set(stamp "${PROJECT_BINARY_DIR}/includes/${target}")
  set(script "${PROJECT_SOURCE_DIR}/cmake/CheckIncludes.cmake")
  list(JOIN modules "|" modules)
  list(JOIN ARGN "|" allowed)
  # The script lists the files that it has read, and their folders, for files that come later. Listed
  # here they would make every build look for new files and then run CMake again.
  add_custom_command(OUTPUT "${stamp}"
    COMMAND "${CMAKE_COMMAND}" "-DFOLDER=${folder}" "-DMODULES=${modules}" "-DALLOWED=${allowed}"
            "-DSTAMP=${stamp}" -P "${script}"
    DEPENDS "${script}"
    DEPFILE "${stamp}.d"
    COMMENT "Checking what ${target} includes"
    VERBATIM)
  add_custom_target(${target}_includes DEPENDS "${stamp}")
  add_dependencies(${target} ${target}_includes)
endfunction()

# Checks every module against the modules that it names as used, with those that they use.
function(corvina_check_modules)
  get_property(modules GLOBAL PROPERTY CORVINA_MODULES)
  foreach(name IN LISTS modules)
    get_target_property(folder corvina_${name} CORVINA_FOLDER)
    get_target_property(reachable corvina_${name} CORVINA_REACHABLE)
    corvina_check_includes(corvina_${name} "${folder}" ${reachable})
  endforeach()
endfunction()
