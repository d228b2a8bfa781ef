# One call makes a module under src/: its building blocks as a static library kv::NAME, its operations as sources of the
# control, and its tests.
#
# kv_module(NAME
#   BLOCKS files...         building blocks: static library kv::NAME
#   HEADERS files...        the module's headers; each must compile on its own
#   USES targets...         what the building blocks need, downward only
#   OPERATIONS files...     member functions of the control, compiled into kv::control
#   TESTS files...          below tests/NAME/, linked to kv::NAME alone: the blocks stand without the control
#   CONTROL_TESTS files...  below tests/NAME/, linked to the whole control
#   ISOLATED suites...)     suites of either that need a process per case, see kv_test()
function(kv_module NAME)
  cmake_parse_arguments(MODULE "" "" "BLOCKS;HEADERS;USES;OPERATIONS;TESTS;CONTROL_TESTS;ISOLATED" ${ARGN})
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
      kv_test(${NAME}_tests LABEL ${NAME} SOURCES ${MODULE_TESTS} USES kv::${NAME} ISOLATED ${MODULE_ISOLATED})
    endif()
    if(MODULE_CONTROL_TESTS)
      list(TRANSFORM MODULE_CONTROL_TESTS PREPEND "${PROJECT_SOURCE_DIR}/tests/${NAME}/")
      kv_test(${NAME}_control_tests LABEL ${NAME} SOURCES ${MODULE_CONTROL_TESTS} USES kv::control ISOLATED ${MODULE_ISOLATED})
    endif()
  endif()
endfunction()
