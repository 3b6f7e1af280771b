# Checks that --help says something about each option: cmake -D SANDBOX=... -P CheckHelp.cmake

cmake_minimum_required(VERSION 3.25)

execute_process(COMMAND "${SANDBOX}" --help OUTPUT_VARIABLE help COMMAND_ERROR_IS_FATAL ANY)
string(REPLACE ";" "," help "${help}")
string(REPLACE "\n" ";" lines "${help}")
set(previous "")
set(count 0)
foreach(line IN LISTS lines ITEMS "end")
    if(previous MATCHES "^  -")
        math(EXPR count "${count} + 1")
        # Behind two blanks, or in the next line where the option is a long one.
        if(NOT previous MATCHES "^  -.* [A-Z][a-z]+ [a-z]" AND NOT line MATCHES "^   +[A-Z][a-z]+ ")
            message(SEND_ERROR "Nothing is said about: ${previous}")
        endif()
    endif()
    set(previous "${line}")
endforeach()
if(count LESS 13)
    message(SEND_ERROR "There are more options than these ${count}:\n${help}")
endif()
