# Debian packages, one for each install component.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME ${PROJECT_NAME})
set(CPACK_PACKAGE_VENDOR "bscan developers")
set(CPACK_PACKAGE_CONTACT "bscan developers <maintainers@bscan.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each package has its own
set(CPACK_PACKAGING_INSTALL_PREFIX "${CMAKE_INSTALL_PREFIX}")
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE
)
set(CPACK_PRE_BUILD_SCRIPTS "${PROJECT_SOURCE_DIR}/cmake/packaging/debian_docs.cmake")
set(CPACK_POST_BUILD_SCRIPTS "${PROJECT_SOURCE_DIR}/cmake/packaging/drop_ldconfig_calls.cmake")

set(CPACK_COMPONENTS_ALL library development)
if(BSCAN_TOOLS)
    list(APPEND CPACK_COMPONENTS_ALL tools)
endif()
if(BSCAN_PYTHON)
    list(APPEND CPACK_COMPONENTS_ALL python)
endif()
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${PROJECT_BINARY_DIR}")
set(same_version "libbscan${PROJECT_VERSION_MAJOR} (= ${PROJECT_VERSION})")
set(about_the_library
    "bscan reads a device description in BSDL, the Boundary Scan Description
Language of IEEE 1149.1, into a model of the device: its ports, pins,
boundary cells and instructions. From the model it makes the vectors that
drive the pins through the boundary register, and tells the levels of the
pins from a captured one."
)

set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libbscan${PROJECT_VERSION_MAJOR})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA "${PROJECT_SOURCE_DIR}/cmake/packaging/triggers")
set(CPACK_DEBIAN_LIBRARY_DESCRIPTION
    "boundary-scan device description reader - shared library
${about_the_library}
.
This package holds the shared library."
)

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libbscan-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${same_version}")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION
    "boundary-scan device description reader - development files
${about_the_library}
.
This package holds what a program needs that is built with the library."
)

set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME bscan-tools)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION electronics)
set(CPACK_DEBIAN_TOOLS_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS "${same_version}")
set(CPACK_DEBIAN_TOOLS_DESCRIPTION
    "boundary-scan device description reader - command line tool
${about_the_library}
.
This package holds the bscan command, which shows, checks, compares and
draws devices and makes their vectors, and some example devices."
)

# The module is for the minor version of Python that it was built with.
if(BSCAN_PYTHON)
    math(EXPR next_python "${bscan_python_minor} + 1")
    set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-bscan)
    set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
    set(CPACK_DEBIAN_PYTHON_PACKAGE_SHLIBDEPS ON)
    set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS
        "${same_version}, python3 (>= 3.${bscan_python_minor}~), python3 (<< 3.${next_python})"
    )
    set(CPACK_DEBIAN_PYTHON_DESCRIPTION
        "boundary-scan device description reader - Python package
${about_the_library}
.
This package holds the Python package bscan: what a device description
says, its vectors, and scan chains on hardware through OpenOCD."
    )
endif()

include(CPack)
