# The linker orders imports by the path of their library as it was given. A relative one gives the same
# file in every checkout.
include("${CMAKE_CURRENT_LIST_DIR}/plain-names.cmake")
set(OGG_LIBRARY -l:libogg.dll.a)
add_library(Ogg::ogg INTERFACE IMPORTED GLOBAL)
target_include_directories(Ogg::ogg INTERFACE "${OGG_INCLUDE_DIR}")
target_link_options(Ogg::ogg INTERFACE -L../install/lib)
target_link_libraries(Ogg::ogg INTERFACE -l:libogg.dll.a)
