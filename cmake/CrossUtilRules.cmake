# Compile rules of this tree's own targets. They are private to each target: whoever builds the libraries as a part of
# another project gets none of them.

function(crossutil_target_rules target)
    target_compile_features(${target} PUBLIC cxx_std_20)
    set_target_properties(
        ${target}
        PROPERTIES CXX_EXTENSIONS OFF
                   CXX_VISIBILITY_PRESET hidden
                   VISIBILITY_INLINES_HIDDEN ON)
    # Results are the same to the bit on every compiler and at every optimisation level.
    target_compile_options(${target} PRIVATE -ffp-contract=off)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wformat=2 -Wconversion)
    if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
        # This GCC reports sums of strings for an overlap that they can't have, once they are inlined.
        target_compile_options(${target} PRIVATE -Wno-restrict)
    endif()
    if(CROSSUTIL_WERROR)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
    if(CROSSUTIL_BUILD_FUZZERS)
        target_compile_options(${target} PRIVATE -fsanitize=fuzzer-no-link)
    endif()
    if(CROSSUTIL_SANITIZE)
        target_compile_options(${target} PRIVATE -fsanitize=${CROSSUTIL_SANITIZE} -fno-omit-frame-pointer
                                                 -fno-sanitize-recover=all)
        target_link_options(${target} PRIVATE -fsanitize=${CROSSUTIL_SANITIZE})
    endif()
endfunction()

# A shared library of this tree: crossutil_library(engine) makes target CrossUtil_engine, known as CrossUtil::engine.
function(crossutil_library name)
    add_library(CrossUtil_${name} SHARED)
    add_library(CrossUtil::${name} ALIAS CrossUtil_${name})
    crossutil_target_rules(CrossUtil_${name})
    set_target_properties(
        CrossUtil_${name}
        PROPERTIES OUTPUT_NAME cross${name}
                   EXPORT_NAME ${name}
                   VERSION ${PROJECT_VERSION}
                   SOVERSION ${CROSSUTIL_SOVERSION}
                   UNITY_BUILD OFF
                   INTERPROCEDURAL_OPTIMIZATION OFF)
    # Nobody replaces the library's functions at load, so its own calls need no detour over the symbol table.
    target_compile_options(CrossUtil_${name} PRIVATE -fno-semantic-interposition)
    target_include_directories(CrossUtil_${name} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>)
endfunction()
