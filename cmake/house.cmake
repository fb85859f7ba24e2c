# What every target of ours shares, and the function that makes a library of a folder.

add_library(house_options INTERFACE)
target_compile_features(house_options INTERFACE cxx_std_20)
target_include_directories(house_options INTERFACE "${CMAKE_SOURCE_DIR}")
target_compile_options(house_options INTERFACE
  "$<$<COMPILE_LANGUAGE:CXX>:-Wall;-Wextra;-Wpedantic;-Wconversion;-Wshadow;-Werror>")
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # GCC 12 sees overlapping copies in plain additions of strings, where there are none (its bug 105651).
  target_compile_options(house_options INTERFACE "$<$<COMPILE_LANGUAGE:CXX>:-Wno-restrict>")
endif()
# Paths in the programs begin at the top of the sources, wherever those lie.
target_compile_options(house_options INTERFACE "-ffile-prefix-map=${CMAKE_SOURCE_DIR}=.")
target_link_libraries(house_options INTERFACE Threads::Threads)
if(WIN32)
  # With XP's version number the headers declare only what XP has, and structures keep the sizes that XP's
  # common controls accept. Newer routines are looked up at run time.
  target_compile_definitions(house_options INTERFACE UNICODE _UNICODE NOMINMAX WIN32_LEAN_AND_MEAN
                                                     WINVER=0x0501 _WIN32_WINNT=0x0501 _WIN32_IE=0x0600)
endif()

# What every target of the house includes somewhere, read by the compiler once. Only the standard library: a header of
# ours in it would compile everything anew at each change. Targets take it over with REUSE_FROM.
set(commonHeaders <algorithm> <array> <atomic> <cstdint> <functional> <map> <memory> <mutex> <optional> <set> <span>
                  <string> <string_view> <thread> <tuple> <utility> <variant> <vector>)
file(WRITE "${CMAKE_BINARY_DIR}/generated/commonheaders.cpp" "")
add_library(common_headers OBJECT "${CMAKE_BINARY_DIR}/generated/commonheaders.cpp")
target_link_libraries(common_headers PRIVATE house_options)
target_precompile_headers(common_headers PRIVATE ${commonHeaders})

# The sources directly in a folder; a file added or removed is noticed by the next build.
function(folder_sources result folder)
  file(GLOB found CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/${folder}/*.cpp")
  foreach(name IN LISTS ARGN)
    list(REMOVE_ITEM found "${CMAKE_SOURCE_DIR}/${folder}/${name}")
  endforeach()
  set(${result} "${found}" PARENT_SCOPE)
endfunction()

# add_house_library(NAME FOLDERS folder... [USES target...] [PRIVATELY target...] [WITHOUT file...])
# The target corvalt_NAME of the sources in the folders, known to the others as Corvalt::NAME.
function(add_house_library name)
  cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "FOLDERS;USES;PRIVATELY;WITHOUT")
  set(sources "")
  foreach(folder IN LISTS arg_FOLDERS)
    folder_sources(found "${folder}" ${arg_WITHOUT})
    list(APPEND sources ${found})
  endforeach()
  add_library(corvalt_${name} STATIC ${sources})
  add_library(Corvalt::${name} ALIAS corvalt_${name})
  target_link_libraries(corvalt_${name} PUBLIC house_options ${arg_USES} PRIVATE ${arg_PRIVATELY})
  # Not in the optimised build for Windows: what comes through a precompiled header is no system header any more, and
  # GCC 12's optimiser then sees faults in the standard library's strings.
  if(NOT WIN32)
    target_precompile_headers(corvalt_${name} REUSE_FROM common_headers)
  endif()
endfunction()

# The letter case tables come from the system on Windows and from a table of our own elsewhere. They are a library
# below base/, because base/lettercase.cpp calls them.
function(add_letter_case_library)
  if(WIN32)
    set(platform windows)
  else()
    set(platform memory)
  endif()
  add_library(corvalt_letter_case STATIC "${CMAKE_SOURCE_DIR}/platform/${platform}/lettercase.cpp")
  add_library(Corvalt::letter_case ALIAS corvalt_letter_case)
  target_link_libraries(corvalt_letter_case PUBLIC house_options)
endfunction()

# Links a program of ours with everything below app/, and with what keeps its imports within Windows XP.
function(finish_program name)
  target_link_libraries(${name} PRIVATE Corvalt::ui)
  if(WIN32)
    target_link_libraries(${name} PRIVATE Corvalt::ui_windows Corvalt::platform_windows xp_floor)
  endif()
endfunction()

if(WIN32)
  # An object, not an archive: it must win over the system's import library.
  add_library(xp_floor OBJECT "${CMAKE_SOURCE_DIR}/platform/windows/xpfloor.cpp")
  target_link_libraries(xp_floor PRIVATE house_options)
  # The same: it must win over the C++ library.
  add_library(plain_terminate OBJECT "${CMAKE_SOURCE_DIR}/platform/windows/terminate.cpp")
  target_link_libraries(plain_terminate PRIVATE house_options)
endif()
