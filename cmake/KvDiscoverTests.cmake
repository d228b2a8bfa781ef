# Included by ctest, once per test program, with the KV_TEST_ variables that kv_test() sets: lists the suites of the
# program when it is newer than its list, and registers them.
cmake_minimum_required(VERSION 3.25)

# Suites of more cases are split into parts of this size, so that one long suite does not keep one core busy alone.
set(KV_CASES_PER_PART 50)

# kv_list_suites(): asks the program for its tests and writes KV_TEST_LIST.
function(kv_list_suites)
  execute_process(COMMAND "${KV_TEST_PROGRAM}" --gtest_list_tests WORKING_DIRECTORY "${KV_TEST_FOLDER}" TIMEOUT 60
                  OUTPUT_VARIABLE output ERROR_VARIABLE errors RESULT_VARIABLE result)
  if(NOT result EQUAL 0)
    message(FATAL_ERROR "${KV_TEST_PROGRAM} --gtest_list_tests ended with ${result}:\n${output}${errors}")
  endif()

  # Values of parameters may hold any character: what CMake would read as a list goes, then the lines become one.
  string(REGEX REPLACE "  # [^\n]*" "" output "${output}")
  string(REPLACE "\n" ";" lines "${output}")
  set(suites "")
  foreach(line IN LISTS lines)
    if(line MATCHES "^([^ ].*)\\.$")
      set(full "${CMAKE_MATCH_1}")
      # "Inputs/Suite" and "Suite/0" are instances of one suite, by values and by types.
      string(REGEX REPLACE "/[0-9]+$" "" suite "${full}")
      string(REGEX REPLACE "^.*/" "" suite "${suite}")
      if(NOT suite IN_LIST suites)
        list(APPEND suites "${suite}")
        set(cases_${suite} "")
        set(filter_${suite} "")
      endif()
      string(APPEND filter_${suite} ":${full}.*")
    elseif(line MATCHES "^  (.+)$")
      set(case "${full}.${CMAKE_MATCH_1}")
      if(NOT case MATCHES "(^|[./])DISABLED_")
        list(APPEND cases_${suite} "${case}")
      endif()
    endif()
  endforeach()

  set(script "")
  foreach(suite IN LISTS suites)
    list(LENGTH cases_${suite} count)
    set(isolated FALSE)
    foreach(pattern IN LISTS KV_TEST_ISOLATED)
      if(suite MATCHES "^(${pattern})$")
        set(isolated TRUE)
      endif()
    endforeach()
    if(isolated)
      foreach(case IN LISTS cases_${suite})
        kv_register("${KV_TEST_NAME}/${case}" 1 "${case}")
      endforeach()
    elseif(count GREATER KV_CASES_PER_PART)
      math(EXPR parts "(${count} + ${KV_CASES_PER_PART} - 1) / ${KV_CASES_PER_PART}")
      math(EXPR size "(${count} + ${parts} - 1) / ${parts}")
      foreach(part RANGE 1 ${parts})
        math(EXPR first "(${part} - 1) * ${size}")
        list(SUBLIST cases_${suite} ${first} ${size} cases)
        list(LENGTH cases count)
        list(JOIN cases ":" filter)
        kv_register("${KV_TEST_NAME}/${suite}_${part}of${parts}" ${count} "${filter}")
      endforeach()
    elseif(count GREATER 0)
      string(SUBSTRING "${filter_${suite}}" 1 -1 filter)
      kv_register("${KV_TEST_NAME}/${suite}" ${count} "${filter}")
    endif()
  endforeach()
  if(script STREQUAL "")
    message(FATAL_ERROR "${KV_TEST_PROGRAM} has no tests")
  endif()
  file(WRITE "${KV_TEST_LIST}" "${script}")
endfunction()

# kv_register(NAME COUNT FILTER): one process. More cases start earlier; a process that finds no case has failed.
macro(kv_register name count filter)
  string(APPEND script
         "add_test([==[${name}]==] [==[${KV_TEST_PROGRAM}]==] [==[--gtest_filter=${filter}]==])\n"
         "set_tests_properties([==[${name}]==] PROPERTIES WORKING_DIRECTORY [==[${KV_TEST_FOLDER}]==] "
         "LABELS [==[${KV_TEST_LABELS}]==] TIMEOUT ${KV_TEST_TIMEOUT} COST ${count} "
         "FAIL_REGULAR_EXPRESSION [==[Running 0 tests]==])\n")
endmacro()

if(NOT EXISTS "${KV_TEST_PROGRAM}")
  # As a failed test: a program that was not built must not look like one without tests.
  add_test("${KV_TEST_NAME}_NOT_BUILT" "${KV_TEST_PROGRAM}")
  set_tests_properties("${KV_TEST_NAME}_NOT_BUILT" PROPERTIES LABELS "${KV_TEST_LABELS}")
  return()
endif()
if("${KV_TEST_PROGRAM}" IS_NEWER_THAN "${KV_TEST_LIST}" OR "${CMAKE_CURRENT_LIST_FILE}" IS_NEWER_THAN "${KV_TEST_LIST}"
   OR "${KV_TEST_FOLDER}/${KV_TEST_NAME}_include.cmake" IS_NEWER_THAN "${KV_TEST_LIST}")
  kv_list_suites()
endif()
include("${KV_TEST_LIST}")
