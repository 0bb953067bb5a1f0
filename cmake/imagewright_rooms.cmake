# A room is a folder with one library. What a room may include is what it names in DEPENDS, and nothing else.

# imagewright_room(<target> [DEPENDS <targets>...] [PRIVATE_DEPENDS <targets>...])
# A static library of the sources in the current folder, whose headers are found by those that depend on it.
function(imagewright_room target)
    cmake_parse_arguments(ROOM "" "" "DEPENDS;PRIVATE_DEPENDS" ${ARGN})
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
    add_library(${target} STATIC ${sources})
    target_include_directories(${target} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
    target_link_libraries(${target} PUBLIC ${ROOM_DEPENDS} PRIVATE ${ROOM_PRIVATE_DEPENDS})
    set_target_properties(${target} PROPERTIES LINKER_LANGUAGE CXX)
endfunction()

# imagewright_sanitizer_defaults(<program>)
# What a program of a sanitizer build tells the sanitizers' run-time libraries.
function(imagewright_sanitizer_defaults program)
    if(IMAGEWRIGHT_SANITIZERS)
        target_sources(${program} PRIVATE ${CMAKE_SOURCE_DIR}/cmake/sanitizer_defaults.cpp)
        set_source_files_properties(${CMAKE_SOURCE_DIR}/cmake/sanitizer_defaults.cpp TARGET_DIRECTORY ${program}
                                    PROPERTIES SKIP_PRECOMPILE_HEADERS ON SKIP_AUTOGEN ON)
    endif()
endfunction()

# imagewright_test(<room> [QT] LINK <targets>...)
# The program test_<room> of the sources in the current folder; QT gives it an offscreen QApplication.
function(imagewright_test room)
    cmake_parse_arguments(TEST "QT" "" "LINK" ${ARGN})
    file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp ${CMAKE_CURRENT_SOURCE_DIR}/*.h)
    set(target test_${room})
    add_executable(${target} ${sources})
    target_link_libraries(${target} PRIVATE ${TEST_LINK} tests_support GTest::gmock GTest::gtest)
    target_compile_definitions(${target} PRIVATE IMAGEWRIGHT_SOURCE_DIR="${CMAKE_SOURCE_DIR}"
                                                 IMAGEWRIGHT_BINARY_DIR="${CMAKE_BINARY_DIR}")
    imagewright_sanitizer_defaults(${target})
    if(CMAKE_BUILD_TYPE STREQUAL "RelWithDebInfo")
        # Half of the time of a whole build goes into optimising tests, which gain nothing by it.
        target_compile_options(${target} PRIVATE -O0)
    endif()
    if(TEST_QT)
        set_target_properties(${target} PROPERTIES AUTOMOC ON)
        target_sources(${target} PRIVATE ${CMAKE_SOURCE_DIR}/tests/support/qt_test_main.cpp)
        target_link_libraries(${target} PRIVATE Qt5::Widgets Qt5::Test)
        target_precompile_headers(${target} PRIVATE <QtWidgets> <QtTest> <gtest/gtest.h>)
    else()
        target_sources(${target} PRIVATE ${CMAKE_SOURCE_DIR}/tests/support/test_main.cpp)
        target_precompile_headers(${target} PRIVATE <string> <vector> <memory> <gmock/gmock.h> <gtest/gtest.h>)
    endif()
    gtest_discover_tests(${target} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60 TEST_PREFIX ${room}.
                         PROPERTIES TIMEOUT 240)
endfunction()
