# Read by cpack once for each kind of package. A Debian package has a prefix that stays, which the rules of the installation see
# only when it is staged with DESTDIR.
if(CPACK_GENERATOR STREQUAL DEB)
    set(CPACK_SET_DESTDIR ON)
    set(CPACK_INSTALL_PREFIX /usr)
endif()
