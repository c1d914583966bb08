# What `cmake --install` puts where, in three components: library, development and tools.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(BSCAN_ZSH_COMPLETIONS_DIR
    "${CMAKE_INSTALL_DATADIR}/zsh/site-functions"
    CACHE STRING "Where zsh looks for completions"
)
set(config_dir "${CMAKE_INSTALL_LIBDIR}/cmake/bscan")

# Both libraries lie in one folder.
set_target_properties(bscan_board PROPERTIES INSTALL_RPATH "\$ORIGIN")
install(
    TARGETS bscan bscan_board
    EXPORT bscan
    LIBRARY
        DESTINATION "${CMAKE_INSTALL_LIBDIR}"
        COMPONENT library
        NAMELINK_COMPONENT development
    FILE_SET HEADERS DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}" COMPONENT development
)

# The CMake package. Before 1.0 each minor version may break its hosts.
write_basic_package_version_file(
    "${CMAKE_CURRENT_BINARY_DIR}/bscanConfigVersion.cmake" COMPATIBILITY SameMinorVersion
)
install(
    EXPORT bscan
    NAMESPACE bscan::
    FILE bscanConfig.cmake
    DESTINATION "${config_dir}"
    COMPONENT development
)
install(
    FILES "${CMAKE_CURRENT_BINARY_DIR}/bscanConfigVersion.cmake"
    DESTINATION "${config_dir}"
    COMPONENT development
)

# The pkg-config file finds its prefix from where it lies itself, so that a moved installation
# works. Not so below /usr, whose folders pkg-config leaves out of the flags when it knows them by
# name, nor with a library directory given in full, which says nothing about the prefix.
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}" OR CMAKE_INSTALL_PREFIX STREQUAL "/usr")
    set(pc_prefix "${CMAKE_INSTALL_PREFIX}")
else()
    file(RELATIVE_PATH up "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
    string(REGEX REPLACE "/$" "" pc_prefix "\${pcfiledir}/${up}")
endif()
cmake_path(APPEND pc_libdir "\${prefix}" "${CMAKE_INSTALL_LIBDIR}")
cmake_path(APPEND pc_includedir "\${prefix}" "${CMAKE_INSTALL_INCLUDEDIR}")
configure_file(cmake/bscan.pc.in bscan.pc @ONLY)
configure_file(cmake/bscan-board.pc.in bscan-board.pc @ONLY)
install(
    FILES "${CMAKE_CURRENT_BINARY_DIR}/bscan.pc" "${CMAKE_CURRENT_BINARY_DIR}/bscan-board.pc"
    DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig"
    COMPONENT development
)

install(
    DIRECTORY examples/devices/
    DESTINATION "${CMAKE_INSTALL_DATADIR}/bscan/devices"
    COMPONENT tools
    FILES_MATCHING
    PATTERN "*.bsd"
)

install(
    DIRECTORY examples/boards
    DESTINATION "${CMAKE_INSTALL_DATADIR}/bscan"
    COMPONENT tools
)

if(BSCAN_TOOLS)
    file(
        RELATIVE_PATH
        to_library
        "${CMAKE_INSTALL_FULL_BINDIR}"
        "${CMAKE_INSTALL_FULL_LIBDIR}"
    )
    set_target_properties(bscan_tool PROPERTIES INSTALL_RPATH "\$ORIGIN/${to_library}")
    install(TARGETS bscan_tool DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT tools)
    install(FILES docs/bscan.1 DESTINATION "${CMAKE_INSTALL_MANDIR}/man1" COMPONENT tools)
    install(
        FILES docs/bscan.schema.json docs/findings.md docs/board-test.md
        DESTINATION "${CMAKE_INSTALL_DATADIR}/bscan"
        COMPONENT tools
    )
    install(
        FILES tools/completions/bscan.bash
        DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions"
        RENAME bscan
        COMPONENT tools
    )
    install(
        FILES tools/completions/_bscan
        DESTINATION "${BSCAN_ZSH_COMPLETIONS_DIR}"
        COMPONENT tools
    )
endif()
