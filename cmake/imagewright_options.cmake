# Settings that hold for every target.

option(IMAGEWRIGHT_TESTS "Build the tests" ON)
option(IMAGEWRIGHT_BENCHES "Build the benchmarks" OFF)
option(IMAGEWRIGHT_FUZZERS "Build the fuzz targets (needs clang)" OFF)
set(IMAGEWRIGHT_SANITIZERS "" CACHE STRING "Sanitizers to build with, as in -fsanitize=")

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
# Where programs and libraries find the libraries beside them. The same for an installation: CMake would else leave an
# empty entry to be replaced by it, which takes libraries out of the directory that a program is run in.
set(CMAKE_BUILD_WITH_INSTALL_RPATH ON)
set(CMAKE_INSTALL_RPATH "$ORIGIN/../lib" "$ORIGIN")

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)

if(IMAGEWRIGHT_SANITIZERS)
    add_compile_options(-fsanitize=${IMAGEWRIGHT_SANITIZERS} -fno-omit-frame-pointer)
    # These two follow the flow of a program that the instrumentation has changed, and see faults that are not there.
    # The other builds keep them.
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        add_compile_options(-Wno-maybe-uninitialized -Wno-stringop-overflow)
    endif()
    if(IMAGEWRIGHT_SANITIZERS MATCHES "undefined")
        add_compile_options(-fno-sanitize-recover=undefined)
    endif()
    add_link_options(-fsanitize=${IMAGEWRIGHT_SANITIZERS})
endif()

# Relocations of pointers within a library as a bitmap: a small part of the file pages to read at each start.
include(CheckLinkerFlag)
check_linker_flag(CXX LINKER:-z,pack-relative-relocs IMAGEWRIGHT_PACKS_RELOCATIONS)
if(IMAGEWRIGHT_PACKS_RELOCATIONS)
    add_link_options(LINKER:-z,pack-relative-relocs)
endif()

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
    # Precompiled headers are cached only when ccache may ignore their time stamps; the base directory lets build
    # directories and clones share what they have compiled.
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env
        CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime
        CCACHE_BASEDIR=${CMAKE_SOURCE_DIR} CCACHE_NOHASHDIR=1 ${CCACHE_PROGRAM})
    add_compile_options(-fpch-preprocess)
endif()
