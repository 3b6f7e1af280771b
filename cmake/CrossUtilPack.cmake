# Packages of what is installed, by cpack: a tarball to unpack anywhere, and a Debian package.

set(CPACK_GENERATOR TGZ DEB)
set(CPACK_PACKAGE_NAME crossutil)
set(CPACK_SYSTEM_NAME "${CMAKE_SYSTEM_NAME}-${CMAKE_SYSTEM_PROCESSOR}") # in the name of the tarball
set(CPACK_PACKAGE_VENDOR CrossUtil)
set(CPACK_PACKAGE_CONTACT "CrossUtil developers <crossutil@localhost>")
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_STRIP_FILES OFF) # the printers for gdb live on the symbols
set(CPACK_PROJECT_CONFIG_FILE "${PROJECT_SOURCE_DIR}/cmake/PackOptions.cmake")

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
# What the headers include, and what finds it. The libraries' own needs are added to it.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libboost-dev, liblua5.1-0-dev, pkg-config")

include(CPack)
