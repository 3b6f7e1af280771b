# Read by cpack once for each kind of package. A Debian package has a prefix that stays, which the rules of the installation see
# only when it is staged with DESTDIR.
if(CPACK_GENERATOR STREQUAL DEB)
    find_program(DPKG_SHLIBDEPS dpkg-shlibdeps)
    if(NOT DPKG_SHLIBDEPS)
        message(FATAL_ERROR "Without dpkg-shlibdeps the package would not say what it needs: install dpkg-dev, or use cpack -G TGZ")
    endif()
    set(CPACK_SET_DESTDIR ON)
    set(CPACK_INSTALL_PREFIX /usr)
endif()
