# Debian packages: `cpack` in a build folder makes one of each component. scripts/packages.sh builds them for /usr and
# installs them on a bare system.
set(KV_MAINTAINER "the maintainers of KV_ScenePane <maintainers@localhost>" CACHE STRING "Maintainer of the packages")
set(KV_PACKAGE_runtime libkv-scenepane${PROJECT_VERSION_MAJOR})
set(KV_PACKAGE_dev libkv-scenepane-dev)
set(KV_PACKAGE_application scenepane)
set(components runtime dev)
if(KV_BUILD_HOST)
  list(APPEND components application)
endif()

# Licence and changelog of each package; left out of `cmake --install`, which has LICENSE and CHANGELOG.md.
configure_file("${PROJECT_SOURCE_DIR}/packaging/debian-changelog.in" "${PROJECT_BINARY_DIR}/packaging/changelog" @ONLY)
execute_process(COMMAND gzip -9nkf "${PROJECT_BINARY_DIR}/packaging/changelog" COMMAND_ERROR_IS_FATAL ANY)
foreach(component IN LISTS components)
  install(FILES "${PROJECT_SOURCE_DIR}/packaging/copyright" "${PROJECT_BINARY_DIR}/packaging/changelog.gz"
          DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/${KV_PACKAGE_${component}}" COMPONENT ${component} EXCLUDE_FROM_ALL)
endforeach()

set(CPACK_GENERATOR DEB)
set(CPACK_COMPONENTS_ALL ${components})
set(CPACK_PACKAGE_NAME kv-scenepane)
set(CPACK_PACKAGE_CONTACT "${KV_MAINTAINER}")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_PRE_BUILD_SCRIPTS "${PROJECT_SOURCE_DIR}/cmake/KvPackageFiles.cmake")
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE
                                                WORLD_READ WORLD_EXECUTE)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS "${PROJECT_BINARY_DIR}/lib")
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
foreach(component IN LISTS components)
  string(TOUPPER ${component} upper)
  set(CPACK_DEBIAN_${upper}_PACKAGE_NAME ${KV_PACKAGE_${component}})
endforeach()

set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "embeddable viewer of 3D scans and meshes
The libraries of a program that shows 3D measurements and meshes
in one of its windows, or draws them without a display.")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_RECOMMENDS "libgl1-mesa-dri, fonts-liberation")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA "${PROJECT_SOURCE_DIR}/packaging/triggers")
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_DESCRIPTION "embeddable viewer of 3D scans and meshes (development files)
Headers, CMake package, pkg-config file, documents and examples.")
set(CPACK_DEBIAN_DEV_PACKAGE_SHLIBDEPS OFF)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS "${KV_PACKAGE_runtime} (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_APPLICATION_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_APPLICATION_DESCRIPTION "viewer of 3D scans and meshes
Shows, cuts, aligns and converts 3D measurements and meshes, in a
window and on the command line without a display; with
simulate-scans, which makes measurements to try.")
set(CPACK_DEBIAN_APPLICATION_PACKAGE_DEPENDS "${KV_PACKAGE_runtime} (= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_APPLICATION_PACKAGE_RECOMMENDS "qt6-qpa-plugins, qt6-translations-l10n")
include(CPack)
