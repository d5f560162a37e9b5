# What is installed, and the package made of it. Everything can be moved with its prefix.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# --- the C++ library ---

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/tarnex)
install(TARGETS tarnex_engine EXPORT tarnex
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
    FILE_SET HEADERS)
install(EXPORT tarnex NAMESPACE tarnex:: FILE tarnex-config.cmake DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/tarnex-config-version.cmake
    COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/tarnex-config-version.cmake DESTINATION ${package_dir})

set(pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
file(RELATIVE_PATH prefix_from_pkgconfig /prefix/${pkgconfig_dir} /prefix)
configure_file(cmake/tarnex.pc.in tarnex.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/tarnex.pc DESTINATION ${pkgconfig_dir})

# --- for Java, where Debian looks for it ---

install(FILES ${PROJECT_BINARY_DIR}/tarnex.jar DESTINATION ${CMAKE_INSTALL_DATADIR}/java)
install(TARGETS tarnex LIBRARY DESTINATION lib/jni)

# --- one Debian package of all that ---

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME tarnex)
set(CPACK_PACKAGE_CONTACT "The tarnex maintainers <maintainers@tarnex.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "path computation for MPLS networks with DiffServ classes")
set(CPACK_PACKAGE_DESCRIPTION
"tarnex places label switched paths in MPLS networks with a capacity per
DiffServ class: where does a new path go, which less important ones give way
to it, and which backups protect it? Backups that protect against different
failures share bandwidth. The package holds the command tarnex with its man
page, the C++ library with its headers and the engine for Java.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION net)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "default-jre-headless (>= 2:1.17)")
include(CPack)
