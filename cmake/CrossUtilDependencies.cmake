# What the libraries stand on. CrossUtilConfig.cmake.in finds the public ones again for an installed package.

set(THREADS_PREFER_PTHREAD_FLAG ON)
find_package(Threads REQUIRED)
find_package(ZLIB REQUIRED)
find_package(Boost REQUIRED)
find_package(PkgConfig REQUIRED)

# Lua 5.1, in the build that was compiled as C++ where there is one: its errors unwind C++ objects. Everything in a process
# must use the same one.
pkg_search_module(LUA REQUIRED IMPORTED_TARGET GLOBAL lua5.1-c++ lua5.1)

if(CROSSUTIL_BUILD_TESTS)
    find_package(GTest REQUIRED)
endif()
if(CROSSUTIL_BUILD_TESTS OR CROSSUTIL_BUILD_BENCH)
    pkg_check_modules(STB REQUIRED IMPORTED_TARGET stb)
endif()
if(CROSSUTIL_BUILD_TOOLS OR CROSSUTIL_BUILD_SAMPLES)
    find_package(CLI11 REQUIRED)
    find_package(PNG REQUIRED)
    pkg_check_modules(TINYOBJ REQUIRED IMPORTED_TARGET tinyobjloader)
endif()
