# The interpreter of the Python tests, and kv_python_test(), which registers one of their files with ctest.

# kv_find_python(VARIABLE): an interpreter of 3.9 or later that has numpy, empty when there is none. Debian's comes before
# the first of $PATH, which may be one that a user built without numpy.
function(kv_find_python VARIABLE)
  if(DEFINED CACHE{KV_PYTHON})
    set(candidates "${KV_PYTHON}")
  else()
    set(candidates /usr/bin/python3 python3)
  endif()
  set(found "")
  foreach(candidate IN LISTS candidates)
    execute_process(COMMAND "${candidate}" -c "import sys, numpy; sys.exit(sys.version_info < (3, 9))"
                    RESULT_VARIABLE result OUTPUT_QUIET ERROR_QUIET)
    if(result EQUAL 0)
      set(found "${candidate}")
      break()
    endif()
  endforeach()
  set(${VARIABLE} "${found}" PARENT_SCOPE)
endfunction()

# kv_python_test(FILE [SANITIZED] [TIMEOUT seconds] [ENVIRONMENT name=value...]): a file of unittest, test_NAME.py, as one
# test python/NAME. Under the address sanitizer only those with SANITIZED are run: Python is slow there, and most
# files would only run the same code of the library again.
function(kv_python_test FILE)
  cmake_parse_arguments(TEST "SANITIZED" "TIMEOUT" "ENVIRONMENT" ${ARGN})
  if(KV_SANITIZE AND NOT (TEST_SANITIZED AND KV_SANITIZE MATCHES "address"))
    return()
  endif()
  if(NOT TEST_TIMEOUT)
    set(TEST_TIMEOUT 300)
  endif()
  cmake_path(ABSOLUTE_PATH FILE)
  cmake_path(GET FILE STEM name)
  string(REGEX REPLACE "^test_" "" name "${name}")
  set(environment "PYTHONPATH=${PROJECT_BINARY_DIR}/python" PYTHONDONTWRITEBYTECODE=1 PYTHONFAULTHANDLER=1
                  "KV_BUILD_DIR=${PROJECT_BINARY_DIR}" "KV_SOURCE_DIR=${PROJECT_SOURCE_DIR}"
                  "KV_SAMPLES_DIR=${KV_SAMPLES_DIR}" ${TEST_ENVIRONMENT})
  if(KV_SANITIZE)
    # In every allocation of Python the sanitizer sees its own blocks. What Python leaves behind at its end is no leak of
    # ours; the rest is as in cmake/UnderAddressSanitizer.cpp.
    list(APPEND environment "LD_PRELOAD=${KV_PYTHON_PRELOAD}" PYTHONMALLOC=malloc
         "ASAN_OPTIONS=detect_leaks=0:intercept_tls_get_addr=0")
  endif()
  add_test(NAME "python/${name}"
           COMMAND "${CMAKE_COMMAND}" -E env --unset=DISPLAY --unset=WAYLAND_DISPLAY ${environment}
                   "${KV_PYTHON_PROGRAM}" "${PROJECT_SOURCE_DIR}/tests/python/run_tests.py" "${FILE}")
  set_tests_properties("python/${name}" PROPERTIES LABELS python TIMEOUT ${TEST_TIMEOUT} SKIP_RETURN_CODE 77)
endfunction()

kv_find_python(KV_PYTHON_PROGRAM)
if(KV_PYTHON_PROGRAM)
  message(STATUS "python tests: ${KV_PYTHON_PROGRAM}")
else()
  message(STATUS "python tests: skipped, there is no Python of 3.9 or later with numpy (KV_PYTHON names one)")
endif()
if(KV_SANITIZE MATCHES "address")
  # The C++ library, too: Python does not link it, and the sanitizer looks for its functions at the start.
  set(KV_PYTHON_PRELOAD "")
  foreach(library libasan.so libstdc++.so)
    execute_process(COMMAND "${CMAKE_CXX_COMPILER}" "-print-file-name=${library}" OUTPUT_VARIABLE file
                    OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    list(APPEND KV_PYTHON_PRELOAD "${file}")
  endforeach()
  list(JOIN KV_PYTHON_PRELOAD ":" KV_PYTHON_PRELOAD)
endif()
