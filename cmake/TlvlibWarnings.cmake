# The warnings that every target of the project is compiled with. They are errors where TLVLIB_WERROR says so: for those
# who change the project, not for those who build it with a compiler that it has never seen.
function(tlvlib_warnings target)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion)
    if(TLVLIB_WERROR)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
endfunction()
