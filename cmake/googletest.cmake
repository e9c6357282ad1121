# GoogleTest from Debian's sources: built here, because the installed library is for the native compiler only.
add_subdirectory(/usr/src/googletest "${CMAKE_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL SYSTEM)
include(GoogleTest)
