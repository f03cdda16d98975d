# Warnings are errors, in every target of the project.
function(tlvlib_warnings target)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)
endfunction()
