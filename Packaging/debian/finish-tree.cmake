# Run by cpack between installing and packing: what a Debian package has beside what is installed.
if(NOT CPACK_GENERATOR STREQUAL "DEB")
    return()
endif()
execute_process(
    COMMAND "${CPACK_TORVO_STRIP}" --remove-section=.comment --remove-section=.note
        "${CPACK_TEMPORARY_DIRECTORY}/usr/bin/${CPACK_PACKAGE_NAME}"
        "${CPACK_TEMPORARY_DIRECTORY}/usr/libexec/${CPACK_PACKAGE_NAME}/decoders.so"
    COMMAND_ERROR_IS_FATAL ANY)

file(GLOB_RECURSE manual_pages "${CPACK_TEMPORARY_DIRECTORY}/usr/share/man/*.1")
set(documents "${CPACK_TEMPORARY_DIRECTORY}/usr/share/doc/${CPACK_PACKAGE_NAME}")
file(COPY "${CMAKE_CURRENT_LIST_DIR}/changelog" "${CMAKE_CURRENT_LIST_DIR}/copyright"
    DESTINATION "${documents}")
# Without a name and a time inside: one source gives one package.
execute_process(COMMAND gzip -n9 ${manual_pages} "${documents}/changelog"
    COMMAND_ERROR_IS_FATAL ANY)
