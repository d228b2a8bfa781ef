# What `cmake --install` installs: public headers, the libraries, the programs, and the package KV_ScenePane. Included
# last, after all targets. The components are the Debian packages of cmake/KvPackages.cmake; what names none belongs to
# "application".
include(CMakePackageConfigHelpers)

set(KV_PACKAGE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/KV_ScenePane")

install(DIRECTORY "${PROJECT_SOURCE_DIR}/include/KV_ScenePane" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}"
        COMPONENT dev FILES_MATCHING PATTERN "*.h")
install(DIRECTORY "${PROJECT_SOURCE_DIR}/libs/MSRDLL/include/MSRDLL" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}"
        COMPONENT dev FILES_MATCHING PATTERN "*.h")
install(TARGETS simulate-scans RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")

install(DIRECTORY "${PROJECT_SOURCE_DIR}/libs/KV_Components/include/KV_Components" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}"
        COMPONENT dev FILES_MATCHING PATTERN "*.h")
install(DIRECTORY "${PROJECT_SOURCE_DIR}/libs/KV_UtilsLantern/include/KV_UtilsLantern" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}"
        COMPONENT dev FILES_MATCHING PATTERN "*.h")
install(FILES "${PROJECT_SOURCE_DIR}/README.md" "${PROJECT_SOURCE_DIR}/CHANGELOG.md" "${PROJECT_SOURCE_DIR}/LICENSE"
        DESTINATION "${CMAKE_INSTALL_DOCDIR}" COMPONENT dev)
install(DIRECTORY "${PROJECT_SOURCE_DIR}/docs" "${PROJECT_SOURCE_DIR}/examples" DESTINATION "${CMAKE_INSTALL_DOCDIR}"
        COMPONENT dev PATTERN "__pycache__" EXCLUDE PATTERN ".ipynb_checkpoints" EXCLUDE)
# The version of their binary interfaces, which do not change with the viewer: a site may replace each of the three by a
# library of the same soname.
set_target_properties(kv_msrdll kv_components kv_utils_lantern PROPERTIES VERSION 1.0 SOVERSION 1)
set_target_properties(kv_msrdll PROPERTIES EXPORT_NAME MSRDLL)
set_target_properties(kv_components PROPERTIES EXPORT_NAME KV_Components)
set_target_properties(kv_utils_lantern PROPERTIES EXPORT_NAME KV_UtilsLantern)
target_compile_features(KV_ScenePane INTERFACE cxx_std_20)  # of its C++ headers; projects in plain C have no use for it
# All four lie in one folder: in the build folder, where they are installed, and in the Python package, which copies them.
set_target_properties(KV_ScenePane kv_msrdll kv_components kv_utils_lantern
                      PROPERTIES INSTALL_RPATH "$ORIGIN" BUILD_WITH_INSTALL_RPATH ON)
install(TARGETS KV_ScenePane kv_msrdll kv_components kv_utils_lantern EXPORT KV_ScenePaneTargets
        LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT runtime NAMELINK_COMPONENT dev
        INCLUDES DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}")
install(EXPORT KV_ScenePaneTargets NAMESPACE KV_ScenePane:: DESTINATION "${KV_PACKAGE_DIR}" COMPONENT dev)

configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/KV_ScenePaneConfig.cmake.in"
                              "${PROJECT_BINARY_DIR}/KV_ScenePaneConfig.cmake" INSTALL_DESTINATION "${KV_PACKAGE_DIR}")
write_basic_package_version_file("${PROJECT_BINARY_DIR}/KV_ScenePaneConfigVersion.cmake" COMPATIBILITY SameMajorVersion)
install(FILES "${PROJECT_BINARY_DIR}/KV_ScenePaneConfig.cmake" "${PROJECT_BINARY_DIR}/KV_ScenePaneConfigVersion.cmake"
        DESTINATION "${KV_PACKAGE_DIR}" COMPONENT dev)

# pkg-config, for hosts that are not built by CMake. A library folder outside the prefix cannot be moved with it.
if(IS_ABSOLUTE "${CMAKE_INSTALL_LIBDIR}")
  message(STATUS "KV_ScenePane.pc: not installed, CMAKE_INSTALL_LIBDIR is absolute")
