# The headers that most sources of the core include are read once, not for every mutant.
function(kvn_precompile_core)
    foreach(target kvn_files kvn_update kvn_transfer kvn_install kvn_update_run)
        target_precompile_headers(${target} PRIVATE
            <algorithm> <array> <filesystem> <functional> <optional> <set> <string> <system_error> <vector>)
    endforeach()
endfunction()
cmake_language(DEFER CALL kvn_precompile_core)
