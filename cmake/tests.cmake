# The test programs. tests/support/ is shared by all of them.
include(GoogleTest)
set(BUILD_GMOCK OFF)
set(INSTALL_GTEST OFF)
add_subdirectory(/usr/src/googletest "${CMAKE_BINARY_DIR}/googletest" EXCLUDE_FROM_ALL SYSTEM)

# The path of the sources, as the program under test sees it: Wine shows the system's root as drive Z.
set(sourceFolderText "${CMAKE_SOURCE_DIR}")
set(programFolderText "${CMAKE_BINARY_DIR}/Corvalt")
if(WIN32)
  string(PREPEND sourceFolderText "Z:")
  string(PREPEND programFolderText "Z:")
endif()
configure_file("${CMAKE_SOURCE_DIR}/cmake/sourcefolder.cpp.in" "${CMAKE_BINARY_DIR}/generated/sourcefolder.cpp" @ONLY)

# What the library and the programs of the tests have in common. Optimising a long test body takes half a minute a file;
# what is tested is compiled as the preset wants it.
add_library(test_options INTERFACE)
target_compile_options(test_options INTERFACE -O0)
target_link_libraries(test_options INTERFACE GTest::gtest)

folder_sources(supportSources tests/support)
add_library(test_support STATIC ${supportSources} "${CMAKE_BINARY_DIR}/generated/sourcefolder.cpp")
target_link_libraries(test_support PUBLIC Corvalt::ui_console Corvalt::platform_memory program_zlib test_options)
if(WIN32)
  target_link_libraries(test_support PUBLIC Corvalt::platform_windows)
endif()
# Read once for all tests.
target_precompile_headers(test_support PRIVATE <gtest/gtest.h> ${commonHeaders} <deque> <sstream>)

# add_test_program(NAME folder...): the program corvalt_NAME_tests of the sources in the folders. Each of its tests is
# known to ctest under its own name.
function(add_test_program name)
  set(program corvalt_${name}_tests)
  set(sources "")
  foreach(folder IN LISTS ARGN)
    folder_sources(found ${folder})
    list(APPEND sources ${found})
  endforeach()
  add_executable(${program} ${sources})
  target_link_libraries(${program} PRIVATE test_support GTest::gtest_main)
  target_precompile_headers(${program} REUSE_FROM test_support)
  finish_program(${program})
  set_target_properties(${program} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/tests")
  add_dependencies(${program} program_data)
  # Asked for its tests when ctest runs: a cross build needs no Wine. Under Wine one test at a time has the registry.
  set(properties TIMEOUT 120 LABELS ${name})
  if(WIN32)
    list(APPEND properties RESOURCE_LOCK wine)
  endif()
  gtest_discover_tests(${program} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 120 PROPERTIES ${properties})
endfunction()

if(WIN32)
  set(contractFolder tests/contract/windows)
else()
  set(contractFolder tests/contract/memory)
endif()
add_test_program(unit tests/unit)
add_test_program(contract tests/contract ${contractFolder})
add_test_program(thread tests/threads)

# All that ./test runs, without what else a preset may hold.
add_custom_target(test_programs)
add_dependencies(test_programs corvalt_unit_tests corvalt_contract_tests corvalt_thread_tests)

# Helpers of the scripts in tests/wine/: each NAME.cpp is a program wine_NAME, and so is the window reader's folder.
function(add_wine_helper name)
  add_executable(wine_${name} ${ARGN})
  finish_program(wine_${name})
  target_link_libraries(wine_${name} PRIVATE ntdll ole32 psapi)
  target_link_options(wine_${name} PRIVATE -municode)
  set_target_properties(wine_${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/tests")
  add_dependencies(test_programs wine_${name})
endfunction()

if(WIN32)
  folder_sources(wineHelpers tests/wine)
  foreach(source IN LISTS wineHelpers)
    get_filename_component(name "${source}" NAME_WE)
    add_wine_helper(${name} "${source}")
  endforeach()
  folder_sources(windowReader tests/wine/windowreader)
  add_wine_helper(windowreader ${windowReader})
endif()
