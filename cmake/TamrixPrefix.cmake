# Files of an installation that are not built: they are copied to the build folder, which has the
# shape of an installation.

foreach(file ignoredauts.txt paths.ini tamrix.ini)
    configure_file(${PROJECT_SOURCE_DIR}/etc/${file} ${TAMRIX_PREFIX_DIR}/etc/${file} COPYONLY)
endforeach()
file(MAKE_DIRECTORY ${TAMRIX_PREFIX_DIR}/lib/exec ${TAMRIX_PREFIX_DIR}/scriptmodules)
