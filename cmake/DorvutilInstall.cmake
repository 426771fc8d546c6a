# Installation: library, headers, the CMake package and the pkg-config file; the reference host with its data.

include(CMakePackageConfigHelpers)

install(TARGETS dorvutil EXPORT dorvutilTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
        FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT dorvutilTargets NAMESPACE dorvutil:: DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/dorvutil)

configure_package_config_file(cmake/dorvutilConfig.cmake.in ${PROJECT_BINARY_DIR}/dorvutilConfig.cmake
                              INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/dorvutil)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/dorvutilConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/dorvutilConfig.cmake ${PROJECT_BINARY_DIR}/dorvutilConfigVersion.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/dorvutil)

# Found from the file's own place, so that an installed tree may be moved.
file(RELATIVE_PATH prefix_from_pc ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(cmake/dorvutil.pc.in ${PROJECT_BINARY_DIR}/dorvutil.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/dorvutil.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
