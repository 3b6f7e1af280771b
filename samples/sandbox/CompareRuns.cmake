# Runs the sandbox twice and compares: cmake -D SANDBOX=... -D WORK=... -D FIRST="--headless --frames 40" -D SECOND="..." -P CompareRuns.cmake
#
# Of two runs with the same options all that they print and draw is the same, and so are their pictures. With ALONE="text" only
# the first line that holds it is compared.

cmake_minimum_required(VERSION 3.25)

# What the moment and the place of a run alone make: time stamps and process numbers in the names of logs, and the work folder.
function(without_circumstances text folder result)
    string(REPLACE "${folder}" "WORK" text "${text}")
    string(REGEX REPLACE "(-[0-9]+)?\\.[0-9]+-[0-9]+-[0-9]+\\.[0-9]+-[0-9]+-[0-9]+" ".STAMP" text "${text}")
    set(${result} "${text}" PARENT_SCOPE)
endfunction()

function(hash_pictures folder result)
    file(GLOB pictures RELATIVE "${folder}" "${folder}/pictures/*.png")
    if(NOT pictures)
        message(FATAL_ERROR "No pictures in ${folder}")
    endif()
    set(hashes "")
    foreach(picture IN LISTS pictures)
        file(SHA256 "${folder}/${picture}" hash)
        string(APPEND hashes "${hash} ${picture}\n")
    endforeach()
    set(${result} "${hashes}" PARENT_SCOPE)
endfunction()

function(run folder options result)
    file(REMOVE_RECURSE "${folder}")
    separate_arguments(options UNIX_COMMAND "${options}")
    execute_process(COMMAND "${SANDBOX}" --work "${folder}" ${options} OUTPUT_VARIABLE output ERROR_VARIABLE errors RESULT_VARIABLE code)
    if(NOT code EQUAL 0)
        message(FATAL_ERROR "sandbox ${options} gives ${code}:\n${output}${errors}")
    endif()
    if(DEFINED ALONE)
        string(REGEX MATCH "[^\n]*${ALONE}[^\n]*" output "${output}")
    else()
        without_circumstances("${output}" "${folder}" output)
        hash_pictures("${folder}" hashes)
        string(APPEND output "${hashes}")
    endif()
    set(${result} "${output}" PARENT_SCOPE)
endfunction()

run("${WORK}/first" "${FIRST}" first)
run("${WORK}/second" "${SECOND}" second)
if(first STREQUAL "" OR NOT first STREQUAL second)
    message(FATAL_ERROR "These differ:\n${first}\nand:\n${second}")
endif()
