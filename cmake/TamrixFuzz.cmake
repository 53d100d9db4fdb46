# tamrix_fuzz_target(NAME SOURCES file... [LINK target...])
#   The program tests/fuzz/NAME of the build folder, of sources that define fuzzTarget(). With
#   TAMRIX_LIBFUZZER it is a fuzzer, which ./dev fuzz runs. Otherwise it replays inputs, and a test
#   of CTest does so with those of tests/fuzz/corpus/NAME.
function(tamrix_fuzz_target name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
    set(program fuzz-${name})
    add_executable(${program} require.cpp ${ARG_SOURCES})
    set_target_properties(${program} PROPERTIES
        OUTPUT_NAME ${name}
        RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/tests/fuzz
        BUILD_RPATH ${TAMRIX_PREFIX_DIR}/lib)
    target_include_directories(${program} PRIVATE ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/tests)
    target_link_libraries(${program} PRIVATE ${ARG_LINK} tamrix-compiler)
    add_dependencies(tamrix-fuzz ${program})
    if(TAMRIX_LIBFUZZER)
        target_sources(${program} PRIVATE libfuzzer.cpp)
        target_link_options(${program} PRIVATE -fsanitize=fuzzer)
    else()
        target_sources(${program} PRIVATE replay.cpp)
        add_test(NAME Fuzz.${name}
            COMMAND ${program} ${PROJECT_SOURCE_DIR}/tests/fuzz/corpus/${name})
        set_tests_properties(Fuzz.${name} PROPERTIES TIMEOUT 120 ENVIRONMENT "LC_ALL=C.UTF-8")
    endif()
endfunction()
