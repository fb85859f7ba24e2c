# pugixml comes as a Debian source package, because no package holds it built for Windows. It is fetched once
# for all presets, at configure time.
set(debianSources "${CMAKE_SOURCE_DIR}/build/_sources")
execute_process(
  COMMAND "${Python3_EXECUTABLE}" "${CMAKE_SOURCE_DIR}/cmake/fetchsource.py" pugixml "${debianSources}"
  RESULT_VARIABLE fetchResult)
if(NOT fetchResult EQUAL 0)
  message(FATAL_ERROR "The Debian source package pugixml could not be fetched; the reason stands above.")
endif()

add_library(pugixml STATIC "${debianSources}/pugixml/src/pugixml.cpp")
target_include_directories(pugixml SYSTEM PUBLIC "${debianSources}/pugixml/src")
target_compile_definitions(pugixml PUBLIC PUGIXML_NO_EXCEPTIONS PUGIXML_NO_XPATH PUGIXML_NO_STL)
