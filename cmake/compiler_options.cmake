# One interface target with the language level, the warnings and the hardening for everything that this project builds.
set(KVN_SANITIZERS "" CACHE STRING "Value for -fsanitize=, empty for none")
option(KVN_COVERAGE "Count the lines and branches that are run (GCC)" OFF)

add_library(kvn_compiler_options INTERFACE)
target_compile_features(kvn_compiler_options INTERFACE cxx_std_20)
set(CMAKE_CXX_EXTENSIONS OFF)

if(WIN32)
    target_compile_definitions(kvn_compiler_options INTERFACE
        UNICODE _UNICODE WIN32_LEAN_AND_MEAN NOMINMAX _WIN32_WINNT=0x0A00 WINVER=0x0A00)
endif()

if(MSVC)
    set(CMAKE_MSVC_RUNTIME_LIBRARY "MultiThreaded$<$<CONFIG:Debug>:Debug>")
    target_compile_options(kvn_compiler_options INTERFACE /W4 /WX /permissive- /utf-8 /Zc:__cplusplus /EHsc /guard:cf)
    target_link_options(kvn_compiler_options INTERFACE /DYNAMICBASE /HIGHENTROPYVA /NXCOMPAT /guard:cf)
    return()
endif()

target_compile_options(kvn_compiler_options INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wshadow -Wnon-virtual-dtor -Wold-style-cast
    -Wformat=2 -Wimplicit-fallthrough -Werror
    -fstack-protector-strong
    # The program must not contain paths of the machine that builds it.
    "-ffile-prefix-map=${CMAKE_SOURCE_DIR}/=")

if(MINGW)
    # For LLVM's linker, which drops functions that nothing calls. GNU ld keeps every function that has unwind data, on
    # this platform all of them: a quarter of the program would be unused parts of the C++ library.
    target_compile_options(kvn_compiler_options INTERFACE -ffunction-sections -fdata-sections)
    # Small code, because the program mostly waits for disk, network and archive tool. What does compute, such as the
    # parsers of update/, asks for -O2.
    set(CMAKE_CXX_FLAGS_RELEASE "-Os -DNDEBUG")
    target_link_options(kvn_compiler_options INTERFACE
        -static -fstack-protector-strong
        "-B${CMAKE_CURRENT_LIST_DIR}/mingw_linker"
        -Wl,--gc-sections,--dynamicbase,--high-entropy-va,--nxcompat,--no-insert-timestamp
        $<$<CONFIG:Release>:-s>)
endif()

if(KVN_SANITIZERS)
    # A target or a folder whose code goes without some of them says so with this property.
    define_property(TARGET PROPERTY KVN_UNSANITIZED INHERITED)
    target_compile_options(kvn_compiler_options INTERFACE
        -fsanitize=${KVN_SANITIZERS} -fno-sanitize-recover=all -fno-omit-frame-pointer
        $<$<BOOL:$<TARGET_PROPERTY:KVN_UNSANITIZED>>:-fno-sanitize=$<TARGET_PROPERTY:KVN_UNSANITIZED>>)
    # The C++ library checks its preconditions, such as the bounds of what [] is asked for.
    target_compile_definitions(kvn_compiler_options INTERFACE _GLIBCXX_ASSERTIONS)
    target_link_options(kvn_compiler_options INTERFACE -fsanitize=${KVN_SANITIZERS})
endif()

if(KVN_COVERAGE)
    target_compile_options(kvn_compiler_options INTERFACE --coverage -fprofile-update=atomic)
    target_link_options(kvn_compiler_options INTERFACE --coverage)
endif()
