# The libraries of kvn-release.exe: those that scripts/setup has built, zlib from Debian's package, and header-only
# libraries, which are the same for every system.
if(DEFINED ENV{XDG_CACHE_HOME})
    set(defaultCache "$ENV{XDG_CACHE_HOME}")
else()
    set(defaultCache "$ENV{HOME}/.cache")
endif()
set(KVN_WINDOWS_LIBRARIES "${defaultCache}/kelvane-updater/windows-libraries" CACHE PATH
    "What scripts/build-for-windows has built")
if(NOT EXISTS "${KVN_WINDOWS_LIBRARIES}")
    message(FATAL_ERROR "${KVN_WINDOWS_LIBRARIES} is missing: run scripts/setup")
endif()

set(ZLIB_USE_STATIC_LIBS ON)
find_package(ZLIB REQUIRED)

add_library(kvn_minizip INTERFACE)
target_include_directories(kvn_minizip SYSTEM INTERFACE "${KVN_WINDOWS_LIBRARIES}/include/minizip")
target_link_libraries(kvn_minizip INTERFACE "${KVN_WINDOWS_LIBRARIES}/lib/libminizip.a" ZLIB::ZLIB)

add_library(LibArchive::LibArchive INTERFACE IMPORTED)
target_include_directories(LibArchive::LibArchive SYSTEM INTERFACE "${KVN_WINDOWS_LIBRARIES}/include")
target_compile_definitions(LibArchive::LibArchive INTERFACE LIBARCHIVE_STATIC)
target_link_libraries(LibArchive::LibArchive INTERFACE
    "${KVN_WINDOWS_LIBRARIES}/lib/libarchive.a" ZLIB::ZLIB bcrypt ws2_32)

# Only links to single folders: /usr/include as a whole would hide the headers for Windows.
file(MAKE_DIRECTORY "${CMAKE_BINARY_DIR}/headers")
foreach(library CLI nlohmann)
    file(CREATE_LINK "/usr/include/${library}" "${CMAKE_BINARY_DIR}/headers/${library}" SYMBOLIC)
endforeach()
foreach(library CLI11::CLI11 nlohmann_json::nlohmann_json)
    add_library(${library} INTERFACE IMPORTED)
    target_include_directories(${library} SYSTEM INTERFACE "${CMAKE_BINARY_DIR}/headers")
endforeach()
