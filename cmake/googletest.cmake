# GoogleTest from Debian's packages: the library for the native compiler, the sources for a cross-compiler.
if(CMAKE_CROSSCOMPILING)
    add_subdirectory(/usr/src/googletest "${CMAKE_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL SYSTEM)
else()
    find_package(GTest REQUIRED)
endif()
include(GoogleTest)
