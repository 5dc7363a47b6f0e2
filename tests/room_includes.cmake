# Fails when a room includes another that it has no business with. Each line: a room, then the rooms it may include
# beside itself; "CoreFoundation" and "catalogcore.h" stand for the headers of these names.
set(ROOMS
  "base: platform/corefoundation/utf8.h CoreFoundation catalogcore.h"
  "store: base catalogcore.h"
  "scene: base platform/large_block.h CoreFoundation catalogcore.h"
  "api: base scene store CoreFoundation catalogcore.h"
  "persist: api base store CoreFoundation catalogcore.h"
  "engines: scene/brenn.h scene/orlo.h"
  "app: CoreFoundation catalogcore.h"
  "platform/corefoundation: platform/large_block.h CoreFoundation")

foreach(line IN LISTS ROOMS)
  string(REGEX MATCH "^([^:]+): (.*)$" _ "${line}")
  set(room ${CMAKE_MATCH_1})
  string(REPLACE " " ";" allowed "${CMAKE_MATCH_2}")
  file(GLOB_RECURSE sources ${ROOT}/${room}/*.h ${ROOT}/${room}/*.cpp)
  foreach(source IN LISTS sources)
    file(STRINGS ${source} includes
      REGEX "^#include [<\"](api|app|base|engines|persist|platform|scene|store|CoreFoundation|catalogcore)[/.]")
    foreach(include IN LISTS includes)
      string(REGEX MATCH "[<\"]([^>\"]+)[>\"]" _ "${include}")
      set(target ${CMAKE_MATCH_1})
      set(is_allowed FALSE)
      foreach(name IN LISTS room allowed)
        string(FIND "${target}" "${name}" at)
        if(at EQUAL 0)
          set(is_allowed TRUE)
        endif()
      endforeach()
      if(NOT is_allowed)
        message(SEND_ERROR "${source}: room ${room} may not include ${target}")
      endif()
    endforeach()
  endforeach()
endforeach()
