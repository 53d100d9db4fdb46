# Compiler settings that hold for every target of ours.

set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

# A second build takes seconds, also in another checkout. Precompiled headers are cached like objects;
# for that ccache must take their macros for those of the command line.
find_program(TAMRIX_CCACHE ccache)
if(TAMRIX_CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env
        CCACHE_BASEDIR=${PROJECT_SOURCE_DIR} CCACHE_NOHASHDIR=1
        CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
        ${TAMRIX_CCACHE})
endif()

add_library(tamrix-compiler INTERFACE)
target_compile_options(tamrix-compiler INTERFACE
    -Wall -Wextra -Wpedantic $<$<CXX_COMPILER_ID:GNU>:-Wshadow=local>
    -Wnon-virtual-dtor -Woverloaded-virtual)
# A call inside one of our shared libraries is a plain call, and may be inlined.
target_compile_options(tamrix-compiler INTERFACE -fno-semantic-interposition -fno-plt)
# Nothing that is built names the folder in which it was built.
target_compile_options(tamrix-compiler INTERFACE
    -ffile-prefix-map=${PROJECT_SOURCE_DIR}=.
    -ffile-prefix-map=${PROJECT_BINARY_DIR}=.)
if(TAMRIX_WARNINGS_AS_ERRORS)
    target_compile_options(tamrix-compiler INTERFACE -Werror)
endif()
target_compile_definitions(tamrix-compiler INTERFACE
    QT_DEPRECATED_WARNINGS
    QT_NO_KEYWORDS # Python's headers use "slots" as a name
    TAMRIX_VERSION="${PROJECT_VERSION}")
if(TAMRIX_SANITIZERS)
    target_compile_options(tamrix-compiler INTERFACE
        -fsanitize=${TAMRIX_SANITIZERS} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    target_link_options(tamrix-compiler INTERFACE -fsanitize=${TAMRIX_SANITIZERS})
endif()
if(TAMRIX_LIBFUZZER)
    # Tells the fuzzer which edges of the code an input reaches.
    target_compile_options(tamrix-compiler INTERFACE -fsanitize=fuzzer-no-link)
endif()

# Tests are compiled often and run shortly: most of the time goes into what they test.
add_library(tamrix-tests-compiler INTERFACE)
target_compile_options(tamrix-tests-compiler INTERFACE -O0)
