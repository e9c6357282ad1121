# kvn_delay_load(TARGET LIBRARY...): makes a program load system DLLs at its first call of them. Loading takes most of
# the time of a start, and a run that finds nothing to do calls few DLLs.
set(KVN_DELAY_LIBRARY_TOOL "${CMAKE_CURRENT_LIST_DIR}/mingw_linker/delay_library")

function(kvn_delay_load target)
    foreach(library IN LISTS ARGN)
        if(MSVC)
            target_link_options(${target} PRIVATE "/DELAYLOAD:${library}.dll")
            target_link_libraries(${target} PRIVATE delayimp)
        else()
            set(file "${CMAKE_CURRENT_BINARY_DIR}/libdelayed_${library}.a")
            add_custom_command(OUTPUT "${file}"
                COMMAND "${KVN_DELAY_LIBRARY_TOOL}" ${library} "${CMAKE_CXX_COMPILER}" "${file}"
                DEPENDS "${KVN_DELAY_LIBRARY_TOOL}" VERBATIM)
            target_sources(${target} PRIVATE "${file}")
            set_property(TARGET ${target} APPEND PROPERTY LINK_DEPENDS "${file}")
            # An option comes before the other libraries, and the linker takes the first library that has a function.
            target_link_options(${target} PRIVATE "${file}" "-Wl,-Xlink=-delayload:${library}.dll")
        endif()
    endforeach()
endfunction()

# kvn_load_from_system_only(TARGET): makes Windows, from version 1607 on, load the DLLs that a program imports only from
# the system's folder. Does not cover DLLs that the program loads later. For MinGW LLVM's linker has no option for this,
# so the program brings the table with the flag itself.
function(kvn_load_from_system_only target)
    if(MSVC)
        target_link_options(${target} PRIVATE /DEPENDENTLOADFLAG:0x800)
    else()
        target_sources(${target} PRIVATE "${CMAKE_SOURCE_DIR}/platform/windows/load_configuration.cpp")
        target_link_options(${target} PRIVATE "-Wl,--undefined=_load_config_used")
    endif()
endfunction()
