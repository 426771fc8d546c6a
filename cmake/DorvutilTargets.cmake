# What every target of this project is compiled with.

find_program(DORVUTIL_CCACHE ccache)
if(DORVUTIL_CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${DORVUTIL_CCACHE})
endif()
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

# Language level, warnings and sanitizers for one target.
function(dorvutil_configure target)
    target_compile_features(${target} PRIVATE cxx_std_20)
    set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)
    if(DORVUTIL_SANITIZE)
        target_compile_options(${target} PRIVATE -fsanitize=${DORVUTIL_SANITIZE} -fno-sanitize-recover=all
                                                 -fno-omit-frame-pointer)
        target_link_options(${target} PRIVATE -fsanitize=${DORVUTIL_SANITIZE})
    endif()
    if(DORVUTIL_BUILD_FUZZ)
        target_compile_options(${target} PRIVATE -fsanitize=fuzzer-no-link)
    endif()
endfunction()
