# Debian's packages, one for each part of the installation: libcatalogcore1, libcatalogcore-dev, python3-catalogcore,
# catalogcore.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME catalogcore)
set(CPACK_PACKAGE_VENDOR "CatalogCore developers")
set(CPACK_PACKAGE_CONTACT "CatalogCore developers")
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
CatalogCore keeps a catalogue of image files in memory, and in two files.
Every image is filed under one index of a tree, and found by its path. Of
the pixels of a picture it tells whether they show a document, and of which
paper size, or a photograph, and whether that shows faces.")
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

This package holds the headers, examples, the pages, and what CMake and pkg-config
need.")

set(CPACK_DEBIAN_PYTHON_PACKAGE_NAME python3-catalogcore)
set(CPACK_DEBIAN_PYTHON_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_PYTHON_PACKAGE_SECTION python)
set(CPACK_DEBIAN_PYTHON_PACKAGE_DEPENDS "${library_package} (>= ${PROJECT_VERSION}), python3 (>= 3.10)")
# What python compiles beside the module goes with it.
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
by their paper size, photographs by whether faces show. It keeps a catalogue
of them, makes a page to look at it, and never touches the files themselves.")
include(CPack)
