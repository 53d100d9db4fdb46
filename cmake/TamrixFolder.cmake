# Targets of this project. A folder below src/ is one object library; shared libraries and
# programs are made of folders. What is made for an installation is installed by the function that
# makes it.

# What an installation holds, without tests and benchmarks.
add_custom_target(tamrix-product)

# Compiles every header of the project alone; not part of the normal build.
add_custom_target(tamrix-headers)

# Some targets are made twice: NAME for Qt 5, and NAME-qt6 for applications with Qt 6 when TAMRIX_QT6
# is on. Only what is loaded into applications needs it.

# tamrix_for_qt6(VARIABLE target...): sets the variable to the names for Qt 6: of ours those that are
# made twice, and of Qt itself.
function(tamrix_for_qt6 variable)
    set(names "")
    foreach(name IN LISTS ARGN)
        if(TARGET ${name}-qt6)
            list(APPEND names ${name}-qt6)
        else()
            string(REGEX REPLACE "^Qt5::" "Qt6::" name ${name})
            list(APPEND names ${name})
        endif()
    endforeach()
    set(${variable} ${names} PARENT_SCOPE)
endfunction()

# tamrix_check_headers(NAME [QT6] [LINK target...])
#   Lets tamrix-headers compile each header of the current folder as a file of its own, twice
#   included, with what the folder's sources are compiled with. QT6: with Qt 6, too.
function(tamrix_check_headers name)
    cmake_parse_arguments(ARG "QT6" "" "LINK" ${ARGN})
    if(ARG_QT6 AND TAMRIX_QT6)
        tamrix_for_qt6(link ${ARG_LINK})
        tamrix_check_headers(${name}-qt6 LINK ${link})
    endif()
    file(RELATIVE_PATH folder ${PROJECT_SOURCE_DIR} ${CMAKE_CURRENT_SOURCE_DIR})
    file(GLOB headers CONFIGURE_DEPENDS RELATIVE ${CMAKE_CURRENT_SOURCE_DIR} *.h)
    set(sources "")
    foreach(header IN LISTS headers)
        set(source ${PROJECT_BINARY_DIR}/headers/${folder}/${header}.cpp)
        set(include "#include \"${CMAKE_CURRENT_SOURCE_DIR}/${header}\"\n")
        file(CONFIGURE OUTPUT ${source} CONTENT "${include}${include}" @ONLY)
        list(APPEND sources ${source})
    endforeach()
    if(sources)
        add_library(${name}-headers OBJECT EXCLUDE_FROM_ALL ${sources})
        set_target_properties(${name}-headers PROPERTIES AUTOMOC OFF)
        target_include_directories(${name}-headers PRIVATE
            ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/tests)
        target_link_libraries(${name}-headers PRIVATE ${ARG_LINK} tamrix-compiler)
        add_dependencies(tamrix-headers ${name}-headers)
    endif()
endfunction()

# tamrix_folder(NAME [QT6] SOURCES file... [LINK target...])
#   Compiles the sources of the current folder as the object library NAME. src/ is the only include
#   root. LINK names what the sources need: folders and external libraries. QT6: made twice.
function(tamrix_folder name)
    cmake_parse_arguments(ARG "QT6" "" "SOURCES;LINK" ${ARGN})
    if(ARG_QT6 AND TAMRIX_QT6)
        tamrix_for_qt6(link ${ARG_LINK})
        tamrix_folder(${name}-qt6 SOURCES ${ARG_SOURCES} LINK ${link})
    endif()
    add_library(${name} OBJECT ${ARG_SOURCES})
    target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
    target_link_libraries(${name} PUBLIC ${ARG_LINK} PRIVATE tamrix-compiler)
    tamrix_precompile_folder(${name} LINK ${ARG_LINK})
    tamrix_check_headers(${name} LINK ${ARG_LINK})
endfunction()

# tamrix_shared_library(NAME [QT6] FOLDERS folder... [LINK target...])
#   Links folders to the shared library NAME, which finds its companions beside itself. Others link
#   it as Tamrix::NAME, see TamrixInstall.cmake. QT6: made twice, of folders that are.
function(tamrix_shared_library name)
    cmake_parse_arguments(ARG "QT6" "" "FOLDERS;LINK" ${ARGN})
    if(ARG_QT6 AND TAMRIX_QT6)
        tamrix_for_qt6(folders ${ARG_FOLDERS})
        tamrix_for_qt6(link ${ARG_LINK})
        tamrix_shared_library(${name}-qt6 FOLDERS ${folders} LINK ${link})
    endif()
    add_library(${name} SHARED)
    foreach(folder IN LISTS ARG_FOLDERS)
        target_sources(${name} PRIVATE $<TARGET_OBJECTS:${folder}>)
    endforeach()
    set_target_properties(${name} PROPERTIES
        LINKER_LANGUAGE CXX
        BUILD_WITH_INSTALL_RPATH ON
        INSTALL_RPATH "$ORIGIN")
    target_include_directories(${name} PUBLIC
        $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/src>
        $<INSTALL_INTERFACE:include/tamrix>)
    target_compile_features(${name} PUBLIC cxx_std_20)
    target_link_libraries(${name} PUBLIC ${ARG_LINK} PRIVATE $<BUILD_INTERFACE:tamrix-compiler>)
    target_link_options(${name} PRIVATE -Wl,--no-undefined)
    if(TAMRIX_SANITIZERS)
        # The sanitizers' runtime belongs to the program.
        target_link_options(${name} PRIVATE -Wl,-z,undefs)
    endif()
    add_dependencies(tamrix-product ${name})
    install(TARGETS ${name} EXPORT TamrixTargets LIBRARY DESTINATION lib)
endfunction()

