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

# gdb's script. gdb looks for it under the library's own name in a tree like that of all files: what
# serves /usr/lib lies in /usr/share/gdb/auto-load/usr/lib. The prefix is that of the installation.
set(TQ_GDB_SCRIPT_DIR "" CACHE STRING
    "Where gdb's script is installed, if not where gdb looks; the library's directory suits a sysroot")
set(scriptDir "${TQ_GDB_SCRIPT_DIR}")
if(scriptDir STREQUAL "")
    set(libraryDir "${CMAKE_INSTALL_LIBDIR}")
    if(NOT IS_ABSOLUTE "${libraryDir}")
        set(libraryDir "\${CMAKE_INSTALL_PREFIX}/${libraryDir}")
    endif()
    set(scriptDir "${CMAKE_INSTALL_DATADIR}/gdb/auto-load${libraryDir}")
endif()
if(BUILD_SHARED_LIBS)
    install(FILES tools/gdb/tqcommon_gdb.py DESTINATION "${scriptDir}"
        RENAME "libtqcommon.so.${PROJECT_VERSION}-gdb.py")
endif()
