# Each fuzz/NAME.cpp is a program fuzz_NAME; its seeds lie in fuzz/corpus/NAME/.
add_library(fuzz_support STATIC "${CMAKE_SOURCE_DIR}/tests/support/datafile.cpp")
target_link_libraries(fuzz_support PUBLIC house_options program_zlib)

file(GLOB fuzzSources CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/fuzz/*.cpp")
foreach(source IN LISTS fuzzSources)
  get_filename_component(name "${source}" NAME_WE)
  add_executable(fuzz_${name} "${source}")
  target_link_libraries(fuzz_${name} PRIVATE Corvalt::platform_memory fuzz_support)
  finish_program(fuzz_${name})
  target_link_options(fuzz_${name} PRIVATE -fsanitize=fuzzer)
  set_target_properties(fuzz_${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/fuzz")
endforeach()
