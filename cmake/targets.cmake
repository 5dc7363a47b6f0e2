# How every target of the project is built: language, warnings, hardening, sanitizers, visibility.
include(CheckCXXCompilerFlag)
include(CheckPIESupported)

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_C_STANDARD 11)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_C_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
check_pie_supported()  # without this Clang 14 links programs for a fixed address

add_library(catalogcore_options INTERFACE)
target_compile_options(catalogcore_options INTERFACE
  -Wall -Wextra -Wpedantic $<$<BOOL:${CATALOGCORE_WARNINGS_AS_ERRORS}>:-Werror> -Wconversion -Wsign-conversion -Wshadow
  -Wcast-align -Wformat=2 $<$<COMPILE_LANGUAGE:CXX>:-Wold-style-cast -Wnon-virtual-dtor -Woverloaded-virtual>)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # With optimisation GCC 12 reports false overlapping copies in additions of std::string (GCC bug 105651).
  target_compile_options(catalogcore_options INTERFACE -Wno-restrict)
endif()
# The library parses untrusted files inside other programs. Hardening makes a remaining bug harder to exploit.
foreach(flag -fstack-protector-strong -fstack-clash-protection -fcf-protection -mbranch-protection=standard)
  string(MAKE_C_IDENTIFIER "HAS${flag}" has_flag)
  set(CMAKE_REQUIRED_FLAGS -Werror)  # Clang only warns about a flag that the processor does not support
  check_cxx_compiler_flag(${flag} ${has_flag})
  unset(CMAKE_REQUIRED_FLAGS)
  if(${has_flag})
    target_compile_options(catalogcore_options INTERFACE ${flag})
  endif()
endforeach()
if(NOT APPLE)
  target_link_options(catalogcore_options INTERFACE -Wl,-z,relro,-z,now)
endif()
if(NOT CATALOGCORE_SANITIZE)  # the sanitizers check the same calls and more
  target_compile_options(catalogcore_options INTERFACE
    $<$<CONFIG:Release,RelWithDebInfo,MinSizeRel>:-U_FORTIFY_SOURCE -D_FORTIFY_SOURCE=2>)
endif()
if(CATALOGCORE_UNSIGNED_CHAR)
  target_compile_options(catalogcore_options INTERFACE -funsigned-char)
endif()
if(CATALOGCORE_SANITIZE)
  target_compile_options(catalogcore_options INTERFACE
    -fsanitize=${CATALOGCORE_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(catalogcore_options INTERFACE -fsanitize=${CATALOGCORE_SANITIZE})
endif()

# catalogcore_c_program(NAME): a C program that uses the library. With the sanitizers it needs their C++ runtime.
function(catalogcore_c_program name)
  target_link_libraries(${name} PRIVATE CatalogCore::catalogcore catalogcore_options)
  if(CATALOGCORE_SANITIZE)
    set_target_properties(${name} PROPERTIES LINKER_LANGUAGE CXX)
  endif()
endfunction()

# catalogcore_module(NAME SOURCES source... [USES target...])
# A module of the library: a static library from a folder of src/, whose headers are included as "store/entries.h".
function(catalogcore_module name)
  cmake_parse_arguments(MODULE "" "" "SOURCES;USES" ${ARGN})
  add_library(catalogcore_${name} STATIC ${MODULE_SOURCES})
  target_include_directories(catalogcore_${name} PUBLIC ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/include)
  target_link_libraries(catalogcore_${name} PUBLIC ${MODULE_USES} PRIVATE catalogcore_options)
endfunction()
