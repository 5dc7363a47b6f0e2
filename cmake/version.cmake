# Configuring fails if the version macros of the public header differ from the project's version. The header is not
# generated, so that programs can include it from the source tree.
foreach(part MAJOR MINOR PATCH)
  file(STRINGS ${PROJECT_SOURCE_DIR}/include/catalogcore.h line REGEX "^#define CATALOGCORE_VERSION_${part} ")
  if(NOT line STREQUAL "#define CATALOGCORE_VERSION_${part} ${PROJECT_VERSION_${part}}")
    message(FATAL_ERROR "include/catalogcore.h has \"${line}\", but the project's version is ${PROJECT_VERSION}; "
                        "change the header, or project(VERSION) in CMakeLists.txt")
  endif()
endforeach()
# Changing the header configures again, which checks the version again.
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/include/catalogcore.h)