# tamrix_plugin(NAME SOURCES file... [LINK target...])
#   A module that the core loads by name from lib/, without the prefix "lib".
function(tamrix_plugin name)
    cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
    add_library(${name} MODULE ${ARG_SOURCES})
    set_target_properties(${name} PROPERTIES
        PREFIX ""
        BUILD_WITH_INSTALL_RPATH ON
        INSTALL_RPATH "$ORIGIN")
    target_link_libraries(${name} PRIVATE ${ARG_LINK} tamrix-compiler)
    tamrix_reuse_precompiled(${name} core)
    tamrix_check_headers(${name} LINK ${ARG_LINK})
    add_dependencies(tamrix-product ${name})
    install(TARGETS ${name} LIBRARY DESTINATION lib)
endfunction()

# tamrix_test_module(NAME FOLDER folder [OUTPUT_NAME name] SOURCES file... [LINK target...])
#   A module that tests load, in a folder below tests/ of the build folder; it is never installed.
function(tamrix_test_module name)
    cmake_parse_arguments(ARG "" "FOLDER;OUTPUT_NAME" "SOURCES;LINK" ${ARGN})
    if(NOT ARG_OUTPUT_NAME)
        set(ARG_OUTPUT_NAME ${name})
    endif()
    add_library(${name} MODULE ${ARG_SOURCES})
    set_target_properties(${name} PROPERTIES
        PREFIX ""
        OUTPUT_NAME ${ARG_OUTPUT_NAME}
        LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/tests/${ARG_FOLDER}
        BUILD_RPATH ${TAMRIX_PREFIX_DIR}/lib)
    target_link_libraries(${name} PRIVATE ${ARG_LINK} tamrix-compiler)
endfunction()

# tamrix_program(NAME [HELPER] SOURCES file... [LINK target...])
#   A program in bin/, or a helper of other programs in lib/exec/, that finds the libraries in lib/.
function(tamrix_program name)
    cmake_parse_arguments(ARG "HELPER" "" "SOURCES;LINK" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    set(folder bin)
    set(libraries "$ORIGIN/../lib")
    if(ARG_HELPER)
        set(folder lib/exec)
        set(libraries "$ORIGIN/..")
    endif()
    set_target_properties(${name} PROPERTIES
        RUNTIME_OUTPUT_DIRECTORY ${TAMRIX_PREFIX_DIR}/${folder}
        BUILD_WITH_INSTALL_RPATH ON
        INSTALL_RPATH ${libraries})
    target_link_libraries(${name} PRIVATE ${ARG_LINK} tamrix-compiler)
    add_dependencies(tamrix-product ${name})
    install(TARGETS ${name} RUNTIME DESTINATION ${folder})
endfunction()

# What tests need that start programs which were not built with the sanitizers: the agent inside was,
# so their runtimes come first. Qt leaves screens behind at the end of a program, which are no leaks
# of ours, and a crash shall be the signal that it is without sanitizers. The accessibility service of
# GTK does not start with the runtimes, and programs wait for it. What scripts need is as in ./dev.
set(TAMRIX_PROGRAMS_ENVIRONMENT "")
set(TAMRIX_SCRIPTS_ASAN_OPTIONS allocator_may_return_null=1:use_sigaltstack=0)
if(TAMRIX_SANITIZERS MATCHES "address")
    set(preload "")
    foreach(runtime asan ubsan)
        execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=lib${runtime}.so
            OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
        list(APPEND preload ${path})
    endforeach()
    list(JOIN preload ":" preload)
    set(TAMRIX_PROGRAMS_ENVIRONMENT "LD_PRELOAD=${preload}" "NO_AT_BRIDGE=1"
        "ASAN_OPTIONS=detect_leaks=0:handle_segv=0:verify_asan_link_order=0:${TAMRIX_SCRIPTS_ASAN_OPTIONS}")
endif()

# tamrix_test(NAME [DRIVES_PROGRAMS] SOURCES file... [LINK target...] [SANITIZED variable=value...])
#   A GoogleTest program below tests/ of the build folder; every TEST in it is a test of CTest.
#   DRIVES_PROGRAMS: it starts programs with the agent.
#   SANITIZED: its environment when it is built with the sanitizer of addresses.
function(tamrix_test name)
    cmake_parse_arguments(ARG "DRIVES_PROGRAMS" "" "SOURCES;LINK;SANITIZED" ${ARGN})
    add_executable(${name} ${ARG_SOURCES})
    set_target_properties(${name} PROPERTIES
        RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/tests
        BUILD_RPATH ${TAMRIX_PREFIX_DIR}/lib)
    target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/tests)
    target_compile_definitions(${name} PRIVATE
        TAMRIX_TEST_PREFIX="${TAMRIX_PREFIX_DIR}"
        TAMRIX_TEST_SOURCE_DIR="${PROJECT_SOURCE_DIR}")
    target_link_libraries(${name} PRIVATE ${ARG_LINK} GTest::gmock GTest::gtest_main tamrix-compiler
        tamrix-tests-compiler)
    tamrix_reuse_precompiled(${name} tests)
    set(environment "")
    if(ARG_DRIVES_PROGRAMS)
        list(APPEND environment ${TAMRIX_PROGRAMS_ENVIRONMENT})
    endif()
    if(TAMRIX_SANITIZERS MATCHES "address")
        list(APPEND environment ${ARG_SANITIZED})
    endif()
    if(environment)
        # The property ENVIRONMENT takes but one variable here.
        set_target_properties(${name} PROPERTIES CROSSCOMPILING_EMULATOR "env;${environment}")
    endif()
    gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST NO_PRETTY_VALUES
        PROPERTIES TIMEOUT 900 ENVIRONMENT "LC_ALL=C.UTF-8")
endfunction()
