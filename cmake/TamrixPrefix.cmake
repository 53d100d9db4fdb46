# Files of an installation that are not built: they are copied to the build folder, which has the
# shape of an installation.

foreach(file ignoredauts.txt paths.ini tamrix.ini)
    configure_file(${PROJECT_SOURCE_DIR}/etc/${file} ${TAMRIX_PREFIX_DIR}/etc/${file} COPYONLY)
endforeach()
file(MAKE_DIRECTORY ${TAMRIX_PREFIX_DIR}/lib/exec ${TAMRIX_PREFIX_DIR}/scriptmodules)

# The engine for text recognition. Looked at in each build: packages may have come and gone.
set(tesseract_script ${CMAKE_CURRENT_LIST_DIR}/TesseractFolder.cmake)
add_custom_target(tamrix-tesseract-folder ALL
    COMMAND ${CMAKE_COMMAND} -DFOLDER=${TAMRIX_PREFIX_DIR}/lib/tesseract
        -DARCHITECTURE=${CMAKE_LIBRARY_ARCHITECTURE} -P ${tesseract_script}
    COMMENT "Looking for the engine for text recognition"
    VERBATIM)
add_dependencies(tamrix-product tamrix-tesseract-folder)
install(CODE "execute_process(COMMAND \"${CMAKE_COMMAND}\"
    \"-DFOLDER=\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/lib/tesseract\"
    -DARCHITECTURE=${CMAKE_LIBRARY_ARCHITECTURE} -P \"${tesseract_script}\"
    COMMAND_ERROR_IS_FATAL ANY)")