else()
  file(RELATIVE_PATH KV_PREFIX_FROM_PKGCONFIG "/prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/prefix")
  configure_file("${PROJECT_SOURCE_DIR}/cmake/KV_ScenePane.pc.in" "${PROJECT_BINARY_DIR}/KV_ScenePane.pc" @ONLY)
  install(FILES "${PROJECT_BINARY_DIR}/KV_ScenePane.pc" DESTINATION "${CMAKE_INSTALL_LIBDIR}/pkgconfig"
          COMPONENT dev)
endif()

if(KV_BUILD_HOST)
  set(packaging "${PROJECT_SOURCE_DIR}/packaging")
  install(FILES "${packaging}/scenepane.desktop" DESTINATION "${CMAKE_INSTALL_DATADIR}/applications")
  install(FILES "${packaging}/scenepane-mime.xml" DESTINATION "${CMAKE_INSTALL_DATADIR}/mime/packages" RENAME scenepane.xml)
  install(FILES "${packaging}/icons/scenepane.svg" DESTINATION "${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps")
  foreach(side IN ITEMS 48 128)
    install(FILES "${packaging}/icons/scenepane-${side}.png" RENAME scenepane.png
            DESTINATION "${CMAKE_INSTALL_DATADIR}/icons/hicolor/${side}x${side}/apps")
  endforeach()
endif()
include(KvPackages)

# Not under a sanitizer: what is installed is the same, and the programs of the outside project would need its runtime.
if(KV_BUILD_TESTS AND NOT KV_SANITIZE)
  add_test(NAME Package.AnOutsideProjectBuildsAndRunsAgainstTheInstalledTree
           COMMAND "${CMAKE_COMMAND}" "-DBUILD_DIR=${PROJECT_BINARY_DIR}" "-DSOURCE_DIR=${PROJECT_SOURCE_DIR}"
                   "-DWORK_DIR=${PROJECT_BINARY_DIR}/package-test" "-DCONFIG=${CMAKE_BUILD_TYPE}"
                   "-DCXX_COMPILER=${CMAKE_CXX_COMPILER}" "-DCXX_FLAGS=${CMAKE_CXX_FLAGS}" "-DLIBDIR=${CMAKE_INSTALL_LIBDIR}"
                   "-DC_COMPILER=${CMAKE_C_COMPILER}" "-DPKG_CONFIG=${PKG_CONFIG_EXECUTABLE}" "-DVERSION=${PROJECT_VERSION}"
                   -P "${PROJECT_SOURCE_DIR}/tests/package/package_test.cmake")
  set_tests_properties(Package.AnOutsideProjectBuildsAndRunsAgainstTheInstalledTree PROPERTIES LABELS package TIMEOUT 300)

  include(KvPython)
  if(KV_PYTHON_PROGRAM)  # without one tests/python has a skipped test
    set(package_test "${KV_PYTHON_PROGRAM}" -B)
    set(package_options --build "${PROJECT_BINARY_DIR}" --libdir "${CMAKE_INSTALL_LIBDIR}" --cxx "${CMAKE_CXX_COMPILER}"
                        --cc "${CMAKE_C_COMPILER}")
    if(KV_BUILD_HOST)  # fragments and examples use Qt
      add_test(NAME Package.EveryFragmentOfTheDocumentsRuns
               COMMAND ${package_test} "${PROJECT_SOURCE_DIR}/tests/package/snippets.py" ${package_options}
                       --work "${PROJECT_BINARY_DIR}/snippets-test" --python-path "${PROJECT_BINARY_DIR}/python")
      add_test(NAME Package.TheExamplesAreAProjectThatBuildsAndRuns
               COMMAND ${package_test} "${PROJECT_SOURCE_DIR}/tests/package/examples.py" ${package_options}
                       --work "${PROJECT_BINARY_DIR}/examples-test" --docdir "${CMAKE_INSTALL_DOCDIR}")
      set_tests_properties(Package.EveryFragmentOfTheDocumentsRuns Package.TheExamplesAreAProjectThatBuildsAndRuns
                           PROPERTIES LABELS package TIMEOUT 300)
    endif()
  endif()
endif()
