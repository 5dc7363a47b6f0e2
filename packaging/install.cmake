# An installation has four components: `runtime` (the libraries and the recognizer's parameters), `development`
# (headers, CMake and pkg-config files, pages, examples), `python` and `command`. It can be moved as a whole, because
# the library finds its data relative to its own location.
include(CMakePackageConfigHelpers)

set(CATALOGCORE_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/CatalogCore)
set(CATALOGCORE_DOC_DIR ${CMAKE_INSTALL_DATADIR}/doc/catalogcore)

# Below /usr the loader finds the libraries without a run path, and Debian's policy forbids one. The prefix is known
# only when the project is installed.
function(catalogcore_no_rpath_in_usr component target folder)
  install(CODE "
    if(CMAKE_INSTALL_PREFIX STREQUAL \"/usr\")
      file(RPATH_REMOVE FILE \"\$ENV{DESTDIR}/usr/${folder}/$<TARGET_FILE_NAME:${target}>\")
    endif()" COMPONENT ${component})
endfunction()

set_target_properties(catalogcore_cf PROPERTIES EXPORT_NAME CoreFoundation)
set_target_properties(catalogcore PROPERTIES INSTALL_RPATH $ORIGIN)
install(TARGETS catalogcore catalogcore_cf EXPORT CatalogCore
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT runtime NAMELINK_COMPONENT development)
catalogcore_no_rpath_in_usr(runtime catalogcore ${CMAKE_INSTALL_LIBDIR})
install(FILES resources/brennparam.dat
  DESTINATION ${CMAKE_INSTALL_DATADIR}/org.catalogcore.library COMPONENT runtime)

install(DIRECTORY include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development)
install(EXPORT CatalogCore FILE CatalogCoreConfig.cmake NAMESPACE CatalogCore::
  DESTINATION ${CATALOGCORE_CMAKE_DIR} COMPONENT development)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/CatalogCoreConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/CatalogCoreConfigVersion.cmake
  DESTINATION ${CATALOGCORE_CMAKE_DIR} COMPONENT development)
if(APPLE)
  set(PKGCONFIG_COREFOUNDATION_LIBS "-framework CoreFoundation")
else()
  set(PKGCONFIG_COREFOUNDATION_CFLAGS " -I\${includedir}/catalogcore/platform")
  set(PKGCONFIG_COREFOUNDATION_LIBS -lcatalogcore-cf)
  install(DIRECTORY src/platform/corefoundation/include/CoreFoundation
    DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/catalogcore/platform COMPONENT development)
endif()
file(RELATIVE_PATH PREFIX_FROM_PKGCONFIG ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
configure_file(packaging/catalogcore.pc.in catalogcore.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/catalogcore.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)
install(DIRECTORY docs/ DESTINATION ${CATALOGCORE_DOC_DIR} COMPONENT development
  FILES_MATCHING PATTERN *.md PATTERN *.svg PATTERN *.jpg)
install(DIRECTORY examples DESTINATION ${CATALOGCORE_DOC_DIR} COMPONENT development)
install(FILES CHANGELOG.md LICENSE DESTINATION ${CATALOGCORE_DOC_DIR} COMPONENT development)

if(CATALOGCORE_APP)
  file(RELATIVE_PATH libraries_from_command ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
  set_target_properties(catalogcore_command PROPERTIES INSTALL_RPATH $ORIGIN/${libraries_from_command})
  install(TARGETS catalogcore_command DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT command)
  catalogcore_no_rpath_in_usr(command catalogcore_command ${CMAKE_INSTALL_BINDIR})
  configure_file(app/catalogcore.1.in ${CMAKE_INSTALL_MANDIR}/man1/catalogcore.1 @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${CMAKE_INSTALL_MANDIR}/man1/catalogcore.1
    DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT command)
  install(FILES app/catalogcore.bash RENAME catalogcore
    DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT command)
endif()
