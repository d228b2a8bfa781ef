# Test programs: kv_test() builds one against GoogleTest and registers its suites with ctest.

# Precompiled headers of the tests: parsing these costs more than most test files' own code. One set for tests of building
# blocks, one that adds the control, and in host/ one that adds Qt.
set(KV_TEST_HEADERS
    <gmock/gmock.h> <gtest/gtest.h>
    <algorithm> <array> <atomic> <bit> <chrono> <cmath> <condition_variable> <cstddef> <cstdint> <cstdio> <cstdlib> <cstring>
    <filesystem> <fstream> <functional> <iterator> <limits> <map> <memory> <mutex> <new> <numbers> <numeric> <optional>
    <ostream> <random> <set> <span> <sstream> <stdexcept> <string> <string_view> <thread> <tuple> <type_traits> <utility>
    <vector>)

# Tests spend little time in their own code: in optimised builds theirs is compiled for a short build time instead.
set(KV_TEST_OPTIONS $<$<NOT:$<CONFIG:Debug>>:-Og>)
if(KV_SANITIZE MATCHES "undefined")
  # What is tested is checked for undefined behaviour; the same checks in the tests are a third of their compile time.
  list(APPEND KV_TEST_OPTIONS -fno-sanitize=undefined)
endif()
if(KV_PRECOMPILED_HEADERS)
  # Precompiled headers are accepted only under the same options, and programs have -fPIE, those with Qt -fPIC.
  list(APPEND KV_TEST_OPTIONS -fPIC)
endif()

# kv_precompiled_test_headers(NAME USES targets... HEADERS headers...)
function(kv_precompiled_test_headers NAME)
  cmake_parse_arguments(PCH "" "" "USES;HEADERS" ${ARGN})
  file(GENERATE OUTPUT "${PROJECT_BINARY_DIR}/${NAME}.cpp" CONTENT "// Owns precompiled headers, holds no code.\n")
  add_library(${NAME} OBJECT EXCLUDE_FROM_ALL "${PROJECT_BINARY_DIR}/${NAME}.cpp")
  target_link_libraries(${NAME} PRIVATE kv::compiler GTest::gtest GTest::gmock ${PCH_USES})
  target_compile_options(${NAME} PRIVATE ${KV_TEST_OPTIONS})
  target_precompile_headers(${NAME} PRIVATE ${PCH_HEADERS})
endfunction()

if(KV_PRECOMPILED_HEADERS)
  kv_precompiled_test_headers(kv_test_headers HEADERS ${KV_TEST_HEADERS})
  kv_precompiled_test_headers(kv_control_test_headers USES kv::control
                              HEADERS ${KV_TEST_HEADERS} "${PROJECT_SOURCE_DIR}/src/control/ScenePaneCtrl.h")
endif()

# kv_test_program(NAME SOURCES files... USES targets...): a program of GoogleTest that ctest does not run.
function(kv_test_program NAME)
  cmake_parse_arguments(TEST "" "" "SOURCES;USES" ${ARGN})
  add_executable(${NAME} ${TEST_SOURCES})
  target_include_directories(${NAME} PRIVATE "${PROJECT_SOURCE_DIR}/tests")
  target_link_libraries(${NAME} PRIVATE kv::compiler ${TEST_USES} kv::test_support GTest::gtest GTest::gmock GTest::gtest_main)
  target_compile_options(${NAME} PRIVATE ${KV_TEST_OPTIONS})
  if(KV_PRECOMPILED_HEADERS)
    if("kv::control" IN_LIST TEST_USES)
      target_precompile_headers(${NAME} REUSE_FROM kv_control_test_headers)
    elseif("kv::host_window" IN_LIST TEST_USES)
      target_precompile_headers(${NAME} REUSE_FROM kv_host_test_headers)
    else()
      target_precompile_headers(${NAME} REUSE_FROM kv_test_headers)
    endif()
  endif()
endfunction()

# kv_preload(VARIABLE TARGET): what LD_PRELOAD needs for a shared library. That of a sanitizer must come before all others.
function(kv_preload VARIABLE TARGET)
  set(preload "$<TARGET_FILE:${TARGET}>")
  foreach(pair address/asan thread/tsan)
    cmake_path(GET pair PARENT_PATH sanitizer)
    cmake_path(GET pair FILENAME library)
    if(KV_SANITIZE MATCHES "${sanitizer}" AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
      execute_process(COMMAND "${CMAKE_CXX_COMPILER}" -print-file-name=lib${library}.so OUTPUT_VARIABLE file
                      OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
      string(PREPEND preload "${file}:")
    endif()
  endforeach()
  set(${VARIABLE} "${preload}" PARENT_SCOPE)
endfunction()

# kv_test(NAME LABEL module [THREADS] [STAND_IN] SOURCES files... USES targets... [ISOLATED suites...] [TIMEOUT seconds])
# ctest runs every suite in one process, named NAME/Suite; a suite that ISOLATED lists (a regular expression) runs every
# case in a process of its own, named NAME/Suite.Case: life cycles, locales, process-wide states. TIMEOUT is per process.
# With THREADS the tests run under the thread sanitizer too: `ctest -L tsan` finds them, kv_thread_tests builds them.
# With STAND_IN the driver stand-in (tests/support/DriverStandIn.h) is between the program and OpenGL.
add_custom_target(kv_thread_tests)
function(kv_test NAME)
  cmake_parse_arguments(TEST "THREADS;STAND_IN" "LABEL;TIMEOUT" "SOURCES;USES;ISOLATED" ${ARGN})
  if(NOT TEST_TIMEOUT)
    set(TEST_TIMEOUT 300)
  endif()
  if(TEST_STAND_IN)
    # First: the dynamic linker takes each function from the first library that has it.
    list(PREPEND TEST_USES kv::driver_stand_in)
  endif()
  kv_test_program(${NAME} SOURCES ${TEST_SOURCES} USES ${TEST_USES})
  if(TEST_THREADS)
    list(APPEND TEST_LABEL tsan)
    add_dependencies(kv_thread_tests ${NAME})
  endif()

  # The suites are listed when ctest runs: a build needs no run of the programs, and a new test is found without a
  # configure. The file that ctest includes names the program and lists it again when it is newer.
  set(tests "${CMAKE_CURRENT_BINARY_DIR}/${NAME}_tests.cmake")
  set(include "${CMAKE_CURRENT_BINARY_DIR}/${NAME}_include.cmake")
  file(GENERATE OUTPUT "${include}" CONTENT
"set(KV_TEST_NAME [==[${NAME}]==])
set(KV_TEST_PROGRAM [==[$<TARGET_FILE:${NAME}>]==])
set(KV_TEST_FOLDER [==[${CMAKE_CURRENT_BINARY_DIR}]==])
set(KV_TEST_LIST [==[${tests}]==])
set(KV_TEST_LABELS [==[${TEST_LABEL}]==])
set(KV_TEST_TIMEOUT ${TEST_TIMEOUT})
set(KV_TEST_ISOLATED [==[${TEST_ISOLATED}]==])
include([==[${PROJECT_SOURCE_DIR}/cmake/KvDiscoverTests.cmake]==])
")
  set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES "${include}")
endfunction()
