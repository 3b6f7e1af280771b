# Installed layout: libraries, public headers below include/Cross, a package config, a pkg-config file and printers for gdb.
# Everything is found relative to where it lies, so the tree can be moved as a whole.

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(config_dir "${CMAKE_INSTALL_LIBDIR}/cmake/CrossUtil")

# The libraries find each other beside themselves.
set_target_properties(CrossUtil_engine CrossUtil_util PROPERTIES INSTALL_RPATH "$ORIGIN")

install(
    TARGETS CrossUtil_engine CrossUtil_util
    EXPORT CrossUtilTargets
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    FILE_SET HEADERS DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
install(
    EXPORT CrossUtilTargets
    NAMESPACE CrossUtil::
    DESTINATION "${config_dir}")

configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/CrossUtilConfig.cmake.in"
                              "${PROJECT_BINARY_DIR}/CrossUtilConfig.cmake" INSTALL_DESTINATION "${config_dir}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/CrossUtilConfigVersion.cmake"
                                 COMPATIBILITY SameMinorVersion)
install(FILES "${PROJECT_BINARY_DIR}/CrossUtilConfig.cmake" "${PROJECT_BINARY_DIR}/CrossUtilConfigVersion.cmake"
        DESTINATION "${config_dir}")

file(RELATIVE_PATH prefix_from_pkgconfig "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/prefix")
configure_file("${PROJECT_SOURCE_DIR}/cmake/crossutil.pc.in" "${PROJECT_BINARY_DIR}/crossutil.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/crossutil.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig")

# gdb looks for a library's script beside the library, and trusts what lies there once it is told to. For a library of the system
# it has a folder that it trusts from the start, but never reaches while there is a script beside the library.
install(
    CODE "
    set(folder \"\${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}\")
    if(CMAKE_INSTALL_PREFIX STREQUAL /usr)
        set(folder \"/usr/share/gdb/auto-load/usr/${CMAKE_INSTALL_LIBDIR}\")
    endif()
    file(INSTALL FILES \"${PROJECT_SOURCE_DIR}/debugger/printers.py\" DESTINATION \"\${folder}\"
         RENAME \"$<TARGET_FILE_NAME:CrossUtil_util>-gdb.py\")")
