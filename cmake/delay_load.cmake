# kvn_delay_load(TARGET LIBRARY...): lets a program load system DLLs when it first calls them. Loading takes most of the
# time that a program needs to start, and a run that finds nothing to do calls few.
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
            # As an option the file stands before the other libraries, of which the first that has a function wins.
            target_link_options(${target} PRIVATE "${file}" "-Wl,-Xlink=-delayload:${library}.dll")
        endif()
    endforeach()
endfunction()

# kvn_load_from_system_only(TARGET): lets Windows take the DLLs that a program imports from its own folder alone, from
# version 1607 on. What the program loads later is its own business. LLVM's linker has no option for this in its role for
# MinGW, but takes the table in which the flag stands from the program.
function(kvn_load_from_system_only target)
    if(MSVC)
        target_link_options(${target} PRIVATE /DEPENDENTLOADFLAG:0x800)
    else()
        target_sources(${target} PRIVATE "${CMAKE_SOURCE_DIR}/platform/windows/load_configuration.cpp")
        target_link_options(${target} PRIVATE "-Wl,--undefined=_load_config_used")
    endif()
endfunction()
