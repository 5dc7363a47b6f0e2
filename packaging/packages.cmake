# Debian packages, one for each component of the installation: libcatalogcore1, libcatalogcore-dev, python3-catalogcore
# and catalogcore.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME catalogcore)
set(CPACK_PACKAGE_VENDOR "The CatalogCore authors")
set(CPACK_PACKAGE_CONTACT "The CatalogCore authors")
set(CPACK_INSTALL_PREFIX /usr)
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_COMPONENTS_ALL runtime development python)
if(CATALOGCORE_APP)
  list(APPEND CPACK_COMPONENTS_ALL command)
endif()

set(library_package libcatalogcore${PROJECT_VERSION_MAJOR})
set(same_library "${library_package} (= ${PROJECT_VERSION})")
set(about_library "\
CatalogCore keeps a catalogue of image files in memory and stores it in two
files. Every image is filed under one index of a tree and found by its path.
The library also classifies pictures: as documents of a paper size, or as
photographs with or without faces.")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")  # each package has its own

set(CPACK_DEBIAN_RUNTIME_PACKAGE_NAME ${library_package})
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_RUNTIME_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS_POLICY ">=")
file(WRITE ${PROJECT_BINARY_DIR}/debian/triggers "activate-noawait ldconfig\n")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA ${PROJECT_BINARY_DIR}/debian/triggers)
set(CPACK_DEBIAN_RUNTIME_DESCRIPTION "catalogue of image files (shared library)\n${about_library}")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libcatalogcore-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS "${same_library}")
set(CPACK_DEBIAN_DEVELOPMENT_DESCRIPTION "catalogue of image files (development files)
${about_library}

This package contains the headers, the documentation, examples, and the files
for CMake and pkg-config.")

set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-catalogcore)
set(CPACK_DEBIAN_PYTHON_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS "${library_package} (>= ${PROJECT_VERSION}), python3 (>= 3.10)")
# Removing the package removes the compiled files that Python wrote beside the module.
file(WRITE ${PROJECT_BINARY_DIR}/debian/prerm "#!/bin/sh\nset -e\npy3clean -p python3-catalogcore\n")
file(CHMOD ${PROJECT_BINARY_DIR}/debian/prerm
  PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_PYTHON_PACKAGE_CONTROL_EXTRA ${PROJECT_BINARY_DIR}/debian/prerm)
set(CPACK_DEBIAN_PYTHON_DESCRIPTION "catalogue of image files (Python module)\n${about_library}")

set(CPACK_DEBIAN_COMMAND_PACKAGE_NAME catalogcore)
set(CPACK_DEBIAN_COMMAND_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_COMMAND_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_LIBRARY_OUTPUT_DIRECTORY})
set(CPACK_DEBIAN_COMMAND_PACKAGE_DEPENDS "${same_library}")
set(CPACK_DEBIAN_COMMAND_DESCRIPTION "file pictures by what they show
The command sorts scans and photographs into a tree of categories: documents
by their paper size, photographs by whether they show faces. It keeps a
catalogue of them, makes a gallery page to browse the catalogue, and never
changes the picture files.")

# Debian's policy requires a copyright file and a changelog in each package. An installation in a folder has no use for
# them.
set(changelog ${PROJECT_BINARY_DIR}/debian/changelog.gz)
execute_process(COMMAND gzip -9nc ${PROJECT_SOURCE_DIR}/CHANGELOG.md OUTPUT_FILE ${changelog})
foreach(component IN LISTS CPACK_COMPONENTS_ALL)
  string(TOUPPER ${component} COMPONENT)
  set(folder ${CMAKE_INSTALL_DATADIR}/doc/${CPACK_DEBIAN_${COMPONENT}_PACKAGE_NAME})
  install(FILES LICENSE DESTINATION ${folder} RENAME copyright COMPONENT ${component} EXCLUDE_FROM_ALL)
  install(FILES ${changelog} DESTINATION ${folder} COMPONENT ${component} EXCLUDE_FROM_ALL)
endforeach()
include(CPack)
