# Installs the built tree into an empty prefix, and configures, builds and runs outside projects against it, in C++ and
# in C, by CMake and by pkg-config.
# Called with -DBUILD_DIR, -DSOURCE_DIR, -DWORK_DIR, -DCONFIG, -DCXX_COMPILER, -DCXX_FLAGS, -DC_COMPILER, -DLIBDIR,
# -DPKG_CONFIG, -DVERSION.
function(step)
  execute_process(COMMAND ${ARGN} RESULT_VARIABLE result OUTPUT_VARIABLE output ERROR_VARIABLE output)
  if(NOT result EQUAL 0)
    list(JOIN ARGN " " command)
    message(FATAL_ERROR "${command}\nended with ${result}:\n${output}")
  endif()
endfunction()

function(expect_file)
  foreach(file ${ARGN})
    if(NOT EXISTS "${WORK_DIR}/prefix/${file}")
      message(FATAL_ERROR "not installed: ${file}")
    endif()
  endforeach()
endfunction()

file(REMOVE_RECURSE "${WORK_DIR}")
file(MAKE_DIRECTORY "${WORK_DIR}")
step("${CMAKE_COMMAND}" --install "${BUILD_DIR}" --prefix "${WORK_DIR}/prefix")
expect_file(include/KV_ScenePane/ScenePane.h include/MSRDLL/Msr.h include/MSRDLL/MsrLastReason.h
            include/KV_UtilsLantern/KV_UtilsLantern.h ${LIBDIR}/libKV_ScenePane.so ${LIBDIR}/libMSRDLL.so ${LIBDIR}/libKV_UtilsLantern.so
            include/KV_ScenePane/kv_scenepane.h include/KV_ScenePane/kv_scenepane_ids.h ${LIBDIR}/pkgconfig/KV_ScenePane.pc
            ${LIBDIR}/cmake/KV_ScenePane/KV_ScenePaneConfig.cmake bin/simulate-scans
            share/man/man1/simulate-scans.1 share/bash-completion/completions/simulate-scans)
if(EXISTS "${WORK_DIR}/prefix/bin/scenepane")
  expect_file(share/man/man1/scenepane.1 share/bash-completion/completions/scenepane)
endif()

expect_file(${LIBDIR}/libKV_ScenePane.so.5 ${LIBDIR}/libMSRDLL.so.1 ${LIBDIR}/libKV_Components.so.1 ${LIBDIR}/libKV_UtilsLantern.so.1
            share/doc/KV_ScenePane/docs/hosting.md share/doc/KV_ScenePane/examples/CMakeLists.txt)
if(EXISTS "${WORK_DIR}/prefix/bin/scenepane")
  expect_file(share/applications/scenepane.desktop share/mime/packages/scenepane.xml share/man/man1/scenepane.1
              share/icons/hicolor/scalable/apps/scenepane.svg share/icons/hicolor/48x48/apps/scenepane.png)
  # Every type of the viewer that the program of the desktop file opens is declared, and has its extension.
  file(READ "${WORK_DIR}/prefix/share/applications/scenepane.desktop" desktop)
  file(READ "${WORK_DIR}/prefix/share/mime/packages/scenepane.xml" types)
  foreach(type IN ITEMS pcm pax xdt hps ois msh)
    if(NOT desktop MATCHES "model/x-kv-${type};" OR NOT types MATCHES "\"model/x-kv-${type}\".*\"\\*\\.${type}\"")
      message(FATAL_ERROR "no MIME type for ${type}")
    endif()
  endforeach()
endif()

# Moved, so that no path of the first place can have been kept.
file(RENAME "${WORK_DIR}/prefix" "${WORK_DIR}/moved")
step("${CMAKE_COMMAND}" -S "${SOURCE_DIR}/tests/package/consumer" -B "${WORK_DIR}/build" -G Ninja
     "-DCMAKE_PREFIX_PATH=${WORK_DIR}/moved" "-DCMAKE_BUILD_TYPE=${CONFIG}" "-DCMAKE_CXX_COMPILER=${CXX_COMPILER}"
     "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}" --no-warn-unused-cli)
step("${CMAKE_COMMAND}" --build "${WORK_DIR}/build")
step("${WORK_DIR}/build/consumer")

# Plain C: a project that enables no other language, and one command line of the compiler.
set(c_consumer "${SOURCE_DIR}/tests/package/c_consumer")
step("${CMAKE_COMMAND}" -S "${c_consumer}" -B "${WORK_DIR}/c_build" -G Ninja "-DCMAKE_PREFIX_PATH=${WORK_DIR}/moved"
     "-DCMAKE_BUILD_TYPE=${CONFIG}" "-DCMAKE_C_COMPILER=${C_COMPILER}" --no-warn-unused-cli)
step("${CMAKE_COMMAND}" --build "${WORK_DIR}/c_build")
step("${WORK_DIR}/c_build/c_consumer")

set(ENV{PKG_CONFIG_LIBDIR} "${WORK_DIR}/moved/${LIBDIR}/pkgconfig")
step("${PKG_CONFIG}" --exact-version "${VERSION}" KV_ScenePane)
execute_process(COMMAND "${PKG_CONFIG}" --cflags --libs KV_ScenePane OUTPUT_VARIABLE flags COMMAND_ERROR_IS_FATAL ANY)
separate_arguments(flags UNIX_COMMAND "${flags}")
if("${flags}" MATCHES "${WORK_DIR}/prefix")
  message(FATAL_ERROR "pkg-config names the first place: ${flags}")
endif()
step("${C_COMPILER}" -std=c89 -pedantic -Wall -Wextra -Werror "-DEXPECTED_VERSION=\"${VERSION}\"" "${c_consumer}/main.c" ${flags}
     "-Wl,-rpath,${WORK_DIR}/moved/${LIBDIR}" -o "${WORK_DIR}/by_pkg_config")
step("${WORK_DIR}/by_pkg_config")
step("${WORK_DIR}/moved/bin/simulate-scans" --version)
if(EXISTS "${WORK_DIR}/moved/bin/scenepane")
  step("${WORK_DIR}/moved/bin/scenepane" --version)
endif()
file(REMOVE_RECURSE "${WORK_DIR}")
