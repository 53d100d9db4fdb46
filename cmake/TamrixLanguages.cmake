# The languages whose plug-ins are built. All but Python are left out where the runtime's development
# files are not there, and said to be.

set(TAMRIX_LANGUAGES python)

# tamrix_language(FOLDER FOUND package)
#   Adds the plug-in in the folder below src/plugins/ if FOUND is true; the package brings its runtime.
function(tamrix_language folder found package)
    if(NOT EXISTS ${PROJECT_SOURCE_DIR}/src/plugins/${folder}/CMakeLists.txt)
        return()
    endif()
    if(found)
        set(TAMRIX_LANGUAGES ${TAMRIX_LANGUAGES} ${folder} PARENT_SCOPE)
    else()
        message(STATUS "Left out: the plug-in for ${folder} scripts, which needs ${package}")
    endif()
endfunction()

pkg_check_modules(MozJs IMPORTED_TARGET mozjs-102)
tamrix_language(javascript "${MozJs_FOUND}" libmozjs-102-dev)

find_package(PerlLibs 5.36)
if(PERLLIBS_FOUND)
    add_library(Perl::Embedded INTERFACE IMPORTED)
    target_link_libraries(Perl::Embedded INTERFACE ${PERL_LIBRARY})
    target_include_directories(Perl::Embedded SYSTEM INTERFACE ${PERL_INCLUDE_PATH})
    # What Perl itself was compiled with; its definitions change nothing on 64 bits.
    target_compile_options(Perl::Embedded INTERFACE -fno-strict-aliasing)
endif()
tamrix_language(perl "${PERLLIBS_FOUND}" libperl-dev)

pkg_check_modules(Ruby IMPORTED_TARGET ruby-3.1)
tamrix_language(ruby "${Ruby_FOUND}" ruby-dev)

pkg_check_modules(Tcl IMPORTED_TARGET tcl8.6)
tamrix_language(tcl "${Tcl_FOUND}" tcl-dev)
