# gdb finds the printers beside the library of the unpacked tarball, once it is told to trust that place: CONSUMER is a program
# that uses the library there, below PREFIX.
include("${CMAKE_CURRENT_LIST_DIR}/Gdb.cmake")
if(NOT gdb_is_usable)
    return()
endif()

run_gdb(text -iex "add-auto-load-safe-path ${PREFIX}" "${CONSUMER}" -ex "break main" -ex "run"
        -ex "info pretty-printer .*libcrossutil.* crossutil")
string(FIND "${text}" "objfile ${PREFIX}/lib/libcrossutil.so" place)
if(place EQUAL -1)
    message(FATAL_ERROR "The printers are not there:\n${text}")
endif()
