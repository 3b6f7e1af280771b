# The reference of the public headers and the guides: cmake --build build/dev --target reference. It is built by doxygen, and any
# warning is an error. The test docs_reference builds it, too; it counts as skipped where doxygen is missing.

find_program(DOXYGEN doxygen)
find_program(AWK awk)
mark_as_advanced(DOXYGEN AWK)

if(NOT DOXYGEN OR NOT AWK)
    set(build_reference ${CMAKE_COMMAND} -E echo "Skipped: the reference needs doxygen and awk.")
    add_custom_target(reference COMMAND ${build_reference} COMMAND ${CMAKE_COMMAND} -E false VERBATIM)
else()
    get_target_property(engine_headers CrossUtil_engine HEADER_SET)
    get_target_property(util_headers CrossUtil_util HEADER_SET)
    file(GLOB guides CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/*.md" "${PROJECT_SOURCE_DIR}/docs/*.md"
         "${PROJECT_SOURCE_DIR}/bench/README.md")
    list(JOIN guides "\" \"" guides)
    list(TRANSFORM engine_headers PREPEND "${PROJECT_SOURCE_DIR}/Cross/engine/" REGEX "^[^/]")
    list(TRANSFORM util_headers PREPEND "${PROJECT_SOURCE_DIR}/Cross/Util/" REGEX "^[^/]")
    list(JOIN engine_headers "\" \"" engine_headers)
    list(JOIN util_headers "\" \"" util_headers)
    set(reference_input "\"${guides}\" \"${engine_headers}\" \"${util_headers}\"")
    set(reference_folder "${PROJECT_SOURCE_DIR}/docs/reference")
    configure_file("${reference_folder}/Doxyfile.in" "${PROJECT_BINARY_DIR}/Doxyfile" @ONLY)
    set(build_reference ${DOXYGEN} "${PROJECT_BINARY_DIR}/Doxyfile")
    add_custom_target(reference COMMAND ${build_reference} VERBATIM)
endif()

if(CROSSUTIL_BUILD_TESTS)
    add_test(NAME docs_reference COMMAND ${build_reference})
    set_tests_properties(docs_reference PROPERTIES SKIP_REGULAR_EXPRESSION "Skipped: ")
    # Comments that got lost on the way to doxygen would give no warning.
    if(AWK)
        add_test(NAME docs_reference_comments
                 COMMAND sh -c "'${AWK}' -f ../../../docs/reference/comments.awk Plain.h | diff documented.txt -"
                 WORKING_DIRECTORY "${PROJECT_SOURCE_DIR}/tests/docs/comments")
    endif()
endif()
