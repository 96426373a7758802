# The library, its headers, and its packages for CMake and pkg-config.
include(CMakePackageConfigHelpers)

set(packageDir "${CMAKE_INSTALL_LIBDIR}/cmake/tqcommon")

install(TARGETS tqcommon EXPORT tqcommon
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}")
install(FILES ${publicHeaders} DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/tqcommon")
install(EXPORT tqcommon NAMESPACE tq:: FILE tqcommonTargets.cmake DESTINATION "${packageDir}")

configure_package_config_file(cmake/tqcommonConfig.cmake.in tqcommonConfig.cmake
    INSTALL_DESTINATION "${packageDir}")
write_basic_package_version_file(tqcommonConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES
    "${PROJECT_BINARY_DIR}/tqcommonConfig.cmake"
    "${PROJECT_BINARY_DIR}/tqcommonConfigVersion.cmake"
    DESTINATION "${packageDir}")

configure_file(cmake/tqcommon.pc.in tqcommon.pc @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/tqcommon.pc" DESTINATION "${pkgconfigDir}")

install(FILES tools/tqcommon_gdb.py DESTINATION "${CMAKE_INSTALL_DATADIR}/tqcommon")
