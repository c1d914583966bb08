# Gives each staged package the documents that Debian asks for, and compresses its manual pages.
# CPack runs it between staging the components and packing them.
set(packages
    library:libbscan0
    development:libbscan-dev
    tools:bscan-tools
    python:python3-bscan
)

foreach(pair IN LISTS packages)
    string(REPLACE ":" ";" pair ${pair})
    list(GET pair 0 component)
    list(GET pair 1 package)
    set(root "${CPACK_TEMPORARY_DIRECTORY}/${component}/usr/share")
    if(NOT IS_DIRECTORY "${CPACK_TEMPORARY_DIRECTORY}/${component}")
        continue()
    endif()
    configure_file(
        "${CMAKE_CURRENT_LIST_DIR}/copyright" "${root}/doc/${package}/copyright" COPYONLY
    )
    configure_file(
        "${CMAKE_CURRENT_LIST_DIR}/changelog" "${root}/doc/${package}/changelog" COPYONLY
    )
    file(GLOB to_compress "${root}/doc/${package}/changelog" "${root}/man/man*/*.[1-9]")
    execute_process(COMMAND gzip -9nf ${to_compress} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
