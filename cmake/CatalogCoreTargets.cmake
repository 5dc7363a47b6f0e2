# How every target of the project is built: language, warnings, sanitizers, visibility.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)

add_library(catalogcore_options INTERFACE)
target_compile_options(catalogcore_options INTERFACE
  -Wall -Wextra -Wpedantic -Werror -Wconversion -Wsign-conversion -Wshadow -Wcast-align -Wformat=2
  $<$<COMPILE_LANGUAGE:CXX>:-Wold-style-cast -Wnon-virtual-dtor -Woverloaded-virtual>)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # GCC 12 takes some additions of std::string for overlapping copies when it optimises (its bug 105651).
  target_compile_options(catalogcore_options INTERFACE -Wno-restrict)
endif()
if(CATALOGCORE_UNSIGNED_CHAR)
  target_compile_options(catalogcore_options INTERFACE -funsigned-char)
endif()
if(CATALOGCORE_SANITIZE)
  target_compile_options(catalogcore_options INTERFACE
    -fsanitize=${CATALOGCORE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(catalogcore_options INTERFACE -fsanitize=${CATALOGCORE_SANITIZE})
endif()

# catalogcore_c_program(NAME): a C program that uses the library: with the sanitizers it needs what they know of C++.
function(catalogcore_c_program name)
  target_link_libraries(${name} PRIVATE CatalogCore::catalogcore catalogcore_options)
  if(CATALOGCORE_SANITIZE)
    set_target_properties(${name} PROPERTIES LINKER_LANGUAGE CXX)
  endif()
endfunction()

# catalogcore_room(NAME SOURCES source... [USES target...])
# A room of the library: a static library of its own, included from the project's root ("store/entries.h").
function(catalogcore_room name)
  cmake_parse_arguments(ROOM "" "" "SOURCES;USES" ${ARGN})
  add_library(catalogcore_${name} STATIC ${ROOM_SOURCES})
  target_include_directories(catalogcore_${name} PUBLIC ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
  target_link_libraries(catalogcore_${name} PUBLIC ${ROOM_USES} PRIVATE catalogcore_options)
endfunction()
