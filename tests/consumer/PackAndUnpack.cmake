# Packs the build tree BUILD, unpacks the tarball in FOLDER as "unpacked", and looks at what the Debian package has where.
file(REMOVE_RECURSE "${FOLDER}")
file(MAKE_DIRECTORY "${FOLDER}")
find_program(DPKG_DEB dpkg-deb)
find_program(DPKG_SHLIBDEPS dpkg-shlibdeps)
set(kinds TGZ)
if(DPKG_DEB AND DPKG_SHLIBDEPS)
    set(kinds TGZ;DEB)
endif()
execute_process(COMMAND ${CPACK} -G "${kinds}" -B "${FOLDER}" WORKING_DIRECTORY "${BUILD}" OUTPUT_QUIET
                COMMAND_ERROR_IS_FATAL ANY)

function(find_package_file result pattern)
    file(GLOB found "${FOLDER}/${pattern}")
    list(LENGTH found count)
    if(NOT count EQUAL 1)
        message(FATAL_ERROR "One file like ${pattern} was to be made, not '${found}'")
    endif()
    set(${result} "${found}" PARENT_SCOPE)
endfunction()

find_package_file(tarball "crossutil-${VERSION}-*.tar.gz")
file(ARCHIVE_EXTRACT INPUT "${tarball}" DESTINATION "${FOLDER}")
cmake_path(GET tarball FILENAME name)
string(REGEX REPLACE "\\.tar\\.gz$" "" name "${name}")
file(RENAME "${FOLDER}/${name}" "${FOLDER}/unpacked")

if(DPKG_DEB AND DPKG_SHLIBDEPS)
    find_package_file(package "crossutil_${VERSION}_*.deb")
    execute_process(COMMAND ${DPKG_DEB} -c "${package}" OUTPUT_VARIABLE content COMMAND_ERROR_IS_FATAL ANY)
    foreach(file "lib/libcrossutil.so.1 " "lib/libcrossengine.so.${VERSION}\n" "include/Cross/Util/Dictionary.h\n"
                 "lib/cmake/CrossUtil/CrossUtilConfig.cmake\n" "lib/pkgconfig/crossutil.pc\n"
                 "share/gdb/auto-load/usr/lib/libcrossutil.so.${VERSION}-gdb.py\n" ${PROGRAMS})
        string(FIND "${content}" " ./usr/${file}" place)
        if(place EQUAL -1)
            message(SEND_ERROR "The Debian package lacks /usr/${file}")
        endif()
    endforeach()
endif()
