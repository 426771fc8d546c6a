# What the compiler comes with for call stacks: line numbers from debugging information (libbacktrace, beside gcc), and a
# demangler that works without the heap (in gcc's C++ run-time library, not exported by its shared form). Both are parts
# of the compiler's own run-time libraries and are linked in; the library does without either where there is none.

include(CheckCXXSourceCompiles)

function(dorvutil_check_in_shared_library libraries source result)
    set(CMAKE_REQUIRED_FLAGS -fPIC)
    set(CMAKE_REQUIRED_LINK_OPTIONS -shared -Wl,--no-undefined)
    set(CMAKE_REQUIRED_LIBRARIES ${libraries})
    check_cxx_source_compiles("${source}" ${result})
endfunction()

dorvutil_check_in_shared_library("backtrace" "
    #include <backtrace.h>
    #include <backtrace-supported.h>
    #if !BACKTRACE_SUPPORTED || !BACKTRACE_SUPPORTS_THREADS || BACKTRACE_USES_MALLOC
    #error not in a fault handler
    #endif
    void* Create() { return backtrace_create_state(nullptr, 1, nullptr, nullptr); }
    " DORVUTIL_BACKTRACE)

# The shared run-time library first: it keeps what both have.
set(demangler_libraries stdc++ -l:libsupc++.a)
dorvutil_check_in_shared_library("${demangler_libraries}" "
    #include <cstddef>
    #if !defined(__GLIBCXX__)
    #error another library's names
    #endif
    extern \"C\" int __gcclibcxx_demangle_callback(const char*, void (*)(const char*, std::size_t, void*), void*);
    int Demangle() { return __gcclibcxx_demangle_callback(\"f\", nullptr, nullptr); }
    " DORVUTIL_DEMANGLER)

# For the target that compiles the sources; what it is linked into takes dorvutil_call_stack_libraries.
function(dorvutil_use_call_stacks target)
    set(libraries)
    if(DORVUTIL_BACKTRACE)
        target_compile_definitions(${target} PRIVATE DORVUTIL_HAS_BACKTRACE)
        list(APPEND libraries backtrace)
    endif()
    if(DORVUTIL_DEMANGLER)
        target_compile_definitions(${target} PRIVATE DORVUTIL_HAS_DEMANGLER)
        list(APPEND libraries ${demangler_libraries})
    endif()
    set(dorvutil_call_stack_libraries ${libraries} PARENT_SCOPE)
endfunction()
