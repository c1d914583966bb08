# Packs the library's package again without the scripts that CPack writes into it: they call
# ldconfig, which the package's trigger does already.
foreach(package IN LISTS CPACK_PACKAGE_FILES)
    if(package MATCHES "/libbscan[0-9]+_")
        set(unpacked "${CPACK_TEMPORARY_DIRECTORY}/repacked")
        file(REMOVE_RECURSE "${unpacked}")
        execute_process(
            COMMAND dpkg-deb --raw-extract "${package}" "${unpacked}" COMMAND_ERROR_IS_FATAL ANY
        )
        file(REMOVE "${unpacked}/DEBIAN/postinst" "${unpacked}/DEBIAN/postrm")
        execute_process(
            COMMAND dpkg-deb --root-owner-group --build "${unpacked}" "${package}"
            OUTPUT_QUIET
            COMMAND_ERROR_IS_FATAL ANY
        )
    endif()
endforeach()
