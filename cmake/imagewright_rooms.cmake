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
    set(environment "TSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/tests/support/tsan.supp:halt_on_error=1"
                    "ASAN_OPTIONS=detect_stack_use_after_return=1"
                    "LSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/tests/support/lsan.supp:print_suppressions=0"
                    "QT_QPA_PLATFORM=offscreen" "LC_ALL=C.UTF-8")
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
                         PROPERTIES TIMEOUT 240 ENVIRONMENT "${environment}")
endfunction()
