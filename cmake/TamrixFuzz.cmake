# tamrix_fuzz_target(NAME SOURCES file... [LINK target...])
#   The program tests/fuzz/NAME of the build folder, of sources that define fuzzTarget() and the
#   driver that calls it with the inputs of tests/fuzz/corpus/NAME and with mutations of them. It is
#   a test of CTest for two seconds; ./dev fuzz runs it for longer.
function(tamrix_fuzz_target name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
    set(program fuzz-${name})
    add_executable(${program} ${ARG_SOURCES})
    set_target_properties(${program} PROPERTIES
        OUTPUT_NAME ${name}
        RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/tests/fuzz
        BUILD_RPATH ${TAMRIX_PREFIX_DIR}/lib)
    target_include_directories(${program} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
    target_link_libraries(${program} PRIVATE ${ARG_LINK} tamrix-fuzz-driver tamrix-compiler)
    add_test(NAME Fuzz.${name}
        COMMAND ${program} --seconds 2 ${PROJECT_SOURCE_DIR}/tests/fuzz/corpus/${name})
    set_tests_properties(Fuzz.${name} PROPERTIES TIMEOUT 120 ENVIRONMENT "LC_ALL=C.UTF-8")
endfunction()
