# Installs the build tree BUILD_DIR below itself and builds the project beside this file twice against it.

set(prefix ${BUILD_DIR}/package/prefix)
file(REMOVE_RECURSE ${BUILD_DIR}/package)

function(run)
    execute_process(COMMAND ${ARGV} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
    if(NOT result EQUAL 0)
        list(JOIN ARGV " " command)
        message(FATAL_ERROR "${command}\n${output}")
    endif()
endfunction()

run(${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${prefix})

run(${CMAKE_COMMAND} -S ${CMAKE_CURRENT_LIST_DIR} -B ${BUILD_DIR}/package/cmake -DCMAKE_PREFIX_PATH=${prefix}
    -DCMAKE_CXX_COMPILER=${CXX})
run(${CMAKE_COMMAND} --build ${BUILD_DIR}/package/cmake)
run(${BUILD_DIR}/package/cmake/consumer)

find_program(PKG_CONFIG pkg-config REQUIRED)
set(ENV{PKG_CONFIG_PATH} ${prefix}/${LIBDIR}/pkgconfig)
execute_process(COMMAND ${PKG_CONFIG} --cflags --libs dorvutil OUTPUT_VARIABLE flags
                OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
separate_arguments(flags)
run(${CXX} ${CMAKE_CURRENT_LIST_DIR}/main.cpp -o ${BUILD_DIR}/package/consumer ${flags}
    -Wl,-rpath,${prefix}/${LIBDIR})
run(${BUILD_DIR}/package/consumer)
