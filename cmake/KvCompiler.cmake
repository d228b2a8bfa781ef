# Language level, warnings and places of the outputs, once for all targets.

# Programs in bin/, libraries in lib/ of the build folder, as after an install.
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")

set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR};$ORIGIN")

# Debug builds do without by default, so that a missing include shows there.
if(CMAKE_BUILD_TYPE STREQUAL "Debug")
  option(KV_PRECOMPILED_HEADERS "Precompile the headers that most tests include" OFF)
else()
  option(KV_PRECOMPILED_HEADERS "Precompile the headers that most tests include" ON)
endif()

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
  set(CMAKE_C_COMPILER_LAUNCHER "${CCACHE_PROGRAM}")
  set(CMAKE_CXX_COMPILER_LAUNCHER "${CCACHE_PROGRAM}")
  if(KV_PRECOMPILED_HEADERS)
    # ccache needs the sloppiness for them. Reading the compiler's own list of dependencies saves a run of the
    # preprocessor for every file that is not in the cache yet.
    list(PREPEND CMAKE_CXX_COMPILER_LAUNCHER
         "${CMAKE_COMMAND}" -E env CCACHE_DEPEND=1 CCACHE_SLOPPINESS=pch_defines,time_macros)
  endif()
endif()

add_library(kv_compiler INTERFACE)
add_library(kv::compiler ALIAS kv_compiler)
target_compile_features(kv_compiler INTERFACE cxx_std_20)
target_compile_options(
  kv_compiler
  INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wno-sign-conversion -Wnon-virtual-dtor -Wold-style-cast
            # Results are fixed to the bit: the compiler must not fuse multiplications and additions.
            -ffp-contract=off)
if(KV_WERROR)
  target_compile_options(kv_compiler INTERFACE -Werror)
endif()

# kv_c89(TARGET): the target is plain C, as a host may be that knows nothing newer.
function(kv_c89 TARGET)
  set_target_properties(${TARGET} PROPERTIES C_STANDARD 90 C_STANDARD_REQUIRED ON C_EXTENSIONS OFF)
  target_compile_options(${TARGET} PRIVATE -pedantic -Wall -Wextra $<$<BOOL:${KV_WERROR}>:-Werror>)
endfunction()

set(KV_SANITIZE "" CACHE STRING "Sanitizers, the argument of -fsanitize=")
set(KV_LIMITS_MEMORY 1)  # whether the address space can be limited: the own memory of a sanitizer is larger
if(KV_SANITIZE)
  set(KV_LIMITS_MEMORY 0)
  add_compile_options(-fsanitize=${KV_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=${KV_SANITIZE})
  if(KV_SANITIZE MATCHES "address")
    # Compiled here and now, so that it is part of every program without being part of what is exported.
    set(under "${PROJECT_BINARY_DIR}/UnderAddressSanitizer.o")
    execute_process(COMMAND "${CMAKE_CXX_COMPILER}" -c -fPIE "${CMAKE_CURRENT_LIST_DIR}/UnderAddressSanitizer.cpp" -o "${under}"
                    COMMAND_ERROR_IS_FATAL ANY)
    string(APPEND CMAKE_EXE_LINKER_FLAGS " ${under} -Wl,--export-dynamic-symbol=dlclose,--export-dynamic-symbol=__asan_default_options")
  endif()
  # g++ 12 sees uninitialised members in the templates of its own library once they are instrumented.
  target_compile_options(kv_compiler INTERFACE $<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
endif()
