# Prints what objects.gdb asks for, of PROGRAM while it runs and of its core, and compares both with objects.txt.
include("${CMAKE_CURRENT_LIST_DIR}/Gdb.cmake")
if(NOT gdb_is_usable)
    return()
endif()

function(compare run text)
    string(REGEX REPLACE "^.*\nobjects\n" "" text "${text}")
    string(REGEX REPLACE "0x[0-9a-f][0-9a-f][0-9a-f][0-9a-f][0-9a-f][0-9a-f][0-9a-f][0-9a-f][0-9a-f]+" "ADDRESS" text "${text}")
    file(WRITE "${FOLDER}/${run}.txt" "${text}")
    file(READ "${CMAKE_CURRENT_LIST_DIR}/objects.txt" expected)
    if(NOT text STREQUAL expected)
        execute_process(COMMAND diff -u ${CMAKE_CURRENT_LIST_DIR}/objects.txt ${FOLDER}/${run}.txt)
        message(SEND_ERROR "${run}: not what objects.txt says")
    endif()
endfunction()

set(core "${FOLDER}/objects.core")
file(REMOVE "${core}")
set(look -ex "up" -ex "echo objects\\n" -x "${CMAKE_CURRENT_LIST_DIR}/objects.gdb")
set(program -iex "source ${PRINTERS}" "${PROGRAM}")

run_gdb(text ${program} -ex "break look" -ex "run" -ex "generate-core-file ${core}" ${look})
compare(running "${text}")

run_gdb(text ${program} "${core}" ${look})
compare(core "${text}")
file(REMOVE "${core}")
