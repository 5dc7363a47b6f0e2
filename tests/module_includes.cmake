# Fails when a module includes another that it may not. Each line: a module, then the modules it may include beside itself;
# "CoreFoundation" and "catalogcore.h" stand for the headers of these names.
set(MODULES
  "src/base: platform/corefoundation/utf8.h CoreFoundation catalogcore.h"
  "src/store: base catalogcore.h"
  "src/scene: base platform/large_block.h CoreFoundation catalogcore.h"
  "src/api: base scene store CoreFoundation catalogcore.h"
  "src/persist: api base store platform/large_block.h CoreFoundation catalogcore.h"
  "src/engines: scene/brenn.h scene/orlo.h"
  "app: CoreFoundation catalogcore.h api/index_number.h persist/payload.h"
  "src/platform/corefoundation: platform/large_block.h CoreFoundation")

foreach(line IN LISTS MODULES)
  string(REGEX MATCH "^([^:]+): (.*)$" _ "${line}")
  set(folder ${CMAKE_MATCH_1})
  string(REPLACE " " ";" allowed "${CMAKE_MATCH_2}")
  string(REGEX REPLACE "^src/" "" module ${folder})
  file(GLOB_RECURSE sources ${ROOT}/${folder}/*.h ${ROOT}/${folder}/*.cpp)
  if(NOT sources)
    message(SEND_ERROR "${folder} has no sources")
  endif()
  foreach(source IN LISTS sources)
    file(STRINGS ${source} includes
      REGEX "^#include [<\"](api|app|base|engines|persist|platform|scene|store|CoreFoundation|catalogcore)[/.]")
    foreach(include IN LISTS includes)
      string(REGEX MATCH "[<\"]([^>\"]+)[>\"]" _ "${include}")
      set(target ${CMAKE_MATCH_1})
      set(is_allowed FALSE)
      foreach(name IN LISTS module allowed)
        string(FIND "${target}" "${name}" at)
        if(at EQUAL 0)
          set(is_allowed TRUE)
        endif()
      endforeach()
      if(NOT is_allowed)
        message(SEND_ERROR "${source}: module ${module} may not include ${target}")
      endif()
    endforeach()
  endforeach()
endforeach()
