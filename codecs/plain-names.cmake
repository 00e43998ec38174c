# The programs that load these libraries know them without the "lib" in front. The platform's module
# sets the prefix when the project is declared, so only what is included after that can change it.
set(CMAKE_SHARED_LIBRARY_PREFIX "")
