# Fails when a source file includes a header that its module may not include.
#
# Each line: the sources of a module, then the folders and headers that these sources may include, beside the system's.
# "include" stands for the public headers, of which src/ may include those in C. The headers of src/ that app/ includes are
# the interface of catalogcore_formats.
cmake_minimum_required(VERSION 3.22)
set(include catalogcore.h CoreFoundation/)
set(MODULES
  "include/*: include catalogcore/"
  "src/platform/*: platform/ include"
  "src/base/*: base/ platform/ include"
  "src/store/*: store/ base/ include"
  "src/scene/*: scene/ base/ platform/ include"
  "src/engines/*: engines/ base/ scene/brenn.h scene/orlo.h include"
  "src/persist/*: persist/ store/ base/ platform/ include"
  "src/api/*: api/ persist/ scene/ store/ base/ include"
  "src/api/index_number.*: api/index_number.h base/ include"
  "src/persist/payload.*: persist/payload.h base/ include"
  "src/persist/temporary_file.*: persist/temporary_file.h persist/file_descriptor.h"
  "src/persist/file_descriptor.h:"
  "app/*: app/ include catalogcore.hpp catalogcore/ api/index_number.h persist/file_descriptor.h persist/payload.h persist/temporary_file.h"
  "python/*: include"
  "examples/*: include catalogcore.hpp")

set(tops api app base bench engines examples fuzz include persist platform scene src store tests tools)
foreach(line IN LISTS MODULES)
  string(REGEX MATCH "^([^:]+): ?(.*)$" _ "${line}")
  set(pattern ${CMAKE_MATCH_1})
  string(REPLACE " " ";" allowed "${CMAKE_MATCH_2}")
  file(GLOB_RECURSE sources ${ROOT}/${pattern})
  list(FILTER sources INCLUDE REGEX "\\.(h|hpp|c|cpp|in)$")
  if(NOT sources AND NOT pattern MATCHES "^python/")
    message(SEND_ERROR "${pattern} has no sources: correct the table in ${CMAKE_CURRENT_LIST_FILE}")
  endif()
  string(REPLACE ";" ", " allowed_text "${allowed}")
  list(TRANSFORM allowed REPLACE "^include$" "${include}")
  foreach(source IN LISTS sources)
    file(STRINGS ${source} lines REGEX "^[ \t]*#[ \t]*include")
    foreach(text IN LISTS lines)
      string(REGEX MATCH "([<\"])([^>\"]+)[>\"]" _ "${text}")
      set(quote "${CMAKE_MATCH_1}")
      set(header "${CMAKE_MATCH_2}")
      string(REGEX MATCH "^[^/]*" top "${header}")
      if(quote STREQUAL "<" AND NOT top IN_LIST tops AND NOT header MATCHES "^(catalogcore|CoreFoundation)[/.]")
        continue()  # a system header
      endif()
      set(is_allowed FALSE)
      foreach(prefix IN LISTS allowed)
        string(FIND "${header}" "${prefix}" at)
        if(header STREQUAL prefix OR (at EQUAL 0 AND prefix MATCHES "/$"))
          set(is_allowed TRUE)
        endif()
      endforeach()
      if(NOT is_allowed)
        file(RELATIVE_PATH name ${ROOT} ${source})
        message(SEND_ERROR "${name} includes ${header}. The files ${pattern} may include only: ${allowed_text}")
      endif()
    endforeach()
  endforeach()
endforeach()
