# The two programs, in a folder that is complete: ready to run or to zip.
set(programFolder "${CMAKE_BINARY_DIR}/Corvalt")

folder_sources(sharedSources app corvalt.cpp corvaltc.cpp)
add_library(app_common STATIC ${sharedSources})
target_link_libraries(app_common PUBLIC Corvalt::ui_windows Corvalt::ui_console)

# The version stands in project() only.
set(versionHeader "${CMAKE_BINARY_DIR}/generated/app/version.h")
configure_file("${CMAKE_SOURCE_DIR}/app/version.h.in" "${versionHeader}" @ONLY)
target_include_directories(app_common PUBLIC "${CMAKE_BINARY_DIR}/generated")

# Builds what ships and nothing else.
add_custom_target(programs)
add_dependencies(programs program_manual program_data)

# What the resource compiler reads without telling the build.
file(GLOB resourceFiles CONFIGURE_DEPENDS "${CMAKE_SOURCE_DIR}/app/resources/*")
list(APPEND resourceFiles "${versionHeader}")

# add_windows_program(NAME [WIN32]): app/NAME.cpp with its resources, app/resources/NAME.rc.
function(add_windows_program name)
  set(resources "${CMAKE_SOURCE_DIR}/app/resources/${name}.rc")
  set_source_files_properties(${resources} PROPERTIES OBJECT_DEPENDS "${resourceFiles}")
  add_executable(${name} ${ARGN} "${CMAKE_SOURCE_DIR}/app/${name}.cpp" ${resources})
  target_link_libraries(${name} PRIVATE app_common plain_terminate)
  finish_program(${name})
  target_link_options(${name} PRIVATE -municode -s)
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY "${programFolder}")
  add_dependencies(programs ${name})
  add_dependencies(${name} program_manual program_data)
endfunction()

add_windows_program(corvalt WIN32)
add_windows_program(corvaltc)

# The resources name each icon by its path below the build folder.
foreach(program corvalt corvaltc)
  target_include_directories(${program} PRIVATE "${CMAKE_BINARY_DIR}")
  set_property(
    SOURCE "${CMAKE_SOURCE_DIR}/app/resources/${program}.rc" APPEND PROPERTY OBJECT_DEPENDS "${programIcons}")
  add_dependencies(${program} program_pictures)
endforeach()

# cmake --install BUILD --prefix FOLDER leaves the complete program folder in FOLDER.
install(TARGETS corvalt corvaltc RUNTIME DESTINATION .)
install(FILES "${programFolder}/help.chm" DESTINATION .)
install(DIRECTORY "${programFolder}/data" "${programFolder}/languages" DESTINATION .)
