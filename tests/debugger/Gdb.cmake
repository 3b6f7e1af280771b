# Shared by the tests beside it. Ends the test as skipped where gdb is of no use.

set(ENV{LC_ALL} C.UTF-8)
find_program(GDB gdb)
if(NOT GDB)
    message("Skipped: gdb is not installed")
    return()
endif()

# Runs gdb on its own, without anybody's settings: run_gdb(OUTPUT ARGUMENT ...).
function(run_gdb output)
    execute_process(COMMAND ${GDB} -batch -nx -iex "set debuginfod enabled off" -iex "set width 0" ${ARGN}
                    OUTPUT_VARIABLE text ERROR_VARIABLE text TIMEOUT 120)
    set(${output} "${text}" PARENT_SCOPE)
endfunction()

run_gdb(text -ex "python print('python' + ' works')")
if(NOT text MATCHES "python works")
    message("Skipped: this gdb has no Python")
    return()
endif()
find_program(ANY_PROGRAM true REQUIRED)
run_gdb(text -ex "run" ${ANY_PROGRAM})
if(NOT text MATCHES "exited normally")
    message("Skipped: gdb may not run programs here")
    return()
endif()
set(gdb_is_usable TRUE)
