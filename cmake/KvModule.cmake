# One call makes a room of the house under src/: its building blocks as a static library kv::NAME, its operations as
# sources of the control, and its tests.
#
# kv_module(NAME
#   BLOCKS files...         building blocks: static library kv::NAME
#   HEADERS files...        the room's headers; each must compile on its own
#   USES targets...         what the building blocks need, downward only
#   OPERATIONS files...     member functions of the control, compiled into kv::control
#   TESTS files...          below tests/NAME/, linked to kv::NAME alone: the blocks stand without the control
#   CONTROL_TESTS files...  below tests/NAME/, linked to the whole control)
function(kv_module NAME)
  cmake_parse_arguments(MODULE "" "" "BLOCKS;HEADERS;USES;OPERATIONS;TESTS;CONTROL_TESTS" ${ARGN})
  if(MODULE_BLOCKS)
    add_library(kv_${NAME} STATIC ${MODULE_BLOCKS})
    target_link_libraries(kv_${NAME} PUBLIC kv::compiler kv::include ${MODULE_USES})
    set(scope PUBLIC)
  else()
    add_library(kv_${NAME} INTERFACE)
    target_link_libraries(kv_${NAME} INTERFACE kv::compiler kv::include ${MODULE_USES})
    set(scope INTERFACE)
  endif()
  add_library(kv::${NAME} ALIAS kv_${NAME})
  target_include_directories(kv_${NAME} ${scope} "${PROJECT_SOURCE_DIR}/src")
  if(MODULE_HEADERS)
    target_sources(kv_${NAME} ${scope} FILE_SET HEADERS BASE_DIRS "${PROJECT_SOURCE_DIR}/src" FILES ${MODULE_HEADERS})
    set_target_properties(kv_${NAME} PROPERTIES VERIFY_INTERFACE_HEADER_SETS ON)
  endif()
  list(TRANSFORM MODULE_OPERATIONS PREPEND "${CMAKE_CURRENT_SOURCE_DIR}/")
  set_property(GLOBAL APPEND PROPERTY KV_OPERATIONS ${MODULE_OPERATIONS})
  if(KV_BUILD_TESTS)
    if(MODULE_TESTS)
      list(TRANSFORM MODULE_TESTS PREPEND "${PROJECT_SOURCE_DIR}/tests/${NAME}/")
      kv_test(${NAME}_tests LABEL ${NAME} SOURCES ${MODULE_TESTS} USES kv::${NAME})
    endif()
    if(MODULE_CONTROL_TESTS)
      list(TRANSFORM MODULE_CONTROL_TESTS PREPEND "${PROJECT_SOURCE_DIR}/tests/${NAME}/")
      kv_test(${NAME}_control_tests LABEL ${NAME} SOURCES ${MODULE_CONTROL_TESTS} USES kv::control)
    endif()
  endif()
endfunction()

# kv_test(NAME LABEL room [THREADS] SOURCES files... USES targets... [TIMEOUT seconds])
# With THREADS the tests run under the thread sanitizer too: `ctest -L tsan` finds them, kv_thread_tests builds them. Both
# are in one label, room-tsan: gtest_discover_tests() cannot pass on a list of labels.
add_custom_target(kv_thread_tests)
function(kv_test NAME)
  cmake_parse_arguments(TEST "THREADS" "LABEL;TIMEOUT" "SOURCES;USES" ${ARGN})
  if(NOT TEST_TIMEOUT)
    set(TEST_TIMEOUT 300)
  endif()
  add_executable(${NAME} ${TEST_SOURCES})
  if(TEST_THREADS)
    string(APPEND TEST_LABEL "-tsan")
    add_dependencies(kv_thread_tests ${NAME})
  endif()
  target_include_directories(${NAME} PRIVATE "${PROJECT_SOURCE_DIR}/tests")
  target_link_libraries(${NAME} PRIVATE kv::compiler kv::test_support ${TEST_USES} GTest::gtest GTest::gmock GTest::gtest_main)
  gtest_discover_tests(${NAME} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
                       PROPERTIES LABELS "${TEST_LABEL}" TIMEOUT ${TEST_TIMEOUT})
endfunction()
